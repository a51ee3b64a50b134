// A keystroke on a 1000-bar score, from the key to the finished redraw of the view on a
// QImage, and what 100 levels of undo cost after 100 one-note edits.
//
// Keys measured: a fret digit (the page is redrawn from the stored layout), Right inside a
// bar (cursor only), and Shift+Ins / Shift+Del in turn (the beat count changes, so the whole
// track is laid out again: the worst case of ordinary typing), Shift+Left / Shift+Right with
// 100 bars marked (the band is worked out and painted over the page on every key). With the
// fretboard and piano panels open, a fret digit also repaints both panels with the cursor's beat.
#include <benchmark/benchmark.h>

#include "bench_scores.h"
#include "qt_bench_main.h"

#include <QApplication>
#include <QImage>
#include <QDockWidget>
#include <QMainWindow>
#include <QPainter>

#include <malloc.h>

#include <cstdlib>
#include <unordered_set>

#include "editing/key_map.h"
#include "editing/ui/practice_panels.h"
#include "editing/selection.h"
#include "rendering/draw_document.h"
#include "rendering/qt/qt_surface.h"
#include "score/prompter.h"

namespace plectaro {
namespace {


// The window: a QImage the size of the view, scrolled to the cursor's row, redrawn by the
// editor's draw hook as DrawDocument on a QPainter surface.
struct View {
  Document doc = BigTabSong(1000);
  ScriptedPrompter prompter;
  EditContext ctx{doc, prompter};
  QImage image{900, 1000, QImage::Format_RGB32};
  ViewState view;
  LayoutSettings settings;
  DrawTexts texts;

  View() {
    view.PictureWidth = 900;
    view.PictureHeight = 1000;
    LayoutTrack(doc, 0, settings, texts);
    view.VScroll = std::max(1, (doc.Layout[0][static_cast<size_t>(doc.CursorBar)].DrawY - 300) / 8);
    ctx.setUndoLevels(100);
    ctx.hooks.drawDocument = [this] {
      QPainter painter(&image);
      QtSurface surface(painter);
      DrawResult r = DrawDocument(doc, settings, view, texts, surface);
      benchmark::DoNotOptimize(r);
      // The window paints the selection as a translucent band over the page.
      for (const BandRect& b : SelectionBand(ctx))
        painter.fillRect(QRectF(b.x, b.y, b.w, b.h), QColor(51, 153, 255, 60));
    };
    doc.FullRelayout = true;
    ctx.hooks.drawDocument();
  }
};

void BM_KeyToRedraw_Fret(benchmark::State& state) {
  View v;
  int i = 0;
  for (auto _ : state) picDocument_KeyDown(v.ctx, DigitKey(3 + (i++ % 5)), kNoModifier);
}

void BM_KeyToRedraw_CursorRight(benchmark::State& state) {
  View v;
  for (auto _ : state) {
    v.doc.CursorBeat = 0;
    picDocument_KeyDown(v.ctx, Key::Right, kNoModifier);
  }
}

void BM_KeyToRedraw_InsertDeleteBeat(benchmark::State& state) {
  View v;
  int i = 0;
  for (auto _ : state) picDocument_KeyDown(v.ctx, (i++ % 2) ? Key::Delete : Key::Insert, kShift);
}

void BM_KeyToRedraw_FretWithPanels(benchmark::State& state) {
  View v;
  MemorySettingsStore settings;
  QMainWindow window;
  PracticePanels panels(window, v.ctx, settings);
  panels.fretboardDock()->show();
  panels.pianoDock()->show();
  panels.fretboard()->resize(900, 150);
  panels.piano()->resize(900, 110);
  QImage fret(900, 150, QImage::Format_RGB32), keys(900, 110, QImage::Format_RGB32);
  const auto page = v.ctx.hooks.drawDocument;
  // After the page, the panels take the new beat and paint, as the window's draw signal does.
  v.ctx.hooks.drawDocument = [&] {
    page();
    panels.refresh();
    panels.fretboard()->render(&fret);
    panels.piano()->render(&keys);
  };
  int i = 0;
  for (auto _ : state) {
    v.doc.CursorString = static_cast<int16_t>(i % 6);
    picDocument_KeyDown(v.ctx, DigitKey(3 + (i++ % 5)), kNoModifier);
  }
}

void BM_KeyToRedraw_ExtendSelection100Bars(benchmark::State& state) {
  View v;
  // Marked from 99 bars before the cursor up to it; the cursor's row is in sight.
  v.ctx.selection = Selection{true, false, static_cast<int16_t>(v.doc.CursorBar - 99), 0};
  v.doc.CursorBeat = 3;
  int i = 0;
  for (auto _ : state) picDocument_KeyDown(v.ctx, (i++ % 2) ? Key::Left : Key::Right, kShift);
  const auto r = SelectionOf(v.ctx);
  state.counters["marked_bars"] = r ? r->lastBar - r->firstBar + 1 : 0;
}

// Heap bytes of a score, counting every shared bar and sub-record once across all the scores
// handed in (the live document plus the snapshots).
class Footprint {
 public:
  size_t add(const Score& s) {
    size_t bytes = sizeof(Score) + s.Tracks.capacity() * sizeof(Track) +
                   s.BarInfos.capacity() * sizeof(BarInfo);
    for (const Track& t : s.Tracks) {
      bytes += t.Bars.capacity() * sizeof(Cow<TrackBar>);
      for (const Cow<TrackBar>& b : t.Bars) {
        if (!seen_.insert(&*b).second) continue;
        bytes += sizeof(TrackBar) + 8 /* the box's reference count */ +
                 b->Beats.capacity() * sizeof(Beat);
        for (const Beat& beat : b->Beats)
          for (const NoteSlot& n : beat.Notes)
            if (n.Fret.size() > SmallText::kInline) bytes += n.Fret.size() + 1;
      }
    }
    return bytes;
  }

