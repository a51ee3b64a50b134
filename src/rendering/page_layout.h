// Page metrics and row layout: how one Track's bars wrap into rows and rows into pages.
//
// All page lengths are page units (1/3.786 mm; A4 is 795 wide). Results that must fit a signed
// 16-bit value and do not throw LayoutError; the drawing pass stops on it and the Score is left
// as it was. The results of a pass go into Document::Layout, never into the Score.
#pragma once

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "score/document.h"

namespace plectaro {

// A layout value left the 16-bit range, a row height was zero with zero spacing, or the page
// holds no row: the drawing pass gives up and says why.
class LayoutError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Program-wide page settings (PL4.ini and the page setup dialog); passed in, never global.
// RowSpacing is not here: it belongs to the Score.
struct LayoutSettings {
  int16_t PageWidth = 795;
  int16_t PageHeight = 1124;
  int16_t PageLeftMargin = 50;
  int16_t PageTopMargin = 210;
  int16_t MinTabX = 28;
  int16_t MaxTabX = 80;
  bool AutoPageStretch = false;
  int16_t PaperSizeIndex = 0;
  bool Landscape = false;
  int32_t PageScaleMode = 7;  // page setup dialog unit: 7 centimetres, 5 inches
  bool operator==(const LayoutSettings&) const = default;
};

// The names of the page setup's paper list, in list order (14 entries).
extern const std::array<const char*, 14> kPaperSizeNames;
// The size table the list index picks from. It has one row more than the list (row 7 is
// 105 x 148 mm), so from "Index card 5 x 8 in" on an entry gets the size of the one before;
// users' page setups depend on that, so it stays.
struct PaperSize {
  double Width;
  double Height;
};
extern const std::array<PaperSize, 15> kPaperSizes;

// Sets PageWidth and PageHeight from PaperSizeIndex and Landscape (rounded to whole units).
void ApplyPaperSize(LayoutSettings& settings);
// Auto stretch: the page takes the document picture's size less 60 each way.
void ApplyAutoStretch(LayoutSettings& settings, double pictureWidth, double pictureHeight);

// Staff geometry of a row, from the Track's staff flags and string count.
int16_t RowHeight(const Track& track);
int16_t TabStaffAnchor(const Track& track);   // top string line is this + 6 below the row top
int16_t BassStaffAnchor(const Track& track);  // the bass notation's y origin in a row
int16_t TrebleStaffTop(const Track& track);   // 0; kept for symmetry
int16_t BassStaffTop(const Track& track);     // 123 under a treble staff, else 0
int16_t TabStaffTop(const Track& track);      // TabStaffAnchor + 6
// Strings drawn on the tab: NumStrings clamped to 1..7 (files are clamped on reading, but a
// Score built in code may hold anything).
int StringCount(const Track& track);

// Round half to even, the rounding of the original arithmetic; throws LayoutError beyond i16.
int16_t RoundEvenI16(double v);
// Checked narrowing to a 16-bit layout value.
int16_t CheckedI16(long long v);

struct RowChoice {
  int first = 0;
  int last = -1;     // last bar of the row; first - 1 never leaves RowChooser (see guard)
  int16_t spacing = 0;
  bool forced = false;  // a single bar too wide for MinTabX, put on a row by itself
  bool operator==(const RowChoice&) const = default;
};

// The row arithmetic for one Track of a Document, reading and writing that Track's entry of
// Document::Layout (ShowsSignature, LayoutOrdinal, the row fields). Construct one per pass;
// it holds references only.
class RowLayout {
 public:
  RowLayout(Document& doc, int track, const LayoutSettings& settings);

  int lastBar() const { return lastBar_; }
  int beatCount(int bar) const;
  const Track& track() const { return track_; }
  const LayoutSettings& settings() const { return settings_; }
  std::vector<BarLayout>& bars() { return layout_; }

  int16_t rowHeight() const { return rowHeight_; }
  int16_t rowSpacing() const { return rowSpacing_; }
  int16_t BarDrawWidth(int bar, int spacing) const;
  int16_t CommonSpacing(int firstBar, int lastBar) const;
  // One row from `first`: the bars that fit at MinTabX, their fresh ShowsSignature flags and
  // the shared spacing. A bar too wide on its own gets a row by itself (forced) instead of
  // the empty row that would never let the layout move on.
  RowChoice ChooseRow(int first);
  // Whole rows on one page; may be 0 (see NumberOfPages). Throws LayoutError when the row
  // height and spacing are both zero.
  int16_t RowsPerPage() const;
  // Index of the last page. Lays out every row (writing ShowsSignature and LayoutOrdinal).
  // Throws LayoutError with `noRowMessage` when a page holds no row.
  int16_t NumberOfPages(const std::string& noRowMessage);
  // First bar of a page as the page-skipping walk sees it: the height it uses up is never
  // reset, so any page after the second answers 0. Only used to skip layout work.
  int16_t FirstBarOfPage(int page);
  // Distance between beats inside a bar of the given width, capped at MaxTabX.
  int16_t BeatSpacingFor(int bar, int width) const;
  // x of beat `beat` from the bar's left edge.
  static int BeatOffset(bool showsSignature, int spacing, int beat) {
    return (showsSignature ? 81 : 17) + 2 + spacing * beat;
  }

 private:
  bool computeShowsSignature(int bar) const;

  const Score& score_;
  const Track& track_;
  int trackIndex_;
  const LayoutSettings& settings_;
  std::vector<BarLayout>& layout_;
  int lastBar_;
  int16_t rowHeight_;
  int16_t rowSpacing_;
  int ordinal_ = 0;
};

// Scroll bar ranges of the paged view, recomputed on every draw.
struct ScrollRanges {
  int VMax = 0;
  int HMax = 0;
  bool HEnabled = false;
  int VLargeChange = 1;
  int VSmallChange = 1;
  bool operator==(const ScrollRanges&) const = default;
};
ScrollRanges ComputeScrollRanges(const LayoutSettings& settings, int lastPage, double pictureWidth,
                                 double pictureHeight);

// Horizontal offset of the page stack: centred when the picture is wide enough, else 40;
// less 10 per step of the horizontal scroll bar.
int PageOffsetX(const LayoutSettings& settings, double pictureWidth, int hScroll);
// Top of page p on the picture: 35 - 8 x vScroll + p x (PageHeight + 35).
long long PageTop(const LayoutSettings& settings, int vScroll, int page);

}  // namespace plectaro
