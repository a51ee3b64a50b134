// What the timing benchmarks report about a run of timed steps: the deviation of each step
// from its ideal time (p50, p99, max, in ms) and the drift at the end; and the event pump
// they run on.
#pragma once

#include <benchmark/benchmark.h>

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

namespace plectaro {

inline void Report(benchmark::State& state, std::vector<double> deviations) {
  if (deviations.empty()) return;
  // Drift is where the steps stand at the end, apart from the jitter of any single step: the
  // median deviation of the last fifty steps.
  std::vector<double> tail(deviations.end() - static_cast<long>(std::min<size_t>(50, deviations.size())), deviations.end());
  std::nth_element(tail.begin(), tail.begin() + static_cast<long>(tail.size() / 2), tail.end());
  const double drift = tail[tail.size() / 2];
  state.counters["last_ms"] = deviations.back();
  for (double& d : deviations) d = std::fabs(d);
  std::sort(deviations.begin(), deviations.end());
  auto pct = [&](double p) { return deviations[static_cast<size_t>(p * static_cast<double>(deviations.size() - 1))]; };
  state.counters["steps"] = static_cast<double>(deviations.size());
  state.counters["p50_ms"] = pct(0.50);
  state.counters["p99_ms"] = pct(0.99);
  state.counters["max_ms"] = deviations.back();
  state.counters["drift_ms"] = drift;
}

inline void Pump(const std::function<bool()>& done) {
  while (!done()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents);
}

}  // namespace plectaro
