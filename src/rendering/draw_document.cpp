#include "rendering/draw_document.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "rendering/bar_drawing.h"
#include "rendering/track_head.h"
#include "score/bar_timing.h"

namespace plectaro {

namespace {

// Where the page stack lies on the surface for one pass.
struct Placement {
  double offsetX = 0;       // left edge of every page
  long long firstTop = 0;   // top of page 0
  double pictureWidth = 0;
  double pictureHeight = 0;
  bool full = true;         // lay out from bar 0
  bool sheets = true;       // draw the grey picture, page sheets and shadows
  int onlyPage = -1;        // draw this page only (exports); -1 all visible pages
  // Paper output: every page is drawn with its top at 0 on the surface this gives for it
  // (nullptr: the page is walked for its bars but not drawn).
  const PageSurfaceFn* perPage = nullptr;
  int cursorLine = -1;      // notation entry: the pitch the staff cursor stands on
};

// The high limit of a full relayout: every row gets its position, seen or not, while the
// 32-bit row position stays far from overflow.
constexpr long long kFullLayoutLimit = 400000000;

std::string pageFooter(const DrawTexts& texts, int page, int lastPage) {
  return texts.Page + " " + std::to_string(page + 1) + " " + texts.Of + " " + std::to_string(lastPage + 1);
}

void drawSheet(Surface& s, const LayoutSettings& st, double x, double top, Color background) {
  // The shadow falls right and below; the edge is drawn in the picture's own colour.
  const Color shadow{64, 64, 64, 255};
  s.fillRect({x + 5, top + 5, static_cast<double>(st.PageWidth), static_cast<double>(st.PageHeight)}, shadow);
  s.fillRect({x, top, static_cast<double>(st.PageWidth), static_cast<double>(st.PageHeight)}, kWhite);
  s.drawRect({x, top, static_cast<double>(st.PageWidth), static_cast<double>(st.PageHeight)}, background);
}

// The page loop: lays out rows page by page from bar 0, writing DrawX, DrawY, DrawWidth,
// BeatSpacing and LayoutOrdinal, and draws what falls inside the picture.
void runPages(Document& doc, int track, const LayoutSettings& st, const DrawTexts& texts,
              const Placement& pl, RowLayout& rows, int lastPage, Surface& surface, bool cursor,
              std::vector<RowChoice>& rowsOut) {
  std::vector<BarLayout>& lay = rows.bars();
  std::optional<DrawContext> pageCtx;
  pageCtx.emplace(doc.score, track, st, lay, surface);
  if (cursor && doc.CursorTrack == track) {
    pageCtx->cursorBar = doc.CursorBar;
    pageCtx->cursorBeat = doc.CursorBeat;
    pageCtx->cursorString = doc.CursorString;
    pageCtx->cursorLine = pl.cursorLine;
  }
  const int16_t perPage = rows.RowsPerPage();
  const long long rowStep = static_cast<long long>(rows.rowHeight()) + rows.rowSpacing();
  const long long limit = pl.full ? kFullLayoutLimit : static_cast<long long>(pl.pictureHeight);
  const double bottom = pl.pictureHeight;
  int bar = 0;
  int ordinal = 0;
  for (int page = 0; bar <= rows.lastBar(); ++page) {
    long long pageTop = pl.firstTop + static_cast<long long>(page) * (st.PageHeight + 35);
    bool drawThisPage = pl.onlyPage < 0 || pl.onlyPage == page;
    if (pl.perPage) {
      pageTop = 0;
      Surface* target = (*pl.perPage)(page, lastPage);
      drawThisPage = target != nullptr;
      if (target) {
        pageCtx.emplace(doc.score, track, st, lay, *target);
        target->fillRect({0, 0, static_cast<double>(st.PageWidth), static_cast<double>(st.PageHeight)}, kWhite);
      }
    }
    if (pageTop > limit) break;
    DrawContext& ctx = *pageCtx;
    if (drawThisPage && pageTop < bottom && pageTop > -(st.PageHeight + 20.0)) {
      Rect sheet{pl.offsetX, static_cast<double>(pageTop), static_cast<double>(st.PageWidth),
                 static_cast<double>(st.PageHeight)};
      DrawPageTitle(ctx, sheet, page, pageFooter(texts, page, lastPage), texts.Capo);
    }
    long long y = pageTop + st.PageTopMargin;
    for (int r = 0; r < perPage && bar <= rows.lastBar(); ++r) {
      const RowChoice row = rows.ChooseRow(bar);
      rowsOut.push_back(row);
      if (y > std::numeric_limits<int32_t>::max() || y < std::numeric_limits<int32_t>::min())
        throw LayoutError("Page layout overflow: the document is too long to lay out");
      const double rowX = st.PageLeftMargin + pl.offsetX;
      const bool visible = drawThisPage && y < bottom && y >= -rows.rowHeight();
      double runX = 0;
      std::vector<int16_t> widths;
      for (int b = row.first; b <= row.last; ++b) {
        const int16_t w = rows.BarDrawWidth(b, row.spacing);
        BarLayout& l = lay[static_cast<size_t>(b)];
        l.DrawWidth = w;
        l.DrawX = CheckedI16(static_cast<long long>(std::lround(rowX + runX)));
        l.DrawY = static_cast<int32_t>(y);
        l.LayoutOrdinal = CheckedI16(ordinal++);
        l.RowFirstBar = CheckedI16(row.first);
        l.RowLastBar = CheckedI16(row.last);
        l.BeatSpacing = rows.BeatSpacingFor(b, w);
        runX += w;
      }
      if (visible) {
        if (r == 0) DrawTrackHead(ctx, rowX, static_cast<double>(y));
        DrawRowStaves(ctx, rowX, static_cast<double>(y), runX);
        double x = rowX;
        for (int b = row.first; b <= row.last; ++b) {
          const double w = lay[static_cast<size_t>(b)].DrawWidth;
          DrawBar(ctx, x, static_cast<double>(y), b, w);
          x += w;
        }
      }
      bar = row.last + 1;
      y += rowStep;
    }
  }
}

// Scrolling without an edit: the stored positions are current, so only what is in sight is
// drawn again, with no row arithmetic at all.
void redrawStored(Document& doc, int track, const LayoutSettings& st, const DrawTexts& texts,
                  const Placement& pl, RowLayout& rows, int lastPage, Surface& surface, bool cursor) {
  std::vector<BarLayout>& lay = rows.bars();
  DrawContext ctx{doc.score, track, st, lay, surface};
  if (cursor && doc.CursorTrack == track) {
    ctx.cursorBar = doc.CursorBar;
    ctx.cursorBeat = doc.CursorBeat;
    ctx.cursorString = doc.CursorString;
    ctx.cursorLine = pl.cursorLine;
  }
  for (int page = 0; page <= lastPage; ++page) {
    const long long top = pl.firstTop + static_cast<long long>(page) * (st.PageHeight + 35);
    if (top < pl.pictureHeight && top > -(st.PageHeight + 20.0))
      DrawPageTitle(ctx, {pl.offsetX, static_cast<double>(top), static_cast<double>(st.PageWidth),
                          static_cast<double>(st.PageHeight)},
                    page, pageFooter(texts, page, lastPage), texts.Capo);
  }
  // The stored positions belong to the scroll place of the last layout. Bar 0 always opens
  // the first row of page 0, so its stored corner tells how far the view has moved since.
  const long long dx = static_cast<long long>(std::lround(st.PageLeftMargin + pl.offsetX)) - lay[0].DrawX;
  const long long dy = pl.firstTop + st.PageTopMargin - lay[0].DrawY;
  if (dx != 0 || dy != 0) {
    for (BarLayout& l : lay) {
      l.DrawX = CheckedI16(l.DrawX + dx);
      const long long y = l.DrawY + dy;
      if (y > std::numeric_limits<int32_t>::max() || y < std::numeric_limits<int32_t>::min())
        throw LayoutError("Page layout overflow: the document is too long to lay out");
      l.DrawY = static_cast<int32_t>(y);
    }
  }
  const double rh = rows.rowHeight();
  for (int b = 0; b <= rows.lastBar(); ++b) {
    const BarLayout& l = lay[static_cast<size_t>(b)];
    if (l.DrawY >= pl.pictureHeight || l.DrawY <= -(rh + 40)) continue;
    if (l.RowFirstBar == b) {
      double width = 0;
      for (int k = b; k <= l.RowLastBar && k <= rows.lastBar(); ++k) width += lay[static_cast<size_t>(k)].DrawWidth;
      // A page's first row stands exactly the top margin below the page top, and no later
      // row of the page can (a page holds less than one page height of rows).
      const long long pageStep = static_cast<long long>(st.PageHeight) + 35;
      const long long fromFirst = l.DrawY - pl.firstTop - st.PageTopMargin;
      if (fromFirst >= 0 && fromFirst % pageStep == 0) DrawTrackHead(ctx, l.DrawX, l.DrawY);
      DrawRowStaves(ctx, l.DrawX, l.DrawY, width);
    }
    DrawBar(ctx, l.DrawX, l.DrawY, b, l.DrawWidth);
  }
}

int cursorPageOf(RowLayout& rows, int lastPage, int cursorBar) {
  int p = 0;
  while (p <= lastPage && rows.FirstBarOfPage(p + 1) <= cursorBar) ++p;
  return p;
}

DrawResult runPass(Document& doc, int track, const LayoutSettings& settingsIn, const DrawTexts& texts,
                   Placement pl, Surface* surface, bool cursor, const ViewState* view) {
  DrawResult result;
  LayoutSettings st = settingsIn;
  try {
    if (track < 0 || track > doc.score.LastTrack())
      throw LayoutError("There is no track " + std::to_string(track + 1) + " to draw");
    if (view && st.AutoPageStretch) ApplyAutoStretch(st, view->PictureWidth, view->PictureHeight);
    if (st.PageWidth <= 0 || st.PageHeight <= 0) throw LayoutError(texts.PageHoldsNoRow);
    result.UsedSettings = st;
    RowLayout rows(doc, track, st);
    const bool stored = !pl.full;
    result.LastPage = rows.NumberOfPages(texts.PageHoldsNoRow);
    result.CursorPage = cursorPageOf(rows, result.LastPage, doc.CursorBar);
    if (view) {
      result.Scroll = ComputeScrollRanges(st, result.LastPage, view->PictureWidth, view->PictureHeight);
      pl.offsetX = PageOffsetX(st, view->PictureWidth, view->HScroll);
    }
    result.Status = MakeStatusLine(doc, result.LastPage, texts);
    if (pl.onlyPage > result.LastPage) {
      throw LayoutError("Page " + std::to_string(pl.onlyPage + 1) + " does not exist: the track has " +
                        std::to_string(result.LastPage + 1) + " page(s)");
    }
    if (surface) {
      if (pl.sheets) {
        Color bg = view ? view->Background : Color{128, 128, 128, 255};
        surface->fillRect({0, 0, pl.pictureWidth, pl.pictureHeight}, bg);
        for (int p = 0; p <= result.LastPage; ++p) {
          const long long top = pl.firstTop + static_cast<long long>(p) * (st.PageHeight + 35);
          if (top >= pl.pictureHeight) break;
          if (top + st.PageHeight + 5 >= 0) drawSheet(*surface, st, pl.offsetX, static_cast<double>(top), bg);
        }
      } else {
        surface->fillRect({0, 0, pl.pictureWidth, pl.pictureHeight}, kWhite);
      }
    }
    if (stored && surface) {
      redrawStored(doc, track, st, texts, pl, rows, result.LastPage, *surface, cursor);
    } else {
      NullSurface none;
      Placement layoutOnly = pl;
      if (!surface) layoutOnly.pictureHeight = -1e9;  // nothing is in sight
      runPages(doc, track, st, texts, layoutOnly, rows, result.LastPage, surface ? *surface : none, cursor,
               result.Rows);
    }
  } catch (const LayoutError& e) {
    result.Ok = false;
    result.Error = e.what();
  } catch (const ScoreError& e) {
    result.Ok = false;
    result.Error = e.what();
  }
  return result;
}

}  // namespace

DrawTexts DrawTextsFrom(const std::function<std::string(std::string_view)>& str) {
  DrawTexts texts;
  texts.PagesLabel = str("str_PagesLabel");
  texts.Page = str("str_Page");
  texts.Of = str("str_Of");
  texts.PageHoldsNoRow = str("str_ChooseNewPaperSize");
  texts.FillUnder = str("str_IncompleteBar");
  texts.FillFull = str("str_CompleteBar");
  texts.FillOver = str("str_ExceededBar");
  texts.Capo = str("txt_Capo");
  return texts;
}

StatusLine MakeStatusLine(const Document& doc, int lastPage, const DrawTexts& texts) {
  StatusLine s;
  s.Pages = texts.PagesLabel + " " + std::to_string(lastPage + 1);
  const Score& sc = doc.score;
  const int t = doc.CursorTrack;
  const int b = doc.CursorBar;
  if (t < 0 || t > sc.LastTrack() || b < 0 || b > sc.GetLastBar(t)) return s;
  try {
    const double actual = GetBeatsLength(sc, t, b);
    const double expected = GetBarLength(sc, t, b);
    s.BeatCount = " " + Format64ths(actual) + " 64ths -- " + Format64ths(expected) + " 64ths";
    s.FillState = CheckBar(sc, t, b);
  } catch (const ScoreError&) {
    // A bar that cannot be measured (a zero denominator, an unknown length) shows no count.
    s.BeatCount = " ? 64ths -- ? 64ths";
    s.FillState = 0;
  }
  const std::string& word = s.FillState == 0 ? texts.FillUnder : s.FillState == 1 ? texts.FillFull : texts.FillOver;
  s.Fill = "  " + word;
  return s;
}

DrawResult DrawDocument(Document& doc, const LayoutSettings& settings, const ViewState& view,
                        const DrawTexts& texts, Surface& surface) {
  Placement pl;
  pl.pictureWidth = view.PictureWidth;
  pl.pictureHeight = view.PictureHeight;
  pl.firstTop = 35 - 8LL * view.VScroll;
  // The page at the top is always drawn complete: a scroll of 0 lays out afresh.
  const bool stored = doc.Layout.size() > static_cast<size_t>(doc.CursorTrack) &&
                      doc.Layout[static_cast<size_t>(doc.CursorTrack)].size() ==
                          (doc.CursorTrack >= 0 && doc.CursorTrack <= doc.score.LastTrack()
                               ? doc.score.Tracks[static_cast<size_t>(doc.CursorTrack)].Bars.size()
                               : 0);
  pl.full = doc.FullRelayout || view.Playing || view.ForceFullLayout || (view.VScroll == 0 && !view.StartingUp) ||
            !stored;
  pl.cursorLine = view.NotationLine;
  DrawResult r = runPass(doc, doc.CursorTrack, settings, texts, pl, &surface, view.DrawCursor, &view);
  if (!view.Printing) doc.FullRelayout = false;
  return r;
}

DrawResult RenderPage(Document& doc, int track, int page, const LayoutSettings& settings,
                      const DrawTexts& texts, Surface& surface) {
  Placement pl;
  pl.pictureWidth = settings.PageWidth;
  pl.pictureHeight = settings.PageHeight;
  pl.offsetX = 0;
  pl.firstTop = -static_cast<long long>(page) * (settings.PageHeight + 35);
  pl.sheets = false;
  pl.onlyPage = page;
  if (page < 0) {
    DrawResult r;
    r.Ok = false;
    r.Error = "Page numbers start at 0";
    return r;
  }
  DrawResult first = LayoutTrack(doc, track, settings, texts);
  if (!first.Ok) return first;
  return runPass(doc, track, settings, texts, pl, &surface, false, nullptr);
}

DrawResult RenderPages(Document& doc, int track, const LayoutSettings& settings, const DrawTexts& texts,
                       const PageSurfaceFn& pageSurface) {
  DrawResult first = LayoutTrack(doc, track, settings, texts);
  if (!first.Ok) return first;
  NullSurface blank;
  Placement pl;
  pl.pictureWidth = settings.PageWidth;
  pl.pictureHeight = settings.PageHeight;
  pl.sheets = false;
  pl.perPage = &pageSurface;
  return runPass(doc, track, settings, texts, pl, &blank, false, nullptr);
}

DrawResult LayoutTrack(Document& doc, int track, const LayoutSettings& settings, const DrawTexts& texts) {
  Placement pl;
  pl.firstTop = 0;
  pl.offsetX = 0;
  // The row choice sees the signature flags of the layout before it. A page made for output
  // has no layout before it, so a first walk settles the flags and the second one counts.
  DrawResult settle = runPass(doc, track, settings, texts, pl, nullptr, false, nullptr);
  if (!settle.Ok) return settle;
  return runPass(doc, track, settings, texts, pl, nullptr, false, nullptr);
}

}  // namespace plectaro
