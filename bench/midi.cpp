// MIDI file export and import of a long six-track score: 1000 bars, five guitar tracks of
// eighth-note chords and a drum track. Each direction should take well under 100 ms.
#include <benchmark/benchmark.h>

#include "exchange/midi_export.h"
#include "exchange/midi_import.h"

namespace {

using namespace plectaro;

Score thousandBars() {
  Score s;
  s.Tempo = 120;
  s.Tracks.resize(6);
  s.SetBarCount(999);
  for (int t = 0; t < 6; ++t) {
    Track& tr = s.Tracks[static_cast<size_t>(t)];
    tr.Name = "Track " + std::to_string(t + 1);
    tr.Channel = static_cast<int16_t>(t == 5 ? 9 : 2 * t);
    tr.EffectChannel = static_cast<int16_t>(t == 5 ? 9 : 2 * t + 1);
    tr.DrumTrack = t == 5;
    tr.DrumMaps[0].Drum[0] = 2;
    tr.DrumMaps[1].Drum[0] = 4;
    for (int b = 0; b < 1000; ++b) {
      s.SetBeatCount(t, b, 7);
      for (int k = 0; k < 8; ++k) {
        Beat& beat = s.beatMut(t, b, k);
        beat.Length = kEighth;
        if (tr.DrumTrack) {
          beat.Notes[static_cast<size_t>(k % 2)].Fret = "X";
        } else {
          beat.Notes[0].Fret = std::to_string((b + k + t) % 12);
          beat.Notes[3].Fret = std::to_string((b + t) % 5);
          beat.Notes[5].Fret = "0";
        }
      }
    }
  }
  return s;
}

void BM_ExportMidi(benchmark::State& state) {
  const Score s = thousandBars();
  size_t bytes = 0;
  for (auto _ : state) {
    std::string file = SerializeMidiFile(MakeMIDIData(s));
    bytes = file.size();
    benchmark::DoNotOptimize(file);
  }
  state.counters["file_bytes"] = static_cast<double>(bytes);
}
BENCHMARK(BM_ExportMidi)->Unit(benchmark::kMillisecond);

void BM_ImportMidi(benchmark::State& state) {
  const std::string bytes = SerializeMidiFile(MakeMIDIData(thousandBars()));
  int placed = 0;
  for (auto _ : state) {
    Score s;
    MidiImportOptions o;
    o.Quantize = true;
    o.AddTies = true;
    const auto reports = FullImport(OpenMIDIData(ParseMidiFile(bytes)), o, s);
    placed = 0;
    for (const auto& r : reports) placed += r.Placed;
    benchmark::DoNotOptimize(s);
  }
  state.counters["notes_placed"] = placed;
}
BENCHMARK(BM_ImportMidi)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
