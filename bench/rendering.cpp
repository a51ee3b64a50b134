// The editor redraws the cursor's page on every key press: full relayout of the current track
// plus the drawing of what is in sight. Measured on a recording surface (layout and drawing
// logic alone) and on a QImage (what the window pays), for 100, 1000 and 5000 bars.
#include <benchmark/benchmark.h>

#include "bench_scores.h"
#include "qt_bench_main.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <cstdlib>
#include <memory>

#include "rendering/draw_document.h"
#include "rendering/qt/qt_surface.h"
#include "rendering/recording_surface.h"

namespace plectaro {
namespace {


// Scrolls the view so that the cursor's row is in sight, as the editor does.
ViewState viewOnCursor(Document& doc) {
  ViewState view;
  view.PictureWidth = 900;
  view.PictureHeight = 1000;
  LayoutTrack(doc, 0, LayoutSettings{}, DrawTexts{});
  const int32_t y = doc.Layout[0][static_cast<size_t>(doc.CursorBar)].DrawY;
  view.VScroll = std::max(1, (y - 300) / 8);
  return view;
}

void BM_RelayoutAndDrawRecording(benchmark::State& state) {
  Document doc = BigTabSong(static_cast<int>(state.range(0)));
  const ViewState view = viewOnCursor(doc);
  const LayoutSettings settings;
  const DrawTexts texts;
  RecordingSurface surface;
  for (auto _ : state) {
    surface.clear();
    doc.FullRelayout = true;
    DrawResult r = DrawDocument(doc, settings, view, texts, surface);
    benchmark::DoNotOptimize(r);
  }
  state.counters["calls"] = static_cast<double>(surface.calls().size());
}

void BM_RelayoutAndDrawQImage(benchmark::State& state) {
  Document doc = BigTabSong(static_cast<int>(state.range(0)));
  const ViewState view = viewOnCursor(doc);
  const LayoutSettings settings;
  const DrawTexts texts;
  QImage image(900, 1000, QImage::Format_RGB32);
  for (auto _ : state) {
    doc.FullRelayout = true;
    QPainter painter(&image);
    QtSurface surface(painter);
    DrawResult r = DrawDocument(doc, settings, view, texts, surface);
    benchmark::DoNotOptimize(r);
  }
}

void BM_LayoutOnly(benchmark::State& state) {
  Document doc = BigTabSong(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    DrawResult r = LayoutTrack(doc, 0, LayoutSettings{}, DrawTexts{});
    benchmark::DoNotOptimize(r);
  }
}

BENCHMARK(BM_RelayoutAndDrawRecording)->Arg(100)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RelayoutAndDrawQImage)->Arg(100)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LayoutOnly)->Arg(100)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace plectaro

PLECTARO_QT_BENCHMARK_MAIN("bench_rendering")
