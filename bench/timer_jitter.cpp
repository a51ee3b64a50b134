// How close the real playback clock keeps to the ideal time: tempo 240 (16 ms steps) for ten
// seconds on Qt's event loop. Reported per step: the deviation from the ideal time (p50, p99,
// max, in ms) and the drift at the end. One run each; the counters are the result. Run it on
// a quiet machine: other processes competing for the CPU show up as late steps.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cmath>
#include <vector>

#include "playback/qt/qt_clock.h"
#include "playback/recording_out.h"
#include "playback/scheduler.h"
#include "step_jitter.h"

namespace {

using namespace plectaro;

constexpr double kSeconds = 10;
constexpr int kTempo = 240;

QCoreApplication& App() {
  static int argc = 1;
  static char name[] = "bench_timer_jitter";
  static char* argv[] = {name, nullptr};
  static QCoreApplication app(argc, argv);
  return app;
}

// The bare timer, restarted from its own handler on every step as the scheduler does.
void BM_TimerAtTempo240(benchmark::State& state) {
  App();
  for (auto _ : state) {
    QtPlaybackClock clock;
    auto timer = clock.createTimer();
    const int32_t interval = IntervalForTempo(kTempo);
    const size_t steps = static_cast<size_t>(kSeconds * 1000 / interval);
    std::vector<double> times;
    times.reserve(steps);
    timer->setPeriodic(true);
    timer->setOnTimer([&] {
      times.push_back(clock.nowMs());
      if (times.size() >= steps) timer->setEnabled(false);
      else timer->setInterval(interval);
    });
    timer->setInterval(interval);
    const double start = clock.nowMs();
    timer->setEnabled(true);
    Pump([&] { return !timer->armed(); });
    std::vector<double> dev;
    for (size_t i = 0; i < times.size(); ++i) dev.push_back(times[i] - (start + interval * static_cast<double>(i + 1)));
    Report(state, dev);
  }
}
BENCHMARK(BM_TimerAtTempo240)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

// The whole scheduler on a song of sixty-fourth notes at tempo 240, so that every step
// sounds: the time of each note-on against its ideal step time.
void BM_SchedulerAtTempo240(benchmark::State& state) {
  App();
  for (auto _ : state) {
    QtPlaybackClock clock;
    RecordingMidiOut out([&clock] { return clock.nowMs(); });
    Score s;
    s.Tempo = kTempo;
    const int bars = static_cast<int>(kSeconds * 1000 / (64 * IntervalForTempo(kTempo)));
    s.SetBarCount(bars - 1);
    for (int b = 0; b < bars; ++b) {
      auto& beats = s.barMut(0, b).Beats;
      beats.assign(64, Beat());
      for (int k = 0; k < 64; ++k) {
        beats[static_cast<size_t>(k)].Length = kSixtyFourth;
        beats[static_cast<size_t>(k)].Notes[0].Fret = std::to_string(k % 12);
      }
    }
    Scheduler sch(out, clock);
    const double start = clock.nowMs();
    sch.PlayTab(s, 0, bars - 1);
    Pump([&] { return !sch.playing(); });
    std::vector<double> dev;
    const int32_t interval = IntervalForTempo(kTempo);
    size_t i = 0;
    for (const MidiMessage& m : out.messages) {
      if ((m.Status & 0xF0) != 0x90 || m.Data2 == 0) continue;
      dev.push_back(m.TimeMs - (start + interval * static_cast<double>(++i)));
    }
    Report(state, dev);
  }
}
BENCHMARK(BM_SchedulerAtTempo240)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
