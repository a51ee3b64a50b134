// How steadily the Drum Machine keeps time on the real clock: a pattern at tempo 240 with all
// 16 instruments on every step (16 note-ons a step, 62 ms apart) for ten seconds. Each step's
// first note-on is measured against its ideal time; p99 of that deviation is the figure.
#include <benchmark/benchmark.h>

#include <QCoreApplication>

#include <vector>

#include "playback/qt/qt_clock.h"
#include "playback/recording_out.h"
#include "step_jitter.h"
#include "tools/drum_sequencer.h"

namespace {

using namespace plectaro;

QCoreApplication& App() {
  static int argc = 1;
  static char name[] = "bench_tools";
  static char* argv[] = {name, nullptr};
  static QCoreApplication app(argc, argv);
  return app;
}

void BM_DrumMachineAtTempo240(benchmark::State& state) {
  App();
  for (auto _ : state) {
    QtPlaybackClock clock;
    RecordingMidiOut out([&clock] { return clock.nowMs(); });
    DrumPattern p = NewDrumPattern();
    p.Tempo = 240;
    for (int s = 0; s < p.steps(); ++s)
      for (int i = 0; i < p.instruments(); ++i) p.setCell(s, i, true);
    const int32_t interval = StepIntervalMs(p, 0);
    DrumSequencer seq(out, clock);
    seq.loop = true;
    seq.passes = static_cast<int>(10000 / (interval * p.steps())) + 1;
    std::vector<double> times;
    seq.hooks.stepSounded = [&](int) { times.push_back(clock.nowMs()); };
    const double start = clock.nowMs();
    seq.play(p);
    Pump([&] { return !seq.playing(); });
    std::vector<double> dev;
    for (size_t i = 0; i < times.size(); ++i) dev.push_back(times[i] - (start + interval * static_cast<double>(i + 1)));
    Report(state, dev);
    state.counters["messages"] = static_cast<double>(out.messages.size());
  }
}
BENCHMARK(BM_DrumMachineAtTempo240)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
