// Runs plectaro-cli as a user would and checks exit codes, output and files.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "score/bar_timing.h"
#include "score/cipher.h"
#include "score/file_io.h"
#include "score/music_file.h"

namespace plectaro {
namespace {

namespace fs = std::filesystem;

struct CliRun {
  int code;
  std::string out;
};

class Cli : public ::testing::Test {
 protected:
  Cli() {
    std::string t = (fs::temp_directory_path() / "plectaro-cli-XXXXXX").string();
    dir_ = ::mkdtemp(t.data());
  }
  ~Cli() override {
    std::error_code ec;
    fs::remove_all(dir_, ec);
  }
  fs::path at(const std::string& name) const { return dir_ / name; }

  // Runs the CLI with a fresh home; stdout is captured, stderr goes to a file.
  CliRun cli(const std::string& args) {
    std::string cmd = std::string(PLECTARO_CLI) + " --home '" + (dir_ / "home").string() + "' " + args +
                      " 2>'" + (dir_ / "stderr").string() + "'";
    CliRun r{0, ""};
    FILE* p = ::popen(cmd.c_str(), "r");
    std::array<char, 4096> buf;
    size_t n;
    while ((n = std::fread(buf.data(), 1, buf.size(), p)) > 0) r.out.append(buf.data(), n);
    int status = ::pclose(p);
    r.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return r;
  }
  std::string stderrText() const { return ReadWholeFile(dir_ / "stderr"); }

 private:
  fs::path dir_;
};

TEST_F(Cli, NewInfoDumpConvert) {
  ASSERT_EQ(cli("new '" + at("a.plm").string() + "'").code, 0);
  CliRun info = cli("info '" + at("a.plm").string() + "' --json");
  ASSERT_EQ(info.code, 0);
  EXPECT_NE(info.out.find("\"title\":\"Untitled\""), std::string::npos);
  EXPECT_NE(info.out.find("\"tempo\":60"), std::string::npos);
  EXPECT_NE(info.out.find("\"tuning\":[0,0,0,0,0,0,0]"), std::string::npos);
  EXPECT_NE(info.out.find("\"bars\":[{\"beats\":1,\"beats64\":16,\"bar64\":64,\"check\":0}]"), std::string::npos);

  CliRun dump = cli("dump '" + at("a.plm").string() + "'");
  ASSERT_EQ(dump.code, 0);
  EXPECT_EQ(dump.out.rfind("Plectaro 4.0\r\n", 0), 0u);
  // A first run writes the defaults of new documents: header font at 19.
  EXPECT_NE(dump.out.find("Times New Roman|19"), std::string::npos);

  ASSERT_EQ(cli("convert '" + at("a.plm").string() + "' '" + at("b.plm").string() + "'").code, 0);
  EXPECT_EQ(ReadWholeFile(at("a.plm")), ReadWholeFile(at("b.plm")));
}

TEST_F(Cli, CheckAndFix) {
  Score s;
  s.SetBarCount(1);
  s.SetBeatCount(0, 1, 4);  // a quarter and four whole notes in 4/4: too long
  SaveMusicFile(s, at("bad.plm"));
  CliRun check = cli("check '" + at("bad.plm").string() + "' --fix '" + at("fixed.plm").string() + "'");
  ASSERT_EQ(check.code, 0) << stderrText();
  EXPECT_NE(check.out.find("track 1 bar 1: too short (16.0 64ths -- 64.0 64ths)"), std::string::npos);
  EXPECT_NE(check.out.find("track 1 bar 2: too long (272.0 64ths -- 64.0 64ths)"), std::string::npos);
  EXPECT_EQ(cli("check '" + at("fixed.plm").string() + "'").out, "every bar is exact\n");
}

TEST_F(Cli, BadInputWritesNothing) {
  std::ofstream(at("picture.plm"), std::ios::binary) << "\x89PNG\r\n\x1a\n";
  CliRun r = cli("convert '" + at("picture.plm").string() + "' '" + at("out.plm").string() + "'");
  EXPECT_EQ(r.code, 1);
  EXPECT_FALSE(fs::exists(at("out.plm")));
  const std::string err = stderrText();
  EXPECT_NE(err.find("is not a Plectaro music file"), std::string::npos);
  EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1);

  // A zero denominator cannot be repaired: the fix fails and writes nothing.
  Score s;
  s.SetTimeSignature(0, 4, 0);
  SaveMusicFile(s, at("zero.plm"));
  r = cli("check '" + at("zero.plm").string() + "' --fix '" + at("out.plm").string() + "'");
  EXPECT_EQ(r.code, 1);
  EXPECT_FALSE(fs::exists(at("out.plm")));
  EXPECT_NE(stderrText().find("denominator 0"), std::string::npos);

