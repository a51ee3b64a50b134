#include "playback/qt/qt_clock.h"

#include <QTimer>

#include <cmath>

namespace plectaro {

namespace {

// How early the coarse QTimer wakes before the ideal time; the rest is waited out finely.
constexpr double kWakeEarlyMs = 1.5;

class QtHiPreTimer : public HiPreTimer {
 public:
  explicit QtHiPreTimer(const QtPlaybackClock& clock) : HiPreTimer(1, 1000000), clock_(clock) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, [this] { onTimeout(); });
  }

 protected:
  double now() const override { return clock_.nowMs(); }
  void arm(double) override { schedule(); }
  void disarm() override { timer_.stop(); }

 private:
  void schedule() {
    const double remaining = due() - clock_.nowMs();
    if (remaining > kWakeEarlyMs + 1)
      timer_.start(static_cast<int>(std::floor(remaining - kWakeEarlyMs)));
    else
      timer_.start(0);
  }

  void onTimeout() {
    if (!armed()) return;
    if (due() > clock_.nowMs()) {
      schedule();
      return;
    }
    fireDue();
  }

  const QtPlaybackClock& clock_;
  QTimer timer_;
};

}  // namespace

QtPlaybackClock::QtPlaybackClock() : origin_(std::chrono::steady_clock::now()) {}

double QtPlaybackClock::nowMs() const {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - origin_).count();
}

std::unique_ptr<HiPreTimer> QtPlaybackClock::createTimer() { return std::make_unique<QtHiPreTimer>(*this); }

}  // namespace plectaro
