#include "rendering/page_layout.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace plectaro {

const std::array<const char*, 14> kPaperSizeNames = {
    "A4 210 x 297 mm",          "B5 182 x 257 mm",        "A5 148 x 210 mm",
    "Letter 8 1/2 x 11 in",     "Legal 8 1/2 x 14 in",    "Executive 7 1/4 x 10 1/2 in",
    "Half Letter 5 1/2 x 8 1/2 in", "Index card 5 x 8 in", "Index card 8 x 10 in",
    "B4 257 x 364 mm",          "US B 11 x 17 in",        "A3 297 x 420 mm",
    "Super A3 329 x 483 mm",    "B3 364 x 514 mm"};

const std::array<PaperSize, 15> kPaperSizes = {{{795.06, 1124.442},
                                                {689.052, 973.002},
                                                {560.328, 795.06},
                                                {817.3974, 1057.8084},
                                                {817.3974, 1346.3016},
                                                {697.1919, 1009.7262},
                                                {528.9042, 817.3974},
                                                {397.53, 560.328},
                                                {480.822, 769.3152},
                                                {769.3152, 961.644},
                                                {973.002, 1378.104},
                                                {1057.8084, 1634.7948},
                                                {1124.442, 1590.12},
                                                {1245.594, 1828.6381},
                                                {1378.104, 1946.004}}};

int16_t CheckedI16(long long v) {
  if (v < std::numeric_limits<int16_t>::min() || v > std::numeric_limits<int16_t>::max())
    throw LayoutError("Page layout overflow: a layout value (" + std::to_string(v) +
                      ") is out of range");
  return static_cast<int16_t>(v);
}

int16_t RoundEvenI16(double v) {
  if (!std::isfinite(v) || v < -40000.0 || v > 40000.0)
    throw LayoutError("Page layout overflow: a layout value is out of range");
  // The default rounding mode rounds halves to the even neighbour, as the old arithmetic did.
  return CheckedI16(static_cast<long long>(std::nearbyint(v)));
}

void ApplyPaperSize(LayoutSettings& s) {
  // Only the 14 list entries can be chosen; a stray index from a settings file takes the
  // nearest entry.
  int index = std::clamp<int>(s.PaperSizeIndex, 0, static_cast<int>(kPaperSizeNames.size()) - 1);
  const PaperSize& p = kPaperSizes[static_cast<size_t>(index)];
  int16_t w = RoundEvenI16(p.Width);
  int16_t h = RoundEvenI16(p.Height);
  if (s.Landscape) std::swap(w, h);
  s.PageWidth = w;
  s.PageHeight = h;
}

void ApplyAutoStretch(LayoutSettings& s, double pictureWidth, double pictureHeight) {
  s.PageWidth = RoundEvenI16(pictureWidth - 60);
  s.PageHeight = RoundEvenI16(pictureHeight - 60);
}

int StringCount(const Track& track) { return std::clamp<int>(track.Tuning.NumStrings, 1, kMaxStrings); }

int16_t RowHeight(const Track& t) {
  int h = 0;
  if (t.TrebleStaff) h = (t.TabStaff || t.BassStaff) ? 123 : 28;
  if (t.BassStaff) {
    h += 28;
    if (t.TabStaff) h += 80;
  }
  if (t.TabStaff) h += (StringCount(t) - 1) * 10;
  return static_cast<int16_t>(h);
}

int16_t TrebleStaffTop(const Track&) { return 0; }
int16_t BassStaffTop(const Track& t) { return t.TrebleStaff ? 123 : 0; }
int16_t TabStaffTop(const Track& t) {
  return static_cast<int16_t>((t.TrebleStaff ? 123 : 0) + (t.BassStaff ? 108 : 0));
}
int16_t TabStaffAnchor(const Track& t) { return static_cast<int16_t>(TabStaffTop(t) - 6); }
int16_t BassStaffAnchor(const Track& t) { return static_cast<int16_t>(-42 + (t.TrebleStaff ? 123 : 0)); }

