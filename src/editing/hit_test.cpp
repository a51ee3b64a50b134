#include "editing/hit_test.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "editing/selection.h"
#include "editing/staff_entry.h"
#include "rendering/notation.h"
#include "rendering/page_layout.h"

namespace plectaro {

namespace {

// How far above and below a row a click still counts for it: chord names and texts stand
// above the staves, and the cursor is drawn a little beyond the outer lines.
constexpr double kRowSlack = 20;
constexpr double kLineSlack = 7;

const std::vector<BarLayout>* layoutOf(const Document& doc, int track) {
  if (track < 0 || static_cast<size_t>(track) >= doc.Layout.size()) return nullptr;
  const auto& lay = doc.Layout[static_cast<size_t>(track)];
  if (lay.size() < doc.score.Tracks[static_cast<size_t>(track)].Bars.size()) return nullptr;
  return &lay;
}

// The pitch of the notation line nearest to y on one staff: the naturals and the sharps above
// them share a height, and the natural is taken. `base` is the staff's note origin.
int staffLineAt(double base, double staffTop, double y, bool keyFlats, int lowest, int highest) {
  int best = -1;
  double bestDist = std::numeric_limits<double>::max();
  for (int p = lowest; p <= highest; ++p) {
    // Heads sit on the staff's grid of lines and spaces, 3.5 units apart.
    const double head = staffTop + 3.5 * std::round((base + StaffPosition(p, keyFlats) + 6.5 - staffTop) / 3.5);
    const double dist = std::abs(head - y);
    const bool tie = std::abs(dist - bestDist) < 0.01;
    if (dist < bestDist - 0.01 || (tie && IsBlackKey(best) && !IsBlackKey(p))) best = p, bestDist = dist;
  }
  return best;
}

// The notation line under y in bar `bar`'s row, or -1 when y is on neither staff (ledger lines
// included: three above and below the staff).
int notationLineAt(const Track& tr, const BarLayout& l, int bar, double y) {
  if (tr.DrumTrack) return -1;
  const int bottom = NotationLineBottom(tr);
  const int top = bottom + kNotationLineSpan;
  const bool split = tr.TrebleStaff && tr.BassStaff;
  const bool flats = KeyUsesFlats(tr, bar);
  const auto near = [&](double staffTop) { return y >= staffTop - 24 && y <= staffTop + 28 + 24; };
  if (tr.TrebleStaff && near(l.DrawY + TrebleStaffTop(tr))) {
    const int from = split ? std::max(bottom, 48) : bottom;
    if (from <= top) return staffLineAt(l.DrawY + TrebleStaffTop(tr), l.DrawY + TrebleStaffTop(tr), y, flats, from, top);
  }
  if (tr.BassStaff && near(l.DrawY + BassStaffTop(tr))) {
    const int to = split ? std::min(top, 47) : top;
    if (bottom <= to) return staffLineAt(l.DrawY + BassStaffAnchor(tr), l.DrawY + BassStaffTop(tr), y, flats, bottom, to);
  }
  return -1;
}

}  // namespace

HitResult HitTest(const Document& doc, int track, double x, double y) {
  HitResult r;
  if (track < 0 || track > doc.score.LastTrack()) return r;
  const std::vector<BarLayout>* lay = layoutOf(doc, track);
  if (!lay) return r;
  const Track& tr = doc.score.Tracks[static_cast<size_t>(track)];
  const double rh = RowHeight(tr);
  double best = std::numeric_limits<double>::max();
  for (size_t b = 0; b < tr.Bars.size(); ++b) {
    const BarLayout& l = (*lay)[b];
    if (l.DrawWidth <= 0 || x < l.DrawX || x >= l.DrawX + l.DrawWidth) continue;
    if (y < l.DrawY - kRowSlack || y >= l.DrawY + rh + kRowSlack) continue;
    const double centre = l.DrawY + rh / 2;
    const double dist = std::abs(y - centre);
    if (dist < best) {
      best = dist;
      r.hit = true;
      r.bar = static_cast<int>(b);
    }
  }
  if (!r.hit) return r;
  const BarLayout& l = (*lay)[static_cast<size_t>(r.bar)];
  const int lastBeat = static_cast<int>(tr.Bars[static_cast<size_t>(r.bar)]->Beats.size()) - 1;
  const double first = l.DrawX + RowLayout::BeatOffset(l.ShowsSignature, l.BeatSpacing, 0) + 3;
  const double k = l.BeatSpacing > 0 ? std::round((x - first) / l.BeatSpacing) : 0;
  r.beat = static_cast<int>(std::clamp(k, 0.0, static_cast<double>(std::max(lastBeat, 0))));
  if (tr.TabStaff) {
    const double top = l.DrawY + TabStaffTop(tr);
    const int strings = StringCount(tr);
    if (y >= top - kLineSlack && y <= top + (strings - 1) * 10 + kLineSlack)
      r.string = std::clamp(static_cast<int>(std::lround((y - top) / 10)), 0, strings - 1);
  }
  if (r.string < 0) r.line = notationLineAt(tr, l, r.bar, y);
  return r;
}

void picDocument_MouseDown(EditContext& ctx, MouseButton button, Modifiers mods, double x, double y) {
  const HitResult hit = HitTest(ctx.doc, ctx.doc.CursorTrack, x, y);
  // Shift+click marks up to the point clicked (Ctrl as well: in all tracks); a right click
  // keeps the selection so that its menu can act on it.
  if (hit.hit && button == MouseButton::Left && (mods & kShift)) {
    SelectTo(ctx, hit.bar, hit.beat, (mods & kCtrl) != 0);
    return;
  }
  // A right click inside the selection keeps it and the cursor, so its menu acts on the band;
  // anywhere else it drops the selection like a left click.
  bool inSelection = false;
  if (auto sel = SelectionOf(ctx); sel && hit.hit && button == MouseButton::Right)
    inSelection = hit.bar >= sel->firstBar && hit.bar <= sel->lastBar &&
                  (sel->wholeBars || (hit.beat >= sel->firstBeat && hit.beat <= sel->lastBeat));
  if (!inSelection) Deselect(ctx);
  if (hit.hit && !inSelection) {
    RunCursorMove(ctx, [&] {
      Document& d = ctx.doc;
      d.CursorBar = static_cast<int16_t>(hit.bar);
      d.CursorBeat = static_cast<int16_t>(hit.beat);
      if (hit.string >= 0) {
        d.CursorString = static_cast<int16_t>(hit.string);
        ctx.NotationEntry = false;
        const Track& tr = d.score.track(d.CursorTrack);
        // On a drum track the drum cursor goes to the sound the clicked line plays, so that
        // a letter typed next lands on this line.
        if (tr.DrumTrack) {
          const auto& map = tr.DrumMaps[static_cast<size_t>(hit.string)].Drum;
          const auto it = std::find_if(map.begin(), map.end(), [](int16_t v) { return v > 0; });
          if (it != map.end()) d.CursorLine = *it;
        }
      } else if (hit.line >= 0) {
        d.CursorLine = static_cast<int16_t>(hit.line);
        ctx.NotationEntry = true;
      }
    });
  }
  if (button == MouseButton::Right && ctx.hooks.openRightMenu)
    ctx.hooks.openRightMenu(static_cast<int>(x), static_cast<int>(y));
}

void picDocument_MouseDrag(EditContext& ctx, Modifiers mods, double x, double y) {
  const HitResult hit = HitTest(ctx.doc, ctx.doc.CursorTrack, x, y);
  if (!hit.hit || (hit.bar == ctx.doc.CursorBar && hit.beat == ctx.doc.CursorBeat)) return;
  SelectTo(ctx, hit.bar, hit.beat, (mods & kCtrl) != 0);
}

int ScrollToShowCursor(const Document& doc, int vScroll, double pictureHeight) {
  const std::vector<BarLayout>* lay = layoutOf(doc, doc.CursorTrack);
  if (!lay || doc.CursorBar < 0 || static_cast<size_t>(doc.CursorBar) >= lay->size()) return vScroll;
  const BarLayout& l = (*lay)[static_cast<size_t>(doc.CursorBar)];
  const double rh = RowHeight(doc.score.track(doc.CursorTrack));
  const double top = l.DrawY - kRowSlack;
  const double bottom = l.DrawY + rh + kRowSlack;
  if (top < 0) return std::max(0, vScroll - static_cast<int>(std::ceil(-top / 8)));
  if (bottom > pictureHeight) {
    // Bring the row's bottom into sight, but never push its top out at the other end.
    const double down = std::min(bottom - pictureHeight, top);
    return vScroll + static_cast<int>(std::ceil(down / 8));
  }
  return vScroll;
}

}  // namespace plectaro
