// The speed trainer's form: which bars to loop, the tempo of the first pass, how much faster
// each pass goes, the top tempo and the number of passes. The dialog reads these values, this
// checks them and turns them into the scheduler's trainer state.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "playback/scheduler.h"
#include "score/score_records.h"

namespace plectaro {

struct SpeedTrainerForm {
  int FromBar = 1;  // bars count from 1, as the window shows them
  int ToBar = 1;
  int StartTempo = 60;
  int Step = 5;
  int TopTempo = 120;
  int Passes = 5;
};

// A form for the score: the bars of the selection (first and last given 0-based, or -1 for
// none) else the cursor's bar; the start tempo at 60% of the song's, the top at the song's.
SpeedTrainerForm DefaultSpeedTrainerForm(const Score& score, int cursorBar, int selFirst, int selLast);

// Checks the form; "" when it is good, with `out` filled. Otherwise the message to show, in
// the interface language through `text` (a key such as "str_StartRateInvalid1" to its text).
std::string CheckSpeedTrainer(const SpeedTrainerForm& form, int barCount, SpeedTrainer& out,
                              const std::function<std::string(std::string_view)>& text);

// The tempo each pass plays at, as the scheduler will play it: one more pass than the loops
// back, each Step faster, never beyond the top.
std::vector<int> TrainerPassTempos(const SpeedTrainer& trainer);

}  // namespace plectaro
