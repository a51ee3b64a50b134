// The Drum Machine's pattern, player, files, edits and the beat generator.
#include <gtest/gtest.h>

#include <filesystem>

#include "exchange/midi_file.h"
#include "playback/recording_out.h"
#include "playback/virtual_clock.h"
#include "score/file_io.h"
#include "scripted_random.h"
#include "tools/beat_generator.h"
#include "tools/drum_machine.h"
#include "tools/drum_midi.h"
#include "tools/drum_sequencer.h"
#include "tools/record_text.h"

namespace plectaro {
namespace {

TEST(DrumPattern, StepIntervals) {
  struct Case {
    int tempo, code;
    bool tuplet;
    int tupletCode;
    bool dotted;
    int32_t ms;
  };
  const Case cases[] = {
      {120, 2, false, 0, false, 500},   // a quarter at 120
      {120, 2, false, 0, true, 750},    // dotted
      {120, 2, true, 0, false, 333},    // triplet: cut, not rounded
      {120, 4, false, 0, false, 125},   // what a new pattern steps at
      {90, 2, false, 0, true, 1000},    // exact decimal despite binary arithmetic
      {120, 0, false, 0, false, 2000},  // whole
      {60, 6, false, 0, false, 62},     // 62.5 cut
      {120, 3, true, 1, false, 100},    // quintuplet eighth: 250 x 2/5
      {120, 2, true, 8, true, 115},     // 13-tuplet, dotted: 500 x 2/13 x 1.5
  };
  for (const Case& c : cases) {
    DrumPattern p = NewDrumPattern();
    p.Tempo = static_cast<int16_t>(c.tempo);
    p.BeatLength[0] = c.code;
    p.Tupleted[0] = c.tuplet;
    p.TupletCode[0] = c.tupletCode;
    p.Dotted[0] = c.dotted;
    EXPECT_EQ(StepIntervalMs(p, 0), c.ms) << c.tempo << " " << c.code << " " << c.tuplet << " " << c.dotted;
  }
}

TEST(DrumPattern, NewPatternAndDrumKeys) {
  const DrumPattern p = NewDrumPattern();
  EXPECT_EQ(p.steps(), 32);
  EXPECT_EQ(p.instruments(), 16);
  EXPECT_EQ(p.Instruments.front(), "Crash Cymbal 1");
  EXPECT_EQ(p.Instruments.back(), "Acoustic Bass Drum");
  EXPECT_EQ(GetDrumIndex("Acoustic Bass Drum"), 35);
  EXPECT_EQ(GetDrumIndex("Closed High-Hat"), 42);
  EXPECT_EQ(GetDrumIndex("Claves"), 75);
  EXPECT_EQ(GetDrumIndex("Closed Hi-Hat"), 0);
  EXPECT_EQ(DrumNameForKey(38), "Acoustic Snare");
}

struct Played {
  VirtualClock clock;
  RecordingMidiOut out{[this] { return clock.nowMs(); }};
  DrumSequencer seq{out, clock};
  std::vector<double> noteOnTimes(int key) const {
    std::vector<double> t;
    for (const MidiMessage& m : out.messages)
      if (m.Status == 0x99 && m.Data1 == key && m.Data2 > 0) t.push_back(m.TimeMs);
    return t;
  }
};

TEST(DrumSequencer, EachStepsOwnLengthDecidesTheNext) {
  DrumPattern p = NewDrumPattern();
  ResizePattern(p, 4, 16);
  for (int s = 0; s < 4; ++s) p.setCell(s, 15, true);  // bass drum on every step
  p.BeatLength[0] = 2;                                   // 500
  p.Dotted[1] = true;                                    // 187
  p.Tupleted[2] = true;                                  // 83
  Played run;
  run.seq.play(p);
  run.clock.runUntilIdle(60000);
  EXPECT_FALSE(run.seq.playing());
  // The first step sounds after its own interval; each later one after the step before it.
  EXPECT_EQ(run.noteOnTimes(35), (std::vector<double>{500, 1000, 1187, 1270}));
  // Play stops one step after the last with the channel silenced.
  ASSERT_FALSE(run.out.messages.empty());
  EXPECT_EQ(run.out.messages.back().Status, 0xB9);
  EXPECT_DOUBLE_EQ(run.out.messages.back().TimeMs, 1395);
}

TEST(DrumSequencer, OneStepPatternLoopsOnTheSameCells) {
  DrumPattern p = NewDrumPattern();
  ResizePattern(p, 1, 16);
  p.setCell(0, 8, true);   // closed hi-hat
  p.setCell(0, 11, true);  // snare
  p.Volumes[11] = 90;
  Played run;
  run.seq.loop = true;
  run.seq.passes = 4;
  int wraps = 0;
  run.seq.hooks.wrapped = [&] { ++wraps; };
  run.seq.play(p);
  run.clock.runUntilIdle(60000);
  EXPECT_EQ(run.noteOnTimes(42), (std::vector<double>{125, 250, 375, 500}));
  EXPECT_EQ(run.noteOnTimes(38), run.noteOnTimes(42));
  EXPECT_EQ(wraps, 3);
  for (const MidiMessage& m : run.out.messages) {
    if (m.Status == 0x99 && m.Data1 == 38) {
      EXPECT_EQ(m.Data2, 90);
    }
  }
}

TEST(DrumSequencer, LoopWithoutLimitRunsUntilStopped) {
  DrumPattern p = NewDrumPattern();
  p.setCell(0, 15, true);
  Played run;
  run.seq.loop = true;
  run.seq.play(p);
  run.clock.advanceTo(32 * 125 * 3 + 10);
  EXPECT_TRUE(run.seq.playing());
  EXPECT_EQ(run.noteOnTimes(35), (std::vector<double>{125, 4125, 8125}));
  run.seq.stop();
  EXPECT_FALSE(run.seq.playing());
}

DrumPattern FiveBySeven() {
  DrumPattern p;
  ResizePattern(p, 7, 5);
  p.Instruments = {"Acoustic Snare", "Closed High-Hat", "Acoustic Bass Drum", "Cowbell", "Claves"};
  p.Volumes = {127, 80, 100, 0, 64};
  p.Tempo = 97;
  p.BeatsPerGroup = 3;
  for (int s = 0; s < 7; ++s) p.setCell(s, s % 5, true);
  p.BeatLength[3] = 2;
  p.Dotted[3] = true;
  p.Tupleted[5] = true;
  p.TupletCode[5] = 4;
  return p;
}

TEST(DrumbeatFile, RoundTripKeepsBoundsAndEveryField) {
  const DrumPattern p = FiveBySeven();
  const std::string bytes = WriteDrumbeat(p);
  EXPECT_EQ(bytes.substr(0, 29), "PL4D\r\n 4 \r\n 6 \r\n 3 \r\n 97 \r\nAc");
  // Cells are step by step; timing follows as number, number, word, word.
  EXPECT_NE(bytes.find("\r\n 2 \r\n 0 \r\nFalse\r\nTrue\r\n"), std::string::npos);
  const DrumPattern back = ReadDrumbeat(bytes);
  EXPECT_EQ(back.steps(), 7);
  EXPECT_EQ(back.instruments(), 5);
  EXPECT_EQ(back, p);
  // Files written with LF only or with blanks round the words read the same.
  std::string lf;
  for (char c : bytes)
    if (c != '\r') lf += c;
  EXPECT_EQ(ReadDrumbeat(lf), p);
}

TEST(DrumbeatFile, BadFilesAreRefusedWithoutCrashing) {
  const std::string good = WriteDrumbeat(FiveBySeven());
  const std::string cases[] = {
      "",
      "PL4M\r\n 4 \r\n",                                // another kind of file
      good.substr(0, good.size() / 2),                  // cut short
      "PL4D\r\n-1 \r\n 6 \r\n 4 \r\n 120 \r\n",         // no instruments
      "PL4D\r\n 4 \r\n 32767 \r\n 4 \r\n 120 \r\n",     // more steps than the grid holds
      "PL4D\r\n 30000 \r\n 30000 \r\n 4 \r\n 120 \r\n"  // huge, and the lines are not there
  };
  for (const std::string& bytes : cases) EXPECT_THROW(ReadDrumbeat(bytes), ToolFileError) << bytes.substr(0, 20);
}

std::string OldFileText() {
  LineWriter w;
  for (int i = 0; i < 16; ++i) w.number(i);  // keys 35.. minus 35
  for (int i = 0; i < 16; ++i) w.number(100 + i);
  w.number(135);
  for (int s = 0; s < 16; ++s)
    for (int i = 0; i < 16; ++i) w.number(s == i ? 1 : 0);
  return w.bytes();
}

TEST(DrumbeatFile, OldFilesConvert) {
  const DrumPattern p = ReadOldDrumbeat(OldFileText());
  EXPECT_EQ(p.steps(), 16);
  EXPECT_EQ(p.instruments(), 16);
  EXPECT_EQ(p.Instruments[0], "Acoustic Bass Drum");
  EXPECT_EQ(p.Instruments[3], "Acoustic Snare");
  EXPECT_EQ(p.Volumes[15], 115);
  EXPECT_EQ(p.Tempo, 135);
  EXPECT_TRUE(p.cell(5, 5));
  EXPECT_FALSE(p.cell(5, 6));
  EXPECT_EQ(p.BeatLength[0], kSixteenthNote);

  const auto dir = std::filesystem::temp_directory_path() / "plectaro-pld-test";
  std::filesystem::create_directories(dir);
  WriteFileAtomically(dir / "Groove.pld", OldFileText());
  const auto out = ConvertFile(dir / "Groove.pld");
  EXPECT_EQ(out.filename(), "Groove.p4d");
  EXPECT_EQ(LoadDrumbeatFile(out), p);
  EXPECT_THROW(ReadOldDrumbeat(OldFileText().substr(0, 200)), ToolFileError);
  std::filesystem::remove_all(dir);
}

TEST(DrumMachine, LimitsOfTheAddAndRemoveButtons) {
  DrumMachine m;
  m.pattern = NewDrumPattern();
  ResizePattern(m.pattern, 1, 1);
  EXPECT_EQ(m.removeInstrument(0), "str_GottaHaveOneTrack");
  EXPECT_EQ(m.removeStep(), "str_GottaHaveOneBeat");
  EXPECT_EQ(m.pattern.instruments(), 1);
  EXPECT_EQ(m.pattern.steps(), 1);
  while (m.pattern.instruments() < kMaxDrumInstruments) ASSERT_EQ(m.addInstrument(), "");
  EXPECT_EQ(m.addInstrument(), "str_NoMoreTracks");
  // Each added row is a sound the pattern did not have yet.
  std::vector<std::string> names = m.pattern.Instruments;
  std::sort(names.begin(), names.end());
  EXPECT_EQ(std::unique(names.begin(), names.end()), names.end());
  m.pattern.BeatLength[0] = 3;
  while (m.pattern.steps() < kMaxDrumSteps) ASSERT_EQ(m.addStep(), "");
  EXPECT_EQ(m.addStep(), "str_NoBeatsCanBeAdded");
  EXPECT_EQ(m.pattern.BeatLength.back(), 3);  // new steps continue the rhythm
}

TEST(DrumMachine, CutCopyPasteOfStepRanges) {
  DrumMachine m;
  for (int s = 0; s < 32; ++s) m.pattern.setCell(s, s % 16, true);
  EXPECT_EQ(m.copy(), "str_ChooseSomethingToCopy");
  EXPECT_EQ(m.paste(0), "str_CopySomethingFirst");
  m.select(5, 2);  // either direction
  ASSERT_EQ(m.selection(), (std::pair<int, int>{2, 5}));
  m.pattern.Dotted[3] = true;
  EXPECT_EQ(m.cut(), "");
  EXPECT_EQ(m.pattern.steps(), 28);
  EXPECT_TRUE(m.pattern.cell(2, 6));  // step 6 moved up to 2
  EXPECT_EQ(m.paste(28), "");         // at the end
  EXPECT_EQ(m.pattern.steps(), 32);
  EXPECT_TRUE(m.pattern.cell(28, 2));
  EXPECT_TRUE(m.pattern.Dotted[29]);
  m.select(0, 31);
  EXPECT_EQ(m.cut(), "str_CantCutFile");
  EXPECT_TRUE(m.dirty);
  EXPECT_EQ(m.titleSuffix(), " - [Untitled]");
}

BeatGeneratorChoice Choice(std::vector<int> patterns, int instruments = 1) {
  BeatGeneratorChoice c;
  const auto& all = DefaultDrumInstruments();
  c.instruments.assign(all.end() - instruments, all.end());
  c.patterns = std::move(patterns);
  c.beatsOption = 1;  // 16 steps
  return c;
}

std::string Row(const DrumMachine& m, int instrument) {
  std::string s;
  for (int st = 0; st < m.pattern.steps(); ++st) s += m.pattern.cell(st, instrument) ? 'x' : '.';
  return s;
}

TEST(BeatGenerator, RulesOnAScriptedRandomSource) {
  struct Case {
    const char* what;
    std::vector<int> patterns;
    std::vector<double> draws;  // play?, start, pattern, then improvisation gaps
    std::string row;
  };
  const Case cases[] = {
      {"every beat from 0 fills the row", {1}, {0.0, 0.0, 0.9}, "xxxxxxxxxxxxxxxx"},
      {"one ticked pattern is always drawn", {4}, {0.1, 0.05, 0.99}, "x...x...x...x..."},
      {"a negative start shifts the grid", {4}, {0.2, 0.3, 0.5}, "..x...x...x...x."},
      {"the last of several is never drawn", {3, 8}, {0.0, 0.0, 0.999}, "x..x..x..x..x..x"},
      {"a failed draw leaves the row empty", {1}, {0.34}, "................"},
      {"improvisation draws each gap", {9}, {0.0, 0.0, 0.0, 0.0, 0.5, 0.99, 0.2}, "xx....x.......x."},
  };
  for (const Case& c : cases) {
    DrumMachine m;
    test::ScriptedRandom rng(c.draws);
    BeatGeneratorChoice choice = Choice(c.patterns);
    ASSERT_EQ(CheckGeneratorChoice(choice), "");
    GenerateDrumbeat(m, choice, rng);
    ASSERT_EQ(m.pattern.steps(), 16) << c.what;
    ASSERT_EQ(m.pattern.instruments(), 1) << c.what;
    EXPECT_EQ(m.pattern.Instruments[0], "Acoustic Bass Drum");
    EXPECT_EQ(Row(m, 0), c.row) << c.what;
  }
}

TEST(BeatGenerator, ReplacesTheBeatAndChecksTheChoice) {
  DrumMachine m;
  m.pattern.setCell(3, 3, true);
  m.pattern.Dotted[0] = true;
  test::ScriptedRandom fail({0.9});
  BeatGeneratorChoice choice = Choice({1, 2}, 5);
  choice.beatsOption = 4;
  choice.lengthCode = 3;
  GenerateDrumbeat(m, choice, fail);
  EXPECT_EQ(m.pattern.steps(), 128);
  EXPECT_EQ(m.pattern.instruments(), 5);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(Row(m, i), std::string(128, '.'));
  EXPECT_FALSE(m.pattern.Dotted[0]);
  EXPECT_EQ(m.pattern.BeatLength[127], 3);
  EXPECT_EQ(fail.draws, 5);  // one draw per instrument, nothing more once it fails
  EXPECT_EQ(CheckGeneratorChoice(Choice({})), "str_PleaseChooseAtLeastOnePattern");
  EXPECT_EQ(CheckGeneratorChoice(Choice({1}, 0)), "str_PleaseChooseAtLeastOneInstrument");
}

TEST(DrumMidi, OneTrackWithTheStepLengths) {
  DrumPattern p;
  ResizePattern(p, 4, 2);
  p.Instruments = {"Acoustic Snare", "Closed High-Hat"};
  p.Volumes = {100, 60};
  p.Tempo = 100;
  p.BeatLength = {2, 4, 4, 3};
  p.Tupleted[3] = true;  // an eighth triplet: 160 ticks
  for (int s = 0; s < 4; ++s) p.setCell(s, 0, s != 1);
  p.setCell(1, 1, true);
  const MidiFileData midi = ParseMidiFile(DrumPatternToMidi(p));
  EXPECT_EQ(midi.Format, 0);
  ASSERT_EQ(midi.Tracks.size(), 1u);
  std::vector<std::string> got;
  for (const MidiEvent& e : midi.Tracks[0].Events) {
    if (e.isMeta() && e.Data1 == kMetaTempo) {
      EXPECT_EQ(TempoOf(e), 600000u);
    }
    if (!e.isMeta())
      got.push_back(std::to_string(e.Tick) + (e.isNoteOn() ? " on " : " off ") + std::to_string(e.Data1) +
                    (e.isNoteOn() ? " " + std::to_string(e.Data2) : "") + " ch" + std::to_string(e.channel()));
  }
  const std::vector<std::string> expected = {
      "0 on 38 100 ch9",  "480 off 38 ch9", "480 on 42 60 ch9", "600 off 42 ch9",
      "600 on 38 100 ch9", "720 off 38 ch9", "720 on 38 100 ch9", "880 off 38 ch9"};
  EXPECT_EQ(got, expected);
  // The track lasts as long as the pattern, even when its last step is silent: 160 ticks
  // after the last note end.
  p.setCell(3, 0, false);
  const std::string bytes = DrumPatternToMidi(p);
  EXPECT_EQ(bytes.substr(bytes.size() - 5), std::string("\x81\x20\xFF\x2F\x00", 5));
}

}  // namespace
}  // namespace plectaro
