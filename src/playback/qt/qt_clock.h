// The real clock of playback: timers on Qt's event loop, measured against the steady clock.
//
// A QTimer alone wakes on whole milliseconds and late by the loop's own delays, so each
// firing is aimed at its ideal time: the QTimer is set to wake a little early, and the last
// stretch is waited out in zero-length turns of the event loop (the window stays live).
// Firings stay in order on the thread that owns the score, one at a time.
#pragma once

#include <chrono>
#include <memory>

#include "playback/hi_pre_timer.h"

namespace plectaro {

class QtPlaybackClock : public PlaybackClock {
 public:
  QtPlaybackClock();
  double nowMs() const override;
  std::unique_ptr<HiPreTimer> createTimer() override;

 private:
  std::chrono::steady_clock::time_point origin_;
};

}  // namespace plectaro
