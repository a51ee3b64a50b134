// The Bar menu and the commands a menu reaches without a key: what they leave in the records,
// and that a refused or failed command leaves the document exactly as it was.
#include <gtest/gtest.h>

#include "edit_fixture.h"
#include "editing/bar_commands.h"
#include "editing/note_commands.h"
#include "editing/rhythm_commands.h"
#include "score/bar_timing.h"

namespace plectaro::test {
namespace {

// A score of `bars` bars whose bar b holds fret b on string 0 of every track, so that moved
// bars can be told apart.
void numberBars(Editor& e, int bars) {
  e.doc.score.SetBarCount(bars - 1);
  for (int t = 0; t <= e.doc.score.LastTrack(); ++t)
    for (int b = 0; b < bars; ++b) e.doc.score.noteMut(t, b, 0, 0).Fret = std::to_string(b);
}

std::string barFrets(const Editor& e, int track = 0) {
  std::string out;
  for (int b = 0; b <= e.doc.score.GetLastBar(track); ++b) {
    const std::string& f = e.fret(b, 0, 0, track);
    out += (f.empty() ? "_" : f) + " ";
  }
  return out;
}

TEST(BarCommands, InsertAndRemoveOnChosenTracks) {
  struct Case {
    const char* what;
    bool insert;
    std::vector<int> tracks;
    const char* track0;
    const char* track1;
  };
  const Case cases[] = {
      {"insert in all", true, {0, 1}, "0 _ 1 2 ", "0 _ 1 2 "},
      {"insert in one", true, {1}, "0 1 2 _ ", "0 _ 1 2 "},
      {"remove from all", false, {0, 1}, "0 2 ", "0 2 "},
      {"remove from one", false, {0}, "0 2 _ ", "0 1 2 "},
  };
  for (const auto& c : cases) {
    Editor e;
    e.addTrack(6);
    numberBars(e, 3);
    e.doc.score.SetTimeSignature(1, 3, 4);
    e.doc.CursorBar = 1;
    if (c.insert) InsertBar(e.ctx, c.tracks);
    else RemoveBar(e.ctx, c.tracks);
    EXPECT_EQ(barFrets(e, 0), c.track0) << c.what;
    EXPECT_EQ(barFrets(e, 1), c.track1) << c.what;
    EXPECT_EQ(e.doc.score.BarInfos.size(), e.doc.score.Tracks[0].Bars.size()) << c.what;
    EXPECT_TRUE(e.doc.ScoreChanged) << c.what;
  }
}

TEST(BarCommands, InsertInEveryTrackMovesTheSignaturesAlong) {
  Editor e;
  numberBars(e, 2);
  e.doc.score.SetTimeSignature(1, 3, 4);
  e.doc.score.barInfoMut(1).RepeatClose = 2;
  e.doc.CursorBar = 1;
  InsertBar(e.ctx, {0});
  ASSERT_EQ(e.bars(), 3);
  EXPECT_EQ(e.doc.score.BarInfos[1].TimeSigNumerator, 3) << "the new bar takes the signature";
  EXPECT_EQ(e.doc.score.BarInfos[1].RepeatClose, 0) << "but not the repeat mark";
  EXPECT_EQ(e.doc.score.BarInfos[2].RepeatClose, 2);
}

TEST(BarCommands, TheOnlyBarIsClearedNotRemoved) {
  Editor e;
  e.keys("5 Right 7");
  RemoveBar(e.ctx, {0});
  EXPECT_EQ(e.bars(), 1);
  EXPECT_EQ(e.beats(0), 1);
  EXPECT_TRUE(e.beat(0, 0).isRest());
  EXPECT_EQ((e.cursor()), (std::array<int, 3>{0, 0, 0}));
}

TEST(BarCommands, ClearAndCut) {
  Editor e;
  numberBars(e, 3);
  e.doc.score.SetBeatCount(0, 2, 3);
  e.doc.CursorBar = 2;
  e.doc.CursorBeat = 3;
  mnuBarClear_Click(e.ctx);
  EXPECT_EQ(e.beats(2), 1);
  EXPECT_TRUE(e.beat(2, 0).isRest());
  EXPECT_EQ(e.doc.CursorBeat, 0);

  ASSERT_TRUE(CutBars(e.ctx, {0}, {0, 1, 2}));  // cut of every bar leaves them in place
  EXPECT_EQ(e.bars(), 3);
  for (int b = 0; b < 3; ++b) {
    EXPECT_EQ(e.beats(b), 1);
    EXPECT_TRUE(e.beat(b, 0).isRest());
  }
  ASSERT_EQ(e.ctx.clipboard.bars.size(), 3u);
  EXPECT_EQ(e.ctx.clipboard.bars[1]->Beats[0].Notes[0].Fret, "1");
}

TEST(BarCommands, PasteInsertsAndKeepsTracksAligned) {
  struct Case {
    bool after;
    int pastings;
    const char* track0;
    const char* track1;
  };
  const Case cases[] = {
      {true, 1, "0 1 1 2 2 3 ", "0 1 _ _ 2 3 "},
      {false, 1, "0 1 2 1 2 3 ", "0 _ _ 1 2 3 "},
      {true, 2, "0 1 1 2 1 2 2 3 ", "0 1 _ _ _ _ 2 3 "},
  };
  for (const auto& c : cases) {
    Editor e;
    e.addTrack(6);
    numberBars(e, 4);
    e.doc.CursorBar = 1;
    ASSERT_TRUE(CopyBars(e.ctx, {1, 2}));
    ASSERT_TRUE(PasteBars(e.ctx, {0}, c.pastings, c.after));
    EXPECT_EQ(barFrets(e, 0), c.track0);
    EXPECT_EQ(barFrets(e, 1), c.track1);
    EXPECT_EQ(e.doc.score.BarInfos.size(), e.doc.score.Tracks[1].Bars.size());
    EXPECT_EQ(e.doc.CursorBar, c.after ? 2 : 1) << "the cursor goes to the first pasted bar";
  }
}

TEST(BarCommands, PasteOntoFewerStringsDropsTheLowStringsOnly) {
  Editor e;
  e.addTrack(4);  // a bass
  e.doc.score.noteMut(0, 0, 0, 0).Fret = "3";
  e.doc.score.noteMut(0, 0, 0, 3).Fret = "5";
  e.doc.score.noteMut(0, 0, 0, 5).Fret = "7";
  ASSERT_TRUE(CopyBars(e.ctx, {0}));
  ASSERT_TRUE(PasteBars(e.ctx, {0, 1}, 1, true));
  EXPECT_EQ(e.fret(1, 0, 5, 0), "7") << "the six-string track keeps all";
  EXPECT_EQ(e.fret(1, 0, 0, 1), "3");
  EXPECT_EQ(e.fret(1, 0, 3, 1), "5");
  EXPECT_EQ(e.fret(1, 0, 5, 1), "") << "no note beyond the bass's strings";
  EXPECT_TRUE(e.ctx.clipboard.bars[0].sharesWith(e.doc.score.Tracks[0].Bars[1]))
      << "a bar that fits is pasted without a copy";
}

TEST(BarCommands, RefusalsSayWhyAndChangeNothing) {
  struct Case {
    const char* what;
    bool (*run)(EditContext&);
    const char* message;
  };
  const Case cases[] = {
      {"paste with nothing copied", [](EditContext& c) { return PasteBars(c, {0}, 1, true); },
       "Please copy something first."},
      {"paste onto a drum track",
       [](EditContext& c) { return CopyBars(c, {0}) && PasteBars(c, {1}, 1, true); },
       "The bars cannot be pasted onto a track of another kind."},
      {"no pastings", [](EditContext& c) { return CopyBars(c, {0}) && PasteBars(c, {0}, 0, true); },
       "Please enter a valid number of pastings."},
      {"copy nothing", [](EditContext& c) { return CopyBars(c, {}); },
       "Please select at least one bar to copy."},
      {"bad time signature", [](EditContext& c) { return ApplyTimeSignature(c, 4, 3, ApplyRange::AllBars); },
       "Please enter a valid time signature."},
      {"bar out of range", [](EditContext& c) { return CutBars(c, {0}, {0, 9}); }, nullptr},
      {"track out of range", [](EditContext& c) { return InsertBar(c, {0, 7}); }, nullptr},
  };
  for (const auto& c : cases) {
    Editor e;
    e.addTrack(6, true);
    numberBars(e, 2);
    const Score before = e.doc.score;
    EXPECT_FALSE(c.run(e.ctx)) << c.what;
    EXPECT_TRUE(e.doc.score == before) << c.what;
    EXPECT_FALSE(e.doc.ScoreChanged) << c.what;
    ASSERT_FALSE(e.prompter.asked().empty()) << c.what;
    if (c.message) { EXPECT_EQ(e.prompter.asked().back().text, c.message) << c.what; }
  }
}

TEST(BarCommands, SignaturesOverTheirRange) {
  struct Case {
    ApplyRange range;
    const char* nums;  // numerator of each of five bars, cursor on bar 2
  };
  const Case cases[] = {{ApplyRange::ThisBar, "44344"},
                        {ApplyRange::FromThisBar, "44333"},
                        {ApplyRange::AllBars, "33333"}};
  for (const auto& c : cases) {
    Editor e;
    e.addTrack(6);
    e.doc.score.SetBarCount(4);
    e.doc.CursorBar = 2;
    ASSERT_TRUE(ApplyTimeSignature(e.ctx, 3, 8, c.range));
    ASSERT_TRUE(ApplyKeySignature(e.ctx, KeyCodeOfListIndex(9), false, c.range));  // D major
    std::string nums;
    for (int b = 0; b < 5; ++b) {
      nums += std::to_string(e.doc.score.BarInfos[static_cast<size_t>(b)].TimeSigNumerator);
      const bool inRange = nums.back() == '3';
      EXPECT_EQ(e.doc.score.bar(0, b).KeySignature, inRange ? 2 : 0);
      EXPECT_EQ(e.doc.score.bar(1, b).KeySignature, 0) << "keys belong to the cursor's track";
      if (inRange) { EXPECT_EQ(e.doc.score.BarInfos[static_cast<size_t>(b)].TimeSigDenominator, 8); }
    }
    EXPECT_EQ(nums, c.nums);
  }
}

TEST(BarCommands, RepeatsAndCoda) {
  Editor e;
  e.doc.score.SetBarCount(3);
  e.doc.CursorBar = 1;
  mnuBarRepeatOpen_Click(e.ctx);
  EXPECT_TRUE(e.doc.score.BarInfos[1].RepeatOpen);
  mnuBarRepeatOpen_Click(e.ctx);
  EXPECT_FALSE(e.doc.score.BarInfos[1].RepeatOpen);

  e.prompter.pushText(std::string(" 3 "));
  mnuBarRepeatClose_Click(e.ctx);
  EXPECT_EQ(e.doc.score.BarInfos[1].RepeatClose, 3);
  mnuBarRepeatClose_Click(e.ctx);  // set: cleared without asking
  EXPECT_EQ(e.doc.score.BarInfos[1].RepeatClose, 0);
  EXPECT_EQ(e.prompter.pending(), 0u);
  for (const char* bad : {"two", "0", "-1", "3x"}) {
    e.prompter.pushText(std::string(bad));
    mnuBarRepeatClose_Click(e.ctx);
    EXPECT_EQ(e.doc.score.BarInfos[1].RepeatClose, 0) << bad;
    EXPECT_EQ(e.prompter.asked().back().text, "Please enter a valid number.") << bad;
  }

  ASSERT_TRUE(SetCoda(e.ctx, 0, 2, 1, 3));
  ASSERT_TRUE(SetCoda(e.ctx, 1, 3, -1, 2));  // a new coda replaces the old marks
  const auto& bi = e.doc.score.BarInfos;
  EXPECT_TRUE(bi[1].Sign && bi[3].DSAlCoda && bi[2].Coda);
  EXPECT_FALSE(bi[0].Sign || bi[2].DSAlCoda || bi[1].ToCoda || bi[3].Coda);
}

TEST(Guard, AFailedCommandRestoresTheDocumentAndSaysWhy) {
  struct Case {
    const char* what;
    void (*prepare)(Document&);
    void (*run)(EditContext&);
  };
  const Case cases[] = {
      {"unknown tuplet", [](Document&) {}, [](EditContext& c) { mnuChordXTuplets_Click(c, 12); }},
      {"unknown volume", [](Document&) {}, [](EditContext& c) { mnuNoteVolumes_Click(c, -1); }},
      {"zero denominator at the bar's end",
       [](Document& d) { d.score.SetTimeSignature(0, 4, 0); },
       [](EditContext& c) { picDocument_KeyDown(c, Key::Right, kNoModifier); }},
      {"tuplet number from a bad file at the bar's end",
       [](Document& d) {
         d.score.beatMut(0, 0, 0).IsTuplet = true;
         d.score.beatMut(0, 0, 0).Tuplet = 40;
       },
       [](EditContext& c) { picDocument_KeyDown(c, Key::Right, kNoModifier); }},
  };
  for (const auto& c : cases) {
    Editor e;
    c.prepare(e.doc);
    const Score before = e.doc.score;
    c.run(e.ctx);
    EXPECT_TRUE(e.doc.score == before) << c.what;
    EXPECT_FALSE(e.doc.ScoreChanged) << c.what;
    EXPECT_EQ((e.cursor()), (std::array<int, 3>{0, 0, 0})) << c.what;
    ASSERT_EQ(e.prompter.asked().size(), 1u) << c.what;
  }
}

TEST(NoteCommands, VolumesFingersAndWholeChord) {
  Editor e;
  e.keys("5 Down 7");
  mnuNoteVolumes_Click(e.ctx, 0);  // FFF on the cursor's note
  EXPECT_EQ(e.beat(0, 0).Notes[1].Volume, kVolFFF);
  EXPECT_EQ(e.beat(0, 0).Notes[0].Volume, kVolMF);
  mnuNoteVolumesWholeChord_Click(e.ctx);
  mnuNoteVolumes_Click(e.ctx, 7);
  EXPECT_EQ(e.beat(0, 0).Notes[0].Volume, kVolPPP);
  EXPECT_EQ(e.beat(0, 0).Notes[1].Volume, kVolPPP);
  EXPECT_EQ(e.beat(0, 0).Notes[2].Volume, kVolMF) << "an empty string gets no volume";
  mnuNoteLHFS_Click(e.ctx, 2);
  EXPECT_EQ(e.beat(0, 0).Notes[1].LeftFinger, 3);
  mnuNoteLHFS_Click(e.ctx, 2);
  EXPECT_EQ(e.beat(0, 0).Notes[1].LeftFinger, 0);
  mnuNoteRHFS_Click(e.ctx, 4);
  EXPECT_EQ(e.beat(0, 0).Notes[1].RightFinger, 5);
  EXPECT_EQ(e.played.size(), 4u) << "two typed notes and two volume changes were sounded";
}

TEST(NoteCommands, EveryTupletKindOfTheMenu) {
  for (int i = 0; i < kTupletKinds; ++i) {
    Editor e;
    e.doc.score.beatMut(0, 0, 0).Length = kEighth;
    mnuChordXTuplets_Click(e.ctx, i);
    const Beat& b = e.beat(0, 0);
    ASSERT_TRUE(b.IsTuplet);
    EXPECT_EQ(b.Tuplet, i);
    EXPECT_DOUBLE_EQ(GetNumOf64ths(b), 8.0 * 2 / kTupletNotes[static_cast<size_t>(i)]);
    mnuChordXTuplets_Click(e.ctx, (i + 1) % kTupletKinds);  // another kind replaces it
    EXPECT_EQ(e.beat(0, 0).Tuplet, (i + 1) % kTupletKinds);
  }
}

TEST(NoteCommands, DoubleLengthsOfTheWholeTrackAfterAsking) {
  Editor e;
  e.doc.score.SetBarCount(2);
  e.doc.score.beatMut(0, 1, 0).Length = kWhole;
  e.prompter.push(false);
  mnuIncreaseLengths_Click(e.ctx);
  EXPECT_EQ(e.beat(0, 0).Length, kQuarter);
  e.prompter.push(true);
  mnuIncreaseLengths_Click(e.ctx);
  EXPECT_EQ(e.beat(0, 0).Length, kHalf);
  EXPECT_EQ(e.beat(1, 0).Length, kWhole);
}

}  // namespace
}  // namespace plectaro::test
