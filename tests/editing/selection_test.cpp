// Marking beats and bars with the keys, and the commands that take the marked range.
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>

#include "edit_fixture.h"
#include "editing/bar_commands.h"
#include "editing/operations.h"
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

// What differs between two versions of a score of equal shape: "t1b2k3" for a beat of track 1,
// "i2" for the signature record of bar 2.
std::set<std::string> differences(const Score& a, const Score& b) {
  std::set<std::string> out;
  for (int t = 0; t <= a.LastTrack(); ++t)
    for (int bar = 0; bar <= a.GetLastBar(t); ++bar)
      for (int k = 0; k <= a.GetLastBeat(t, bar); ++k)
        if (!(a.beat(t, bar, k) == b.beat(t, bar, k)) || a.bar(t, bar).KeySignature != b.bar(t, bar).KeySignature)
          out.insert("t" + std::to_string(t) + "b" + std::to_string(bar) + "k" + std::to_string(k));
  for (size_t i = 0; i < a.BarInfos.size(); ++i)
    if (!(a.BarInfos[i] == b.BarInfos[i])) out.insert("i" + std::to_string(i));
  return out;
}

// Transpose and the signature dialogs take the marked beats or bars as their range, as one
// undo step.
TEST(Selection, TransposeAndSignaturesActOnTheMarkedRangeOnly) {
  struct Case {
    const char* keys;
    const char* what;
    std::function<bool(EditContext&, const SelectedRange&)> run;
    std::set<std::string> changed;
  };
  auto transpose = [](EditContext& c, const SelectedRange& r) { return Transpose(c, r.tracks, -2, &r); };
  auto timeSig = [](EditContext& c, const SelectedRange&) { return ApplyTimeSignature(c, 3, 4, ApplyRange::Selection); };
  auto keySig = [](EditContext& c, const SelectedRange&) { return ApplyKeySignature(c, 2, false, ApplyRange::Selection); };
  auto beatsOf = [](std::initializer_list<int> tracks, std::initializer_list<int> bars) {
    std::set<std::string> out;
    for (int t : tracks)
      for (int b : bars)
        for (int k = 0; k < 4; ++k) out.insert("t" + std::to_string(t) + "b" + std::to_string(b) + "k" + std::to_string(k));
    return out;
  };
  const Case cases[] = {
      {"Right Shift+Right", "transpose two beats", transpose, {"t0b0k1", "t0b0k2"}},
      {"PgDn Shift+PgDn", "transpose two bars", transpose, beatsOf({0}, {1, 2})},
      {"PgDn Shift+Alt+PgDn", "transpose two bars of every track", transpose, beatsOf({0, 1, 2}, {1, 2})},
      {"PgDn Shift+PgDn", "time signature", timeSig, {"i1", "i2"}},
      {"PgDn Shift+Alt+PgDn", "key signature in every track", keySig, beatsOf({0, 1, 2}, {1, 2})},
  };
  for (const Case& c : cases) {
    Editor e;
    band(e, 3, 4, false);
    e.keys(c.keys);
    const auto range = SelectionOf(e.ctx);
    ASSERT_TRUE(range.has_value()) << c.what;
    const Score before = e.doc.score;
    const size_t steps = e.ctx.undo.undoEntries().size();
    ASSERT_TRUE(c.run(e.ctx, *range)) << c.what;
    EXPECT_EQ(differences(before, e.doc.score), c.changed) << c.what;
    EXPECT_EQ(e.ctx.undo.undoEntries().size(), steps + 1) << c.what;
    mnuEditUndo_Click(e.ctx);
    EXPECT_TRUE(e.doc.score == before) << c.what;
  }
}

TEST(Selection, RemoveBarTakesTheMarkedBars) {
  Editor e;
  band(e, 2, 5, false);
  e.keys("PgDn Shift+PgDn Shift+PgDn");
  const Score before = e.doc.score;
  ASSERT_TRUE(RemoveBar(e.ctx, {0, 1}));
  ASSERT_EQ(e.bars(), 2);
  for (int t = 0; t < 2; ++t) {
    EXPECT_TRUE(e.doc.score.bar(t, 0) == before.bar(t, 0));
    EXPECT_TRUE(e.doc.score.bar(t, 1) == before.bar(t, 4));
  }
  EXPECT_FALSE(e.ctx.selection.active);
  EXPECT_EQ(e.doc.CursorBar, 1);
  mnuEditUndo_Click(e.ctx);
  EXPECT_TRUE(e.doc.score == before);
  // Without a mark only the cursor's bar goes.
  e.ctx.selection = Selection{};
  e.keys("Ctrl+Home");
  ASSERT_TRUE(RemoveBar(e.ctx, {0, 1}));
  EXPECT_EQ(e.bars(), 4);
}

}  // namespace
}  // namespace plectaro::test
