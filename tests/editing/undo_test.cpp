// Undo and redo over every command of the editor: each one, taken back, leaves the document
// exactly as it was, and taken again gives its result once more.
#include <gtest/gtest.h>

#include <functional>

#include "edit_fixture.h"
#include "editing/bar_commands.h"
#include "editing/note_commands.h"
#include "editing/rhythm_commands.h"

namespace plectaro::test {
namespace {

// Two guitar tracks of four bars, notes on every beat, so that every command finds something
// to work on at the cursor (bar 1, beat 1, string 1).
void fill(Editor& e) {
  e.addTrack(6);
  Score& s = e.doc.score;
  s.SetBarCount(3);
  for (int t = 0; t < 2; ++t)
    for (int b = 0; b < 4; ++b) {
      s.SetBeatCount(t, b, 3);
      for (int k = 0; k < 4; ++k) {
        s.beatMut(t, b, k).Length = kQuarter;
        s.noteMut(t, b, k, 1).Fret = std::to_string(b + k + 3);
        s.noteMut(t, b, k, 3).Fret = "2";
      }
    }
  e.doc.CursorBar = 1;
  e.doc.CursorBeat = 1;
  e.doc.CursorString = 1;
}

struct Command {
  const char* name;  // also the undo step's name
  std::function<void(Editor&)> run;
  std::function<void(Editor&)> prepare = nullptr;  // puts the cursor where the command acts
};

const std::vector<Command>& everyCommand() {
  static const std::vector<Command> commands = {
      {"Typing", [](Editor& e) { TypeFretDigit(e.ctx, 7); }},
      {"Clear Note Value", [](Editor& e) { ClearNoteValue(e.ctx); }},
      {"Dead Note", [](Editor& e) { ToggleDeadNote(e.ctx); }},
      {"Add 1 to Note", [](Editor& e) { mnuNoteUp_Click(e.ctx); }},
      {"Subtract 1 from Note", [](Editor& e) { mnuNoteDown_Click(e.ctx); }},
      {"Shift Note Up", [](Editor& e) { mnuNoteShiftUp_Click(e.ctx); }},
      {"Shift Note Down", [](Editor& e) { mnuNoteShiftDown_Click(e.ctx); }},
      {"Insert Beat", [](Editor& e) { mnuNoteInsertBeat_Click(e.ctx); }},
      {"Delete Beat", [](Editor& e) { mnuNoteDeleteBeat_Click(e.ctx); }},
      {"Volume", [](Editor& e) { mnuNoteVolumes_Click(e.ctx, 2); }},
      {"Tie Note", [](Editor& e) { mnuNoteLinkNote_Click(e.ctx); }},
      {"Fingering", [](Editor& e) { mnuNoteLHFS_Click(e.ctx, 1); }},
      {"Fingering", [](Editor& e) { mnuNoteRHFS_Click(e.ctx, 2); }},
      {"Ghost Note", [](Editor& e) { mnuNoteEffectsGhostNote_Click(e.ctx); }},
      {"Let Ring", [](Editor& e) { mnuNoteEffectsLetRing_Click(e.ctx); }},
      {"Accentuate", [](Editor& e) { mnuNoteEffectsAccentuate_Click(e.ctx); }},
      {"Harmonic", [](Editor& e) { mnuNoteEffectsHarmonics_Click(e.ctx, 0); }},
      {"Technique", [](Editor& e) { mnuNoteEffectsTechniques_Click(e.ctx, 9); }},
      {"Technique", [](Editor& e) { mnuChordTechniques_Click(e.ctx, 0); }},
      {"Upstroke", [](Editor& e) { mnuChordUpStroke_Click(e.ctx); }},
      {"Downstroke", [](Editor& e) { mnuChordDownStroke_Click(e.ctx); }},
      {"Repeat Previous Chord", [](Editor& e) { RepeatPreviousChord(e.ctx); }},
      {"Move Chord Right", [](Editor& e) { MoveChordRight(e.ctx); }},
      {"Move Chord Left", [](Editor& e) { MoveChordLeft(e.ctx); }},
      {"Shift Chord Right", [](Editor& e) { ShiftChordRight(e.ctx); }},
      {"Beat Length", [](Editor& e) { mnuChordLengthIncrease_Click(e.ctx); }},
      {"Beat Length", [](Editor& e) { mnuChordLengthDecrease_Click(e.ctx); }},
      {"Dotted Note", [](Editor& e) { mnuChordDotted_Click(e.ctx); }},
      {"Tuplet", [](Editor& e) { mnuChordXTuplets_Click(e.ctx, 0); }},
      {"Increase Lengths", [](Editor& e) { e.prompter.push(true); mnuIncreaseLengths_Click(e.ctx); }},
      {"Decrease Lengths", [](Editor& e) { e.prompter.push(true); MnuDecreaseLengths_Click(e.ctx); }},
      {"Clear Bar", [](Editor& e) { mnuBarClear_Click(e.ctx); }},
      {"Insert Bar", [](Editor& e) { InsertBar(e.ctx, {0, 1}); }},
      {"Insert Bar", [](Editor& e) { InsertBar(e.ctx, {1}); }},
      {"Remove Bar", [](Editor& e) { RemoveBar(e.ctx, {0}); }},
      {"Remove Bar", [](Editor& e) { RemoveBar(e.ctx, {0, 1}); }},
      {"Cut", [](Editor& e) { CutBars(e.ctx, {0, 1}, {1, 2}); }},
      {"Paste", [](Editor& e) { CopyBars(e.ctx, {0, 1}); PasteBars(e.ctx, {0, 1}, 2, true); }},
      {"Time Signature", [](Editor& e) { ApplyTimeSignature(e.ctx, 7, 8, ApplyRange::FromThisBar); }},
      {"Key Signature", [](Editor& e) { ApplyKeySignature(e.ctx, 3, false, ApplyRange::AllBars); }},
      {"Repeat Open", [](Editor& e) { mnuBarRepeatOpen_Click(e.ctx); }},
      {"Repeat Close", [](Editor& e) { e.ctx.hooks.askRepeatCount = [] { return 3; }; mnuBarRepeatClose_Click(e.ctx); }},
      {"Coda", [](Editor& e) { SetCoda(e.ctx, 0, 3, 1, 2); }},
      {"Add Beat", [](Editor& e) { MoveCursorRight(e.ctx); },
       [](Editor& e) {
         e.doc.CursorBar = static_cast<int16_t>(e.bars() - 1);
         e.doc.CursorBeat = static_cast<int16_t>(e.beats(e.bars() - 1) - 1);
       }},
      {"Dead Note", [](Editor& e) { e.keys("x"); }},
      {"Shift Note Down", [](Editor& e) { e.keys("Shift+Down"); }},
  };
  return commands;
}

TEST(Undo, EveryCommandUndoesToTheDocumentBeforeAndRedoesToTheOneAfter) {
  for (const Command& c : everyCommand()) {
    Editor e;
    fill(e);
    if (c.prepare) c.prepare(e);
    const Score before = e.doc.score;
    const auto cursorBefore = CursorOf(e.doc);
    c.run(e);
    const Score after = e.doc.score;
    const auto cursorAfter = CursorOf(e.doc);
    ASSERT_FALSE(after == before) << c.name << " changed nothing, so the table proves nothing";
    EXPECT_EQ(e.ctx.undo.undoName(), c.name);

    mnuEditUndo_Click(e.ctx);
    EXPECT_TRUE(e.doc.score == before) << c.name;
    EXPECT_EQ(CursorOf(e.doc), cursorBefore) << c.name;
    EXPECT_FALSE(e.ctx.undo.canUndo()) << c.name << " took more than one step";
    EXPECT_EQ(e.ctx.undo.redoName(), c.name);

    mnuEditRedo_Click(e.ctx);
    EXPECT_TRUE(e.doc.score == after) << c.name;
    EXPECT_EQ(CursorOf(e.doc), cursorAfter) << c.name;
    EXPECT_FALSE(e.ctx.undo.canRedo()) << c.name;
  }
}

TEST(Undo, AllCommandsInARowGoBackStepByStepAndForwardAgain) {
  Editor e;
  fill(e);
  std::vector<Score> states = {e.doc.score};
  for (const Command& c : everyCommand()) {
    if (c.prepare) c.prepare(e);
    c.run(e);
    if (!(e.doc.score == states.back())) states.push_back(e.doc.score);
  }
  ASSERT_GT(states.size(), 30u);
  for (size_t i = states.size() - 1; i-- > 0;) {
    mnuEditUndo_Click(e.ctx);
    ASSERT_TRUE(e.doc.score == states[i]) << "undo back to state " << i;
  }
  EXPECT_FALSE(e.ctx.undo.canUndo());
  for (size_t i = 1; i < states.size(); ++i) {
    mnuEditRedo_Click(e.ctx);
    ASSERT_TRUE(e.doc.score == states[i]) << "redo to state " << i;
  }
}

// The z key after a menu command takes back that command only, not the key typed before it.
TEST(Undo, ZAfterAMenuCommandUndoesTheMenuCommandOnly) {
  Editor e;
  fill(e);
  e.keys("9");
  const Score typed = e.doc.score;
  ApplyTimeSignature(e.ctx, 3, 4, ApplyRange::ThisBar);
  EXPECT_EQ(e.ctx.undo.undoName(), "Time Signature");
  e.keys("z");
  EXPECT_TRUE(e.doc.score == typed);
  EXPECT_EQ(e.fret(1, 1, 1), "9");
  EXPECT_EQ(e.ctx.undo.undoName(), "Typing");
}

TEST(Undo, AStepGathersEverythingInsideIt) {
  Editor e;
  fill(e);
  const Score before = e.doc.score;
  {
    UndoStep step(e.ctx, "Arrange");
    mnuBarClear_Click(e.ctx);
    ApplyTimeSignature(e.ctx, 3, 4, ApplyRange::AllBars);
    e.keys("5 Right 7");
  }
  EXPECT_EQ(e.ctx.undo.undoName(), "Arrange");
  mnuEditUndo_Click(e.ctx);
  EXPECT_TRUE(e.doc.score == before);
  EXPECT_FALSE(e.ctx.undo.canUndo());
  {
    UndoStep nothing(e.ctx, "Nothing");
    e.keys("Left Right");
  }
  EXPECT_FALSE(e.ctx.undo.canUndo()) << "a step that changed nothing is not kept";
}

TEST(Undo, ANewChangeForgetsWhatWasUndone) {
  Editor e;
  e.keys("3 Right 5");
  e.keys("z");
  EXPECT_TRUE(e.ctx.undo.canRedo());
  e.keys("7");
  EXPECT_FALSE(e.ctx.undo.canRedo());
  mnuEditRedo_Click(e.ctx);  // nothing to redo: nothing happens
  EXPECT_EQ(e.fret(0, 1, 0), "7");
}

TEST(Undo, EveryKeyGoesBackToTheStartExactly) {
  Editor e;
  e.doc.score.SetBarCount(1);
  const Score start = e.doc.score;
  const auto startCursor = e.cursor();
  const char* riff = "5 Right 7 Right Down 1 2 Right - Shift+3 . Right x Shift+Ins 9 Shift+Del "
                     "Right Right Right Right Right 3 Shift+r Up Up 0 g Shift+Down";
  e.keys(riff);
  ASSERT_FALSE(e.doc.score == start);
  int undos = 0;
  while (e.ctx.undo.canUndo() && undos < 100) {
    e.keys("z");
    ++undos;
  }
  EXPECT_TRUE(e.doc.score == start);
  EXPECT_EQ(e.cursor(), startCursor);
  e.keys("z");  // nothing more to take back
  EXPECT_TRUE(e.doc.score == start);
}

TEST(Undo, LevelsBoundTheSteps) {
  struct Case {
    int levels;
    int undoable;  // of five edits
  };
  for (const Case c : {Case{0, 0}, Case{1, 1}, Case{3, 3}, Case{100, 5}}) {
    Editor e;
    e.ctx.setUndoLevels(static_cast<int16_t>(c.levels));
    bool enabled = false;
    e.ctx.hooks.undoEnabled = [&](bool on) { enabled = on; };
    e.keys("3 5 7 8 9");
    int n = 0;
    while (e.ctx.undo.canUndo()) {
      EXPECT_TRUE(enabled);
      e.keys("z");
      ++n;
    }
    EXPECT_EQ(n, c.undoable) << "levels " << c.levels;
    EXPECT_FALSE(enabled) << "the menu turns off after the oldest snapshot";
    const char* want[] = {"", "3", "5", "7", "8", "9"};
    EXPECT_EQ(e.fret(0, 0, 0), want[5 - c.undoable]) << "levels " << c.levels;
  }
}

TEST(Undo, OnlyCommandsThatChangeTheScoreAreKept) {
  Editor e;
  e.doc.score.SetBeatCount(0, 0, 1);
  e.keys("7 Right Left Up Down");
  mnuBarClear_Click(e.ctx);
  mnuBarClear_Click(e.ctx);  // a second clear changes nothing
  e.keys("z z");
  EXPECT_EQ(e.fret(0, 0, 0), "");
  EXPECT_FALSE(e.ctx.undo.canUndo());
}

TEST(Undo, SnapshotsShareUnchangedBars) {
  Editor e;
  e.doc.score.SetBarCount(99);
  for (int b = 0; b < 100; ++b) e.doc.score.noteMut(0, b, 0, 0).Fret = "3";
  e.keys("5 Right 7 Right 9");  // three edits in bar 0
  e.keys("z");
  for (const auto* list : {&e.ctx.undo.undoEntries(), &e.ctx.undo.redoEntries()})
    for (const UndoEntry& u : *list)
      for (int b = 1; b < 100; ++b)
        EXPECT_TRUE(u.score.Tracks[0].Bars[static_cast<size_t>(b)].sharesWith(
            e.doc.score.Tracks[0].Bars[static_cast<size_t>(b)]));
}

TEST(Undo, AFailedCommandLeavesNoStep) {
  Editor e;
  fill(e);
  mnuNoteVolumes_Click(e.ctx, 99);  // no such menu entry: refused with a message
  EXPECT_FALSE(e.ctx.undo.canUndo());
}

}  // namespace
}  // namespace plectaro::test
