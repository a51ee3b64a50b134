// The one drawing path from a Document to pages: the editor's view, print preview, printing
// and the PNG/SVG/BMP/PDF exports all call into here with their own Surface.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "rendering/page_layout.h"
#include "rendering/surface.h"
#include "score/document.h"

namespace plectaro {

// Texts the drawing shows, in the interface language; the shell fills them from the language
// file. The defaults are the English texts.
struct DrawTexts {
  std::string PagesLabel = "Pages:";  // status panel: label, a blank, page count
  std::string Page = "Page";          // page footer: "Page 1 of 3"
  std::string Of = "of";
  std::string PageHoldsNoRow = "The page is too small to hold a single row. Please choose a new paper size.";
  std::string FillUnder = "Incomplete";
  std::string FillFull = "Complete";
  std::string FillOver = "Exceeded";
  std::string Capo = "Capo";  // title block: "Capo 3"
};

// The texts from the language table's keys, through `str` (key to text).
DrawTexts DrawTextsFrom(const std::function<std::string(std::string_view)>& str);

// The window's side of a draw: picture size and scroll positions in, scroll ranges out.
struct ViewState {
  double PictureWidth = 900;   // ScaleWidth of the document picture
  double PictureHeight = 700;  // ScaleHeight
  int VScroll = 0;             // vertical scroll value; one step is 8 units
  int HScroll = 0;             // horizontal; one step is 10 units
  bool Playing = false;        // playback lays out from bar 0 on every draw
  bool ForceFullLayout = false;
  bool StartingUp = false;     // while set, a scroll of 0 does not force a full relayout
  bool Printing = false;       // a print pass leaves FullRelayout for the next screen draw
  bool DrawCursor = true;
  int NotationLine = -1;       // in notation entry, the pitch of the cursor on the staff
  Color Background{128, 128, 128, 255};  // the picture round the sheets (system colour)
};

// Texts and values of the status bar after a draw.
struct StatusLine {
  std::string BeatCount;  // " 48.0 64ths -- 64.0 64ths" (actual, expected)
  std::string Fill;       // two blanks and the fill word
  int FillState = 1;      // 0 under, 1 full, 2 over (bar timing check)
  std::string Pages;      // "Pages: 3"
  bool operator==(const StatusLine&) const = default;
};

struct DrawResult {
  bool Ok = true;
  std::string Error;  // one line; set when the pass gave up (overflow, no row on a page)
  int LastPage = 0;   // NumberOfPages
  int CursorPage = 0;
  ScrollRanges Scroll;
  StatusLine Status;
  std::vector<RowChoice> Rows;  // the rows of the last layout walk, in order
  LayoutSettings UsedSettings;  // after auto stretch
};

// Draws the current Track (doc.CursorTrack) as a stack of pages on a picture of the view's
// size. Lays out from bar 0 when FullRelayout, playback, the force flag or a scroll of 0 ask
// for it, writing Document::Layout; otherwise redraws from the stored positions. Clears
// FullRelayout unless printing. Never changes the Score; errors come back in the result.
DrawResult DrawDocument(Document& doc, const LayoutSettings& settings, const ViewState& view,
                        const DrawTexts& texts, Surface& surface);

// Draws one page (0-based) of a Track on a surface the size of the page, with the page's
// top-left corner at (0, 0): for bitmap, vector and print output. Lays out in full.
// Returns the same result record; Ok is false (and nothing is drawn) for a page beyond the last.
DrawResult RenderPage(Document& doc, int track, int page, const LayoutSettings& settings,
                      const DrawTexts& texts, Surface& surface);

// Paper output (printing, PDF, page pictures): the surface page `page` (0-based) is drawn
// on, with the page's top-left corner at (0, 0); nullptr to skip the page. `lastPage` is the
// index of the last page, known before the first page is asked for.
using PageSurfaceFn = std::function<Surface*(int page, int lastPage)>;

// Draws many pages of a Track in one layout walk (every page is walked, since its bars follow
// from those before it, but only the pages given a surface are drawn). The page is cleared
// to white first: paper output is always black on white.
DrawResult RenderPages(Document& doc, int track, const LayoutSettings& settings, const DrawTexts& texts,
                       const PageSurfaceFn& pageSurface);

// Lays out the whole Track without drawing (what hit-testing and the CLI's layout verb need),
// with page 0 at the surface origin as in RenderPage; later pages follow PageHeight + 35 apart.
DrawResult LayoutTrack(Document& doc, int track, const LayoutSettings& settings,
                       const DrawTexts& texts);

// The status bar values for the cursor's bar.
StatusLine MakeStatusLine(const Document& doc, int lastPage, const DrawTexts& texts);

}  // namespace plectaro
