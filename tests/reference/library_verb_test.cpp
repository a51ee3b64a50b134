// The `library` verb: what it lists, its JSON, and a broken file named without failing.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <fstream>

#include "../shell/test_folder.h"
#include "reference/chords.h"

namespace plectaro {
namespace {

struct CliResult {
  int code = -1;
  std::string out, err;
};

CliResult cli(const testing::TempFolder& home, const std::string& args) {
  const std::string errFile = (home / "stderr").string();
  const std::string cmd = std::string(PLECTARO_CLI) + " --home '" + home.path().string() + "' " + args + " 2>'" +
                          errFile + "'";
  CliResult r;
  FILE* p = ::popen(cmd.c_str(), "r");
  std::array<char, 4096> buf;
  size_t n;
  while ((n = std::fread(buf.data(), 1, buf.size(), p)) > 0) r.out.append(buf.data(), n);
  const int status = ::pclose(p);
  r.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  r.err = ReadWholeFile(errFile);
  return r;
}

TEST(LibraryVerb, ListsFiltersAndSkipsBrokenFiles) {
  testing::TempFolder home;
  struct Case {
    std::string args;
    int code;
    size_t lines;           // lines of stdout, when checked
    std::string contains;   // in stdout
  } cases[] = {
      {"library chords", 0, 396, "A m maj7\n"},
      {"library chords --filter am7", 0, 2, "A m7\nA m7-5\n"},
      {"library chords --filter 'a m7-5' --json", 0, 1,
       "[{\"name\":\"A m7-5\",\"startFret\":0,\"numStrings\":6,\"barre\":false,"
       "\"frets\":[\"3\",\"1\",\"0\",\"1\",\"0\",\"3\",\"\"],\"tuning\":[64,59,55,50,45,40,35],"
       "\"fingers\":[0,0,0,0,0,0,0]}]"},
      {"library scales", 0, 38, "Locrian #2\n"},
      {"library scales --filter '#' --json", 0, 1, "\"strings\":[\"\",\"\",\"\",\"02\",\"013\",\"023\",\"0\"]"},
      {"library tunings --filter 'dropped d' --json", 0, 1, "\"notes\":[\"E\",\"B\",\"G\",\"D\",\"A\",\"-D\","},
      {"library drums", 2, 0, ""},
      {"library", 2, 0, ""},
  };
  for (const Case& c : cases) {
    const CliResult r = cli(home, c.args);
    EXPECT_EQ(r.code, c.code) << c.args << ": " << r.err;
    if (c.lines) {
      EXPECT_EQ(static_cast<size_t>(std::count(r.out.begin(), r.out.end(), '\n')), c.lines) << c.args;
    }
    EXPECT_NE(r.out.find(c.contains), std::string::npos) << c.args << "\n" << r.out.substr(0, 300);
  }

  // A short file is named on stderr; the rest is listed all the same.
  std::ofstream(ChordFolder(home.path() / "Data") / "A broken", std::ios::binary) << "\r\n 0 \r\n";
  const CliResult r = cli(home, "library chords --json");
  EXPECT_EQ(r.code, 0);
  EXPECT_NE(r.err.find("\"A broken\""), std::string::npos) << r.err;
  EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '{'), 396);
}

}  // namespace
}  // namespace plectaro
