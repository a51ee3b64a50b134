// The metronome's beat sets, file and player; the trainers' statistics, timing and rounds.
#include <gtest/gtest.h>

#include "playback/recording_out.h"
#include "playback/virtual_clock.h"
#include "score/settings_store.h"
#include "scripted_random.h"
#include "shell/language.h"
#include "tools/metronome.h"
#include "tools/record_text.h"
#include "tools/trainer.h"

namespace plectaro {
namespace {

TEST(Metronome, BeatIntervalsAndFallbacks) {
  struct Case {
    int upper, lower, bpm;
    int32_t ms;
  };
  for (const Case& c : {Case{4, 4, 120, 500}, Case{6, 8, 120, 250}, Case{2, 2, 120, 1000}, Case{3, 4, 70, 857},
                        Case{4, 16, 60, 250}, Case{4, 3, 120, 500}})
    EXPECT_EQ(BeatIntervalMs(BeatSet{int16_t(c.upper), int16_t(c.lower), int16_t(c.bpm), 1}), c.ms) << c.lower << " " << c.bpm;
  EXPECT_EQ(ParseBeatsUpper(" 7 "), 7);
  for (const char* bad : {"", "x", "0", "2.5", "33", "-3"}) EXPECT_EQ(ParseBeatsUpper(bad), 4) << bad;
}

struct MetronomeRun {
  VirtualClock clock;
  RecordingMidiOut out{[this] { return clock.nowMs(); }};
  MetronomePlayer player{out, clock};
  // (time, velocity) of every click.
  std::vector<std::pair<double, int>> clicks() const {
    std::vector<std::pair<double, int>> c;
    for (const MidiMessage& m : out.messages)
      if (m.Status == 0x90 + kMetronomeChannel && m.Data2 > 0) c.emplace_back(m.TimeMs, m.Data2);
    return c;
  }
};

MetronomeFile Schedule() {
  MetronomeFile f;
  f.Sets = {{2, 4, 120, 1}, {3, 4, 60, 1}, {6, 8, 120, 1}};
  return f;
}

TEST(Metronome, SetsPlayInOrderAndEndWithoutLoop) {
  MetronomeRun run;
  const MetronomeFile f = Schedule();
  bool stopped = false;
  run.player.hooks.stopped = [&] { stopped = true; };
  run.player.play(f);
  run.clock.runUntilIdle(60000);
  EXPECT_TRUE(stopped);
  const std::vector<std::pair<double, int>> expected = {
      {500, 127}, {1000, 100},                                                         // 2/4 at 120
      {2000, 127}, {3000, 100}, {4000, 100},                                           // 3/4 at 60
      {4250, 127}, {4500, 100}, {4750, 100}, {5000, 100}, {5250, 100}, {5500, 100}};  // 6/8 at 120
  EXPECT_EQ(run.clicks(), expected);
  // The instrument goes out first, bank before program.
  ASSERT_GE(run.out.messages.size(), 2u);
  EXPECT_EQ(run.out.messages[0].Status, 0xB0 + kMetronomeChannel);
  EXPECT_EQ(run.out.messages[1].Data1, 115);
}

TEST(Metronome, LoopStartsTheListAgain) {
  MetronomeRun run;
  MetronomeFile f = Schedule();
  f.Loop = true;
  run.player.passes = 2;
  run.player.play(f);
  run.clock.runUntilIdle(60000);
  const auto clicks = run.clicks();
  ASSERT_EQ(clicks.size(), 22u);
  EXPECT_EQ(clicks[11], (std::pair<double, int>{6000, 127}));
  EXPECT_FALSE(run.player.playing());
}

TEST(Metronome, FileRoundTripAndBadFiles) {
  MetronomeFile f = Schedule();
  f.Loop = true;
  f.Instrument = 12;
  const std::string bytes = WriteMetronome(f);
  EXPECT_EQ(bytes.substr(0, 38), "PL4M\r\n 12 \r\n 76 \r\n 100 \r\n 127 \r\nTrue\r\n");
  EXPECT_EQ(ReadMetronome(bytes), f);
  // The magic is not tested, as it never was.
  EXPECT_EQ(ReadMetronome("XXXX" + bytes.substr(4)), f);
  for (const std::string& bad : {std::string(), bytes.substr(0, 60), std::string("PL4M\n1\n1\n1\n1\nTrue\n-1\n"),
                                 std::string("PL4M\n1\n1\n1\n1\nTrue\n5000\n1\n")})
    EXPECT_THROW(ReadMetronome(bad), ToolFileError);
}

TEST(Metronome, UnplayableSetIsNamed) {
  const Messages english;
  auto text = [&](std::string_view k) { return english.str(k); };
  MetronomeFile f = Schedule();
  EXPECT_EQ(CheckPlayable(f, text), "");
  f.Sets[1].BeatSetBars = 0;
  EXPECT_EQ(CheckPlayable(f, text), "Beat set 2 cannot be played: it holds no steps.");
}

TEST(Trainer, StatisticsOverSequencesOfRounds) {
  struct Case {
    const char* what;
    TrainerStats start;
    std::vector<int> rounds;  // correct guesses per round
    double skill;
    std::string_view category;
  };
  TrainerStats fifty;
  fifty.SkillLevel = 50;
  TrainerStats nearTop;  // nine rounds lost, nothing right
  nearTop.TotalRounds = 9;
  nearTop.RoundsLost = 9;
  nearTop.TotalAttempts = 90;
  nearTop.FailedAttempts = 90;
  nearTop.SkillLevel = 996;
  TrainerStats below = nearTop;
  below.SkillLevel = 995;
  TrainerStats perfect;
  perfect.TotalRounds = perfect.RoundsWon = 20;
  perfect.TotalAttempts = perfect.CorrectAttempts = 200;
  perfect.SkillLevel = 990;
  const Case cases[] = {
      {"first round, no zero divide", {}, {10}, 14, "str_AbsoluteNovice"},
      {"a lost first round stays at 0", {}, {6}, 0, "str_AbsoluteNovice"},
      {"no wins sink 2 a round to 0", fifty, std::vector<int>(30, 3), 0, "str_AbsoluteNovice"},
      {"at 996 a win adds no 5", nearTop, {7}, 995, "str_Phenomenal"},
      {"below 996 it does", below, {7}, 999, "str_Phenomenal"},
      {"a perfect record stops at 1000", perfect, {10, 10}, 1000, "str_Phenomenal"},
      {"seven right is a win: 5 - 2 + 10 a round", {}, std::vector<int>(8, 7), 104, "str_Novice"},
  };
  for (const Case& c : cases) {
    TrainerStats s = c.start;
    std::string_view category;
    for (int correct : c.rounds) category = UpdateTrainerStats(s, correct);
    EXPECT_DOUBLE_EQ(s.SkillLevel, c.skill) << c.what;
    EXPECT_EQ(category, c.category) << c.what;
    EXPECT_EQ(s.TotalRounds, c.start.TotalRounds + static_cast<double>(c.rounds.size())) << c.what;
    EXPECT_EQ(s.TotalAttempts, s.CorrectAttempts + s.FailedAttempts) << c.what;
    EXPECT_EQ(s.TotalRounds, s.RoundsWon + s.RoundsLost) << c.what;
  }
}

TEST(Trainer, CategoriesTimesAndPercentages) {
  EXPECT_EQ(SkillCategoryKey(99.9), "str_AbsoluteNovice");
  EXPECT_EQ(SkillCategoryKey(100), "str_Novice");
  EXPECT_EQ(SkillCategoryKey(899), "str_Professional");
  EXPECT_EQ(SkillCategoryKey(900), "str_Phenomenal");
  EXPECT_EQ(SkillCategoryKey(1000), "str_Phenomenal");
  for (auto [skill, ms] : {std::pair{0.0, 10000}, {1000.0, 1000}, {500.0, 5500}, {999.9, 1009}, {-5.0, 10000}})
    EXPECT_EQ(TimeAllowedMs(skill), ms) << skill;
  EXPECT_EQ(PercentText(7, 10), "70.00%");
  EXPECT_EQ(PercentText(1, 3), "33.33%");
  EXPECT_EQ(PercentText(5, 0), "0.00%");
}

TEST(Trainer, StatisticsLastInTheToolsSection) {
  MemorySettingsStore store;
  TrainerStats s;
  UpdateTrainerStats(s, 9);
  s.Category = "Absolute Novice";
  SaveTrainerStats(store, kPitchPrefix, s);
  EXPECT_EQ(store.GetSetting("Tools", "PPSkillLevel"), "13");
  EXPECT_EQ(store.GetSetting("Tools", "PPRoundsWon"), "1");
  EXPECT_EQ(LoadTrainerStats(store, kPitchPrefix), s);
  EXPECT_EQ(LoadTrainerStats(store, kFretboardPrefix), TrainerStats{});  // the other game is apart
  ResetTrainerStats(store, kPitchPrefix, "Absolute Novice");
  EXPECT_EQ(store.GetSetting("Tools", "PPSkillLevel"), "0");
  EXPECT_EQ(store.GetSetting("Tools", "PPCategory"), "Absolute Novice");
}

TEST(Trainer, NoteDraws) {
  struct Case {
    double fretDraw, stringDraw;
    int string, fret;
    const char* answer;
    int pitch;
  };
  for (const Case& c : {Case{0, 0, 0, 0, "e", 64}, Case{0.999, 0.999, 5, 18, "a#", 58}, Case{12.0 / 18, 0.6, 3, 12, "d", 62},
                        Case{5.0 / 18, 0.8, 4, 5, "d", 50}, Case{0.02, 0.09, 0, 0, "e", 64}, Case{0.03, 0.11, 1, 1, "c", 60}}) {
    test::ScriptedRandom rng({c.fretDraw, c.stringDraw});
    const TrainerNote n = DrawTrainerNote(rng);
    EXPECT_EQ(n.string, c.string) << c.fretDraw;
    EXPECT_EQ(n.fret, c.fret) << c.fretDraw;
    EXPECT_EQ(n.answer, c.answer) << c.fretDraw;
    EXPECT_EQ(n.pitch, c.pitch) << c.fretDraw;
  }
}

TEST(Trainer, RoundOfTenAttempts) {
  test::ScriptedRandom rng({0, 0});  // always the open high E
  TrainerRound round(rng);
  round.start();
  EXPECT_EQ(round.guess("a"), TrainerRound::Result::Wrong);
  EXPECT_EQ(round.note().answer, "e");  // the same note stays after a miss
  for (int i = 0; i < 8; ++i) EXPECT_EQ(round.guess("e"), TrainerRound::Result::Correct);
  EXPECT_FALSE(round.over());
  const int drawsBefore = rng.draws;
  EXPECT_EQ(round.timeUp(), TrainerRound::Result::Late);  // late on the tenth ends the round
  EXPECT_TRUE(round.over());
  EXPECT_EQ(round.correct(), 8);
  EXPECT_EQ(round.failed(), 2);
  EXPECT_EQ(rng.draws, drawsBefore);  // no note after the round
  EXPECT_EQ(round.guess("e"), TrainerRound::Result::Wrong);
  EXPECT_EQ(round.attempts(), 10);

  round.start();
  for (int i = 0; i < 9; ++i) round.guess("e");
  const int drawsAtNine = rng.draws;
  EXPECT_EQ(round.guess("e"), TrainerRound::Result::Correct);
  EXPECT_TRUE(round.over());
  EXPECT_EQ(rng.draws, drawsAtNine);
}

}  // namespace
}  // namespace plectaro
