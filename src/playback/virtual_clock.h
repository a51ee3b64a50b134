// A clock whose time moves only when told to. Timers fire in order of their due time (ties in
// the order they were armed), each at exactly its due time, so the same playback code that runs
// on the real timer gives an exact and repeatable message stream here.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "playback/hi_pre_timer.h"

namespace plectaro {

class VirtualClock : public PlaybackClock {
 public:
  VirtualClock();
  ~VirtualClock() override;

  double nowMs() const override { return now_; }
  std::unique_ptr<HiPreTimer> createTimer() override;

  // Fires every timer due up to `untilMs` in order, then sets the time to `untilMs`.
  void advanceTo(double untilMs);
  void advanceBy(double ms) { advanceTo(now_ + ms); }
  // Fires timers until none is armed or the time would pass `limitMs`. True if it went idle.
  bool runUntilIdle(double limitMs);
  // Fires the one next timer; false if none is armed.
  bool fireNext(double limitMs);

 private:
  class Timer;
  friend class Timer;
  double now_ = 0;
  uint64_t armCounter_ = 0;
  std::vector<Timer*> timers_;
};

}  // namespace plectaro
