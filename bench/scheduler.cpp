// Cost of one PlayStep on a busy six-track score: sixteenth-note chords in five tracks and a
// drum track, on the virtual clock, into an output that only counts. At tempo 240 a step
// has 16 ms; the step must take a tiny fraction of that.
#include <benchmark/benchmark.h>

#include <limits>

#include "playback/scheduler.h"
#include "playback/virtual_clock.h"

namespace {

using namespace plectaro;

class CountingOut : public MidiOut {
 public:
  int openDevice(int) override { return kMidiOk; }
  void closeDevice() override {}
  bool isOpen() const override { return true; }
  int shortMsg(uint32_t) override {
    ++count;
    return kMidiOk;
  }
  std::vector<MidiDeviceInfo> devices() override { return {}; }
  size_t count = 0;
};

Score SixTracks() {
  Score s;
  s.Tempo = 240;
  s.Tracks.resize(6);
  s.SetBarCount(31);
  for (int t = 0; t < 6; ++t) {
    Track& tr = s.Tracks[static_cast<size_t>(t)];
    tr.Channel = static_cast<int16_t>(2 * t);
    tr.EffectChannel = static_cast<int16_t>(2 * t + 1);
    if (t == 5) {
      tr.DrumTrack = true;
      tr.Channel = 9;
      tr.DrumMaps[0].Drum[0] = 2;
      tr.DrumMaps[1].Drum[2] = 8;
    }
    for (int b = 0; b < 32; ++b) {
      auto& beats = s.barMut(t, b).Beats;
      beats.assign(16, Beat());
      for (int k = 0; k < 16; ++k) {
        Beat& beat = beats[static_cast<size_t>(k)];
        beat.Length = kSixteenth;
        if (t == 5) {
          beat.Notes[0].Fret = "X";
          beat.Notes[1].Fret = "x";
        } else {
          for (int st = 0; st < 6; ++st) beat.Notes[static_cast<size_t>(st)].Fret = std::to_string((k + st) % 5);
        }
      }
    }
  }
  s.BarInfos[8].RepeatClose = 1;
  return s;
}

void BM_PlayStep(benchmark::State& state) {
  const Score s = SixTracks();
  VirtualClock clock;
  CountingOut out;
  Scheduler sch(out, clock);
  sch.PlayTab(s, 0, 31);
  for (auto _ : state) {
    if (!clock.fireNext(std::numeric_limits<double>::infinity())) {
      state.PauseTiming();
      sch.PlayTab(s, 0, 31);
      state.ResumeTiming();
    }
  }
  state.counters["messages_per_step"] =
      benchmark::Counter(static_cast<double>(out.count), benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_PlayStep);

// Six tracks of quarter notes at tempo 240, every beat moving the wheel: bends (a 1 ms
// interval at this tempo, 261 firings each) on even beats, vibrato on odd ones. One iteration
// is one 64th step of playing time: the step itself and every effect firing due within it.
Score SixTracksBending() {
  Score s;
  s.Tempo = 240;
  s.Tracks.resize(6);
  s.SetBarCount(31);
  BendInfo bend;
  for (size_t i = 0; i < bend.Points.size(); ++i) bend.Points[i] = i < 8 ? static_cast<double>(i) / 2 : 4;
  for (int t = 0; t < 6; ++t) {
    Track& tr = s.Tracks[static_cast<size_t>(t)];
    tr.Channel = static_cast<int16_t>(2 * t);
    tr.EffectChannel = static_cast<int16_t>(2 * t + 1);
    for (int b = 0; b < 32; ++b) {
      auto& beats = s.barMut(t, b).Beats;
      beats.assign(4, Beat());
      for (size_t k = 0; k < 4; ++k) {
        Beat& beat = beats[k];
        beat.Length = kQuarter;
        beat.Notes[0].Fret = "7";
        beat.Notes[1].Fret = "8";
        if (k % 2 == 0) {
          beat.Notes[0].HasBend = true;
          beat.Notes[0].Bend.mut() = bend;
        } else {
          beat.ChordTechnique = kWideVibrato;
        }
      }
    }
  }
  return s;
}

void BM_StepWithEffects(benchmark::State& state) {
  const Score s = SixTracksBending();
  VirtualClock clock;
  CountingOut out;
  Scheduler sch(out, clock);
  sch.PlayTab(s, 0, 31);
  const int32_t step = IntervalForTempo(s.Tempo);
  for (auto _ : state) {
    clock.advanceBy(step);
    if (!sch.playing()) {
      state.PauseTiming();
      sch.PlayTab(s, 0, 31);
      state.ResumeTiming();
    }
  }
  state.counters["messages_per_step"] =
      benchmark::Counter(static_cast<double>(out.count), benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_StepWithEffects);

}  // namespace

BENCHMARK_MAIN();
