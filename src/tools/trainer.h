// The two note-naming games: the Fretboard Knowledge Trainer shows a position on the
// fretboard, the Pitch Perfector plays it; the player names the note. A round is ten attempts
// under a time limit that shrinks as the skill grows. The statistics last across days in the
// settings store.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "score/settings_store.h"
#include "tools/beat_generator.h"

namespace plectaro {

inline constexpr std::string_view kToolsSection = "Tools";
inline constexpr std::string_view kFretboardPrefix = "FB";
inline constexpr std::string_view kPitchPrefix = "PP";
inline constexpr int kAttemptsPerRound = 10;
inline constexpr int kWinMark = 7;

struct TrainerStats {
  double TotalRounds = 0;
  double CorrectAttempts = 0;
  double TotalAttempts = 0;
  double FailedAttempts = 0;
  double RoundsWon = 0;
  double RoundsLost = 0;
  double SkillLevel = 0;
  std::string Category;  // shown text; "" reads as the first category
  bool operator==(const TrainerStats&) const = default;
};

// Keys are the prefix ("FB" or "PP") and the field name: "FBTotalRounds"...
TrainerStats LoadTrainerStats(const SettingsStore& store, std::string_view prefix);
void SaveTrainerStats(SettingsStore& store, std::string_view prefix, const TrainerStats& s);
// Every field back to 0 and the first category (the reset buttons of the Options dialog).
void ResetTrainerStats(SettingsStore& store, std::string_view prefix, const std::string& firstCategory);

// The message key of the category of a skill: str_AbsoluteNovice below 100 ... str_Phenomenal
// from 900.
std::string_view SkillCategoryKey(double skill);
// Closes a round of `correct` right answers out of ten. Returns the new category key; the
// caller puts its text into Category.
std::string_view UpdateTrainerStats(TrainerStats& s, int correct);
// "##0.00%" of part / whole, "0.00%" when whole is 0.
std::string PercentText(double part, double whole);

// Milliseconds allowed per attempt: 10 s at skill 0 down to 1 s at skill 1000.
int32_t TimeAllowedMs(double skill);

// The note names in the order of the answer buttons.
inline constexpr const char* kTrainerNoteNames[12] = {"a", "a#", "b", "c", "c#", "d", "d#", "e", "f", "f#", "g", "g#"};

struct TrainerNote {
  int string = 0;  // 0 the high E ... 5 the low E
  int fret = 0;    // 0..18
  std::string answer;
  int pitch = 64;  // the open string's MIDI key plus the fret
};
// Rounded draws: the end values of either range are half as likely as the others.
TrainerNote DrawTrainerNote(RandomSource& rng);

// The state of one round. The window calls guess() for a button and timeUp() when the
// attempt's timer runs out; both say whether the round is over.
class TrainerRound {
 public:
  explicit TrainerRound(RandomSource& rng) : rng_(rng) {}
  void start();  // clears the counters and draws the first note
  enum class Result { Correct, Wrong, Late };
  Result guess(std::string_view name);
  Result timeUp();
  bool over() const { return attempts_ >= kAttemptsPerRound; }
  int attempts() const { return attempts_; }
  int correct() const { return correct_; }
  int failed() const { return failed_; }
  const TrainerNote& note() const { return note_; }

 private:
  RandomSource& rng_;
  int attempts_ = 0, correct_ = 0, failed_ = 0;
  TrainerNote note_;
};

}  // namespace plectaro
