// Marking beats and bars with the keys, and the commands that take the marked range.
#include <gtest/gtest.h>

#include "edit_fixture.h"
#include "editing/bar_commands.h"
#include "editing/selection.h"

namespace plectaro::test {
namespace {

// `tracks` tracks (the last a drum track when `drum`) of `bars` bars of four quarter beats;
// beat k of bar b of track t holds fret b*10+k+t on string 0 (a drum symbol on a drum track).
void band(Editor& e, int tracks, int bars, bool drum) {
  for (int t = 1; t < tracks; ++t) e.addTrack(6, drum && t == tracks - 1);
  Score& s = e.doc.score;
  s.SetBarCount(bars - 1);
  for (int t = 0; t < tracks; ++t)
    for (int b = 0; b < bars; ++b) {
      s.SetBeatCount(t, b, 3);
      for (int k = 0; k < 4; ++k) {
        s.beatMut(t, b, k).Length = kQuarter;
        s.noteMut(t, b, k, 0).Fret = s.Tracks[static_cast<size_t>(t)].DrumTrack
                                         ? "X" : std::to_string(b * 10 + k + t);
      }
    }
}

TEST(Selection, KeysMarkBeatsWithinABarAndWholeBarsAcrossBars) {
  struct Case {
    const char* keys;
    bool wholeBars;
    int firstBar, lastBar, firstBeat, lastBeat, tracks;
  };
  const Case cases[] = {
      {"Right Shift+Right Shift+Right", false, 0, 0, 1, 3, 1},
      {"End Shift+Left Shift+Left", false, 0, 0, 1, 3, 1},
      {"Right Shift+End", false, 0, 0, 1, 3, 1},
      {"End Shift+Right", true, 0, 1, 0, 0, 1},  // crossing the bar line takes whole bars
      {"PgDn PgDn Shift+Left", true, 1, 2, 0, 0, 1},
      {"PgDn Shift+Ctrl+End", true, 1, 3, 0, 0, 1},
      {"PgDn Shift+Alt+PgDn", true, 1, 2, 0, 0, 3},
      {"Shift+Right Shift+Right Shift+Left", false, 0, 0, 0, 1, 1},
  };
  for (const Case& c : cases) {
    Editor e;
    band(e, 3, 4, false);
    e.keys(c.keys);
    const auto r = SelectionOf(e.ctx);
    ASSERT_TRUE(r.has_value()) << c.keys;
    EXPECT_EQ(r->wholeBars, c.wholeBars) << c.keys;
    EXPECT_EQ(r->firstBar, c.firstBar) << c.keys;
    EXPECT_EQ(r->lastBar, c.lastBar) << c.keys;
    if (!c.wholeBars) {
      EXPECT_EQ(r->firstBeat, c.firstBeat) << c.keys;
      EXPECT_EQ(r->lastBeat, c.lastBeat) << c.keys;
    }
    EXPECT_EQ(static_cast<int>(r->tracks.size()), c.tracks) << c.keys;
  }
}

TEST(Selection, AShiftRightAtTheEndNeverGrowsTheScoreAndOtherKeysLetGo) {
  Editor e;
  band(e, 1, 2, false);
  e.keys("Ctrl+End End Shift+Right Shift+Right");
  EXPECT_EQ(e.bars(), 2);
  EXPECT_EQ(e.beats(1), 4);
  e.keys("Left");
  EXPECT_FALSE(SelectionOf(e.ctx).has_value());
  e.keys("Shift+Left Escape");
  EXPECT_FALSE(SelectionOf(e.ctx).has_value());
}

TEST(Selection, DelClearsTheMarkedBeatsOnlyAndIsOneStep) {
  Editor e;
  band(e, 2, 2, false);
  const Score before = e.doc.score;
  e.keys("Right Shift+Right Del");
  EXPECT_EQ(e.fret(0, 0, 0), "0");
  EXPECT_EQ(e.fret(0, 1, 0), "");
  EXPECT_EQ(e.fret(0, 2, 0), "");
  EXPECT_EQ(e.fret(0, 3, 0), "3");
  EXPECT_EQ(e.fret(0, 1, 0, 1), "2") << "the other track is left alone";
  e.keys("Escape z");
  EXPECT_TRUE(e.doc.score == before);
}

TEST(Selection, LengthsChangeOnlyInTheMarkedBars) {
  Editor e;
  band(e, 1, 4, false);
  e.keys("PgDn Shift+PgDn");
  ASSERT_TRUE(StepSelectionLengths(e.ctx, true));
  for (int b = 0; b < 4; ++b)
    EXPECT_EQ(e.beat(b, 2).Length, b == 1 || b == 2 ? kHalf : kQuarter) << "bar " << b;
  EXPECT_TRUE(e.doc.score.Tracks[0].Bars[0].sharesWith(e.ctx.undo.undoEntries().back().score.Tracks[0].Bars[0]));
}

// Two bars of a band (guitar, bass, drums) copied from all tracks and pasted at the end give
// every track its own two bars, drum bars onto the drum track.
TEST(Selection, BarsCopiedFromAllTracksPasteIntoAllTracks) {
  Editor e;
  band(e, 3, 4, true);
  e.keys("PgDn Shift+Alt+PgDn");
  ASSERT_TRUE(CopySelection(e.ctx));
  e.keys("Ctrl+End");
  ASSERT_TRUE(PasteAtCursor(e.ctx));
  ASSERT_EQ(e.bars(), 6);
  for (int t = 0; t < 3; ++t)
    for (int b = 4; b < 6; ++b)
      for (int k = 0; k < 4; ++k)
        EXPECT_TRUE(e.doc.score.bar(t, b) == e.doc.score.bar(t, b - 3)) << "track " << t << " bar " << b;
  EXPECT_EQ(e.doc.CursorBar, 4);
  mnuEditUndo_Click(e.ctx);
  EXPECT_EQ(e.bars(), 4);
  // A copy of the cursor's track alone pastes into that track, the others get blank bars.
  e.keys("Shift+PgUp");
  ASSERT_TRUE(CopySelection(e.ctx));
  ASSERT_TRUE(PasteAtCursor(e.ctx));
  EXPECT_EQ(e.bars(), 6);
  EXPECT_TRUE(e.beat(3, 0, 2).isRest());
}

TEST(Selection, CutClearsTheBarsInEveryMarkedTrackButKeepsThem) {
  Editor e;
  band(e, 2, 3, false);
  e.keys("Shift+Alt+PgDn");
  ASSERT_TRUE(CutSelection(e.ctx));
  EXPECT_EQ(e.bars(), 3);
  for (int t = 0; t < 2; ++t) {
    EXPECT_EQ(e.beats(0, t), 1);
    EXPECT_EQ(e.beats(1, t), 1);
    EXPECT_EQ(e.beats(2, t), 4);
  }
  ASSERT_EQ(e.ctx.clipboard.trackBars.size(), 2u);
  EXPECT_EQ(e.ctx.clipboard.trackBars[1][0]->Beats[1].Notes[0].Fret, "2");
}

}  // namespace
}  // namespace plectaro::test
