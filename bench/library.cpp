// The chord library: writing the 396 built-in chords on a first start, and the Chord
// Manager's searches over it (by name: no file is read; by tab and by string count: every
// file is read). The window reads the files again on every pass, so that is what is measured.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <random>

#include "reference/library_filter.h"

namespace plectaro {
namespace {

namespace fs = std::filesystem;

fs::path freshFolder() {
  std::random_device rd;
  fs::path p = fs::temp_directory_path() / ("plectaro-bench-library-" + std::to_string(rd()));
  fs::create_directories(p);
  return p;
}

void BM_GenerateChordLibrary(benchmark::State& state) {
  const fs::path data = freshFolder();
  for (auto _ : state) {
    state.PauseTiming();
    fs::remove_all(ChordFolder(data));
    state.ResumeTiming();
    benchmark::DoNotOptimize(CreateAllChords(data));
  }
  fs::remove_all(data);
}
BENCHMARK(BM_GenerateChordLibrary)->Unit(benchmark::kMillisecond);

void filterBench(benchmark::State& state, const ChordFilter& filter) {
  const fs::path data = freshFolder();
  CreateAllChords(data);
  auto load = [&](const std::string& n) { return LoadChordFile(data, n); };
  size_t found = 0;
  for (auto _ : state) {
    // The pass lists the folder again, as RefreshFilter does.
    const FilterResult r = ApplyChordFilter(ListChordNames(data), filter, load, nullptr);
    found = r.names.size();
    benchmark::DoNotOptimize(found);
  }
  state.counters["found"] = static_cast<double>(found);
  fs::remove_all(data);
}

void BM_FilterByName(benchmark::State& state) {
  ChordFilter f;
  f.text = "am7";
  filterBench(state, f);
}
BENCHMARK(BM_FilterByName)->Unit(benchmark::kMillisecond);

void BM_FilterByTab(benchmark::State& state) {
  ChordFilter f;
  f.mode = ChordSearch::Tab;
  f.tab = {"0", "1", "0", "2", "3", "", ""};
  filterBench(state, f);
}
BENCHMARK(BM_FilterByTab)->Unit(benchmark::kMillisecond);

void BM_FilterByStrings(benchmark::State& state) {
  ChordFilter f;
  f.mode = ChordSearch::Strings;
  f.numStrings = 6;
  filterBench(state, f);
}
BENCHMARK(BM_FilterByStrings)->Unit(benchmark::kMillisecond);

void BM_ScaleKeywords(benchmark::State& state) {
  const fs::path data = freshFolder();
  CreateAllScales(data);
  ScaleFilter f;
  f.mode = ScaleSearch::Keywords;
  f.text = "rock";
  for (auto _ : state) {
    const FilterResult r =
        ApplyScaleFilter(ListScaleNames(data), f, [&](const std::string& n) { return LoadScaleFile(data, n); });
    benchmark::DoNotOptimize(r.names.size());
  }
  fs::remove_all(data);
}
BENCHMARK(BM_ScaleKeywords)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace plectaro

BENCHMARK_MAIN();
