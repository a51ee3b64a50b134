#include "tools/drum_sequencer.h"

#include <algorithm>

namespace plectaro {

DrumSequencer::DrumSequencer(MidiOut& out, PlaybackClock& clock) : out_(out), timer_(clock.createTimer()) {
  timer_->setResolution(1);
  timer_->setPeriodic(true);
  timer_->setOnTimer([this] { tick(); });
}

DrumSequencer::~DrumSequencer() { timer_->setEnabled(false); }

bool DrumSequencer::playing() const { return timer_->Enabled(); }

void DrumSequencer::play(const DrumPattern& pattern) {
  timer_->setEnabled(false);
  pattern_ = &pattern;
  step_ = 0;
  passesDone_ = 0;
  if (pattern.steps() == 0) return;
  timer_->setInterval(StepIntervalMs(pattern, 0));
  timer_->setEnabled(true);
}

void DrumSequencer::stop() {
  if (!timer_->Enabled()) return;
  timer_->setEnabled(false);
  MIDIChannelNotesOff(out_, kPercussionChannel);
  if (hooks.stopped) hooks.stopped();
}

void SoundDrum(MidiOut& out, const DrumPattern& p, int instrument) {
  if (instrument < 0 || instrument >= p.instruments()) return;
  const int key = GetDrumIndex(p.Instruments[static_cast<size_t>(instrument)]);
  if (key <= 0) return;
  MIDINoteOn(out, kPercussionChannel, key, std::clamp<int>(p.Volumes[static_cast<size_t>(instrument)], 0, 127));
}

void DrumSequencer::tick() {
  const DrumPattern& p = *pattern_;
  if (step_ >= p.steps()) {
    ++passesDone_;
    if (!loop || (passes > 0 && passesDone_ >= passes) || p.steps() == 0) {
      stop();
      return;
    }
    step_ = 0;
    if (hooks.wrapped) hooks.wrapped();
  }
  if (hooks.stepSounded) hooks.stepSounded(step_);
  for (int i = 0; i < p.instruments(); ++i)
    if (p.cell(step_, i)) SoundDrum(out_, p, i);
  timer_->setInterval(StepIntervalMs(p, step_));
  ++step_;
}

}  // namespace plectaro
