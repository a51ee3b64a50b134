// Track commands, the Operations menu and go-to points, driven as the dialogs drive them.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "edit_fixture.h"
#include "editing/operations.h"
#include "editing/track_commands.h"
#include "score/bar_timing.h"

namespace plectaro::test {
namespace {

void setFrets(Document& d, int t, int b, int k, const std::vector<std::string>& frets) {
  for (size_t s = 0; s < frets.size(); ++s) d.score.noteMut(t, b, k, static_cast<int>(s)).Fret = frets[s];
}

TEST(TrackCommands, NewTrackGetsEveryBarTheNextChannelsAndTheCursor) {
  Editor e;
  e.doc.score.SetBarCount(39);
  struct Case {
    bool drums;
    int channel, effect;
  };
  // Track 1 plays on 0/1; the next guitar gets 2/3, drums 9, the next one 4/5 (skipping the
  // percussion channel is checked by the pair after 7/8).
  const Case cases[] = {{false, 2, 3}, {true, 9, 9}, {false, 4, 5}, {false, 6, 7}, {false, 10, 11}};
  for (const Case& c : cases) {
    ASSERT_TRUE(AddTrack(e.ctx, NewTrackSetup("T", c.drums, 33, "Fingered Bass", TuningInfo{})));
    const Track& t = e.doc.score.Tracks.back();
    EXPECT_EQ(t.Bars.size(), 40u);
    EXPECT_EQ(t.Bars[39]->Beats.size(), 1u);
    EXPECT_TRUE(t.Bars[39]->Beats[0].isRest());
    EXPECT_EQ(t.Channel, c.channel);
    EXPECT_EQ(t.EffectChannel, c.effect);
    EXPECT_EQ(e.doc.CursorTrack, e.doc.score.LastTrack());
  }
  EXPECT_EQ(e.doc.score.Tracks[2].InstrumentName, "");  // drums carry no instrument name
  EXPECT_NE(e.doc.score.Tracks[2].DrumMaps[5].Drum[0], 0);  // and a kit that sounds
}

TEST(TrackCommands, DeleteRefusesTheOnlyTrackAndMovesTheCursor) {
  Editor e;
  EXPECT_FALSE(DeleteTrack(e.ctx));
  ASSERT_EQ(e.prompter.asked().size(), 1u);
  EXPECT_EQ(e.prompter.asked()[0].text, "The only track of a document cannot be deleted.");

  for (const char* name : {"Bass", "Drums"}) AddTrack(e.ctx, NewTrackSetup(name, false, 33, "", TuningInfo{}));
  e.prompter.clear();
  e.prompter.push(false);  // "No" keeps it
  EXPECT_FALSE(DeleteTrack(e.ctx));
  EXPECT_EQ(e.prompter.asked()[0].text, "Are you sure you want to delete the track 'Drums'?");
  EXPECT_EQ(e.doc.score.Tracks.size(), 3u);

  e.prompter.push(true);  // the last track goes: the cursor steps back
  EXPECT_TRUE(DeleteTrack(e.ctx));
  EXPECT_EQ(e.doc.CursorTrack, 1);
  e.doc.CursorTrack = 0;
  e.prompter.push(true);  // the first goes: the next one takes its place
  EXPECT_TRUE(DeleteTrack(e.ctx));
  EXPECT_EQ(e.doc.CursorTrack, 0);
  EXPECT_EQ(e.doc.score.Tracks[0].Name, "Bass");
}

TEST(TrackCommands, RetuningKeepsFretsAndSaysSo) {
  Editor e;
  setFrets(e.doc, 0, 0, 0, {"", "", "", "", "", "0"});
  Track props = e.doc.score.Tracks[0];
  props.Tuning.Offset[5] = -2;  // Drop D
  props.Capo = 2;
  const TrackPropertiesResult r = ApplyTrackProperties(e.ctx, 0, props);
  EXPECT_TRUE(r.applied);
  EXPECT_TRUE(r.fretsKept);
  EXPECT_EQ(e.fret(0, 0, 5), "0");
  EXPECT_EQ(e.doc.score.GetNotePitch(0, 0, 0, 5), 38);  // the capo is not part of the pitch
  EXPECT_EQ(e.prompter.asked().size(), 1u);

  // No notes, nothing to say; a drum track plays on 9 whatever the dialog said.
  e.prompter.clear();
  Track drums = NewTrackSetup("Drums", true, 0, "", TuningInfo{});
  drums.Channel = 3;
  AddTrack(e.ctx, drums);
  EXPECT_FALSE(ApplyTrackProperties(e.ctx, 1, drums).fretsKept);
  EXPECT_EQ(e.doc.score.Tracks[1].Channel, 9);
  EXPECT_TRUE(e.prompter.asked().empty());

  // Values out of range are refused and change nothing.
  const Score before = e.doc.score;
  for (int bad : {0, 8}) {
    Track p = e.doc.score.Tracks[0];
    p.Tuning.NumStrings = static_cast<int16_t>(bad);
    EXPECT_FALSE(ApplyTrackProperties(e.ctx, 0, p).applied);
  }
  EXPECT_EQ(e.doc.score, before);
}

TEST(Transpose, NotesChangeStringAndNeverVanishSilently) {
  struct Case {
    int semitones;
    std::vector<std::string> before, after;
    size_t unplaced;
  };
  const Case cases[] = {
      // Open strings up a tone stay on their strings.
      {2, {"0", "0", "0", "", "", "0"}, {"2", "2", "2", "", "", "2"}, 0},
      // Fret 23 on the top string has no higher string: it stays and is named.
      {2, {"23", "", "", "", "", ""}, {"23", "", "", "", "", ""}, 1},
      // Fret 23 on string 2 moves to the free string above.
      {2, {"", "23", "", "", "", ""}, {"20", "", "", "", "", ""}, 0},
      // Down 14 from open strings: the top string's note finds the nearest string that can
      // play it; the lowest string's note has nowhere to go.
      {-14, {"0", "", "", "", "", "0"}, {"", "", "", "0", "", "0"}, 1},
      {-14, {"", "", "3", "", "", ""}, {"", "", "", "", "", "4"}, 0},
      // A note that must move may not take the string another displaced note comes from.
      {-1, {"0", "0", "", "", "", ""}, {"", "", "8", "8", "", ""}, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::PrintToString(c.before) + " by " + std::to_string(c.semitones));
    Editor e;
    setFrets(e.doc, 0, 0, 0, c.before);
    const auto unplaced = TransposeTracks(e.doc.score, {0}, c.semitones);
    for (size_t s = 0; s < c.after.size(); ++s) EXPECT_EQ(e.fret(0, 0, static_cast<int>(s)), c.after[s]) << s;
    EXPECT_EQ(unplaced.size(), c.unplaced);
  }
}

TEST(Transpose, KeepsEffectsWithTheMovedNoteAndReportsUnplacedOnes) {
  Editor e;
  setFrets(e.doc, 0, 0, 0, {"", "", "", "", "", "0"});
  e.doc.score.noteMut(0, 0, 0, 5).LetRing = true;
  setFrets(e.doc, 0, 0, 0, {"", "", "", "", "", "0"});
  EXPECT_TRUE(Transpose(e.ctx, {0}, -3));
  ASSERT_EQ(e.prompter.asked().size(), 1u);
  EXPECT_NE(e.prompter.asked()[0].text.find("\n1, 1, 1, 6: 0"), std::string::npos);
  EXPECT_EQ(e.fret(0, 0, 5), "0");
  EXPECT_TRUE(e.doc.score.note(0, 0, 0, 5).LetRing);

  e.prompter.clear();
  EXPECT_TRUE(Transpose(e.ctx, {0}, 5));  // open E up a fourth: same string, fret 5
  EXPECT_EQ(e.fret(0, 0, 5), "5");
  EXPECT_TRUE(e.doc.score.note(0, 0, 0, 5).LetRing);
  EXPECT_TRUE(e.prompter.asked().empty());
  EXPECT_FALSE(Transpose(e.ctx, {}, 5));
}

TEST(Operations, FixBarsOnTheWorkedCases) {
  struct Case {
    int num, den;
    std::vector<int> lengths;   // beats before
    std::vector<int> expected;  // lengths after
  };
  const Case cases[] = {
      {4, 4, {kQuarter}, {kQuarter, kHalf, kQuarter}},                  // 16 + 32 + 16
      {3, 4, {kHalf, kHalf}, {kHalf, kQuarter}},                        // too long: cut, refilled
      {2, 4, {kQuarter, kQuarter}, {kQuarter, kQuarter}},               // exact stays
      {4, 4, {kEighth, kEighth, kEighth}, {kEighth, kEighth, kEighth, kHalf, kEighth}},
  };
  for (const Case& c : cases) {
    Editor e;
    e.doc.score.SetTimeSignature(0, c.num, c.den);
    std::vector<Beat>& beats = e.doc.score.barMut(0, 0).Beats;
    beats.resize(c.lengths.size());
    for (size_t i = 0; i < c.lengths.size(); ++i) beats[i].Length = c.lengths[i];
    mnuFixAllBars_Click(e.ctx);
    std::vector<int> got;
    for (const Beat& b : e.doc.score.bar(0, 0).Beats) got.push_back(b.Length);
    EXPECT_EQ(got, c.expected);
    EXPECT_EQ(CheckBar(e.doc.score, 0, 0), kBarExact);
  }
}

TEST(Operations, CheckAndFixThisBarMessages) {
  Editor e;
  struct Case {
    std::vector<int> lengths;
    const char* text;
  };
  const Case cases[] = {
      {{kQuarter}, "The bar holds 16.0 64ths, but it should hold 64.0 64ths."},
      {{kWhole}, "The bar is complete with 64.0 64ths."},
      {{kWhole, kEighth}, "The bar is too long: it holds 72.0 64ths, but it should hold 64.0 64ths."},
  };
  for (const Case& c : cases) {
    std::vector<Beat>& beats = e.doc.score.barMut(0, 0).Beats;
    beats.assign(c.lengths.size(), Beat());
    for (size_t i = 0; i < c.lengths.size(); ++i) beats[i].Length = c.lengths[i];
    e.prompter.clear();
    mnuOperationsCheckBar_Click(e.ctx);
    ASSERT_EQ(e.prompter.asked().size(), 1u);
    EXPECT_EQ(e.prompter.asked()[0].text, c.text);
  }
  e.prompter.clear();
  mnuFixThisBar_Click(e.ctx);  // whole + eighth: the eighth goes, nothing else
  EXPECT_EQ(e.beats(0), 1);
  mnuFixThisBar_Click(e.ctx);
  ASSERT_EQ(e.prompter.asked().size(), 1u);
  EXPECT_EQ(e.prompter.asked()[0].text, "This bar does not need fixing.");
}

TEST(Operations, RemoveRestsAsksAndKeepsOneBeatPerBar) {
  Editor e;
  e.doc.score.SetBarCount(1);
  std::vector<Beat>& beats = e.doc.score.barMut(0, 0).Beats;
  beats.resize(4);
  setFrets(e.doc, 0, 0, 1, {"3"});
  setFrets(e.doc, 0, 0, 3, {"5"});
  e.prompter.push(false);
  mnuOperationsRemoveRests_Click(e.ctx);
  EXPECT_EQ(e.beats(0), 4);
  e.prompter.push(true);
  mnuOperationsRemoveRests_Click(e.ctx);
  EXPECT_EQ(e.beats(0), 2);
  EXPECT_EQ(e.fret(0, 1, 0), "5");
  EXPECT_EQ(e.beats(1), 1);  // a bar of rests only keeps one
}

TEST(GotoPoints, AddListGoAndDelete) {
  Editor e;
  e.doc.score.SetBarCount(3);
  int changes = 0;
  e.ctx.hooks.gotoPointsChanged = [&] { ++changes; };
  e.doc.CursorBar = 2;
  EXPECT_TRUE(AddGotoPoint(e.ctx, " Chorus "));
  EXPECT_FALSE(AddGotoPoint(e.ctx, "Chorus"));  // taken
  EXPECT_FALSE(AddGotoPoint(e.ctx, "  "));      // blank
  AddTrack(e.ctx, NewTrackSetup("Bass", false, 33, "", TuningInfo{}));
  changes = 1;
  e.doc.CursorBar = 1;
  EXPECT_TRUE(AddGotoPoint(e.ctx, "Bridge"));
  ASSERT_EQ(GotoPoints(e.doc.score).size(), 2u);
  EXPECT_EQ(NumberOfGotoPoints(e.doc.score, 0), 1);
  EXPECT_EQ(changes, 2);

  EXPECT_TRUE(GoToPoint(e.ctx, "Chorus"));
  EXPECT_EQ(e.doc.CursorTrack, 0);
  EXPECT_EQ(e.doc.CursorBar, 2);
  EXPECT_FALSE(GoToPoint(e.ctx, "Nowhere"));

  e.prompter.push(true);
  EXPECT_TRUE(DeleteGotoPoint(e.ctx, "Bridge"));
  ASSERT_EQ(GotoPoints(e.doc.score).size(), 1u);
  EXPECT_EQ(GotoPoints(e.doc.score)[0].name, "Chorus");
}

TEST(TrackCommands, OneUndoTakesBackEachDialogsWholeChange) {
  Editor e;
  e.doc.score.SetBarCount(2);
  e.doc.score.SetBeatCount(0, 0, 1);  // a note and a rest
  setFrets(e.doc, 0, 0, 0, {"0", "3", "", "", "", "0"});
  AddTrack(e.ctx, NewTrackSetup("Bass", false, 33, "Fingered Bass", TuningInfo{}));
  e.doc.CursorTrack = 0;
  struct Step {
    const char* name;
    std::function<void()> run;
  };
  Track dropD = e.doc.score.Tracks[0];
  dropD.Tuning.Offset[5] = -2;
  dropD.Capo = 2;
  const std::vector<Step> steps = {
      {"add", [&] { AddTrack(e.ctx, NewTrackSetup("Drums", true, 0, "", TuningInfo{})); }},
      {"delete", [&] { e.prompter.push(true); DeleteTrack(e.ctx); }},
      {"properties", [&] { ApplyTrackProperties(e.ctx, 0, dropD); }},
      {"transpose", [&] { Transpose(e.ctx, {0, 1}, -14); }},
      {"fix all", [&] { mnuFixAllBars_Click(e.ctx); }},
      {"rests", [&] { e.prompter.push(true); mnuOperationsRemoveRests_Click(e.ctx); }},
      {"lines", [&] { SetTrackLyrics(e.ctx, 0, {"la la", "", "", "", "lo"}); }},
      {"go-to", [&] { AddGotoPoint(e.ctx, "Verse"); }},
      {"volume", [&] { SetTrackVolume(e.ctx, 1, 90); }},
  };
  for (const Step& step : steps) {
    SCOPED_TRACE(step.name);
    const Score before = e.doc.score;
    const int16_t track = e.doc.CursorTrack;
    step.run();
    EXPECT_FALSE(e.doc.score == before);
    mnuEditUndo_Click(e.ctx);
    EXPECT_EQ(e.doc.score, before);
    EXPECT_EQ(e.doc.CursorTrack, track);
  }
}

}  // namespace
}  // namespace plectaro::test
