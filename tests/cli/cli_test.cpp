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

}  // namespace
}  // namespace plectaro
