// Millisecond timers that fire on the one thread that owns the score, and a stopwatch.
//
// A `HiPreTimer` has the properties of the classic timer control: Interval, Resolution,
// Periodic, Enabled and a Timer event. Firings are delivered one at a time, in order, on the
// owner's thread; a slow handler delays the next firing but never overlaps it.
//
// The period is measured against the clock, not counted from when the previous firing
// happened to run: a periodic timer's n-th firing is due at start + n x Interval, and a
// restart from inside the timer's own handler counts from the moment that firing was due.
// So the time a step spends on its own work does not add up over a long song.
//
// A `PlaybackClock` makes timers and tells the time. The real one runs on Qt's event loop
// (playback/qt); `VirtualClock` steps time by hand for tests, traces and offline rendering.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace plectaro {

class HiPreTimer {
 public:
  virtual ~HiPreTimer() = default;
  HiPreTimer(const HiPreTimer&) = delete;
  HiPreTimer& operator=(const HiPreTimer&) = delete;

  void setOnTimer(std::function<void()> handler) { onTimer_ = std::move(handler); }

  int32_t Interval() const { return interval_; }
  // Stores max(ms, 1), then writes Enabled with its present value: a running timer restarts
  // its period from zero, a stopped one stays stopped.
  void setInterval(int32_t ms);
  int32_t Resolution() const { return resolution_; }
  // Clamped into PeriodMin..PeriodMax.
  void setResolution(int32_t ms);
  bool Periodic() const { return periodic_; }
  void setPeriodic(bool periodic) { periodic_ = periodic; }
  bool Enabled() const { return enabled_; }
  // True stops any running event and starts a new one; False stops it.
  void setEnabled(bool enabled);

  int32_t PeriodMin() const { return periodMin_; }
  int32_t PeriodMax() const { return periodMax_; }

  // When the next firing is due, in clock milliseconds; meaningful while armed().
  double due() const { return due_; }
  bool armed() const { return armed_; }

 protected:
  HiPreTimer(int32_t periodMin, int32_t periodMax) : periodMin_(periodMin), periodMax_(periodMax) {}

  virtual double now() const = 0;
  // Asks the backend to call fireDue() at (or as soon as possible after) `dueMs`.
  virtual void arm(double dueMs) = 0;
  virtual void disarm() = 0;
  // The backend calls this when the armed time has come.
  void fireDue();

 private:
  void start();
  void stop();

  std::function<void()> onTimer_;
  int32_t interval_ = 1000;
  int32_t resolution_ = 10000;
  int32_t periodMin_;
  int32_t periodMax_;
  bool periodic_ = false;
  bool enabled_ = false;
  bool armed_ = false;
  double due_ = 0;
  bool inHandler_ = false;
  double handlerDue_ = 0;
};

class PlaybackClock {
 public:
  virtual ~PlaybackClock() = default;
  // Milliseconds since the clock was made.
  virtual double nowMs() const = 0;
  virtual std::unique_ptr<HiPreTimer> createTimer() = 0;
};

// Interval in milliseconds of one 64th step at a tempo: 3750 / tempo, rounded to the nearest
// integer with ties to even (tempo 120 gives 31, tempo 60 gives 62). A tempo that is not a
// positive number gives the slowest step the timer can hold.
int32_t IntervalForTempo(double tempo);

// Stopwatch over the steady clock.
class clsTimer {
 public:
  void StartTimer();
  void StopTimer();
  // Milliseconds from start to stop as "###,###,##0.00" ("1,234.50"); the number is kept.
  std::string Elasped();
  double elapsedMs() const { return elapsed_; }

 private:
  std::chrono::steady_clock::time_point start_{}, stop_{};
  double elapsed_ = 0;
};

}  // namespace plectaro