RowLayout::RowLayout(Document& doc, int track, const LayoutSettings& settings)
    : score_(doc.score),
      track_(doc.score.track(track)),
      trackIndex_(track),
      settings_(settings),
      layout_([&]() -> std::vector<BarLayout>& {
        if (doc.Layout.size() < doc.score.Tracks.size()) doc.Layout.resize(doc.score.Tracks.size());
        return doc.Layout[static_cast<size_t>(track)];
      }()),
      lastBar_(static_cast<int>(track_.Bars.size()) - 1),
      rowHeight_(RowHeight(track_)),
      rowSpacing_(doc.score.RowSpacing) {
  if (lastBar_ < 0) throw LayoutError("The track has no bars to lay out");
  if (lastBar_ >= kMaxIndex) throw LayoutError("Page layout overflow: the track has too many bars");
  if (static_cast<int>(layout_.size()) != lastBar_ + 1) layout_.resize(static_cast<size_t>(lastBar_ + 1));
}

int RowLayout::beatCount(int bar) const {
  // Every bar has a beat 0; a bar built empty in code still counts one beat, so a row can
  // never divide by zero.
  return std::max<int>(1, static_cast<int>(track_.Bars[static_cast<size_t>(bar)]->Beats.size()));
}

int16_t RowLayout::BarDrawWidth(int bar, int spacing) const {
  const bool sig = layout_[static_cast<size_t>(bar)].ShowsSignature;
  return CheckedI16(static_cast<long long>(beatCount(bar)) * spacing + (sig ? 61 : 9));
}

int16_t RowLayout::CommonSpacing(int firstBar, int lastBar) const {
  if (lastBar < firstBar) lastBar = firstBar;
  long long remainder = CheckedI16(settings_.PageWidth - 2LL * settings_.PageLeftMargin);
  long long beats = 0;
  for (int b = firstBar; b <= lastBar; ++b) {
    // 69 here against 61 in the bar width: a row with signatures ends 8 units short each.
    remainder = CheckedI16(remainder - (layout_[static_cast<size_t>(b)].ShowsSignature ? 69 : 9));
    beats = CheckedI16(beats + beatCount(b));
  }
  return RoundEvenI16(static_cast<double>(remainder) / static_cast<double>(beats));
}

bool RowLayout::computeShowsSignature(int bar) const {
  if (bar == 0) return true;
  const BarInfo& now = score_.barInfo(bar);
  const BarInfo& before = score_.barInfo(bar - 1);
  if (now.TimeSigNumerator != before.TimeSigNumerator ||
      now.TimeSigDenominator != before.TimeSigDenominator)
    return true;
  return track_.Bars[static_cast<size_t>(bar)]->KeySignature !=
         track_.Bars[static_cast<size_t>(bar - 1)]->KeySignature;
}

RowChoice RowLayout::ChooseRow(int first) {
  RowChoice row;
  row.first = first;
  // Steps 1 and 2 see the signature flags of the previous layout; only the spacing below
  // sees the fresh ones, so a row may lag one layout behind a signature edit. Kept: files
  // have been laid out this way.
  int last = first;
  while (CommonSpacing(first, last) >= settings_.MinTabX && last != lastBar_) ++last;
  int rowEnd = CommonSpacing(first, last) < settings_.MinTabX ? last - 1 : last;
  if (rowEnd < first) {
    // A bar too wide for MinTabX on its own would give an empty row, and the layout would
    // never move past it. Put it on a row by itself instead; nothing else changes.
    rowEnd = first;
    row.forced = true;
  }
  for (int b = first; b <= rowEnd; ++b) layout_[static_cast<size_t>(b)].ShowsSignature = computeShowsSignature(b);
  row.last = rowEnd;
  row.spacing = CommonSpacing(first, rowEnd);
  // The forced bar keeps at least one unit between beats, so its beats never run backwards.
  if (row.forced && row.spacing < 1) row.spacing = 1;
  return row;
}

