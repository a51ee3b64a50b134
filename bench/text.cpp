// Text tab of a 1000-bar track: writing it out and reading it back in.
#include <benchmark/benchmark.h>

#include "bench_scores.h"
#include "exchange/text_tab_export.h"
#include "exchange/text_tab_import.h"

namespace plectaro {
namespace {

void BM_ExportText1000Bars(benchmark::State& state) {
  const Document doc = BigTabSong(1000);
  for (auto _ : state) benchmark::DoNotOptimize(ExportASCIIText(doc.score, 0, {true, 60}));
}
BENCHMARK(BM_ExportText1000Bars)->Unit(benchmark::kMillisecond);

void BM_ExportHtml1000Bars(benchmark::State& state) {
  const Document doc = BigTabSong(1000);
  for (auto _ : state) benchmark::DoNotOptimize(ExportHTMLText(doc.score, 0, {true, 60}));
}
BENCHMARK(BM_ExportHtml1000Bars)->Unit(benchmark::kMillisecond);

void BM_ImportText1000Bars(benchmark::State& state) {
  const std::string text = DecodeTabText(ExportASCIIText(BigTabSong(1000).score, 0, {true, 60}));
  for (auto _ : state) {
    Score s;
    benchmark::DoNotOptimize(ASCIIToPLM(s, 0, text, {}));
  }
  state.counters["bytes"] = static_cast<double>(text.size());
}
BENCHMARK(BM_ImportText1000Bars)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace plectaro

BENCHMARK_MAIN();
