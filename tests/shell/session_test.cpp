#include "shell/session.h"
#include "shell/status_time.h"
#include "shell/tempo_name.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "score/file_io.h"
#include "score/new_score.h"
#include "test_folder.h"

namespace plectaro {
namespace {

std::vector<std::filesystem::path> seeds() { return {testing::SourceData()}; }

TEST(CommandLine, OptionsFilesAndAddresses) {
  struct Case {
    std::vector<std::string> args;
    std::string home, file, web, error;
    bool time;
  };
  const Case cases[] = {
      {{}, "", "", "", "", false},
      {{"--home", "/h", "song.plm"}, "/h", "song.plm", "", "", false},
      {{"--home=/h", "--print-startup-time"}, "/h", "", "", "", true},
      {{"My Song.plm"}, "", "My Song.plm", "", "", false},
      {{"file:///tmp/a.plm"}, "", "/tmp/a.plm", "", "", false},
      {{"HTTP://tabs.example/x"}, "", "", "HTTP://tabs.example/x", "", false},
      {{"--home"}, "", "", "", "--home needs a folder", false},
      {{"--frobnicate"}, "", "", "", "unknown option --frobnicate", false},
  };
  for (const Case& c : cases) {
    const CommandLine cmd = ParseCommandLine(c.args);
    EXPECT_EQ(cmd.home, c.home);
    EXPECT_EQ(cmd.file, c.file);
    EXPECT_EQ(cmd.webAddress, c.web);
    EXPECT_EQ(cmd.error, c.error);
    EXPECT_EQ(cmd.printStartupTime, c.time);
  }
}

TEST(Session, FirstRunWritesTheSettingsAndALaterRunReadsThem) {
  testing::TempFolder home;
  ScriptedPrompter prompter;
  const AppFolder folder = ResolveAppFolder(home.path().string());
  {
    Session s(folder, prompter);
    EXPECT_TRUE(s.start({}, seeds()));
    EXPECT_TRUE(s.firstRun());
    EXPECT_TRUE(std::filesystem::exists(folder.iniFile()));
    EXPECT_EQ(ReadWholeFile(s.languageFile()),
              ReadWholeFile(testing::SourceData() / "Languages" / "English.txt"));
    EXPECT_EQ(s.settings().GetSetting(kDefaultInfoSection, "GFONTSIZE"), "19");
    // The first document follows the first-run defaults and has nothing to lose.
    EXPECT_EQ(s.doc().score.HeaderFont.Size, 19);
    EXPECT_EQ(s.doc().score.Title, "Untitled");
    EXPECT_FALSE(s.files().hasUnsavedWork());
    s.ini().UndoLevels = 7;
    s.ini().ToolbarVisible[5] = false;
    s.settings().SaveSetting(kDefaultInfoSection, "3", "Me");
    s.FretboardStyle = 2;
    WriteFileAtomically(folder.data() / "temp", "left by a crash");
    s.shutdown();
    EXPECT_FALSE(std::filesystem::exists(folder.data() / "temp"));
  }
  {
    Session s(folder, prompter);
    EXPECT_TRUE(s.start({}, seeds()));
    EXPECT_FALSE(s.firstRun());
    EXPECT_EQ(s.ini().UndoLevels, 7);
    EXPECT_FALSE(s.ini().ToolbarVisible[5]);
    EXPECT_EQ(s.doc().score.Author, "Me");
    EXPECT_EQ(s.FretboardStyle, 2);
  }
  EXPECT_TRUE(prompter.asked().empty());
}

TEST(Session, OpensTheCommandLineFileAndSwitchesLanguage) {
  testing::TempFolder home;
  ScriptedPrompter prompter;
  Session s(ResolveAppFolder(home.path().string()), prompter);
  CommandLine cmd;
  cmd.file = (testing::SourceData() / "examples" / "riff.plm").string();
  cmd.webAddress = "https://tabs.example/song";
  ASSERT_TRUE(s.start(cmd, seeds()));
  EXPECT_EQ(s.StartAddress(), cmd.webAddress);
  EXPECT_NE(s.doc().score.Title, "Untitled");
  EXPECT_EQ(s.ini().RecentFiles[0], cmd.file);

  // A second language beside English; choosing it replaces the file in force.
  std::string german = ReadWholeFile(s.folder().data() / "Languages" / "English.txt");
  german.replace(german.find("Plectaro 4 Language File"), 24, "Plectaro 4 Sprachdatei   ");
  WriteFileAtomically(s.folder().data() / "Languages" / "Deutsch.txt", german);
  EXPECT_EQ(s.languages(), (std::vector<std::string>{"Deutsch", "English"}));
  EXPECT_TRUE(s.chooseLanguage("Deutsch"));
  EXPECT_EQ(ReadWholeFile(s.languageFile()), german);
  EXPECT_FALSE(s.chooseLanguage("Klingon"));
  EXPECT_EQ(prompter.asked().size(), 1u);
  EXPECT_EQ(ReadWholeFile(s.languageFile()), german);
}

TEST(TempoName, WordsFollowTheTempo) {
  const std::pair<double, const char*> cases[] = {
      {1, "(Grave)"},      {39.9, "(Grave)"},    {40, "(Largo)"},      {60, "(Lento)"},
      {70, "(Adagio)"},    {76, "(Andante)"},    {112, "(Moderato)"},  {120, "(allegro)"},
      {199, "(Presto)"},   {200, "(Prestissimo)"}, {1e9, "(Prestissimo)"}, {-5, "(Grave)"},
  };
  for (const auto& [bpm, name] : cases) EXPECT_EQ(TempoName(bpm), name) << bpm;
  EXPECT_EQ(TempoName(std::nan("")), "");
}

TEST(StatusTime, CursorTimeCountsTheBeatsBeforeIt) {
  MemorySettingsStore settings;
  Document doc;
  InitScore(doc, settings);
  Score& s = doc.score;
  s.SetBarCount(2);
  s.SetBeatCount(0, 0, 3);  // four quarters in bar 0
  for (int k = 0; k < 4; ++k) s.beatMut(0, 0, k).Length = 2;
  s.Tempo = 120;
  struct Case {
    int bar, beat;
    float tempo;
    std::optional<double> seconds;
  };
  const Case cases[] = {
      {0, 0, 120, 0.0}, {0, 2, 120, 1.0}, {1, 0, 120, 2.0}, {1, 0, 60, 4.0},
      {0, 1, 0, std::nullopt}, {0, 1, -5, std::nullopt},
  };
  for (const Case& c : cases) {
    doc.CursorBar = static_cast<int16_t>(c.bar);
    doc.CursorBeat = static_cast<int16_t>(c.beat);
    s.Tempo = c.tempo;
    EXPECT_EQ(CursorTimeSeconds(doc), c.seconds) << c.bar << "/" << c.beat << " at " << c.tempo;
  }
  s.Tempo = 120;
  s.beatMut(0, 0, 0).Length = 99;  // a value from a damaged file
  doc.CursorBar = 1;
  EXPECT_EQ(CursorTimeSeconds(doc), std::nullopt);
  for (const auto& [seconds, shown] : std::vector<std::pair<double, std::string>>{
           {0, "0:00"}, {1.5, "0:01"}, {59.99, "0:59"}, {60, "1:00"}, {754.25, "12:34"}, {4500, "75:00"}, {-3, "0:00"}})
    EXPECT_EQ(FormatStatusTime(seconds), shown) << seconds;
}

TEST(Session, ADamagedSettingsFileStartsWithWhatItCanRead) {
  testing::TempFolder home;
  ScriptedPrompter prompter;
  const AppFolder folder = ResolveAppFolder(home.path().string());
  WriteFileAtomically(folder.iniFile(), std::string("Plectaro 4 INI File\r\n\x01\x02garbage", 31));
  Session s(folder, prompter);
  EXPECT_TRUE(s.start({}, seeds()));
  EXPECT_FALSE(s.firstRun());
  EXPECT_EQ(s.ini(), IniSettings());
}

}  // namespace
}  // namespace plectaro
