#include "playback/hi_pre_timer.h"

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <cstdio>

namespace plectaro {

void HiPreTimer::setInterval(int32_t ms) {
  interval_ = std::max<int32_t>(ms, 1);
  setEnabled(enabled_);
}

void HiPreTimer::setResolution(int32_t ms) { resolution_ = std::clamp(ms, periodMin_, periodMax_); }

void HiPreTimer::setEnabled(bool enabled) {
  enabled_ = enabled;
  stop();
  if (enabled) start();
}

void HiPreTimer::start() {
  // Restarted by its own handler (the scheduler rewrites Interval on every step), the period
  // counts from when the firing was due, not from now: the handler's own time would otherwise
  // be added to every step.
  const double base = inHandler_ ? handlerDue_ : now();
  due_ = base + interval_;
  armed_ = true;
  arm(due_);
}

void HiPreTimer::stop() {
  if (!armed_) return;
  armed_ = false;
  disarm();
}

void HiPreTimer::fireDue() {
  if (!armed_) return;
  const double firedDue = due_;
  if (periodic_) {
    due_ += interval_;
    arm(due_);
  } else {
    armed_ = false;
  }
  const bool outer = inHandler_;
  const double outerDue = handlerDue_;
  inHandler_ = true;
  handlerDue_ = firedDue;
  if (onTimer_) onTimer_();
  inHandler_ = outer;
  handlerDue_ = outerDue;
}

int32_t IntervalForTempo(double tempo) {
  if (!(tempo > 0)) return 32767;
  double ms = 3750.0 / tempo;
  if (ms > 32767) return 32767;
  // nearbyint rounds to even under the default rounding mode.
  return std::max<int32_t>(1, static_cast<int32_t>(std::nearbyint(ms)));
}

void clsTimer::StartTimer() { start_ = std::chrono::steady_clock::now(); }
void clsTimer::StopTimer() { stop_ = std::chrono::steady_clock::now(); }

std::string clsTimer::Elasped() {
  elapsed_ = std::chrono::duration<double, std::milli>(stop_ - start_).count();
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.2f", std::fabs(elapsed_));
  std::string digits(buf);
  size_t dot = digits.find('.');
  std::string whole = digits.substr(0, dot);
  std::string grouped;
  for (size_t i = 0; i < whole.size(); ++i) {
    if (i > 0 && (whole.size() - i) % 3 == 0) grouped += ',';
    grouped += whole[i];
  }
  return (elapsed_ < 0 ? "-" : "") + grouped + digits.substr(dot);
}

}  // namespace plectaro
