// The keyboard: what a sequence of keys leaves in the records, the cursor, the undo ring and
// the password guard.
#include <gtest/gtest.h>

#include "edit_fixture.h"
#include "editing/hit_test.h"
#include "rendering/draw_document.h"
#include "score/bar_timing.h"

namespace plectaro::test {
namespace {

struct TypingCase {
  const char* keys;
  int bar, beat, string;
  const char* fret;
};

TEST(Typing, FretsLandWhereTheCursorIs) {
  const TypingCase cases[] = {
      {"7", 0, 0, 0, "7"},
      {"Num7", 0, 0, 0, "7"},            // keypad digits are digits
      {"1 2", 0, 0, 0, "12"},            // two-digit fret after 1 or 2
      {"2 4", 0, 0, 0, "24"},
      {"3 4", 0, 0, 0, "4"},             // any other first digit is replaced
      {"1 2 3", 0, 0, 0, "3"},           // never three characters
      {"Num1 Num5", 0, 0, 0, "15"},
      {"1 Right 2", 0, 0, 0, "1"},       // a move ends the number
      {"1 Right 2", 0, 1, 0, "2"},
      {"Down 5", 0, 0, 1, "5"},
      {"Down Down Down Down Down 0", 0, 0, 5, "0"},
      {"Up 3", 0, 0, 5, "3"},            // up from the top line wraps to the lowest string
      {"Down Down Down Down Down Down 9", 0, 0, 0, "9"},  // and down from the lowest wraps back
      {"x", 0, 0, 0, "x"},
      {"x x", 0, 0, 0, ""},
      {"5 x", 0, 0, 0, "x"},
      {"x 5", 0, 0, 0, "5"},
      {"5 Del", 0, 0, 0, ""},
      {"5 Shift+5", 0, 0, 0, "5"},       // Shift+digit is a tuplet, not a fret
      {"Ctrl+7", 0, 0, 0, ""},           // Ctrl combinations belong to the menus
  };
  for (const auto& c : cases) {
    Editor e;
    e.keys(c.keys);
    EXPECT_EQ(e.fret(c.bar, c.beat, c.string), c.fret) << c.keys;
  }
}

TEST(Typing, RightFillsTheBarWithTheSameLengthThenGrowsTheScore) {
  Editor e;
  e.addTrack(4);
  e.keys("- 5 Right 7 Right");  // eighths
  EXPECT_EQ(e.beats(0), 3);
  for (int k = 0; k < 3; ++k) EXPECT_EQ(e.beat(0, k).Length, kEighth);
  e.keys("Right Right Right Right Right Right");  // eight eighths fill the bar, then bar 1
  EXPECT_EQ(e.beats(0), 8);
  EXPECT_EQ(e.bars(), 2);
  EXPECT_EQ(e.doc.score.GetLastBar(1), 1) << "the new bar is added to every track";
  EXPECT_EQ((e.cursor()), (std::array<int, 3>{1, 0, 0}));
  EXPECT_EQ(e.beat(1, 0).Length, kEighth) << "the new bar's first beat keeps the rhythm";
  EXPECT_EQ(CheckBar(e.doc.score, 0, 0), kBarExact);
  EXPECT_EQ(e.fret(0, 0, 0), "5");
  EXPECT_EQ(e.fret(0, 1, 0), "7");
}

TEST(Typing, RightKeepsTheTimeSignatureAndTupletOfTheBarBefore) {
  Editor e;
  e.doc.score.SetTimeSignature(0, 2, 4);
  e.keys("Shift+3 Right Right");  // quarter triplets: three make the 2/4 bar
  EXPECT_EQ(e.beats(0), 3);
  EXPECT_TRUE(e.beat(0, 2).IsTuplet);
  e.keys("Right");
  EXPECT_EQ(e.bars(), 2);
  EXPECT_EQ(e.doc.score.BarInfos[1].TimeSigNumerator, 2);
  EXPECT_TRUE(e.beat(1, 0).IsTuplet);
}

TEST(Typing, RightRefusesToLeaveAnOverFullBar) {
  Editor e;
  e.keys("7 Right + + +");  // a quarter, then a whole note: 80 of 64
  ASSERT_EQ(CheckBar(e.doc.score, 0, 0), kBarTooLong);
  const auto before = e.cursor();
  e.prompter.clear();
  e.keys("Right");
  EXPECT_EQ(e.cursor(), before);
  ASSERT_EQ(e.prompter.asked().size(), 1u);
  EXPECT_EQ(e.prompter.asked()[0].text, "The bar is too long.");
  e.keys("Left Up");  // the other keys still work
  EXPECT_EQ((e.cursor()), (std::array<int, 3>{0, 0, 5}));
}

TEST(Typing, LeftStopsAtTheStartAndCrossesBarLines) {
  Editor e;
  e.keys("Left");
  EXPECT_EQ((e.cursor()), (std::array<int, 3>{0, 0, 0}));
  e.keys("Right Right Right Right Left");
  EXPECT_EQ((e.cursor()), (std::array<int, 3>{0, 3, 0}));
  e.keys("Right Right Left Left");  // into the new bar, grow a beat, back over the bar line
  EXPECT_EQ((e.cursor()), (std::array<int, 3>{0, 3, 0}));
}

TEST(Typing, HomeEndAndPageKeysMoveWithinAndBetweenBars) {
  Editor e;
  e.doc.score.SetBarCount(3);
  for (int b = 0; b < 4; ++b) e.doc.score.SetBeatCount(0, b, 3);
  struct Step {
    const char* keys;
    int bar, beat;
  };
  const Step steps[] = {{"End", 0, 3},       {"Home", 0, 0},      {"PgDn PgDn", 2, 0},
                        {"End PgUp", 1, 0},  {"Ctrl+End End", 3, 3},  {"PgDn", 3, 3},  // stays put
                        {"Ctrl+Home", 0, 0}, {"PgUp", 0, 0}};
  for (const auto& s : steps) {
    e.keys(s.keys);
    EXPECT_EQ(e.doc.CursorBar, s.bar) << s.keys;
    EXPECT_EQ(e.doc.CursorBeat, s.beat) << s.keys;
  }
  e.keys("7 Backspace");
  EXPECT_EQ(e.fret(0, 0, 0), "");
}

// Every key the Shortcut Keys dialog names does something when pressed where it applies.
TEST(Typing, EveryListedShortcutDoesSomething) {
  for (const ShortcutEntry& entry : ShortcutTable()) {
    Editor e;
    e.ctx.setUndoLevels(4);
    int hooks = 0;
    e.ctx.hooks.openDialog = [&](EditDialog) { ++hooks; };
    e.ctx.hooks.playFromStart = [&] { ++hooks; };
    e.ctx.hooks.playFromHere = [&] { ++hooks; };
    e.doc.score.SetBarCount(2);
    for (int b = 0; b < 3; ++b) {
      e.doc.score.SetBeatCount(0, b, 3);
      for (int k = 0; k < 4; ++k) {
        e.doc.score.beatMut(0, b, k).Length = kQuarter;
        for (int str : {1, 4}) e.doc.score.noteMut(0, b, k, str).Fret = "5";
      }
    }
    e.doc.CursorBar = 1;
    e.keys("Right Down 7");
    const auto k = ParseKeyPress(entry.keys);
    ASSERT_TRUE(k.has_value()) << entry.keys;
    const Score before = e.doc.score;
    const auto cursor = e.cursor();
    picDocument_KeyDown(e.ctx, k->key, k->mods);
    const bool moved = e.cursor() != cursor;
    EXPECT_TRUE(!(e.doc.score == before) || moved || hooks > 0 || e.ctx.NotationEntry)
        << entry.text << " (" << entry.keys << ")";
  }
}

TEST(Typing, MovingToAnotherTrackKeepsTheBarAndClampsTheString) {
  Editor e;
  e.addTrack(4);
  e.doc.score.SetBarCount(2);
  int changes = 0;
  e.ctx.hooks.trackChanged = [&] { ++changes; };
  e.keys("PgDn PgDn Up");  // bar 2, lowest of six strings
  SetCursorTrack(e.ctx, 1);
  EXPECT_EQ(e.doc.CursorTrack, 1);
  EXPECT_EQ((e.cursor()), (std::array<int, 3>{2, 0, 3}));
  EXPECT_EQ(changes, 1);
  e.keys("3");
  EXPECT_EQ(e.fret(2, 0, 3, 1), "3");
  EXPECT_EQ(e.fret(2, 0, 3, 0), "");
  SetCursorTrack(e.ctx, 5);  // no such track: said, and nothing moves
  EXPECT_EQ(e.doc.CursorTrack, 1);
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(e.prompter.asked().size(), 1u);
}

struct RhythmCase {
  int length;
  bool dotted;
  const char* keys;
  int wantLength;
  bool wantDotted, wantTuplet;
  int wantKind;
};

TEST(Rhythm, LengthDotAndTupletKeys) {
  const RhythmCase cases[] = {
      {kQuarter, false, "+", kHalf, false, false, 0},
      {kWhole, false, "+", kWhole, false, false, 0},                // no longer than whole
      {kSixtyFourth, false, "-", kSixtyFourth, false, false, 0},    // no shorter than a 64th
      {kQuarter, false, "- -", kSixteenth, false, false, 0},
      {kQuarter, true, "+", kHalf, true, false, 0},                  // the dot stays
      {kQuarter, false, ".", kQuarter, true, false, 0},
      {kQuarter, true, ".", kQuarter, false, false, 0},
      {9, false, "+", 9, false, false, 0},                           // a length from a bad file
      {kEighth, false, "Shift+3", kEighth, false, true, kTriplet},
      {kEighth, false, "Shift+3 Shift+3", kEighth, false, false, kTriplet},
      {kEighth, false, "Shift+5", kEighth, false, true, k5Tuplet},
      {kEighth, false, "Shift+6", kEighth, false, true, k6Tuplet},
      {kEighth, false, "Shift+7", kEighth, false, true, k7Tuplet},
      {kEighth, false, "Shift+9", kEighth, false, true, k9Tuplet},
      {kEighth, false, "Shift+3 Shift+5", kEighth, false, true, k5Tuplet},
  };
  for (const auto& c : cases) {
    Editor e;
    Beat& b = e.doc.score.beatMut(0, 0, 0);
    b.Length = c.length;
    b.Dotted = c.dotted;
    e.keys(c.keys);
    const Beat& r = e.beat(0, 0);
    EXPECT_EQ(r.Length, c.wantLength) << c.keys;
    EXPECT_EQ(r.Dotted, c.wantDotted) << c.keys;
    EXPECT_EQ(r.IsTuplet, c.wantTuplet) << c.keys;
    if (c.wantTuplet) { EXPECT_EQ(r.Tuplet, c.wantKind) << c.keys; }
  }
}

TEST(Rhythm, EffectKeysToggleAndOnlyActOnNotes) {
  struct Case {
    const char* keys;
    bool (*check)(const Beat&);
  };
  const Case cases[] = {
      {"5 g", [](const Beat& b) { return b.Notes[0].GhostNote; }},
      {"g", [](const Beat& b) { return !b.Notes[0].GhostNote; }},  // nothing on an empty slot
      {"5 h", [](const Beat& b) { return b.Notes[0].Technique == kHammerOnPullOff; }},
      {"5 s", [](const Beat& b) { return b.Notes[0].Technique == kLegatoSlide; }},
      {"5 l", [](const Beat& b) { return b.Notes[0].Tied; }},
      {"5 v", [](const Beat& b) { return b.ChordTechnique == kVibrato; }},
      {"5 t", [](const Beat& b) { return b.ChordTechnique == kTapping; }},
      {"v", [](const Beat& b) { return b.ChordTechnique == kNoChordTechnique; }},  // a rest
      {"5 u", [](const Beat& b) { return b.Stroke == kUpStroke; }},
      {"5 d d", [](const Beat& b) { return b.Stroke == kNoStroke; }},
      {"5 Shift+r", [](const Beat& b) { return b.Notes[0].LetRing; }},
      {"5 Shift++", [](const Beat& b) { return b.Notes[0].Fret == "6"; }},
      {"0 Shift+-", [](const Beat& b) { return b.Notes[0].Fret == "0"; }},
      {"1 2 Shift+-", [](const Beat& b) { return b.Notes[0].Fret == "11"; }},
  };
  for (const auto& c : cases) {
    Editor e;
    e.keys(c.keys);
    EXPECT_TRUE(c.check(e.beat(0, 0))) << c.keys;
  }
}

TEST(Beats, InsertDeleteMoveAndRepeat) {
  Editor e;
  e.keys("1 Right 2 Right 3 Left");  // cursor on the "2"
  e.keys("Shift+Ins");
  EXPECT_EQ(e.beats(0), 4);
  EXPECT_TRUE(e.beat(0, 1).isRest());
  EXPECT_EQ(e.fret(0, 2, 0), "2");
  e.keys("Shift+Del");
  EXPECT_EQ(e.beats(0), 3);
  EXPECT_EQ(e.fret(0, 1, 0), "2");
  e.keys("Right Shift+Del");  // the last beat: the cursor goes to the new last beat
  EXPECT_EQ(e.beats(0), 2);
  EXPECT_EQ((e.cursor()), (std::array<int, 3>{0, 1, 0}));
  e.keys("Shift+n");  // move the "2" left
  EXPECT_EQ(e.fret(0, 0, 0), "2");
  EXPECT_EQ(e.fret(0, 1, 0), "1");
  EXPECT_EQ(e.doc.CursorBeat, 0);
  e.keys("Right r");  // repeat the previous chord
  EXPECT_EQ(e.fret(0, 1, 0), "2");
}

TEST(Beats, DeletingTheOnlyBeatRemovesTheBarButNeverTheLast) {
  Editor e;
  e.keys("7 Shift+Del");
  EXPECT_EQ(e.bars(), 1);
  EXPECT_EQ(e.beats(0), 1);
  EXPECT_TRUE(e.beat(0, 0).isRest());

  Editor f;
  f.doc.score.SetBarCount(2);
  f.doc.score.noteMut(0, 2, 0, 0).Fret = "9";
  f.keys("Right Right Right Right 5 Shift+Del");  // bar 1 had one beat
  EXPECT_EQ(f.bars(), 2);
  EXPECT_EQ(f.fret(1, 0, 0), "9");
  EXPECT_EQ((f.cursor()), (std::array<int, 3>{0, 3, 0}));
}

TEST(Beats, ShiftUpAndDownKeepThePitch) {
  Editor e;
  e.keys("Down 5 Shift+Up");  // B string fret 5 is E string fret 0
  EXPECT_EQ(e.fret(0, 0, 1), "");
  EXPECT_EQ(e.fret(0, 0, 0), "0");
  EXPECT_EQ(e.doc.CursorString, 0);
  e.keys("Shift+Up");  // nowhere higher to go
  EXPECT_EQ(e.fret(0, 0, 0), "0");
  e.keys("Shift+Down Shift+Down");  // 0 on E is 5 on B, is 9 on G
  EXPECT_EQ(e.fret(0, 0, 2), "9");
  e.keys("Up 0 Down Shift+Up");  // the B string is taken: nothing moves
  EXPECT_EQ(e.fret(0, 0, 2), "9");
}

TEST(Password, ARefusedPasswordStopsEveryKey) {
  Editor e;
  e.doc.score.PasswordProtected = true;
  e.doc.score.Password = "riff";
  const Score start = e.doc.score;
  e.prompter.pushText(std::string("wrong"));
  e.prompter.pushText(std::nullopt);  // cancelled
  e.keys("7 Right");
  EXPECT_TRUE(e.doc.score == start);
  EXPECT_EQ((e.cursor()), (std::array<int, 3>{0, 0, 0}));
  EXPECT_FALSE(e.doc.ScoreChanged);
  e.prompter.pushText(std::string("riff"));
  e.keys("7 Right 8");
  EXPECT_EQ(e.fret(0, 0, 0), "7");
  EXPECT_EQ(e.fret(0, 1, 0), "8");
  EXPECT_EQ(e.prompter.pending(), 0u);
}

TEST(PlayAsTyped, SoundsTheBeatAfterKeysThatWriteNotes) {
  struct Case {
    const char* keys;
    bool playAsTyped;
    size_t sounds;
  };
  const Case cases[] = {
      {"7", true, 1}, {"1 2", true, 2}, {"x", true, 1}, {"7 Right", true, 1},
      {"7 Up Down", true, 1}, {"7", false, 0}, {"Right", true, 0}, {"x x", true, 1},
  };
  for (const auto& c : cases) {
    Editor e;
    e.ctx.settings.PlayAsTyped = c.playAsTyped;
    e.keys(c.keys);
    EXPECT_EQ(e.played.size(), c.sounds) << c.keys;
  }
}

TEST(Flags, ChangedAndRelayoutFollowWhatAKeyDid) {
  struct Case {
    const char* keys;
    bool changed, relayout;
  };
  const Case cases[] = {
      {"Left Up Down", false, false},
      {"7", true, false},           // a fret does not move any bar
      {"Right Right 7", true, true},  // two beats grown
      {"+", true, false},
      {"Shift+Ins", true, true},
  };
  for (const auto& c : cases) {
    Editor e;
    e.doc.FullRelayout = false;
    e.keys(c.keys);
    EXPECT_EQ(e.doc.ScoreChanged, c.changed) << c.keys;
    EXPECT_EQ(e.doc.FullRelayout, c.relayout) << c.keys;
  }
}

TEST(Playing, AnyKeyOnlyStopsPlayback) {
  Editor e;
  bool playing = true;
  int stops = 0;
  e.ctx.hooks.isPlaying = [&] { return playing; };
  e.ctx.hooks.stopPlayback = [&] { ++stops; playing = false; };
  e.keys("7");
  EXPECT_EQ(stops, 1);
  EXPECT_EQ(e.fret(0, 0, 0), "");
  e.keys("7");
  EXPECT_EQ(e.fret(0, 0, 0), "7");
}

TEST(DrumTrack, LettersWriteSymbolsDigitsDoNothing) {
  Editor e;
  e.doc.score.Tracks[0].DrumTrack = true;
  e.doc.score.Tracks[0].DrumMaps[1].Drum[0] = 4;
  e.keys("7 x");
  EXPECT_EQ(e.fret(0, 0, 0), "X") << "a line never walked to: the letter lands on the tab line";
  e.keys("Down Down Down Down Down Down Down Down Down Down x Shift+Up");
  EXPECT_EQ(e.doc.CursorLine, 4);
  EXPECT_EQ(e.fret(0, 0, 1), "X");
  EXPECT_EQ(e.doc.CursorString, 1) << "no string shift on a drum track";
}

TEST(Mouse, AClickPlacesTheCursorOnTheDrawnBeatAndString) {
  Editor e;
  e.doc.score.SetBarCount(11);
  for (int b = 0; b < 12; ++b) e.doc.score.SetBeatCount(0, b, 3);
  LayoutTrack(e.doc, 0, LayoutSettings{}, DrawTexts{});
  const auto& lay = e.doc.Layout[0];
  const Track& tr = e.doc.score.Tracks[0];
  struct Case {
    int bar, beat, string;
    double dx, dy;  // off the exact spot
  };
  const Case cases[] = {{0, 0, 0, 0, 0}, {0, 3, 5, 2, 3}, {5, 2, 2, -3, -4}, {11, 1, 4, 1, 0},
                        {7, 3, 1, 10, 0}};
  for (const auto& c : cases) {
    const BarLayout& l = lay[static_cast<size_t>(c.bar)];
    const double x = l.DrawX + RowLayout::BeatOffset(l.ShowsSignature, l.BeatSpacing, c.beat) + 3 + c.dx;
    const double y = l.DrawY + TabStaffTop(tr) + 10 * c.string + c.dy;
    picDocument_MouseDown(e.ctx, MouseButton::Left, 0, x, y);
    EXPECT_EQ((e.cursor()), (std::array<int, 3>{c.bar, c.beat, c.string})) << "bar " << c.bar;
  }
  // Beyond the last beat's x, still inside the bar: the last beat.
  const BarLayout& l8 = lay[8];
  picDocument_MouseDown(e.ctx, MouseButton::Left, 0, l8.DrawX + l8.DrawWidth - 1, l8.DrawY + TabStaffTop(tr));
  EXPECT_EQ((e.cursor()), (std::array<int, 3>{8, 3, 0}));
  // A click between rows or off the page leaves the cursor.
  const auto before = e.cursor();
  picDocument_MouseDown(e.ctx, MouseButton::Left, 0, 5, 5);
  EXPECT_EQ(e.cursor(), before);
  EXPECT_FALSE(e.doc.ScoreChanged);
}

TEST(Mouse, ScrollBringsTheCursorRowIntoSight) {
  Editor e;
  e.doc.score.SetBarCount(199);
  LayoutTrack(e.doc, 0, LayoutSettings{}, DrawTexts{});
  e.doc.CursorBar = 150;
  const int v = ScrollToShowCursor(e.doc, 0, 700);
  EXPECT_GT(v, 0);
  const auto& l = e.doc.Layout[0][150];
  const double top = l.DrawY - 8.0 * v;  // where the row stands after scrolling
  EXPECT_GE(top + RowHeight(e.doc.score.Tracks[0]), 0);
  EXPECT_LE(top + RowHeight(e.doc.score.Tracks[0]), 700);
  e.doc.CursorBar = 0;
  EXPECT_EQ(ScrollToShowCursor(e.doc, 0, 700), 0);
}

}  // namespace
}  // namespace plectaro::test
