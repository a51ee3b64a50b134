#include "score/bar_timing.h"

#include <gtest/gtest.h>

#include "score_builders.h"

namespace plectaro {
namespace {

struct BeatSpec {
  int length;
  bool dotted = false;
  int tuplet = -1;  // -1: not a tuplet
};

// One track, one bar with the given signature and beats.
Score barOf(int num, int den, const std::vector<BeatSpec>& beats) {
  Score s;
  s.SetTimeSignature(0, num, den);
  s.SetBeatCount(0, 0, static_cast<int>(beats.size()) - 1);
  for (size_t k = 0; k < beats.size(); ++k) {
    Beat& b = s.beatMut(0, 0, static_cast<int>(k));
    b.Length = beats[k].length;
    b.Dotted = beats[k].dotted;
    b.IsTuplet = beats[k].tuplet >= 0;
    b.Tuplet = std::max(beats[k].tuplet, 0);
  }
  return s;
}

TEST(BarTiming, DurationsOfBeats) {
  struct Case {
    BeatSpec beat;
    double want;
  };
  const Case cases[] = {
      {{kWhole}, 64},          {{kQuarter}, 16},
      {{kSixtyFourth}, 1},     {{kHalf, true}, 48},
      {{kSixteenth, false, k5Tuplet}, 8.0 / 5 * 1},  // 4 x 2/5
      {{kQuarter, false, kTriplet}, 32.0 / 3},       // 16 x 2/3
      {{kEighth, true, kTriplet}, 8.0 * 2 / 3 * 1.5},  // the dot after the tuplet factor
      {{kSixteenth, false, k13Tuplet}, 8.0 / 13},
  };
  for (const Case& c : cases)
    EXPECT_DOUBLE_EQ(GetNumOf64ths(c.beat.length, std::max(c.beat.tuplet, 0), c.beat.tuplet >= 0, c.beat.dotted),
                     c.want);
  EXPECT_THROW(GetNumOf64ths(7, 0, false, false), ScoreError);
  EXPECT_THROW(GetNumOf64ths(2, 9, true, false), ScoreError);
}

TEST(BarTiming, CheckBar) {
  struct Case {
    const char* name;
    int num, den;
    std::vector<BeatSpec> beats;
    BarCheck want;
  };
  const std::vector<BeatSpec> sixSixteenthSextuplets(6, BeatSpec{kSixteenth, false, k6Tuplet});
  const Case cases[] = {
      {"new bar: one quarter in 4/4", 4, 4, {{kQuarter}}, kBarTooShort},
      {"dotted half fills 3/4", 3, 4, {{kHalf, true}}, kBarExact},
      {"dotted half fills 6/8", 6, 8, {{kHalf, true}}, kBarExact},
      {"three triplet quarters fill 2/4 after rounding", 2, 4,
       {{kQuarter, false, kTriplet}, {kQuarter, false, kTriplet}, {kQuarter, false, kTriplet}}, kBarExact},
      {"six sixteenth 6-tuplets make an eighth", 1, 8, sixSixteenthSextuplets, kBarExact},
      {"a whole is too long for 3/4", 3, 4, {{kWhole}}, kBarTooLong},
      {"two triplet quarters are short of 2/4", 2, 4,
       {{kQuarter, false, kTriplet}, {kQuarter, false, kTriplet}}, kBarTooShort},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(CheckBar(barOf(c.num, c.den, c.beats), 0, 0), c.want);
  }
}

// The Length/tuplet of each beat of bar 0, for comparing repairs.
std::vector<std::pair<int, bool>> shape(const Score& s, int bar = 0) {
  std::vector<std::pair<int, bool>> out;
  for (const Beat& b : s.bar(0, bar).Beats) out.emplace_back(b.Length, b.IsTuplet);
  return out;
}

TEST(BarTiming, FixBarFillsWithTheLongestRestsFirst) {
  struct Case {
    const char* name;
    int num, den;
    std::vector<BeatSpec> beats;
    std::vector<std::pair<int, bool>> want;
    BarCheck end;
  };
  const Case cases[] = {
      {"quarter in 4/4 gets a half then a quarter", 4, 4, {{kQuarter}},
       {{kQuarter, false}, {kHalf, false}, {kQuarter, false}}, kBarExact},
      {"a gap of 24 is a quarter then an eighth, never dotted", 4, 4, {{kHalf}, {kEighth}},
       {{kHalf, false}, {kEighth, false}, {kQuarter, false}, {kEighth, false}}, kBarExact},
      {"a triplet gap is closed with a triplet 64th", 1, 4,
       {{kEighth}, {kSixteenth, false, kTriplet}, {kSixteenth, false, kTriplet}},
       {{kEighth, false}, {kSixteenth, true}, {kSixteenth, true}, {kThirtySecond, false},
        {kSixtyFourth, true}},
       kBarExact},
      {"an exact bar is left alone", 3, 4, {{kHalf, true}}, {{kHalf, false}}, kBarExact},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Score s = barOf(c.num, c.den, c.beats);
    EXPECT_EQ(FixBar(s, 0, 0), c.end);
    EXPECT_EQ(shape(s), c.want);
  }
}

TEST(BarTiming, FixAllBarsCutsLongBarsPastAnExactFitThenRefills) {
  // 4/4 holding half, quarter, quarter, half: dropping the last beat makes it exact, but the
  // repair goes on to short (drops the quarter too) and refills the gap with a quarter rest.
  Score s = barOf(4, 4, {{kHalf}, {kQuarter}, {kQuarter}, {kHalf}});
  s.noteMut(0, 0, 2, 0).Fret = "5";
  FixAllBars(s, 0);
  EXPECT_EQ(shape(s), (std::vector<std::pair<int, bool>>{{kHalf, false}, {kQuarter, false}, {kQuarter, false}}));
  EXPECT_EQ(s.note(0, 0, 2, 0).Fret, "");  // the refilled beat is a rest
  EXPECT_EQ(CheckBar(s, 0, 0), kBarExact);

  // A single beat that is too long cannot be dropped: the bar keeps it.
  Score one = barOf(2, 4, {{kWhole}});
  FixAllBars(one, 0);
  EXPECT_EQ(shape(one), (std::vector<std::pair<int, bool>>{{kWhole, false}}));
}

TEST(BarTiming, ZeroDenominatorFailsWithoutChangingTheScore) {
  Document doc;
  doc.score.SetBarCount(1);
  doc.score.SetTimeSignature(1, 4, 0);
  const Score before = doc.score;
  EXPECT_THROW(Transact(doc, [&] { FixAllBars(doc.score, 0); }), ScoreError);
  EXPECT_EQ(doc.score, before);
  EXPECT_THROW(CheckBar(doc.score, 0, 1), ScoreError);
}

TEST(BarTiming, BarsBeyondTheTrackMeasureZero) {
  Score s;
  EXPECT_EQ(GetBarLength(s, 0, 5), 0);
  EXPECT_EQ(GetBeatsLength(s, 0, 5), 0);
}

TEST(BarTiming, FormatOf64ths) {
  EXPECT_EQ(Format64ths(48), "48.0");
  EXPECT_EQ(Format64ths(32.0 / 3), "10.667");
  EXPECT_EQ(Format64ths(8.5), "8.5");
  EXPECT_EQ(Format64ths(0), "0.0");
}

}  // namespace
}  // namespace plectaro
