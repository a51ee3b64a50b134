// What a printed page must show beyond the layout numbers: the head of every row, the end
// of the piece, tuplet numbers, ledger lines and chord charts. Checked on recorded calls.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "rendering/bar_drawing.h"
#include "rendering/draw_document.h"
#include "rendering/recording_surface.h"
#include "test_scores.h"

namespace plectaro {
namespace {

using Kind = DrawCall::Kind;
constexpr double kInf = std::numeric_limits<double>::infinity();

// Lays out the track and draws one bar at (0, 0) with its layout width.
RecordingSurface drawBar(Document& doc, int bar) {
  LayoutSettings settings;
  const DrawResult r = LayoutTrack(doc, 0, settings, DrawTexts{});
  EXPECT_TRUE(r.Ok) << r.Error;
  RecordingSurface s;
  DrawContext ctx{doc.score, 0, settings, doc.Layout[0], s};
  DrawBar(ctx, 0, 0, bar, doc.Layout[0][static_cast<size_t>(bar)].DrawWidth);
  return s;
}

// The first bar of the second row.
int secondRowStart(Document& doc) {
  LayoutSettings settings;
  EXPECT_TRUE(LayoutTrack(doc, 0, settings, DrawTexts{}).Ok);
  for (size_t b = 1; b < doc.Layout[0].size(); ++b)
    if (doc.Layout[0][b].RowFirstBar == static_cast<int>(b)) return static_cast<int>(b);
  ADD_FAILURE() << "one row only";
  return 0;
}

double textRight(RecordingSurface& s, const DrawCall& c) { return c.points[0].x + s.measureText(c.text, c.font).width; }

bool isTabLetter(const DrawCall& c) {
  return c.kind == Kind::Text && (c.text == "T" || c.text == "A" || c.text == "B") && c.font.bold;
}

TEST(RowHead, EveryRowOpensWithItsClefClearOfTheFirstBeat) {
  struct Case {
    const char* name;
    bool drums, treble, repeat, stroke;
    const char* fret;
  };
  const Case cases[] = {
      {"plain tab", false, false, false, false, "0"},
      {"stroke on the first beat", false, false, false, true, "0"},
      {"two-digit fret and stroke", false, false, false, true, "12"},
      {"opening repeat", false, false, true, false, "0"},
      {"opening repeat and stroke", false, false, true, true, "12"},
      {"treble and tab with repeat", false, true, true, false, "3"},
      {"drum tab", true, false, false, false, "X"},
      {"drum staff with repeat", true, true, true, false, "X"},
  };
  for (const Case& c : cases) {
    Document doc = test::MakeDoc(8, 8, c.treble);
    Track& t = doc.score.Tracks[0];
    t.DrumTrack = c.drums;
    const int bar = secondRowStart(doc);
    doc.score.barInfoMut(bar).RepeatOpen = c.repeat;
    Beat& first = doc.score.beatMut(0, bar, 0);
    for (int s = 0; s < 6; ++s) first.Notes[static_cast<size_t>(s)].Fret = c.fret;
    if (c.stroke) first.Stroke = kDownStroke;
    RecordingSurface s = drawBar(doc, bar);

    double headRight = 0, firstInk = kInf, repeatLeft = kInf, repeatRight = 0;
    int letters = 0, clefBars = 0;
    const double beat0 = RowLayout::BeatOffset(false, doc.Layout[0][static_cast<size_t>(bar)].BeatSpacing, 0) + 3;
    for (const DrawCall& d : s.calls()) {
      if (isTabLetter(d)) {
        ++letters;
        headRight = std::max(headRight, textRight(s, d));
      } else if (d.kind == Kind::Text && d.text == c.fret) {
        if (std::abs(d.points[0].x + s.measureText(d.text, d.font).width / 2 - beat0) < 0.5)
          firstInk = std::min(firstInk, d.points[0].x);
      } else if (d.kind == Kind::FillPolygon && d.points[0].x < beat0) {
        for (const Point& p : d.points) firstInk = std::min(firstInk, p.x);  // the stroke's arrow head
      } else if (d.kind == Kind::FillRect && d.color != kWhite && d.points[0].x < beat0) {
        // Thick upright bars: the percussion clef (short) or the repeat sign (all staves).
        const bool tall = d.points[1].y > 20;
        if (tall) {
          repeatLeft = std::min(repeatLeft, d.points[0].x);
        } else {
          ++clefBars;
          headRight = std::max(headRight, d.points[0].x + d.points[1].x);
        }
      } else if (d.kind == Kind::FillEllipse && d.points[1].x < 3 && d.points[0].x < beat0) {
        repeatRight = std::max(repeatRight, d.points[0].x + d.points[1].x);
      }
    }
    if (c.drums) {
      EXPECT_EQ(letters, 0) << c.name;
      EXPECT_EQ(clefBars, c.treble ? 4 : 2) << c.name;  // on the drum staff and on the tab
    } else {
      EXPECT_EQ(letters, 3) << c.name;
    }
    EXPECT_LT(headRight, firstInk) << c.name;
    if (c.repeat) {
      EXPECT_LT(headRight, repeatLeft) << c.name;
      EXPECT_LT(repeatRight, firstInk) << c.name;
    }
  }
}

TEST(BarFrame, TheLastBarEndsThePiece) {
  Document doc = test::MakeDoc(3, 4);
  auto thickAtRight = [&](int bar) {
    RecordingSurface s = drawBar(doc, bar);
    const double right = doc.Layout[0][static_cast<size_t>(bar)].DrawWidth;
    int n = 0;
    for (const DrawCall& d : s.ofKind(Kind::FillRect))
      n += d.points[1].x >= 2 && std::abs(d.points[0].x + d.points[1].x - right) < 0.01;
    return n;
  };
  EXPECT_EQ(thickAtRight(1), 0);
  EXPECT_EQ(thickAtRight(2), 1);
  doc.score.barInfoMut(2).RepeatClose = 2;  // the closing repeat is the end sign then
  EXPECT_EQ(thickAtRight(2), 1);
}

TEST(Tuplets, OneNumberPerGroupOfNotesOrRests) {
  struct Case {
    const char* name;
    std::vector<int> lengths;  // one beat each; negative lengths are rests
    int tupletBeats;           // the first n beats are tuplets
    int tuplet;
    int groups;
  };
  const Case cases[] = {
      {"three eighth notes", {kEighth, kEighth, kEighth, kHalf}, 3, kTriplet, 1},
      {"three eighth rests", {-kEighth, -kEighth, -kEighth, kHalf}, 3, kTriplet, 1},
      {"rest, note, rest", {-kEighth, kEighth, -kEighth, kHalf}, 3, kTriplet, 1},
      {"two triplets of sixteenths", {kSixteenth, kSixteenth, kSixteenth, kSixteenth, kSixteenth, kSixteenth, kHalf}, 6, kTriplet, 2},
      {"a quarter and an eighth", {kQuarter, kEighth, kHalf}, 2, kTriplet, 1},
      {"quintuplet", {kSixteenth, kSixteenth, kSixteenth, kSixteenth, kSixteenth, kHalf}, 5, k5Tuplet, 1},
  };
  for (const Case& c : cases) {
    Document doc = test::MakeDoc(1, static_cast<int>(c.lengths.size()), true);
    for (size_t k = 0; k < c.lengths.size(); ++k) {
      Beat& b = doc.score.beatMut(0, 0, static_cast<int>(k));
      b.Length = std::abs(c.lengths[k]);
      b.IsTuplet = static_cast<int>(k) < c.tupletBeats;
      b.Tuplet = c.tuplet;
      if (c.lengths[k] < 0) b.Notes[0].Fret.clear();
    }
    RecordingSurface s = drawBar(doc, 0);
    const std::string number = std::to_string(kTupletNotes[static_cast<size_t>(c.tuplet)]);
    int shown = 0;
    for (const DrawCall& d : s.ofKind(Kind::Text)) shown += d.text == number && d.font.family == "Small Fonts";
    EXPECT_EQ(shown, 2 * c.groups) << c.name;  // over the notation and under the tab
  }
}

TEST(Notation, LedgerLinesRunThroughOrClearEveryHead) {
  // Every fret of the low and the high string, alone as a whole note: a ledger line either
  // crosses a head at its middle or passes clear of it, never along its edge.
  for (int string : {0, 5}) {
    for (int fret = 0; fret <= 24; ++fret) {
      Document doc = test::MakeDoc(1, 1, true, false, false);
      Beat& b = doc.score.beatMut(0, 0, 0);
      b.Length = kWhole;
      b.Notes[0].Fret.clear();
      b.Notes[static_cast<size_t>(string)].Fret = std::to_string(fret);
      RecordingSurface s = drawBar(doc, 0);
      const auto heads = s.ofKind(Kind::Ellipse);
      ASSERT_EQ(heads.size(), 1u) << string << "/" << fret;
      const double cy = heads[0].points[0].y + heads[0].points[1].y / 2;
      const double half = heads[0].points[1].y / 2;
      for (const DrawCall& d : s.ofKind(Kind::Line)) {
        if (d.points[0].y != d.points[1].y || d.points[1].x - d.points[0].x > 12) continue;
        const double off = std::abs(d.points[0].y - cy);
        EXPECT_TRUE(off < 0.01 || off > half + 0.5) << "string " << string << " fret " << fret << " ledger " << off;
      }
    }
  }
}

TEST(ChordChart, StoredFretsCountFromTheChartsFirstFret) {
  struct Case {
    const char* name;
    int startFret;
    std::vector<std::string> frets;  // string 0 (highest) first
    bool chart, nut;
    const char* label;
    std::vector<int> rows;  // fret rows of the dots, highest string first
  };
  const Case cases[] = {
      {"open A minor", 0, {"0", "1", "2", "2", "0", "x"}, true, true, "", {1, 2, 2}},
      {"barre chord at the fifth fret", 4, {"1", "1", "2", "3", "3", "1"}, true, false, "5", {1, 1, 2, 3, 3, 1}},
      {"name only: blank frets", 0, {" ", " ", " ", " ", " ", " "}, false, false, "", {}},
  };
  for (const Case& c : cases) {
    Document doc = test::MakeDoc(1, 1);
    doc.score.AlwaysDrawChordCharts = true;
    Beat& b = doc.score.beatMut(0, 0, 0);
    b.HasChord = true;
    BeatChord& ch = b.Chord.mut();
    ch.Name = "Chord";
    ch.NumStrings = 6;
    ch.StartFret = static_cast<int16_t>(c.startFret);
    for (size_t i = 0; i < c.frets.size(); ++i) ch.Frets[i] = c.frets[i];
    RecordingSurface s = drawBar(doc, 0);
    // The chart's fret lines are the level lines as wide as its five string gaps.
    std::vector<DrawCall> fretLines;
    for (const DrawCall& d : s.ofKind(Kind::Line))
      if (d.points[0].y == d.points[1].y && std::abs(d.points[1].x - d.points[0].x - 25) < 0.01) fretLines.push_back(d);
    std::vector<DrawCall> dots;
    for (const DrawCall& d : s.ofKind(Kind::FillEllipse))
      if (d.points[1].x == 4) dots.push_back(d);
    EXPECT_EQ(!fretLines.empty(), c.chart) << c.name;
    const auto texts = s.texts();
    EXPECT_TRUE(std::find(texts.begin(), texts.end(), "Chord") != texts.end()) << c.name;
    if (!c.chart) continue;
    std::sort(fretLines.begin(), fretLines.end(), [](const DrawCall& a, const DrawCall& z) { return a.points[0].y < z.points[0].y; });
    EXPECT_EQ(fretLines.front().width == 2, c.nut) << c.name;
    if (*c.label) {
      EXPECT_TRUE(std::find(texts.begin(), texts.end(), c.label) != texts.end()) << c.name;
    }
    const double top = fretLines.front().points[0].y, row = fretLines[1].points[0].y - top;
    std::vector<int> rows;
    // Dots run from the lowest string on the left; read them back highest string first.
    std::sort(dots.begin(), dots.end(), [](const DrawCall& a, const DrawCall& z) { return a.points[0].x > z.points[0].x; });
    for (const DrawCall& d : dots) rows.push_back(static_cast<int>(std::lround((d.points[0].y + 2 - top) / row + 0.5)));
    EXPECT_EQ(rows, c.rows) << c.name;
  }
}

}  // namespace
}  // namespace plectaro

