// Save and load of a large score: 1000 bars, 6 tracks of 8 beats, a note on each of 6 strings.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "score/cipher.h"
#include "score/music_file.h"

using namespace plectaro;

namespace {

// Every bar differs from every other, so the bar compression finds nothing to share; with
// `repeating` set, bars repeat every four, as songs do.
Score bigScore(bool repeating) {
  Score s;
  s.Tracks.resize(6);
  s.SetBarCount(999);
  for (int t = 0; t < 6; ++t) {
    for (int b = 0; b < 1000; ++b) {
      TrackBar& tb = s.barMut(t, b);
      tb.Beats.assign(8, Beat());
      const int seed = repeating ? b % 4 : b;
      for (int k = 0; k < 8; ++k) {
        tb.Beats[static_cast<size_t>(k)].Length = kEighth;
        // Strings 0 and 1 spell the bar number in base 24 and string 2 carries the next digit
        // (two digits alone repeat from bar 577 on), so no two bars of a track are alike.
        const int frets[6] = {seed % 24, seed / 24 % 24, (k + t + seed / 576) % 24, (k * 3) % 24, (k * 5 + 1) % 24, k};
        for (int str = 0; str < 6; ++str)
          tb.Beats[static_cast<size_t>(k)].Notes[static_cast<size_t>(str)].Fret = std::to_string(frets[str]);
      }
    }
  }
  return s;
}

const std::filesystem::path kFile = std::filesystem::temp_directory_path() / "plectaro-bench.plm";

void BM_Save(benchmark::State& state) {
  const Score s = bigScore(state.range(0) != 0);
  for (auto _ : state) SaveMusicFile(s, kFile);
  state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(kFile));
}

void BM_Load(benchmark::State& state) {
  SaveMusicFile(bigScore(state.range(0) != 0), kFile);
  MemorySettingsStore settings;
  for (auto _ : state) {
    Document doc;
    OpenMusicFile(doc, kFile, settings);
    benchmark::DoNotOptimize(doc.score.Tracks.size());
  }
}

void BM_WriteText(benchmark::State& state) {
  const Score s = bigScore(false);
  for (auto _ : state) benchmark::DoNotOptimize(WriteMusicText(s));
}

// The save without the disk: the tag text and the cipher.
void BM_Encode(benchmark::State& state) {
  const Score s = bigScore(false);
  for (auto _ : state) benchmark::DoNotOptimize(CipherBytes(WriteMusicText(s)));
}

void BM_ReadText(benchmark::State& state) {
  const std::string text = WriteMusicText(bigScore(false));
  for (auto _ : state) {
    Score s;
    ReadMusicText(text, s);
    benchmark::DoNotOptimize(s.Tracks.size());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(text.size()));
}

}  // namespace

BENCHMARK(BM_Save)->Arg(0)->Arg(1)->ArgName("repeating")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Load)->Arg(0)->Arg(1)->ArgName("repeating")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteText)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Encode)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadText)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
