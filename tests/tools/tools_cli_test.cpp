// The tools' files on the command line: play traces checked against the interval rules,
// conversions, and refusals that write nothing.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <sstream>

#include "../cli_runner.h"
#include "score/file_io.h"
#include "score/value_text.h"
#include "tools/drum_midi.h"
#include "tools/drum_pattern.h"
#include "tools/metronome.h"

namespace plectaro {
namespace {

namespace fs = std::filesystem;

class ToolsCli : public ::testing::Test {
 protected:
  ToolsCli() {
    std::string t = (fs::temp_directory_path() / "plectaro-tools-XXXXXX").string();
    dir_ = ::mkdtemp(t.data());
  }
  ~ToolsCli() override {
    std::error_code ec;
    fs::remove_all(dir_, ec);
  }
  fs::path path(const char* name) const { return dir_ / name; }

  int run(const std::string& args, std::string& out) {
    return RunCli(dir_, args, out);
  }

  // Times of the note-ons of a trace, by key.
  static std::vector<double> onTimes(const std::string& trace, const std::string& status, int key) {
    std::vector<double> t;
    for (std::string_view line : SplitLines(trace)) {
      std::istringstream in{std::string(line)};
      double ms;
      std::string st;
      int d1, d2;
      if (in >> ms >> st >> d1 >> d2 && st == status && d1 == key && d2 > 0) t.push_back(ms);
    }
    return t;
  }

  fs::path dir_;
};

TEST_F(ToolsCli, DrumTraceFollowsEachStepsInterval) {
  DrumPattern p = NewDrumPattern();
  ResizePattern(p, 3, 16);
  p.Tempo = 100;
  p.BeatLength = {2, 3, 3};
  p.Dotted[1] = true;
  for (int s = 0; s < 3; ++s) p.setCell(s, 15, true);
  SaveDrumbeatFile(path("beat.p4d"), p);
  std::string out;
  ASSERT_EQ(run("play '" + path("beat.p4d").string() + "' --trace --loops 2", out), 0);
  std::vector<double> expected;
  double t = StepIntervalMs(p, 0);
  for (int pass = 0; pass < 2; ++pass)
    for (int s = 0; s < 3; ++s) {
      expected.push_back(t);
      t += StepIntervalMs(p, s);
    }
  EXPECT_EQ(onTimes(out, "99", 35), expected);
  EXPECT_EQ(expected[1] - expected[0], 600);  // a quarter at 100
  EXPECT_EQ(expected[2] - expected[1], 450);  // a dotted eighth
}

TEST_F(ToolsCli, MetronomeTraceFollowsTheSets) {
  MetronomeFile f;
  f.Sets = {{3, 4, 80, 2}, {4, 4, 100, 1}};
  SaveMetronomeFile(path("practice.p4m"), f);
  std::string out;
  ASSERT_EQ(run("play '" + path("practice.p4m").string() + "' --trace", out), 0);
  const std::vector<double> clicks = onTimes(out, "9E", f.BeatPitch);
  ASSERT_EQ(clicks.size(), 10u);
  EXPECT_EQ(clicks[0], 750);
  EXPECT_EQ(clicks[5] - clicks[4], 750);  // 3/4 at 80, two bars
  EXPECT_EQ(clicks[6] - clicks[5], 600);  // then 4/4 at 100
  EXPECT_EQ(clicks[9] - clicks[8], 600);
}

TEST_F(ToolsCli, ConversionsAndRefusals) {
  std::string old;
  for (int i = 0; i < 16; ++i) old += std::to_string(i % 12) + "\r\n";
  for (int i = 0; i < 16; ++i) old += "127\r\n";
  old += "90\r\n";
  for (int c = 0; c < 256; ++c) old += (c % 17 == 0 ? "1\r\n" : "0\r\n");
  WriteFileAtomically(path("old.pld"), old);
  std::string out;
  ASSERT_EQ(run("convert '" + path("old.pld").string() + "' '" + path("new.p4d").string() + "'", out), 0);
  const DrumPattern p = LoadDrumbeatFile(path("new.p4d"));
  EXPECT_EQ(p.Tempo, 90);
  EXPECT_TRUE(p.cell(15, 15));
  ASSERT_EQ(run("convert '" + path("new.p4d").string() + "' '" + path("new.mid").string() + "'", out), 0);
  EXPECT_EQ(ReadWholeFile(path("new.mid")), DrumPatternToMidi(p));

  WriteFileAtomically(path("bad.p4d"), "PL4D\r\n 3 \r\n");
  EXPECT_EQ(run("convert '" + path("bad.p4d").string() + "' '" + path("bad.mid").string() + "'", out), 1);
  EXPECT_FALSE(fs::exists(path("bad.mid")));
  EXPECT_EQ(run("play '" + path("bad.p4d").string() + "' --trace", out), 1);
  EXPECT_EQ(out, "");
  EXPECT_EQ(run("play '" + path("new.p4d").string() + "' --trace --loops 0", out), 2);
}

}  // namespace
}  // namespace plectaro
