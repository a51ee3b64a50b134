// Layout numbers: row heights, paper sizes, spacing, row choice, pages and their guards.
#include <gtest/gtest.h>

#include "rendering/draw_document.h"
#include "rendering/page_layout.h"
#include "test_scores.h"

namespace plectaro {
namespace {

using test::MakeDoc;

TEST(RowGeometry, HeightsAndAnchorsByStaves) {
  struct Case {
    bool treble, bass, tab;
    int strings;
    int height, tabAnchor, bassAnchor;
  };
  const Case cases[] = {
      {false, false, true, 6, 50, -6, -42},   {true, false, true, 6, 173, 117, 81},
      {true, true, true, 6, 281, 225, 81},    {true, false, false, 6, 28, 117, 81},
      {false, true, true, 6, 158, 102, -42},  {true, true, false, 6, 151, 225, 81},
      {false, false, true, 4, 30, -6, -42},   {false, false, true, 7, 60, -6, -42},
      {true, false, true, 7, 183, 117, 81},   {false, false, false, 6, 0, -6, -42},
  };
  for (const Case& c : cases) {
    Track t;
    t.TrebleStaff = c.treble;
    t.BassStaff = c.bass;
    t.TabStaff = c.tab;
    t.Tuning.NumStrings = static_cast<int16_t>(c.strings);
    SCOPED_TRACE(testing::Message() << c.treble << c.bass << c.tab << " strings " << c.strings);
    EXPECT_EQ(RowHeight(t), c.height);
    EXPECT_EQ(TabStaffAnchor(t), c.tabAnchor);
    EXPECT_EQ(BassStaffAnchor(t), c.bassAnchor);
  }
}

TEST(PaperSize, EveryListEntryAndLandscape) {
  // From "Index card 5 x 8 in" on, an entry takes the table row of its index (one early).
  const int expected[14][2] = {{795, 1124}, {689, 973},   {560, 795},   {817, 1058}, {817, 1346},
                               {697, 1010}, {529, 817},   {398, 560},   {481, 769},  {769, 962},
                               {973, 1378}, {1058, 1635}, {1124, 1590}, {1246, 1829}};
  for (int i = 0; i < 14; ++i) {
    for (bool landscape : {false, true}) {
      LayoutSettings s;
      s.PaperSizeIndex = static_cast<int16_t>(i);
      s.Landscape = landscape;
      ApplyPaperSize(s);
      SCOPED_TRACE(testing::Message() << "index " << i << " landscape " << landscape);
      EXPECT_EQ(s.PageWidth, expected[i][landscape ? 1 : 0]);
      EXPECT_EQ(s.PageHeight, expected[i][landscape ? 0 : 1]);
    }
  }
  LayoutSettings negative;
  negative.PaperSizeIndex = -3;
  ApplyPaperSize(negative);
  EXPECT_EQ(negative.PageWidth, 795);
  EXPECT_EQ(negative.PageHeight, 1124);
}

TEST(CommonSpacing, RoundsHalfToEvenAndChargesSignatures) {
  Document doc = MakeDoc(3, 4);
  LayoutSettings s;
  RowLayout rows(doc, 0, s);
  // Fresh layout: every bar counts as opening with a signature.
  EXPECT_EQ(rows.CommonSpacing(0, 0), 156);  // (695 - 69) / 4 = 156.5, to even
  doc.Layout[0][1].ShowsSignature = false;
  EXPECT_EQ(rows.CommonSpacing(1, 1), 172);  // (695 - 9) / 4 = 171.5, to even
  EXPECT_EQ(rows.CommonSpacing(1, 0), 172);  // a last bar before the first is raised to it
  EXPECT_EQ(rows.CommonSpacing(0, 1), 77);   // (695 - 78) / 8 = 77.1
  EXPECT_EQ(rows.BarDrawWidth(0, 77), 4 * 77 + 61);
  EXPECT_EQ(rows.BarDrawWidth(1, 77), 4 * 77 + 9);
}

TEST(RowChoice, SignatureFlagsLagOneLayout) {
  Document doc = MakeDoc(6, 8);
  LayoutSettings s;
  RowLayout rows(doc, 0, s);
  EXPECT_EQ(rows.ChooseRow(0), (RowChoice{0, 1, 39, false}));
  EXPECT_TRUE(doc.Layout[0][0].ShowsSignature);
  EXPECT_FALSE(doc.Layout[0][1].ShowsSignature);
  // Bar 4 still counts as a signature bar from the blank layout, so only two bars fit...
  EXPECT_EQ(rows.ChooseRow(2), (RowChoice{2, 3, 42, false}));
  // ...and once bar 4 has been laid out as a plain bar, the next layout fits a third.
  EXPECT_FALSE(rows.ChooseRow(4).forced);
  EXPECT_EQ(rows.ChooseRow(2).last, 4);
  EXPECT_EQ(rows.BeatSpacingFor(0, rows.BarDrawWidth(0, 39)), 38);
}

TEST(RowChoice, SignatureChangesOpenWideBars) {
  Document doc = MakeDoc(5, 4);
  doc.score.SetTimeSignature(2, 3, 4);  // bar 2 alone in 3/4
  doc.score.barMut(0, 4).KeySignature = 2;
  const DrawResult r = LayoutTrack(doc, 0, LayoutSettings{}, DrawTexts{});
  ASSERT_TRUE(r.Ok) << r.Error;
  const bool expected[5] = {true, false, true, true, true};
  for (int b = 0; b < 5; ++b) EXPECT_EQ(doc.Layout[0][static_cast<size_t>(b)].ShowsSignature, expected[b]) << b;
}

TEST(RowChoice, BarTooWideForMinTabXGetsARowOfItsOwn) {
  Document doc = MakeDoc(3, 4);
  doc.score.SetBeatCount(0, 1, 499);
  const DrawResult r = LayoutTrack(doc, 0, LayoutSettings{}, DrawTexts{});
  ASSERT_TRUE(r.Ok) << r.Error;
  ASSERT_EQ(r.Rows.size(), 3u);
  EXPECT_EQ(r.Rows[0], (RowChoice{0, 0, 156, false}));
  EXPECT_EQ(r.Rows[1], (RowChoice{1, 1, 1, true}));
  EXPECT_EQ(r.Rows[2].first, 2);
  EXPECT_FALSE(r.Rows[2].forced);
}

TEST(Pages, RowsPerPageNumberOfPagesAndFirstBarOfPage) {
  // 16 beats a bar: every row holds exactly one bar, whatever the signature flags say.
  Document doc = MakeDoc(40, 16);
  LayoutSettings s;
  const DrawResult r = LayoutTrack(doc, 0, s, DrawTexts{});
  ASSERT_TRUE(r.Ok) << r.Error;
  EXPECT_EQ(r.Rows.size(), 40u);
  RowLayout rows(doc, 0, s);
  EXPECT_EQ(rows.RowsPerPage(), 6);  // (1124 - 210 - 50) / 150 = 5.76
  EXPECT_EQ(r.LastPage, 6);          // 40 rows, 6 a page
  EXPECT_EQ(rows.FirstBarOfPage(0), 0);
  EXPECT_EQ(rows.FirstBarOfPage(1), 7);  // 7 rows fit in 1074 without the top margin
  EXPECT_EQ(rows.FirstBarOfPage(2), 0);  // the height stays used up
  EXPECT_EQ(rows.FirstBarOfPage(5), 0);
  // Rows of later pages start PageTopMargin below their page's top.
  EXPECT_EQ(doc.Layout[0][0].DrawY, 210);
  EXPECT_EQ(doc.Layout[0][6].DrawY, 1124 + 35 + 210);
  EXPECT_EQ(doc.Layout[0][39].LayoutOrdinal, 39);

  Document treble = MakeDoc(2, 4, true);
  EXPECT_EQ(RowLayout(treble, 0, s).RowsPerPage(), 3);  // 864 / 273
}

TEST(Pages, FailuresEndThePassAndLeaveTheScore) {
  struct Case {
    const char* name;
    void (*setup)(Document&, LayoutSettings&);
  };
  const Case cases[] = {
      {"no staff, no spacing",
       [](Document& d, LayoutSettings&) {
         Track& t = d.score.Tracks[0];
         t.TrebleStaff = t.BassStaff = t.TabStaff = false;
         d.score.RowSpacing = 0;
       }},
      {"page holds no row", [](Document&, LayoutSettings& s) { s.PageHeight = 300; }},
      {"16-bit overflow", [](Document&, LayoutSettings& s) { s.PageLeftMargin = -32000; }},
      {"negative row step", [](Document& d, LayoutSettings&) { d.score.RowSpacing = -400; }},
  };
  for (const Case& c : cases) {
    Document doc = MakeDoc(3, 4);
    LayoutSettings s;
    c.setup(doc, s);
    const Score before = doc.score;
    DrawTexts texts;
    texts.PageHoldsNoRow = "no row fits";
    const DrawResult r = LayoutTrack(doc, 0, s, texts);
    EXPECT_FALSE(r.Ok) << c.name;
    EXPECT_FALSE(r.Error.empty()) << c.name;
    EXPECT_EQ(r.Error.find('\n'), std::string::npos) << c.name;
    EXPECT_EQ(doc.score, before) << c.name;
  }
  Document doc = MakeDoc(3, 4);
  LayoutSettings small;
  small.PageHeight = 300;
  DrawTexts texts;
  texts.PageHoldsNoRow = "no row fits";
  EXPECT_EQ(LayoutTrack(doc, 0, small, texts).Error, "no row fits");
}

TEST(ViewPlacement, ScrollRangesAndOffsets) {
  LayoutSettings s;
  EXPECT_EQ(ComputeScrollRanges(s, 0, 900, 700), (ScrollRanges{64, 0, false, 1, 1}));
  // total = 10 x 1159 + 90: the large step (2) stays smaller than the small one (12).
  EXPECT_EQ(ComputeScrollRanges(s, 10, 600, 700), (ScrollRanges{1513, 28, true, 2, 12}));
  EXPECT_EQ(PageOffsetX(s, 900, 0), 52);  // 450 - 397.5, to even
  EXPECT_EQ(PageOffsetX(s, 800, 0), 40);  // not wider than the page + 20
  EXPECT_EQ(PageOffsetX(s, 800, 2), 20);
  EXPECT_EQ(PageTop(s, 3, 2), 35 - 24 + 2 * 1159);

  LayoutSettings stretch;
  ApplyAutoStretch(stretch, 1000.4, 820);
  EXPECT_EQ(stretch.PageWidth, 940);
  EXPECT_EQ(stretch.PageHeight, 760);
}

}  // namespace
}  // namespace plectaro
