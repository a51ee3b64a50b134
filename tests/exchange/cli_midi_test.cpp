// `convert` with MIDI files and `batch`, as a user runs them: exit codes, what is written and
// what is refused.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>

#include "exchange/midi_file.h"
#include "../cli_runner.h"
#include "score/file_io.h"
#include "shell/ini_settings.h"

namespace plectaro {
namespace {

namespace fs = std::filesystem;

class MidiVerbs : public ::testing::Test {
 protected:
  MidiVerbs() {
    std::string t = (fs::temp_directory_path() / "plectaro-midi-XXXXXX").string();
    dir_ = ::mkdtemp(t.data());
    fs::create_directories(dir_ / "in");
  }
  ~MidiVerbs() override {
    std::error_code ec;
    fs::remove_all(dir_, ec);
  }
  fs::path at(const std::string& name) const { return dir_ / name; }
  int run(const std::string& args, std::string& out) {
    return RunCli(dir_, args, out);
  }
  std::string err() const { return ReadWholeFile(dir_ / "stderr"); }
  fs::path dir_;
};

TEST_F(MidiVerbs, ConvertBothWaysAndBatch) {
  const std::string demo = std::string(PLECTARO_SOURCE_DIR) + "/data/examples/";
  std::string out;
  ASSERT_EQ(run("convert " + demo + "band.plm " + at("in/band.mid").string(), out), 0) << err();
  ASSERT_EQ(run("convert " + demo + "riff.plm " + at("in/riff.mid").string(), out), 0) << err();
  EXPECT_EQ(ParseMidiFile(ReadWholeFile(at("in/band.mid"))).Tracks.size(), 4u);

  ASSERT_EQ(run("convert " + at("in/band.mid").string() + " " + at("two.plm").string() + " --tracks 1,3 --quantize",
                out), 0) << err();
  ASSERT_EQ(run("info " + at("two.plm").string(), out), 0);
  EXPECT_NE(out.find("Track 1: Rhythm Guitar"), std::string::npos) << out;
  EXPECT_NE(out.find("Track 2: Bass"), std::string::npos) << out;
  EXPECT_EQ(out.find("Track 3"), std::string::npos) << out;

  // A damaged file among good ones: the others are converted, the summary counts it.
  WriteFileAtomically(at("in/broken.mid"), ReadWholeFile(at("in/riff.mid")).substr(0, 40));
  EXPECT_EQ(run("batch " + at("in").string() + " --to plm --out " + at("out").string(), out), 1);
  EXPECT_EQ(out, "converted 2 of 3 files to .plm, 1 failed\n");
  EXPECT_NE(err().find("broken.mid: "), std::string::npos) << err();
  EXPECT_TRUE(fs::exists(at("out/band.plm")));
  EXPECT_FALSE(fs::exists(at("out/broken.plm")));
}

// Text tab both ways through `batch`: written with the export settings of PL4.ini, read with
// .tab files counted as text tab, and each file the same as `convert` makes of it.
TEST_F(MidiVerbs, BatchTextTab) {
  const std::string demo = std::string(PLECTARO_SOURCE_DIR) + "/data/examples/";
  IniSettings ini;
  ini.CopyrightWarning = false;
  ini.MaxLineLength = 30;
  fs::create_directories(at("home"));
  SaveINISettings(ini, at("home/PL4.ini"));
  fs::copy_file(demo + "riff.plm", at("in/riff.plm"));
  WriteFileAtomically(at("in/lick.tab"), "Title: Lick\r\ne|--5h7--8--|\r\nB|--------10-|\r\nG|-----------|\r\n"
                                         "D|-----------|\r\nA|-----------|\r\nE|-----------|\r\n");
  std::string out;
  ASSERT_EQ(run("batch " + at("in").string() + " --from plm --to txt --out " + at("txt").string(), out), 0) << err();
  EXPECT_EQ(out, "converted 1 of 1 files to .txt\n");
  ASSERT_EQ(run("convert " + demo + "riff.plm " + at("riff.txt").string() + " --no-warning --max-line 30", out), 0);
  EXPECT_EQ(ReadWholeFile(at("txt/riff.txt")), ReadWholeFile(at("riff.txt")));

  ASSERT_EQ(run("batch " + at("in").string() + " --from txt --to plm --out " + at("plm").string(), out), 0) << err();
  EXPECT_EQ(out, "converted 1 of 1 files to .plm\n");
  ASSERT_EQ(run("convert " + at("in/lick.tab").string() + " " + at("lick.plm").string(), out), 0) << err();
  ASSERT_EQ(run("info " + at("plm/lick.plm").string(), out), 0);
  std::string direct;
  ASSERT_EQ(run("info " + at("lick.plm").string(), direct), 0);
  EXPECT_EQ(out.substr(out.find('\n')), direct.substr(direct.find('\n')));
  EXPECT_NE(out.find("lick"), std::string::npos) << out;  // named after its file
}

TEST_F(MidiVerbs, BadInputAndUsage) {
  WriteFileAtomically(at("in/short.mid"), std::string("MThd\0\0\0\6\0\0\0\1\1\xE0MTrk\0\0\1\0\0\x90", 24));
  struct Case {
    std::string args;
    int code;
    const char* message;
  } cases[] = {
      {"convert " + at("in/short.mid").string() + " " + at("x.plm").string(), 1, "claims 256 bytes"},
      {"convert " + at("in/short.mid").string() + " " + at("x.plm").string() + " --tracks 0", 2, "--tracks"},
      {"convert " + at("in/none.mid").string() + " " + at("x.plm").string(), 1, "none.mid"},
      {"batch " + at("in").string() + " --to xyz", 2, "xyz"},
      {"batch " + at("in").string(), 2, "--to"},
      {"batch " + at("nowhere").string() + " --to plm", 1, "nowhere"},
  };
  for (const Case& c : cases) {
    std::string out;
    EXPECT_EQ(run(c.args, out), c.code) << c.args;
    EXPECT_NE(err().find(c.message), std::string::npos) << c.args << ": " << err();
  }
  EXPECT_FALSE(fs::exists(at("x.plm")));
}

}  // namespace
}  // namespace plectaro
