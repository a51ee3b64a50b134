// What a page draws, compared as recorded calls rather than pixels.
#include <gtest/gtest.h>

#include <algorithm>

#include "rendering/bar_drawing.h"
#include "rendering/draw_document.h"
#include "rendering/recording_surface.h"
#include "test_scores.h"

namespace plectaro {
namespace {

using test::MakeDoc;
using Kind = DrawCall::Kind;

bool hasText(const RecordingSurface& s, const std::string& text) {
  const auto t = s.texts();
  return std::find(t.begin(), t.end(), text) != t.end();
}

const DrawCall* findText(const RecordingSurface& s, const std::string& text) {
  for (const DrawCall& c : s.calls())
    if (c.kind == Kind::Text && c.text == text) return &c;
  return nullptr;
}

// Lays the document out and draws bar 0 at (100, 300) with the layout's width.
RecordingSurface drawBar0(Document& doc, int bar = 0) {
  LayoutSettings settings;
  const DrawResult r = LayoutTrack(doc, 0, settings, DrawTexts{});
  EXPECT_TRUE(r.Ok) << r.Error;
  RecordingSurface s;
  DrawContext ctx{doc.score, 0, settings, doc.Layout[0], s};
  ctx.cursorBar = doc.CursorBar;
  ctx.cursorBeat = doc.CursorBeat;
  ctx.cursorString = doc.CursorString;
  DrawBar(ctx, 100, 300, bar, doc.Layout[0][static_cast<size_t>(bar)].DrawWidth);
  return s;
}

TEST(DrawBar, EachKindOfSignShows) {
  Document doc = MakeDoc(2, 10);
  Score& sc = doc.score;
  auto note = [&](int k, int s) -> NoteSlot& { return sc.noteMut(0, 0, k, s); };
  note(0, 1).Fret = "12";
  note(0, 1).GhostNote = true;
  note(1, 2).Fret = "x";
  note(2, 0).Harmonic = kArtificialHarmonic5;
  note(3, 0).Fret = "5";
  note(3, 0).Technique = kHammerOnPullOff;
  note(4, 0).Fret = "3";  // next fret lower: a pull-off
  note(4, 0).HasBend = true;
  note(4, 0).Bend.mut().Points[5] = 2;
  note(5, 0).Accentuate = true;
  note(5, 0).LeftFinger = 3;
  note(5, 0).RightFinger = 2;
  sc.beatMut(0, 0, 6).ChordTechnique = kPalmMute;
  sc.beatMut(0, 0, 7).Text = "rit.";
  sc.beatMut(0, 0, 7).GotoName = "Verse";
  Beat& chord = sc.beatMut(0, 0, 8);
  chord.HasChord = true;
  chord.Chord.mut().Name = "Am";
  sc.AlwaysDrawChordCharts = false;
  Beat& triplet = sc.beatMut(0, 0, 9);
  triplet.IsTuplet = true;
  triplet.Tuplet = kTriplet;
  triplet.Length = kEighth;
  BarInfo& info = sc.barInfoMut(0);
  info.RepeatClose = 3;
  info.DSAlCoda = true;
  info.ToCoda = true;
  sc.Tracks[0].Lyrics[1] = "hel-lo  world";
  const RecordingSurface s = drawBar0(doc);
  for (const char* t : {"T", "A", "B", "4", "(12)", "X", "A.H.5", "P", "\xC2\xBD", ">", "2", "I)",
                        "P.M.", "rit.", "Verse", "Am", "3", "x3", "D.S. Al Coda", "To Coda", "hel", "lo", "world"})
    EXPECT_TRUE(hasText(s, t)) << t;
  EXPECT_FALSE(hasText(s, "H"));
}

TEST(DrawBar, FretColourFollowsVolumeAndClearsTheLine) {
  Document doc = MakeDoc(1, 3);
  doc.score.noteMut(0, 0, 0, 0).Volume = kVolFFF;
  doc.score.noteMut(0, 0, 1, 0).Volume = kVolPPP;
  doc.score.noteMut(0, 0, 2, 0).Fret = "17";
  const RecordingSurface s = drawBar0(doc);
  std::vector<DrawCall> frets;
  for (const DrawCall& c : s.calls())
    if (c.kind == Kind::Text && c.font.family == "Arial" && !c.font.bold) frets.push_back(c);
  ASSERT_EQ(frets.size(), 3u);
  EXPECT_EQ(frets[0].color, (Color{0, 0, 0, 255}));        // FFF: the note colour itself
  EXPECT_EQ(frets[1].color, (Color{145, 145, 145, 255}));  // PPP: weight 110 toward white
  EXPECT_EQ(frets[2].color, (Color{65, 65, 65, 255}));     // MF: weight 190
  // Each number stands on a white box at least as wide as the text, drawn just before it.
  const auto& calls = s.calls();
  for (size_t i = 0; i < calls.size(); ++i) {
    if (calls[i].kind != Kind::Text || calls[i].text != "17") continue;
    ASSERT_GT(i, 0u);
    const DrawCall& box = calls[i - 1];
    EXPECT_EQ(box.kind, Kind::FillRect);
    EXPECT_EQ(box.color, kWhite);
    RecordingSurface m;
    EXPECT_GE(box.points[1].x, m.measureText("17", calls[i].font).width);
  }
}

TEST(DrawBar, SignatureBarStartsBeats64Further) {
  Document doc = MakeDoc(3, 4);
  doc.score.noteMut(0, 0, 0, 0).Fret = "5";
  doc.score.noteMut(0, 1, 0, 0).Fret = "5";
  LayoutSettings settings;
  ASSERT_TRUE(LayoutTrack(doc, 0, settings, DrawTexts{}).Ok);
  auto firstFretX = [&](int bar, bool sig) {
    doc.Layout[0][static_cast<size_t>(bar)].ShowsSignature = sig;
    RecordingSurface s;
    DrawContext ctx{doc.score, 0, settings, doc.Layout[0], s};
    // Same beat spacing either way: the signature bar is 52 wider (61 + 57 against 9 + 9).
    DrawBar(ctx, 0, 0, bar, sig ? 4 * 40 + 61 : 4 * 40 + 9);
    return findText(s, "5")->points[0].x;
  };
  EXPECT_DOUBLE_EQ(firstFretX(0, true) - firstFretX(1, false), 64);
}

TEST(DrawBar, RestDrawsUnderTheTabOnly) {
  // Bar 1 shares bar 0's row, so it has no signature and no clef of its own.
  Document doc = MakeDoc(2, 2);
  doc.score.ClearBeat(0, 1, 0);
  doc.score.ClearBeat(0, 1, 1);
  const RecordingSurface s = drawBar0(doc, 1);
  const double tabBottom = 300 + TabStaffTop(doc.score.Tracks[0]) + 50;
  int below = 0;
  for (const DrawCall& c : s.calls()) {
    if (c.kind == Kind::Text) ADD_FAILURE() << "unexpected text " << c.text;
    if (c.kind == Kind::Polyline || c.kind == Kind::FillRect)
      for (const Point& p : c.points) below += p.y > tabBottom;
  }
  EXPECT_GT(below, 0);  // the quarter rest's zigzag under the staff
}

TEST(DrawBar, NotationHeadsLedgerLinesAndAccidentals) {
  Document doc = MakeDoc(1, 3, true, false, true);
  Score& sc = doc.score;
  sc.noteMut(0, 0, 0, 0).Fret = "0";   // E: in the top space, no ledger line
  sc.noteMut(0, 0, 1, 0).Fret = "";
  sc.noteMut(0, 0, 1, 5).Fret = "0";   // low E: three ledger lines under the treble staff
  sc.noteMut(0, 0, 2, 1).Fret = "2";   // C sharp in C: a sharp
  const RecordingSurface s = drawBar0(doc);
  const auto heads = s.ofKind(Kind::FillEllipse);
  auto headAt = [&](double y) {
    return std::any_of(heads.begin(), heads.end(), [y](const DrawCall& c) {
      return std::abs(c.points[0].y + c.points[1].y / 2 - y) < 0.01;
    });
  };
  EXPECT_TRUE(headAt(300 + (-3) + 6.5));   // position -3 (pitch 64)
  // Position 45 (pitch 40) is 51.5 down; the head is drawn on the half-line grid, in the
  // space under the third ledger line.
  EXPECT_TRUE(headAt(300 + 52.5));
  int ledgers = 0;
  for (const DrawCall& c : s.ofKind(Kind::Line))
    if (c.points[0].y == c.points[1].y && c.points[1].x - c.points[0].x == 11 && c.points[0].y > 328) ++ledgers;
  EXPECT_EQ(ledgers, 3);
}

TEST(DrawBar, RepeatsAndCursor) {
  Document doc = MakeDoc(1, 2);
  doc.score.barInfoMut(0).RepeatOpen = true;
  doc.CursorBeat = 1;
  doc.CursorString = 2;
  const RecordingSurface s = drawBar0(doc);
  // Two dots per staff for the open repeat, and a thick line.
  EXPECT_EQ(s.ofKind(Kind::FillEllipse).size(), 2u);
  const auto rects = s.ofKind(Kind::Rect);
  ASSERT_EQ(rects.size(), 1u);  // the cursor box
  const double stringY = 300 + TabStaffTop(doc.score.Tracks[0]) + 20;
  EXPECT_DOUBLE_EQ(rects[0].points[0].y + rects[0].points[1].y / 2, stringY);
}

TEST(DrawDocument, OnePageRelayoutAndPositions) {
  Document doc = MakeDoc(4, 4);
  doc.score.Title = "Song";
  RecordingSurface s;
  ViewState view;
  view.PictureWidth = 900;
  view.PictureHeight = 1300;
  const DrawResult r = DrawDocument(doc, LayoutSettings{}, view, DrawTexts{}, s);
  ASSERT_TRUE(r.Ok) << r.Error;
  EXPECT_EQ(r.LastPage, 0);
  EXPECT_EQ(r.CursorPage, 0);
  EXPECT_FALSE(doc.FullRelayout);
  EXPECT_EQ(r.Status.Pages, "Pages: 1");
  EXPECT_EQ(r.Status.BeatCount, " 64.0 64ths -- 64.0 64ths");
  EXPECT_EQ(r.Status.Fill, "  Complete");
  EXPECT_TRUE(hasText(s, "Song"));
  EXPECT_TRUE(hasText(s, "Tempo: 60"));
  EXPECT_TRUE(hasText(s, "Page 1 of 1"));
  // Row 0 starts PageTopMargin under the page top (35), at the margin right of the offset.
  EXPECT_EQ(doc.Layout[0][0].DrawY, 35 + 210);
  EXPECT_EQ(doc.Layout[0][0].DrawX, 52 + 50);
  EXPECT_EQ(doc.Layout[0][1].DrawX, doc.Layout[0][0].DrawX + doc.Layout[0][0].DrawWidth);
}

TEST(DrawDocument, ScrolledRowsAboveTheTopAreNotDrawn) {
  Document doc = MakeDoc(60, 16);
  ViewState view;
  view.PictureWidth = 900;
  view.PictureHeight = 700;
  view.VScroll = 300;  // 2400 units down: page 0 is out of sight
  doc.FullRelayout = true;
  RecordingSurface s;
  const DrawResult r = DrawDocument(doc, LayoutSettings{}, view, DrawTexts{}, s);
  ASSERT_TRUE(r.Ok) << r.Error;
  EXPECT_LT(doc.Layout[0][0].DrawY, 0);
  EXPECT_FALSE(hasText(s, "Untitled"));
  // Nothing is drawn outside the picture except the page sheets' own rectangles.
  for (const DrawCall& c : s.ofKind(Kind::Text)) EXPECT_GT(c.points[0].y, -60) << c.text;
}

TEST(DrawDocument, ScrollingRedrawsStoredPositionsAsAFreshLayoutWould) {
  Document doc = MakeDoc(60, 16);
  doc.score.Tracks[0].TrebleStaff = true;
  ViewState view;
  view.PictureWidth = 700;
  view.PictureHeight = 900;
  view.VScroll = 300;
  RecordingSurface first;
  ASSERT_TRUE(DrawDocument(doc, LayoutSettings{}, view, DrawTexts{}, first).Ok);
  ASSERT_FALSE(doc.FullRelayout);
  // A scroll without an edit: no relayout, the stored rows move with the view.
  view.VScroll = 317;
  view.HScroll = 3;
  RecordingSurface scrolled;
  ASSERT_TRUE(DrawDocument(doc, LayoutSettings{}, view, DrawTexts{}, scrolled).Ok);
  const std::vector<BarLayout> stored = doc.Layout[0];
  doc.FullRelayout = true;
  RecordingSurface fresh;
  ASSERT_TRUE(DrawDocument(doc, LayoutSettings{}, view, DrawTexts{}, fresh).Ok);
  EXPECT_EQ(stored, doc.Layout[0]);
  auto sortedTexts = [](const RecordingSurface& s) {
    std::vector<std::string> out;
    for (const DrawCall& c : s.ofKind(Kind::Text))
      out.push_back(c.text + "@" + std::to_string(c.points[0].x) + "," + std::to_string(c.points[0].y));
    std::sort(out.begin(), out.end());
    return out;
  };
  EXPECT_FALSE(sortedTexts(fresh).empty());
  EXPECT_EQ(sortedTexts(scrolled), sortedTexts(fresh));
}

TEST(DrawDocument, MalformedScoresRenderOrFailCleanly) {
  struct Case {
    const char* name;
    void (*spoil)(Document&);
  };
  const Case cases[] = {
      {"zero denominator", [](Document& d) { d.score.barInfoMut(0).TimeSigDenominator = 0; }},
      {"seven strings, huge frets",
       [](Document& d) {
         d.score.Tracks[0].Tuning.NumStrings = 7;
         for (int s = 0; s < 7; ++s) d.score.noteMut(0, 0, 0, s).Fret = "99999999999999";
         d.score.noteMut(0, 0, 1, 6).Fret = "2147483647";
       }},
      {"500 beats", [](Document& d) { d.score.SetBeatCount(0, 1, 499); }},
      {"empty title and fonts",
       [](Document& d) {
         d.score.Title.clear();
         d.score.NoteFont.Name.clear();
         d.score.NoteFont.Size = -5;
         d.score.HeaderFont.Size = 32000;
       }},
      {"lengths and tuplets out of range",
       [](Document& d) {
         Beat& b = d.score.beatMut(0, 0, 0);
         b.Length = 99;
         b.IsTuplet = true;
         b.Tuplet = -4;
         d.score.beatMut(0, 0, 1).Length = -1;
       }},
      {"string count out of range", [](Document& d) { d.score.Tracks[0].Tuning.NumStrings = 0; }},
      {"odd keys, marks and effects",
       [](Document& d) {
         d.score.barMut(0, 0).KeySignature = -99;
         d.score.barInfoMut(0).RepeatClose = -7;
         NoteSlot& n = d.score.noteMut(0, 0, 0, 0);
         n.Harmonic = 42;
         n.Technique = 999;
         n.Volume = -3;
         n.LeftFinger = 77;
         n.HasBend = true;
         n.Bend.mut().Points[0] = 1e300;
         d.score.beatMut(0, 0, 1).HasTremoloBar = true;
         d.score.beatMut(0, 0, 1).TremoloBar.mut().Points[3] = -1e300;
         d.score.beatMut(0, 0, 1).ChordTechnique = -8;
         d.score.Tracks[0].TrebleStaff = true;
         d.score.Tracks[0].BassStaff = true;
       }},
      {"bar infos shorter than bars", [](Document& d) { d.score.BarInfos.resize(1); }},
      {"empty bar", [](Document& d) { d.score.barMut(0, 1).Beats.clear(); }},
  };
  for (const Case& c : cases) {
    Document doc = MakeDoc(3, 4, true, false, true);
    c.spoil(doc);
    const Score before = doc.score;
    RecordingSurface s;
    const DrawResult r = DrawDocument(doc, LayoutSettings{}, ViewState{}, DrawTexts{}, s);
    if (!r.Ok) {
      EXPECT_FALSE(r.Error.empty()) << c.name;
    }
    EXPECT_EQ(doc.score, before) << c.name;
  }
}

TEST(DrawDocument, TrackWithNoStaffIsAnErrorNotACrash) {
  Document doc = MakeDoc(2, 4);
  doc.score.Tracks[0].TabStaff = false;
  doc.score.RowSpacing = 0;
  RecordingSurface s;
  const DrawResult r = DrawDocument(doc, LayoutSettings{}, ViewState{}, DrawTexts{}, s);
  EXPECT_FALSE(r.Ok);
  EXPECT_NE(r.Error.find("overflow"), std::string::npos) << r.Error;
}

TEST(RenderPage, OnlyThatPageAndNotBeyondTheLast) {
  Document doc = MakeDoc(40, 16);
  RecordingSurface s;
  const DrawResult r = RenderPage(doc, 0, 1, LayoutSettings{}, DrawTexts{}, s);
  ASSERT_TRUE(r.Ok) << r.Error;
  EXPECT_TRUE(hasText(s, "Page 2 of 7"));
  EXPECT_FALSE(hasText(s, "Page 1 of 7"));
  EXPECT_FALSE(hasText(s, "Untitled"));  // headers only on the first page by default
  for (const DrawCall& c : s.ofKind(Kind::Text)) {
    EXPECT_GE(c.points[0].y, 0) << c.text;
    EXPECT_LT(c.points[0].y, 1124) << c.text;
  }
  RecordingSurface none;
  EXPECT_FALSE(RenderPage(doc, 0, 7, LayoutSettings{}, DrawTexts{}, none).Ok);
}

TEST(Helpers, BlendHarmonicAndBendTexts) {
  EXPECT_EQ(BlendColor(Color{0, 0, 0, 255}, kWhite, 255), (Color{0, 0, 0, 255}));
  EXPECT_EQ(BlendColor(Color{200, 0, 0, 255}, kWhite, 0), kWhite);
  EXPECT_EQ(std::string(HarmonicLabel(4)), "A.H.12");
  EXPECT_EQ(std::string(HarmonicLabel(8)), "");
  EXPECT_EQ(BendHeightText(6), "1\xC2\xBD");
  EXPECT_EQ(BendHeightText(13), "");
}

}  // namespace
}  // namespace plectaro

