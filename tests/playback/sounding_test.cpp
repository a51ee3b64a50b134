#include <gtest/gtest.h>

#include <tuple>

#include "playback/sounding.h"
#include "song_builder.h"

namespace plectaro {
namespace {

using test::AddBeat;
using test::MakeSong;
using test::NoteOn;
using test::NoteOns;

TEST(Sounding, VelocityFromTrackVolumeAndDynamics) {
  struct Case {
    int trackVolume;
    int32_t code;
    bool ghost;
    int velocity;
  };
  const Case cases[] = {
      {50, kVolMF, false, 100},   // 64 + 36
      {50, kVolFFF, false, 127},  // 64 + 63.5 clipped
      {50, kVolPPP, false, 64},
      {100, kVolFFF, false, 127},
      {0, kVolFFF, false, 64},    // 63.5 rounds to even
      {100, kVolPPP, true, 64},   // ghost of 127: 63.5 rounds to even
      {50, kVolMP, false, 91},    // level 3: 27.2 + 64
      {50, 99, false, 64},        // unknown code: the lowest level
      {-400, kVolFFF, false, 0},  // a damaged volume never goes below 0
      {32767, kVolMF, false, 127},
  };
  for (const Case& c : cases) {
    Score s = MakeSong(1, 1);
    s.Tracks[0].Volume = static_cast<int16_t>(c.trackVolume);
    Beat& b = AddBeat(s, 0, 0, kQuarter, {{0, "0"}});
    b.Notes[0].Volume = c.code;
    b.Notes[0].GhostNote = c.ghost;
    EXPECT_EQ(GetVolume(s, 0, 0, 0, 0), c.velocity) << c.trackVolume << "/" << c.code;
  }
}

TEST(Sounding, HarmonicsShiftThePitch) {
  const std::pair<int, std::vector<int>> cases[] = {
      {kNoHarmonic, {60}}, {kNaturalHarmonic, {60}}, {kArtificialHarmonic5, {79}},
      {kArtificialHarmonic7, {84}}, {kArtificialHarmonic12, {72}}, {kTappedHarmonic, {72}},
      {kPitchHarmonic, {72}}, {kSemiHarmonic, {72, 60}}};
  for (const auto& [harmonic, notes] : cases) {
    RecordingMidiOut out;
    PlayNote(out, 60, harmonic, 0, 120, true);
    std::vector<int> on;
    for (const auto& n : NoteOns(out.messages)) on.push_back(n.note);
    EXPECT_EQ(on, notes) << harmonic;
    // stopAtOnce ends every note it started.
    EXPECT_TRUE(test::EveryNoteEnds(out.messages)) << harmonic;
  }
  RecordingMidiOut out;
  PlayNote(out, 60, kSemiHarmonic, 0, 120, false);
  EXPECT_EQ(NoteOns(out.messages)[0].velocity, 100);  // 120 / 1.2
}

TEST(Sounding, ChordPitchesAndStringOrder) {
  Score s = MakeSong(1, 1);
  s.Tracks[0].Tuning.Offset[5] = -2;  // drop D
  s.Tracks[0].Capo = 3;               // frets are where they are played: the capo adds nothing
  AddBeat(s, 0, 0, kQuarter, {{0, "0"}, {1, "x"}, {2, ""}, {4, "2"}, {5, "0"}});
  s.Tracks[0].Bars[0].mut().Beats[0].Notes[3].Fret = " 4 ";

  RecordingMidiOut down;
  PlayChord({down, 0}, s, 0, 0, 0, false, false);
  std::vector<int> notes;
  for (const auto& n : NoteOns(down.messages)) notes.push_back(n.note);
  EXPECT_EQ(notes, (std::vector<int>{38, 47, 54, 64}));  // lowest string first

  RecordingMidiOut up;
  PlayChord({up, 0}, s, 0, 0, 0, false, true);
  notes.clear();
  for (const auto& n : NoteOns(up.messages)) notes.push_back(n.note);
  EXPECT_EQ(notes, (std::vector<int>{64, 54, 47, 38}));

  // Program change on the channel and the effect channel, bank in front, before any note.
  ASSERT_GE(down.messages.size(), 4u);
  EXPECT_EQ(down.messages[0].Status, 0xB0);
  EXPECT_EQ(down.messages[1].Status, 0xC0);
  EXPECT_EQ(down.messages[1].Data1, 24);
  EXPECT_EQ(down.messages[2].Status, 0xB1);
  EXPECT_EQ(down.messages[3].Status, 0xC1);
}

TEST(Sounding, ChordDiagramSoundsWhereItsChartStarts) {
  // An A minor barre shape at the 5th fret: frets stored from the chart's first fret (4).
  BeatChord am;
  am.NumStrings = 6;
  am.StartFret = 4;
  am.Frets = {"1", "1", "1", "3", "3", "1", ""};
  am.Tuning = {64, 59, 55, 50, 45, 40, 35};
  const Score s = MakeSong(1, 1);
  RecordingMidiOut out;
  PlayChordDiagram({out, 0}, s.Tracks[0], am);
  std::vector<int> notes;
  for (const auto& n : NoteOns(out.messages)) notes.push_back(n.note);
  EXPECT_EQ(notes, (std::vector<int>{45, 52, 57, 60, 64, 69}));
}

TEST(Sounding, OctaveFlagsMoveEveryNote) {
  // {up, down, key of fret 5 on the top string}: octave down wins when both are set.
  const std::tuple<bool, bool, int> cases[] = {{false, false, 69}, {true, false, 81}, {false, true, 57}, {true, true, 57}};
  for (auto [up, down, key] : cases) {
    Score s = MakeSong(1, 1);
    s.Tracks[0].OctaveUp = up;
    s.Tracks[0].OctaveDown = down;
    AddBeat(s, 0, 0, kQuarter, {{0, "5"}});
    RecordingMidiOut out;
    PlayChord({out, 0}, s, 0, 0, 0, false, false);
    EXPECT_EQ(NoteOns(out.messages), (std::vector<NoteOn>{{0, 0, key, 100}})) << up << down;
  }
}

TEST(Sounding, TiesAndLetRingKeepTheSound) {
  Score s = MakeSong(1, 2);
  AddBeat(s, 0, 0, kHalf, {{0, "3"}});
  AddBeat(s, 0, 0, kHalf, {{0, "5"}, {1, "1"}}).Notes[1].LetRing = true;
  AddBeat(s, 0, 1, kWhole, {{0, "5"}}).Notes[0].Tied = true;
  EXPECT_FALSE(IsTie(s, 0, 0, 0));
  EXPECT_FALSE(IsRing(s, 0, 0, 0));
  EXPECT_TRUE(IsTie(s, 0, 0, 1));  // across the bar line
  EXPECT_TRUE(IsRing(s, 0, 0, 1));
  EXPECT_FALSE(IsTie(s, 0, 1, 0));
  EXPECT_FALSE(IsTie(s, 0, 5, 0));  // no such bar

  // The tied note continues: it is not struck again.
  RecordingMidiOut out;
  PlayChord({out, 0}, s, 0, 1, 0, false, false);
  EXPECT_TRUE(NoteOns(out.messages).empty());
}

}  // namespace
}  // namespace plectaro
