#include "playback/virtual_clock.h"

#include <algorithm>

namespace plectaro {

class VirtualClock::Timer : public HiPreTimer {
 public:
  explicit Timer(VirtualClock& clock) : HiPreTimer(1, 1000000), clock_(&clock) {
    clock_->timers_.push_back(this);
  }
  ~Timer() override {
    if (clock_) std::erase(clock_->timers_, this);
  }
  void detach() { clock_ = nullptr; }
  uint64_t armOrder() const { return armOrder_; }
  void fire() { fireDue(); }

 protected:
  double now() const override { return clock_ ? clock_->now_ : 0; }
  void arm(double) override {
    if (clock_) armOrder_ = ++clock_->armCounter_;
  }
  void disarm() override {}

 private:
  VirtualClock* clock_;
  uint64_t armOrder_ = 0;
};

VirtualClock::VirtualClock() = default;

VirtualClock::~VirtualClock() {
  // Timers may outlive the clock (owners are destroyed in any order); they just stop firing.
  for (Timer* t : timers_) t->detach();
}

std::unique_ptr<HiPreTimer> VirtualClock::createTimer() { return std::make_unique<Timer>(*this); }

bool VirtualClock::fireNext(double limitMs) {
  Timer* next = nullptr;
  for (Timer* t : timers_) {
    if (!t->armed() || t->due() > limitMs) continue;
    if (!next || t->due() < next->due() ||
        (t->due() == next->due() && t->armOrder() < next->armOrder()))
      next = t;
  }
  if (!next) return false;
  now_ = std::max(now_, next->due());
  next->fire();
  return true;
}

void VirtualClock::advanceTo(double untilMs) {
  while (fireNext(untilMs)) {
  }
  now_ = std::max(now_, untilMs);
}

bool VirtualClock::runUntilIdle(double limitMs) {
  while (fireNext(limitMs)) {
  }
  for (Timer* t : timers_)
    if (t->armed()) return false;
  return true;
}

}  // namespace plectaro
