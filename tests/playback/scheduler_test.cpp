#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "playback/offline_play.h"
#include "playback/scheduler.h"
#include "playback/speed_trainer.h"
#include "playback/virtual_clock.h"
#include "song_builder.h"

namespace plectaro {
namespace {

using test::AddBeat;
using test::EveryNoteEnds;
using test::FourQuarters;
using test::MakeSong;
using test::NoteOn;
using test::NoteOns;

std::vector<std::string> Lines(const std::vector<MidiMessage>& msgs) {
  std::vector<std::string> lines;
  for (const MidiMessage& m : msgs) lines.push_back(FormatTraceLine(m));
  return lines;
}

std::vector<MidiMessage> Trace(const Score& s, PlaybackOptions options = {}, int from = 0, int to = 32767) {
  return TraceSong(s, from, to, options);
}

std::vector<double> TimesOf(const std::vector<NoteOn>& ons, int channel) {
  std::vector<double> t;
  for (const NoteOn& n : ons)
    if (n.channel == channel) t.push_back(n.ms);
  return t;
}

std::vector<int> KeysOf(const std::vector<NoteOn>& ons) {
  std::vector<int> k;
  for (const NoteOn& n : ons) k.push_back(n.note);
  return k;
}

// Step n of a song at tempo 120 sounds at 31 ms x (n + 1): the first step comes one interval
// after the start.
double Step120(int n) { return 31.0 * (n + 1); }

TEST(Scheduler, SingleNoteFullStream) {
  Score s = MakeSong(1, 1);
  s.Tracks[0].Capo = 2;  // the capo is shown, not played: fret 0 is the open string
  AddBeat(s, 0, 0, kWhole, {{0, "0"}});
  const std::vector<std::string> lines = Lines(Trace(s));

  // Start: all channels silenced (32 messages at 0 ms). Then the note, and the stop on the
  // first step behind the bar (a whole note is 64 steps): the channels cleared, then two full
  // sweeps of all-off.
  const std::vector<std::string> middle = {
      "31.000 B0 120 0", "31.000 B0 123 0", "31.000 B1 120 0", "31.000 B1 123 0", "31.000 B0 0 0",
      "31.000 C0 24 0",  "31.000 B1 0 0",   "31.000 C1 24 0",  "31.000 90 64 100",
      "2015.000 B0 120 0", "2015.000 B0 123 0", "2015.000 B1 120 0", "2015.000 B1 123 0"};
  ASSERT_EQ(lines.size(), 32 + middle.size() + 64);
  EXPECT_EQ(lines[31], "0.000 BF 123 0");
  EXPECT_EQ(std::vector<std::string>(lines.begin() + 32, lines.begin() + 32 + static_cast<long>(middle.size())), middle);
  EXPECT_EQ(lines.back(), "2015.000 BF 123 0");
}

TEST(Scheduler, StepTimingByTempoLengthAndTuplets) {
  struct Case {
    const char* name;
    float tempo;
    std::vector<int> lengths;  // quarter = kQuarter ...
    bool triplets;
    std::string tempoMark;     // on the first beat
    std::vector<double> times;
  };
  const Case cases[] = {
      {"quarters at 120", 120, {kQuarter, kQuarter, kQuarter, kQuarter}, false, "",
       {Step120(0), Step120(16), Step120(32), Step120(48)}},
      {"quarters at 60 (62.5 rounds to 62)", 60, {kQuarter, kQuarter}, false, "", {62, 62 + 16 * 62}},
      {"sixty-fourths start a beat at every step", 120, {6, 6, 6, 6}, false, "",
       {Step120(0), Step120(1), Step120(2), Step120(3)}},
      {"triplet eighths take 6 steps each", 120, {kEighth, kEighth, kEighth}, true, "",
       {Step120(0), Step120(6), Step120(12)}},
      {"a tempo mark changes only the one step after it", 60, {kQuarter, kQuarter}, false, "t=240",
       {62, 62 + 16 + 15 * 62}},
      {"a tempo mark with no digits changes nothing", 60, {kQuarter, kQuarter}, false, "t=",
       {62, 62 + 16 * 62}},
  };
  for (const Case& c : cases) {
    Score s = MakeSong(1, 1, c.tempo);
    for (int len : c.lengths) {
      Beat& b = AddBeat(s, 0, 0, len, {{0, "0"}});
      b.IsTuplet = c.triplets;
    }
    s.barMut(0, 0).Beats[0].Text = c.tempoMark;
    const auto msgs = Trace(s);
    EXPECT_EQ(TimesOf(NoteOns(msgs), 0), c.times) << c.name;
    EXPECT_TRUE(EveryNoteEnds(msgs)) << c.name;
  }
}

// A chord sounds at once; marked with a stroke, it crosses the strings one by one.
TEST(Scheduler, ChordsAndStrokes) {
  struct Case {
    const char* name;
    int stroke, length;
    std::vector<NoteOn> ons;
  };
  const Case cases[] = {
      {"no stroke: all at once", kNoStroke, kQuarter, {{31, 0, 40, 100}, {31, 0, 47, 100}, {31, 0, 52, 100}}},
      {"down stroke: low string first, 5 ms apart", kDownStroke, kQuarter,
       {{31, 0, 40, 100}, {36, 0, 47, 100}, {41, 0, 52, 100}}},
      {"up stroke: high string first", kUpStroke, kQuarter, {{31, 0, 52, 100}, {36, 0, 47, 100}, {41, 0, 40, 100}}},
  };
  for (const Case& c : cases) {
    Score s = MakeSong(1, 1);
    AddBeat(s, 0, 0, c.length, {{3, "2"}, {4, "2"}, {5, "0"}}).Stroke = c.stroke;
    const auto msgs = Trace(s);
    EXPECT_EQ(NoteOns(msgs), c.ons) << c.name;
    EXPECT_TRUE(EveryNoteEnds(msgs)) << c.name;
  }
  // A strum on a 64th at a fast tempo is cut short by the next beat: no late strings.
  Score s = MakeSong(1, 1, 500);  // 8 ms steps
  for (int i = 0; i < 64; ++i) AddBeat(s, 0, 0, 6, {{0, "0"}, {1, "0"}, {2, "0"}, {3, "0"}}).Stroke = kDownStroke;
  const auto ons = NoteOns(Trace(s));
  ASSERT_EQ(ons.size(), 128u);  // the first string on the step, the second 5 ms later
  for (size_t i = 0; i < ons.size(); ++i) EXPECT_EQ(ons[i].ms, 8.0 * static_cast<double>(i / 2 + 1) + (i % 2) * 5) << i;
}

TEST(Scheduler, TracksPlaySideBySideOnTheirChannels) {
  // Bar 1 repeats on itself: every bar, first or again, starts on the same step in both tracks.
  Score s = MakeSong(2, 2);
  s.Tracks[1].Instrument = 33;
  s.BarInfos[1].RepeatOpen = true;
  s.BarInfos[1].RepeatClose = 1;
  for (int b = 0; b < 2; ++b) {
    FourQuarters(s, 0, b, 0, "0");
    AddBeat(s, 1, b, kHalf, {{5, "0"}});
    AddBeat(s, 1, b, kHalf, {{5, "5"}});
  }
  const auto msgs = Trace(s);
  const auto ons = NoteOns(msgs);
  std::vector<double> quarters, halves;
  for (int i = 0; i < 12; ++i) quarters.push_back(Step120(16 * i));
  for (int i = 0; i < 6; ++i) halves.push_back(Step120(32 * i));
  EXPECT_EQ(TimesOf(ons, 0), quarters);
  EXPECT_EQ(TimesOf(ons, 2), halves);
  bool bassProgram = false;
  for (const MidiMessage& m : msgs)
    if (m.Status == 0xC2) bassProgram = bassProgram || m.Data1 == 33;
  EXPECT_TRUE(bassProgram);
  EXPECT_TRUE(EveryNoteEnds(msgs));
}

TEST(Scheduler, RepeatsAndJumpsSetTheBarOrder) {
  struct Case {
    const char* name;
    std::vector<BarInfo> bars;
    std::vector<int> order;  // bar numbers heard; bar b plays key 60 + b
  };
  BarInfo plain;
  BarInfo close1 = plain, close2 = plain, open = plain, sign = plain, toCoda = plain, ds = plain, coda = plain;
  close1.RepeatClose = 1;
  close2.RepeatClose = 2;
  open.RepeatOpen = true;
  sign.Sign = true;
  toCoda.ToCoda = true;
  ds.DSAlCoda = true;
  coda.Coda = true;
  BarInfo openClose = open;
  openClose.RepeatClose = 1;
  const Case cases[] = {
      {"no marks", {plain, plain, plain}, {0, 1, 2}},
      {"repeat close 1 plays the section twice", {plain, close1, plain}, {0, 1, 0, 1, 2}},
      {"repeat close 2 plays it three times", {plain, close2, plain}, {0, 1, 0, 1, 0, 1, 2}},
      {"repeat from the open mark", {plain, open, close1, plain}, {0, 1, 2, 1, 2, 3}},
      {"one-bar repeat", {plain, openClose, plain}, {0, 1, 1, 2}},
      {"D.S. al coda", {plain, sign, toCoda, ds, coda}, {0, 1, 2, 3, 1, 2, 4}},
      {"D.S. without a segno goes to the first bar", {plain, plain, toCoda, ds, coda}, {0, 1, 2, 3, 0, 1, 2, 4}},
      {"to coda before the D.S. is ignored", {plain, toCoda, plain, coda}, {0, 1, 2, 3}},
      {"repeats are served again after the D.S.", {sign, close1, ds, plain}, {0, 1, 0, 1, 2, 0, 1, 0, 1, 2, 3}},
      {"a second close with no open between repeats from the start, once through",
       {plain, close2, plain, close1, plain}, {0, 1, 0, 1, 0, 1, 2, 3, 0, 1, 2, 3, 4}},
      {"a coda written before its to-coda mark is jumped to once",
       {plain, coda, sign, toCoda, ds, plain}, {0, 1, 2, 3, 4, 2, 3, 1, 2, 3, 4, 5}},
  };
  for (const Case& c : cases) {
    const int n = static_cast<int>(c.bars.size());
    Score s = MakeSong(1, n);
    for (int b = 0; b < n; ++b) {
      s.BarInfos[static_cast<size_t>(b)] = c.bars[static_cast<size_t>(b)];
      AddBeat(s, 0, b, kWhole, {{0, std::to_string(b).c_str()}});
    }
    const auto msgs = Trace(s);
    std::vector<int> heard;
    for (int key : KeysOf(NoteOns(msgs))) heard.push_back(key - 64);
    EXPECT_EQ(heard, c.order) << c.name;
    EXPECT_TRUE(EveryNoteEnds(msgs)) << c.name;
  }
}

TEST(Scheduler, PlayingARangeOfBars) {
  Score s = MakeSong(1, 4);
  for (int b = 0; b < 4; ++b) AddBeat(s, 0, b, kWhole, {{0, std::to_string(b).c_str()}});
  const std::pair<std::pair<int, int>, std::vector<int>> cases[] = {
      {{1, 1}, {65}},          // play bar: that bar once
      {{2, 3}, {66, 67}},      // play from here
      {{3, 99}, {67}},         // an end past the score stops at its end
      {{-4, 0}, {64}},
  };
  for (const auto& [range, keys] : cases) {
    const auto msgs = Trace(s, {}, range.first, range.second);
    EXPECT_EQ(KeysOf(NoteOns(msgs)), keys) << range.first << ".." << range.second;
  }
}

TEST(Scheduler, CountInAndMetronomeClicks) {
  struct Case {
    const char* name;
    bool countIn, metronome;
    int numerator;
    std::vector<double> clicks;  // the first few
    double firstNote;
  };
  const Case cases[] = {
      // 4/4 at tempo 120: a click every 31 x 16 = 496 ms; four clicks, then the music on the
      // fifth firing without a click.
      {"count-in in 4/4", true, false, 4, {496, 992, 1488, 1984}, 2480},
      // 3/4: clicks of 4/3 of a quarter, three of them.
      {"count-in in 3/4", true, false, 3, {661, 1322, 1983}, 2644},
      {"metronome only: music starts on the first click", false, true, 4, {496, 992, 1488, 1984}, 496},
      {"count-in and metronome", true, true, 4, {496, 992, 1488, 1984, 2480, 2976}, 2480},
  };
  for (const Case& c : cases) {
    Score s = MakeSong(1, 2);
    s.Tracks[0].Channel = 2;
    s.Tracks[0].EffectChannel = 3;
    for (int b = 0; b < 2; ++b) {
      s.SetTimeSignature(b, c.numerator, 4);
      for (int i = 0; i < c.numerator; ++i) AddBeat(s, 0, b, kQuarter, {{0, "0"}});
    }
    PlaybackOptions opt;
    opt.CountIn = c.countIn;
    opt.Metronome = c.metronome;
    const auto msgs = Trace(s, opt);
    const auto ons = NoteOns(msgs);
    std::vector<double> clicks = TimesOf(ons, 0);
    for (const NoteOn& n : ons) {
      if (n.channel == 0) {
        EXPECT_EQ(n.note, 90) << c.name;
      }
    }
    clicks.resize(std::min(clicks.size(), c.clicks.size()));
    EXPECT_EQ(clicks, c.clicks) << c.name;
    ASSERT_FALSE(TimesOf(ons, 2).empty()) << c.name;
    EXPECT_EQ(TimesOf(ons, 2).front(), c.firstNote) << c.name;
    if (!c.metronome) {
      EXPECT_EQ(TimesOf(ons, 0).size(), c.clicks.size()) << c.name;
    }
    EXPECT_TRUE(EveryNoteEnds(msgs)) << c.name;
  }
}

TEST(Scheduler, DrumTrackPlaysOnChannel9) {
  Score s = MakeSong(2, 1);
  Track& dr = s.Tracks[1];
  dr.DrumTrack = true;
  dr.Channel = 9;
  dr.DrumMaps[0].Drum[0] = 2;  // X: bass drum 1
  dr.DrumMaps[1].Drum[2] = 4;  // x: acoustic snare
  dr.DrumMaps[2].Drum[1] = 0;  // o: nothing mapped, no sound
  FourQuarters(s, 0, 0, 1, "1");
  for (int i = 0; i < 4; ++i) AddBeat(s, 1, 0, kQuarter, {{i % 2, i % 2 ? "x" : "X"}, {2, "o"}});
  const auto msgs = Trace(s);
  const auto ons = NoteOns(msgs);
  std::vector<int> drums;
  for (const NoteOn& n : ons)
    if (n.channel == 9) drums.push_back(n.note);
  EXPECT_EQ(drums, (std::vector<int>{36, 38, 36, 38}));
  EXPECT_EQ(TimesOf(ons, 9), TimesOf(ons, 0));
  for (const MidiMessage& m : msgs) EXPECT_NE(m.Status, 0xC9);
  EXPECT_TRUE(EveryNoteEnds(msgs));
}

TEST(Scheduler, BarsThatDoNotAddUp) {
  // Track 0 is short in bar 0 (two quarters of four), track 1 is long in bar 1 (six).
  // The last track decides where a bar ends; the short track waits, silent, for it.
  Score s = MakeSong(2, 2);
  AddBeat(s, 0, 0, kQuarter, {{0, "0"}});
  AddBeat(s, 0, 0, kQuarter, {{0, "1"}});
  FourQuarters(s, 0, 1, 0, "2");
  FourQuarters(s, 1, 0, 5, "0");
  for (int i = 0; i < 6; ++i) AddBeat(s, 1, 1, kQuarter, {{5, "3"}});
  const auto msgs = Trace(s);
  const auto ons = NoteOns(msgs);
  EXPECT_EQ(TimesOf(ons, 0), (std::vector<double>{Step120(0), Step120(16), Step120(64), Step120(80), Step120(96),
                                                  Step120(112)}));
  std::vector<double> bass = TimesOf(ons, 2);
  ASSERT_EQ(bass.size(), 10u);
  EXPECT_EQ(bass.back(), Step120(64 + 80));
  // The short track's last note stops when its beats run out, not at the bar line.
  bool cut = false;
  for (const MidiMessage& m : msgs)
    if (m.TimeMs == Step120(32) && m.Status == 0xB0 && m.Data1 == 123) cut = true;
  EXPECT_TRUE(cut);
  EXPECT_TRUE(EveryNoteEnds(msgs));
}

TEST(Scheduler, StopInTheMiddleSilencesEverything) {
  Score s = MakeSong(2, 4);
  for (int b = 0; b < 4; ++b) {
    FourQuarters(s, 0, b, 0, "3");
    AddBeat(s, 1, b, kWhole, {{5, "0"}}).Notes[5].LetRing = true;
  }
  VirtualClock clock;
  RecordingMidiOut out([&] { return clock.nowMs(); });
  Scheduler sch(out, clock);
  int stopped = 0;
  sch.hooks.stopped = [&] { ++stopped; };
  sch.PlayTab(s, 0, 3);
  clock.advanceTo(1300);
  ASSERT_TRUE(sch.playing());
  ASSERT_FALSE(EveryNoteEnds(out.messages));
  sch.StopTab();
  EXPECT_FALSE(sch.playing());
  EXPECT_EQ(stopped, 1);
  EXPECT_TRUE(EveryNoteEnds(out.messages));
  const size_t n = out.messages.size();
  clock.advanceTo(10000);
  EXPECT_EQ(out.messages.size(), n);  // nothing more after the stop
  sch.StopTab();                      // stopping when idle is harmless
  EXPECT_EQ(stopped, 1);
}

TEST(Scheduler, SpeedTrainerLoopsFasterEachPass) {
  Score s = MakeSong(1, 1, 60);
  AddBeat(s, 0, 0, kWhole, {{0, "0"}});
  VirtualClock clock;
  RecordingMidiOut out([&] { return clock.nowMs(); });
  Scheduler sch(out, clock);
  SpeedTrainer tr;
  tr.Loops = 2;
  tr.Tempo = 60;
  tr.Step = 60;
  tr.MaxTempo = 150;
  sch.PlayTrainer(s, tr);
  clock.runUntilIdle(1e9);
  // Pass 1 at 60 (62 ms steps), pass 2 at 120 (31 ms), pass 3 capped at 150 (25 ms).
  EXPECT_EQ(TimesOf(NoteOns(out.messages), 0), (std::vector<double>{62, 62 + 64 * 62, 62 + 64 * 62 + 64 * 31}));
  EXPECT_FALSE(sch.playing());
  EXPECT_TRUE(EveryNoteEnds(out.messages));
}

// Four bars with one whole note each, on frets 1 to 4 so each bar's note can be told apart.
Score FourBarSong() {
  Score s = MakeSong(1, 4, 120);
  for (int b = 0; b < 4; ++b) AddBeat(s, 0, b, kWhole, {{0, std::to_string(b + 1).c_str()}});
  return s;
}

TEST(SpeedTrainer, FivePassesClimbTenAtATimeThenStop) {
  struct Case {
    bool countIn;
    int clicksPerPass;
  };
  for (const Case c : {Case{false, 0}, Case{true, 4}}) {
    Score s = FourBarSong();
    VirtualClock clock;
    RecordingMidiOut out([&] { return clock.nowMs(); });
    Scheduler sch(out, clock);
    sch.options.CountIn = c.countIn;
    std::vector<std::pair<int, int>> passes;
    sch.hooks.trainerPass = [&](int pass, int tempo) { passes.push_back({pass, tempo}); };
    SpeedTrainerForm form;
    form.FromBar = 2;
    form.ToBar = 3;
    form.StartTempo = 60;
    form.Step = 10;
    form.TopTempo = 100;
    form.Passes = 5;
    SpeedTrainer tr;
    ASSERT_EQ(CheckSpeedTrainer(form, 4, tr, [](std::string_view k) { return std::string(k); }), "");
    EXPECT_EQ(TrainerPassTempos(tr), (std::vector<int>{60, 70, 80, 90, 100}));
    sch.PlayTrainer(s, tr);
    clock.runUntilIdle(1e9);
    EXPECT_FALSE(sch.playing()) << "stops after the last pass";
    EXPECT_EQ(passes, (std::vector<std::pair<int, int>>{{1, 60}, {2, 70}, {3, 80}, {4, 90}, {5, 100}}));
    // Bars 2 and 3 (frets 2, 3) five times; bars 1 and 4 never.
    std::vector<NoteOn> notes, clicks;
    for (const NoteOn& n : NoteOns(out.messages)) (n.channel == 0 && n.note == 90 && n.velocity == 127 ? clicks : notes).push_back(n);
    std::vector<int> keys;
    for (const NoteOn& n : notes) keys.push_back(n.note - 64);
    EXPECT_EQ(keys, (std::vector<int>{2, 3, 2, 3, 2, 3, 2, 3, 2, 3})) << "count-in " << c.countIn;
    EXPECT_EQ(clicks.size(), static_cast<size_t>(5 * c.clicksPerPass));
    // Within each pass the second bar starts 64 steps of that pass's tempo after the first.
    for (size_t p = 0; p < 5; ++p) {
      const double step = IntervalForTempo(60 + 10 * static_cast<int>(p));
      EXPECT_DOUBLE_EQ(notes[2 * p + 1].ms - notes[2 * p].ms, 64 * step) << "pass " << p + 1;
    }
    EXPECT_TRUE(EveryNoteEnds(out.messages));
  }
}

TEST(SpeedTrainer, FormChecksAndDefaults) {
  const auto key = [](std::string_view k) { return std::string(k); };
  struct Case {
    SpeedTrainerForm form;
    const char* message;
  };
  const Case cases[] = {
      {{1, 2, 60, 5, 120, 5}, ""},
      {{1, 2, 0, 5, 120, 5}, "str_StartRateInvalid1str_Invalid2"},
      {{1, 2, 60, 5, 1000, 5}, "str_FinalRateInvalid1str_Invalid2"},
      {{1, 2, 60, 5, 50, 5}, "str_FinalRateTooLow"},
      {{1, 2, 60, 0, 120, 5}, "str_IncreaseInvalid1str_Invalid2"},
      {{1, 2, 60, 5, 120, 0}, "str_IncreaseFreqInvalid1str_Invalid2"},
      {{3, 2, 60, 5, 120, 5}, "str_PleaseEnterValidNumber"},
      {{1, 5, 60, 5, 120, 5}, "str_PleaseEnterValidNumber"},  // the song has four bars
  };
  for (const Case& c : cases) {
    SpeedTrainer tr;
    EXPECT_EQ(CheckSpeedTrainer(c.form, 4, tr, key), c.message);
  }
  // Capped at the top: the passes after it stay there.
  SpeedTrainer capped{0, 0, 3, 90, 100, 20};
  EXPECT_EQ(TrainerPassTempos(capped), (std::vector<int>{90, 100, 100, 100}));
  // The selection's bars, else the cursor's; 60% of the song's tempo up to the song's.
  Score s = FourBarSong();
  s.Tempo = 140;
  const SpeedTrainerForm sel = DefaultSpeedTrainerForm(s, 0, 1, 2);
  EXPECT_EQ((std::vector<int>{sel.FromBar, sel.ToBar, sel.StartTempo, sel.TopTempo}), (std::vector<int>{2, 3, 84, 140}));
  const SpeedTrainerForm cur = DefaultSpeedTrainerForm(s, 3, -1, -1);
  EXPECT_EQ(cur.FromBar, 4);
  EXPECT_EQ(cur.ToBar, 4);
}

TEST(Scheduler, EndlessSongIsRefusedOffline) {
  // The slowest tempo and a long repeat: days of music.
  Score s = MakeSong(1, 6, 0.01f);
  for (int b = 0; b < 6; ++b) AddBeat(s, 0, b, kWhole, {{0, "0"}});
  s.BarInfos[5].RepeatClose = 32767;
  EXPECT_THROW(Trace(s), ScoreError);
}

}  // namespace
}  // namespace plectaro