  EXPECT_EQ(cli("info '" + at("missing.plm").string() + "'").code, 1);
  EXPECT_EQ(cli("info '" + at("x.xyz").string() + "'").code, 1);
}

TEST_F(Cli, UsageErrors) {
  EXPECT_EQ(cli("").code, 2);
  EXPECT_EQ(cli("frobnicate").code, 2);
  EXPECT_EQ(cli("info").code, 2);
  EXPECT_EQ(cli("info a b").code, 2);
  EXPECT_EQ(cli("info a.plm --bogus").code, 2);
}

TEST_F(Cli, TrackVerbsSetUpABandAndPlayIt) {
  const auto q = [this](const char* name) { return "'" + at(name).string() + "'"; };
  ASSERT_EQ(cli("new " + q("a.plm")).code, 0);
  ASSERT_EQ(cli("track-add " + q("a.plm") + " " + q("b.plm") +
                " --name Bass --strings 5 --tuning '-B -E -A -D -G' --instrument 'fingered bass'").code, 0);
  ASSERT_EQ(cli("track-add " + q("b.plm") + " " + q("c.plm") + " --drums --name Drums").code, 0);
  ASSERT_EQ(cli("track-set " + q("c.plm") + " " + q("d.plm") + " --track 1 --tuning 'Dropped D' --capo 2").code, 0);
  const CliRun set = cli("track-set " + q("d.plm") + " " + q("e.plm") + " --track 2 --volume 80");
  ASSERT_EQ(set.code, 0) << stderrText();
  for (const char* want : {"\"openPitches\":[64,59,55,50,45,38]", "\"capo\":2",
                           "\"name\":\"Bass\",\"drums\":false,\"instrument\":33,\"channel\":2,\"effectChannel\":3",
                           "\"openPitches\":[55,50,45,40,35]", "\"volume\":80",
                           "\"drums\":true,\"instrument\":0,\"channel\":9"})
    EXPECT_NE(set.out.find(want), std::string::npos) << want << " in " << set.out;

  // A bass picked without a tuning gets a bass's tuning, not a guitar's.
  const CliRun bass = cli("track-add " + q("a.plm") + " " + q("bass.plm") + " --instrument 34");
  ASSERT_EQ(bass.code, 0);
  EXPECT_NE(bass.out.find("\"strings\":4,\"capo\":0,\"volume\":50,\"openPitches\":[43,38,33,28]"), std::string::npos)
      << bass.out;

  // Each track plays on its own channel with its own program; the drums send none.
  const CliRun trace = cli("play " + q("e.plm") + " --trace");
  ASSERT_EQ(trace.code, 0);
  for (const char* want : {" C0 24 0", " C1 24 0", " C2 33 0", " C3 33 0"})
    EXPECT_NE(trace.out.find(want), std::string::npos) << want;
  EXPECT_EQ(trace.out.find(" C9 "), std::string::npos);

  // An open low string down 14 semitones has nowhere to go: listed, kept.
  ASSERT_EQ(cli("type " + q("e.plm") + " Down Down Down Down Down 3 " + q("f.plm")).code, 0);
  const CliRun t = cli("transpose " + q("f.plm") + " " + q("g.plm") + " --semitones -14 --tracks 1");
  ASSERT_EQ(t.code, 0);
  EXPECT_NE(t.out.find("\"unplaced\":[{\"track\":1,\"bar\":1,\"beat\":1,\"string\":6,\"fret\":\"3\"}]"),
            std::string::npos) << t.out;

  struct Bad {
    std::string args;
    int code;
  };
  const Bad bad[] = {
      {"track-set " + q("e.plm") + " " + q("x.plm") + " --track 0", 1},
      {"track-set " + q("e.plm") + " " + q("x.plm") + " --track 4", 1},
      {"track-set " + q("e.plm") + " " + q("x.plm"), 2},
      {"track-add " + q("e.plm") + " " + q("x.plm") + " --tuning 'No Such Tuning'", 1},
      {"track-add " + q("e.plm") + " " + q("x.plm") + " --strings 8", 1},
      {"track-add " + q("e.plm") + " " + q("x.plm") + " --strings 5 --tuning 'E A D G B E'", 1},
      {"track-add " + q("e.plm") + " " + q("x.plm") + " --instrument 128", 1},
      {"transpose " + q("e.plm") + " " + q("x.plm") + " --semitones 2 --tracks 1,9", 1},
      {"transpose " + q("e.plm") + " " + q("x.plm") + " --semitones 2 --tracks one", 2},
      {"transpose " + q("e.plm") + " " + q("x.plm"), 2},
      {"layout " + q("e.plm") + " --track 0", 1},
  };
  for (const Bad& b : bad) EXPECT_EQ(cli(b.args).code, b.code) << b.args;
  EXPECT_FALSE(fs::exists(at("x.plm")));
}

}  // namespace
}  // namespace plectaro