 private:
  std::unordered_set<const void*> seen_;
};

void BM_UndoMemory_100Levels(benchmark::State& state) {
  for (auto _ : state) {
    const size_t heapStart = mallinfo2().uordblks;
    View* v = new View;
    const size_t heapDoc = mallinfo2().uordblks;
    Footprint own;
    const double docBytes = static_cast<double>(own.add(v->doc.score));
    v->ctx.hooks.drawDocument = nullptr;  // memory only
    // 100 one-note edits spread over the score, each a key press that the ring keeps.
    for (int e = 0; e < 100; ++e) {
      v->doc.CursorBar = static_cast<int16_t>(e * 9);
      v->doc.CursorBeat = static_cast<int16_t>(e % 8);
      v->doc.CursorString = static_cast<int16_t>(e % 6);
      // A digit that really changes the slot ("1" and "2" take a second digit behind them).
      const std::string& old = v->doc.score.note(0, v->doc.CursorBar, v->doc.CursorBeat, v->doc.CursorString).Fret;
      int d = e % 10;
      auto typed = [&](int digit) { return (old == "1" || old == "2" ? old : "") + std::to_string(digit); };
      if (typed(d) == old) d = (d + 1) % 10;
      picDocument_KeyDown(v->ctx, DigitKey(d), kNoModifier);
    }
    const size_t heapAfter = mallinfo2().uordblks;
    Footprint all;
    all.add(v->doc.score);
    size_t ringBytes = 0;
    int filled = 0;
    for (const UndoEntry& u : v->ctx.undo.undoEntries()) {
      ringBytes += all.add(u.score);
      ++filled;
    }
    state.counters["doc_MB"] = docBytes / 1e6;
    state.counters["ring_MB"] = static_cast<double>(ringBytes) / 1e6;
    state.counters["ring_per_doc"] = static_cast<double>(ringBytes) / docBytes;
    // The same measured by the allocator: heap of the view (document, image, layout) and
    // what the 100 edits added on top of it.
    state.counters["heap_doc_MB"] = static_cast<double>(heapDoc - heapStart) / 1e6;
    state.counters["heap_edits_MB"] = static_cast<double>(heapAfter - heapDoc) / 1e6;
    state.counters["snapshots"] = filled;
    delete v;
  }
}

BENCHMARK(BM_KeyToRedraw_Fret)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_KeyToRedraw_FretWithPanels)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_KeyToRedraw_CursorRight)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_KeyToRedraw_InsertDeleteBeat)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_KeyToRedraw_ExtendSelection100Bars)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_UndoMemory_100Levels)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace plectaro

PLECTARO_QT_WIDGETS_BENCHMARK_MAIN("bench_editing", QApplication)
