// Plays a drum pattern on a timer of the playback clock. Each step's own length decides when
// the next step fires: the interval is written anew on every tick, which also restarts the
// period from that tick.
#pragma once

#include <functional>
#include <memory>

#include "playback/hi_pre_timer.h"
#include "playback/midi_out.h"
#include "tools/drum_pattern.h"

namespace plectaro {

inline constexpr int kPercussionChannel = 9;

class DrumSequencer {
 public:
  DrumSequencer(MidiOut& out, PlaybackClock& clock);
  ~DrumSequencer();

  // Starts at step 0; the pattern is read on every tick, so edits made while it plays are heard.
  void play(const DrumPattern& pattern);
  void stop();
  bool playing() const;

  // Loop: after the last step play goes on from step 0. `passes` > 0 ends play after that
  // many passes even with loop on (the command line's --loops).
  bool loop = false;
  int passes = 0;

  struct Hooks {
    std::function<void(int step)> stepSounded;  // the play cursor moves to this step
    std::function<void()> wrapped;              // back to step 0: scroll to the start
    std::function<void()> stopped;
  } hooks;

  int step() const { return step_; }

 private:
  void tick();

  MidiOut& out_;
  std::unique_ptr<HiPreTimer> timer_;
  const DrumPattern* pattern_ = nullptr;
  int step_ = 0;
  int passesDone_ = 0;
};

// Sounds one instrument row at once (the preview of a click in the grid).
void SoundDrum(MidiOut& out, const DrumPattern& p, int instrument);

}  // namespace plectaro
