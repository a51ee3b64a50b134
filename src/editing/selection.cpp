#include "editing/selection.h"

#include <algorithm>
#include <numeric>

#include "editing/bar_commands.h"
#include "editing/rhythm_commands.h"
#include "rendering/page_layout.h"

namespace plectaro {

std::vector<int> SelectedRange::bars() const {
  std::vector<int> out(static_cast<size_t>(lastBar - firstBar + 1));
  std::iota(out.begin(), out.end(), firstBar);
  return out;
}

std::optional<SelectedRange> SelectionOf(const EditContext& ctx) {
  const Selection& sel = ctx.selection;
  if (!sel.active) return std::nullopt;
  const Document& d = ctx.doc;
  SelectedRange r;
  r.firstBar = std::min(sel.anchorBar, d.CursorBar);
  r.lastBar = std::max(sel.anchorBar, d.CursorBar);
  r.wholeBars = sel.anchorBar != d.CursorBar;
  r.firstBeat = std::min(sel.anchorBeat, d.CursorBeat);
  r.lastBeat = std::max(sel.anchorBeat, d.CursorBeat);
  if (sel.allTracks) {
    r.tracks.resize(d.score.Tracks.size());
    std::iota(r.tracks.begin(), r.tracks.end(), 0);
  } else {
    r.tracks = {d.CursorTrack};
  }
  return r;
}

namespace {

void dropAnchor(EditContext& ctx, bool allTracks) {
  Selection& sel = ctx.selection;
  if (!sel.active) {
    sel.active = true;
    sel.anchorBar = ctx.doc.CursorBar;
    sel.anchorBeat = ctx.doc.CursorBeat;
  }
  sel.allTracks = allTracks;
}

}  // namespace

void ExtendSelection(EditContext& ctx, const std::function<void()>& move, bool allTracks) {
  dropAnchor(ctx, allTracks);
  RunCursorMove(ctx, move);
}

void SelectTo(EditContext& ctx, int bar, int beat, bool allTracks) {
  dropAnchor(ctx, allTracks);
  RunCursorMove(ctx, [&] {
    ctx.doc.score.beat(ctx.doc.CursorTrack, bar, beat);  // throws when out of range
    ctx.doc.CursorBar = static_cast<int16_t>(bar);
    ctx.doc.CursorBeat = static_cast<int16_t>(beat);
  });
}

void SelectAllBars(EditContext& ctx, bool allTracks) {
  Selection& sel = ctx.selection;
  sel.active = true;
  sel.allTracks = allTracks;
  sel.anchorBar = 0;
  sel.anchorBeat = 0;
  RunCursorMove(ctx, [&] {
    Document& d = ctx.doc;
    d.CursorBar = static_cast<int16_t>(d.score.GetLastBar(d.CursorTrack));
    d.CursorBeat = static_cast<int16_t>(d.score.GetLastBeat(d.CursorTrack, d.CursorBar));
    // A score of one bar still selects it whole, not its beats.
    if (d.CursorBar == 0) sel.anchorBar = 0, sel.anchorBeat = 0;
  });
}

void Deselect(EditContext& ctx) {
  if (!ctx.selection.active) return;
  ctx.selection = Selection{};
  ctx.redraw();
}

// The bar clipboard holds bars: a selection of beats inside one bar copies that bar.
bool CopySelection(EditContext& ctx) {
  const auto r = SelectionOf(ctx);
  if (!r) return false;
  try {
    ctx.clipboard = ClipOfTracks(ctx.doc.score, ctx.doc.CursorTrack, r->tracks, r->bars());
  } catch (const ScoreError& e) {
    ctx.prompter.message(e.what(), ctx.text("str_Error"), MessageIcon::Critical);
  }
  return true;
}

namespace {

// Calls fn(track, bar, beat) for every beat of the range that the track has.
template <class Fn>
void forEachBeat(const Score& s, const SelectedRange& r, Fn&& fn) {
  for (int t : r.tracks)
    for (int b = r.firstBar; b <= r.lastBar; ++b) {
      const int last = s.GetLastBeat(t, b);
      const int from = r.wholeBars ? 0 : r.firstBeat;
      const int to = r.wholeBars ? last : std::min(r.lastBeat, last);
      for (int k = from; k <= to; ++k) fn(t, b, k);
    }
}

void clearRange(Score& s, const SelectedRange& r) {
  if (r.wholeBars) {
    for (int t : r.tracks)
      for (int b = r.firstBar; b <= r.lastBar; ++b) ClearBar(s, t, b);
    return;
  }
  forEachBeat(s, r, [&](int t, int b, int k) {
    if (!s.beat(t, b, k).isRest()) s.ClearBeat(t, b, k);
  });
}

}  // namespace

bool CutSelection(EditContext& ctx) {
  const auto r = SelectionOf(ctx);
  if (!r) return false;
  RunCommand(ctx, [&] {
    BarClipboard clip = ClipOfTracks(ctx.doc.score, ctx.doc.CursorTrack, r->tracks, r->bars());
    clearRange(ctx.doc.score, SelectedRange{r->firstBar, r->lastBar, 0, 0, true, r->tracks});
    ctx.clipboard = std::move(clip);
  }, "Cut");
  return true;
}

bool ClearSelection(EditContext& ctx) {
  const auto r = SelectionOf(ctx);
  if (!r) return false;
  RunCommand(ctx, [&] {
    clearRange(ctx.doc.score, *r);
    if (r->wholeBars) ctx.doc.CursorBeat = 0;
  }, "Clear");
  return true;
}

bool StepSelectionLengths(EditContext& ctx, bool longer) {
  const auto r = SelectionOf(ctx);
  if (!r) return false;
  int (*step)(int) = longer ? LongerLength : ShorterLength;
  RunCommand(ctx, [&] {
    Score& s = ctx.doc.score;
    forEachBeat(s, *r, [&](int t, int b, int k) {
      const int now = s.beat(t, b, k).Length;
      if (step(now) != now) s.beatMut(t, b, k).Length = step(now);  // unchanged bars stay shared
    });
  }, ctx.text(longer ? "str_IncreaseLengths" : "str_DecreaseLengths"));
  return true;
}

// Pasting after the cursor's bar lets a user go to the last bar and paste to add to the end.
bool PasteAtCursor(EditContext& ctx) {
  const Score& s = ctx.doc.score;
  std::vector<int> tracks = {ctx.doc.CursorTrack};
  if (ctx.clipboard.trackBars.size() == s.Tracks.size()) {
    tracks.resize(s.Tracks.size());
    std::iota(tracks.begin(), tracks.end(), 0);
  }
  ctx.selection = Selection{};
  return PasteBars(ctx, tracks, 1, true);
}

std::vector<BandRect> SelectionBand(const EditContext& ctx) {
  std::vector<BandRect> out;
  const auto r = SelectionOf(ctx);
  const Document& d = ctx.doc;
  if (!r || d.CursorTrack < 0 || static_cast<size_t>(d.CursorTrack) >= d.Layout.size()) return out;
  const auto& lay = d.Layout[static_cast<size_t>(d.CursorTrack)];
  const double rh = RowHeight(d.score.track(d.CursorTrack));
  for (int b = r->firstBar; b <= r->lastBar && static_cast<size_t>(b) < lay.size(); ++b) {
    const BarLayout& l = lay[static_cast<size_t>(b)];
    if (l.DrawWidth <= 0) continue;
    double x0 = l.DrawX, x1 = l.DrawX + l.DrawWidth;
    if (!r->wholeBars) {
      const double half = l.BeatSpacing / 2.0;
      x0 = std::max(x0, l.DrawX + RowLayout::BeatOffset(l.ShowsSignature, l.BeatSpacing, r->firstBeat) + 3 - half);
      x1 = std::min(x1, l.DrawX + RowLayout::BeatOffset(l.ShowsSignature, l.BeatSpacing, r->lastBeat) + 3 + half);
    }
    out.push_back({x0, static_cast<double>(l.DrawY) - 6, x1 - x0, rh + 12});
  }
  return out;
}

}  // namespace plectaro
