// Paper and picture exports of a long band score: 1000 bars, 4 tracks. The engraved PDF is
// made in memory (every page of every track); PNG pages are encoded and written. Both report
// the time of one page (the "per_page" counter, in seconds).
#include <benchmark/benchmark.h>

#include "bench_scores.h"
#include "qt_bench_main.h"

#include <filesystem>

#include "rendering/qt/page_export.h"

namespace plectaro {
namespace {

Document bandScore() {
  Document doc = BigTabSong(1000);
  for (int t = 1; t < 4; ++t) doc.score.Tracks.push_back(doc.score.Tracks[0]);
  doc.score.Title = "Benchmark";
  return doc;
}

void BM_EngravedPdfAllTracks(benchmark::State& state) {
  Document doc = bandScore();
  const std::vector<int> tracks = {0, 1, 2, 3};
  int pages = 0;
  for (auto _ : state) {
    const QByteArray pdf = PagesPDFBytes(doc, tracks, LayoutSettings{}, DrawTexts{}, &pages);
    benchmark::DoNotOptimize(pdf.size());
  }
  state.counters["pages"] = pages;
  state.counters["per_page"] =
      benchmark::Counter(pages, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_EngravedPdfAllTracks)->Unit(benchmark::kMillisecond)->MinTime(2);

void BM_PngPages(benchmark::State& state) {
  Document doc = bandScore();
  const auto dir = std::filesystem::temp_directory_path() / "plectaro-bench-png";
  std::filesystem::create_directories(dir);
  const std::vector<int> pages = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
  for (auto _ : state) {
    SavePageImages(doc, 0, pages, LayoutSettings{}, DrawTexts{}, PageImageKind::Png, 96.1644,
                   [&](int p) { return dir / ("page-" + std::to_string(p + 1) + ".png"); });
  }
  state.counters["per_page"] = benchmark::Counter(static_cast<double>(pages.size()),
                                                  benchmark::Counter::kIsIterationInvariantRate |
                                                      benchmark::Counter::kInvert);
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_PngPages)->Unit(benchmark::kMillisecond)->MinTime(2);

}  // namespace
}  // namespace plectaro

PLECTARO_QT_BENCHMARK_MAIN("bench_export")