namespace plectaro {
namespace {

TEST(OverTheRow, LongTextsClimbOverEachOtherInsteadOfRunningTogether) {
  // Texts on neighbouring beats, in one bar and across the bar line, with a chord name.
  Document doc = test::MakeDoc(2, 4);
  doc.score.beatMut(0, 0, 2).Text = "Bend and release";
  doc.score.beatMut(0, 0, 3).Text = "Pre-bend";
  doc.score.beatMut(0, 1, 0).Text = "Vibrato and more";
  Beat& chord = doc.score.beatMut(0, 1, 0);
  chord.HasChord = true;
  chord.Chord.mut().Name = "Am";
  LayoutSettings settings;
  ASSERT_TRUE(LayoutTrack(doc, 0, settings, DrawTexts{}).Ok);
  RecordingSurface s;
  DrawContext ctx{doc.score, 0, settings, doc.Layout[0], s};
  for (int bar = 0; bar < 2; ++bar) {
    const BarLayout& l = doc.Layout[0][static_cast<size_t>(bar)];
    DrawBar(ctx, l.DrawX, 0, bar, l.DrawWidth);
  }
  std::vector<Rect> boxes;
  for (const DrawCall& d : s.ofKind(Kind::Text)) {
    if (d.text != "Bend and release" && d.text != "Pre-bend" && d.text != "Vibrato and more" && d.text != "Am")
      continue;
    const TextMetrics m = s.measureText(d.text, d.font);
    boxes.push_back({d.points[0].x, d.points[0].y, m.width, m.height()});
  }
  ASSERT_EQ(boxes.size(), 4u);
  for (size_t i = 0; i < boxes.size(); ++i)
    for (size_t j = i + 1; j < boxes.size(); ++j) {
      const Rect& a = boxes[i];
      const Rect& b = boxes[j];
      const bool apart = a.right() <= b.x || b.right() <= a.x || a.bottom() <= b.y || b.bottom() <= a.y;
      EXPECT_TRUE(apart) << i << " and " << j;
    }
}

}  // namespace
}  // namespace plectaro