namespace plectaro {
namespace {

TEST(DrawBar, TupletNumberOverTheNotationAndUnderTheTab) {
  Document doc = test::MakeDoc(1, 3, true, false, true);
  for (int k = 0; k < 3; ++k) {
    Beat& b = doc.score.beatMut(0, 0, k);
    b.Length = kEighth;
    b.IsTuplet = true;
    b.Notes[0].Fret = std::to_string(5 + k);
  }
  const RecordingSurface s = drawBar0(doc);
  int threes = 0;
  for (const std::string& t : s.texts()) threes += t == "3";
  EXPECT_EQ(threes, 2);
}

}  // namespace
}  // namespace plectaro

namespace plectaro {
namespace {

TEST(DrawBar, CloseAccidentalsStepLeftAndGraceNotesShowSmall) {
  Document doc = test::MakeDoc(1, 1, true, false, false);
  Beat& b = doc.score.beatMut(0, 0, 0);
  b.Notes[0].Fret = "2";  // F sharp
  b.Notes[1].Fret = "2";  // C sharp, 10 units lower: its sharp takes the next column
  b.Notes[2].HasGrace = true;
  b.Notes[2].Grace.mut().Fret = "0";
  const RecordingSurface s = drawBar0(doc);
  std::vector<double> sharpBars;
  for (const DrawCall& c : s.ofKind(DrawCall::Kind::Line))
    if (c.width == 1.6) sharpBars.push_back(c.points[0].x);
  std::sort(sharpBars.begin(), sharpBars.end());
  sharpBars.erase(std::unique(sharpBars.begin(), sharpBars.end()), sharpBars.end());
  ASSERT_EQ(sharpBars.size(), 2u);
  EXPECT_DOUBLE_EQ(sharpBars[1] - sharpBars[0], 6.5);
  int graceHeads = 0;
  for (const DrawCall& c : s.ofKind(DrawCall::Kind::FillEllipse)) graceHeads += c.points[1].x == 5;
  EXPECT_EQ(graceHeads, 1);
}

}  // namespace
}  // namespace plectaro