int16_t RowLayout::RowsPerPage() const {
  const long long perRow = CheckedI16(static_cast<long long>(rowHeight_) + rowSpacing_);
  if (perRow == 0)
    throw LayoutError("Page layout overflow: the track shows no staff and the row spacing is 0");
  const long long usable = CheckedI16(static_cast<long long>(settings_.PageHeight) - settings_.PageTopMargin - 50);
  return RoundEvenI16(static_cast<double>(usable) / static_cast<double>(perRow));
}

int16_t RowLayout::NumberOfPages(const std::string& noRowMessage) {
  long long rows = 0;
  int ordinal = 0;
  for (int bar = 0; bar <= lastBar_;) {
    RowChoice row = ChooseRow(bar);
    for (int b = row.first; b <= row.last; ++b)
      layout_[static_cast<size_t>(b)].LayoutOrdinal = CheckedI16(ordinal++);
    ++rows;
    bar = row.last + 1;
  }
  const int16_t perPage = RowsPerPage();
  if (perPage <= 0) throw LayoutError(noRowMessage);
  // Subtract a page's rows while more than a page is left: the count is the last page index.
  return CheckedI16(rows > perPage ? (rows - 1) / perPage : 0);
}

int16_t RowLayout::FirstBarOfPage(int page) {
  if (page <= 0) return 0;
  const long long perRow = static_cast<long long>(rowHeight_) + rowSpacing_;
  const long long limit = static_cast<long long>(settings_.PageHeight) - 50;
  long long y = 0;  // never reset between pages: later pages find no height left
  int bar = 0;
  for (int walked = 0; walked < page; ++walked) {
    bar = 0;
    while (y + perRow <= limit && bar <= lastBar_) {
      bar = ChooseRow(bar).last + 1;
      y += perRow;
    }
    // Once the height is used up every further walk answers bar 0 at once.
    if (y + perRow > limit && walked + 1 < page) return 0;
  }
  return CheckedI16(bar);
}

int16_t RowLayout::BeatSpacingFor(int bar, int width) const {
  const bool sig = layout_[static_cast<size_t>(bar)].ShowsSignature;
  const long long usable = width - (sig ? 57 : 9);
  long long spacing = usable / beatCount(bar) - 1;
  if (usable < 0 && usable % beatCount(bar) != 0) --spacing;  // whole part rounds down
  return CheckedI16(std::min<long long>(spacing, settings_.MaxTabX));
}

ScrollRanges ComputeScrollRanges(const LayoutSettings& s, int lastPage, double pictureWidth,
                                 double pictureHeight) {
  ScrollRanges r;
  const double total = static_cast<double>(lastPage) * (s.PageHeight + 35) + 90;
  r.VMax = std::max(0, static_cast<int>(std::nearbyint((s.PageHeight - pictureHeight + total) / 8)));
  r.HMax = std::max(0, static_cast<int>(std::nearbyint((s.PageWidth - pictureWidth + 80) / 10)));
  r.HEnabled = r.HMax != 0;
  // The large step comes out smaller than the small one; the scroll bars have always moved so.
  r.VLargeChange = std::max(1, static_cast<int>(std::nearbyint(total / 5000)));
  r.VSmallChange = std::max(1, static_cast<int>(std::nearbyint(total / 1000)));
  return r;
}

int PageOffsetX(const LayoutSettings& s, double pictureWidth, int hScroll) {
  int offset = 40;
  if (pictureWidth > s.PageWidth + 20)
    offset = static_cast<int>(std::nearbyint(pictureWidth / 2 - s.PageWidth / 2.0));
  return offset - 10 * hScroll;
}

long long PageTop(const LayoutSettings& s, int vScroll, int page) {
  return 35 - 8LL * vScroll + static_cast<long long>(page) * (s.PageHeight + 35);
}

}  // namespace plectaro
