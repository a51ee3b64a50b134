// plectaro-cli type: keys replayed on a file, exit codes, and nothing written on bad input.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "score/music_file.h"
#include "score/new_score.h"
#include "score/settings_store.h"

namespace plectaro {
namespace {

namespace fs = std::filesystem;

int run(const fs::path& home, const std::string& args, std::string* out = nullptr) {
  const std::string cmd = std::string(PLECTARO_CLI) + " --home '" + home.string() + "' " + args + " 2>/dev/null";
  FILE* p = ::popen(cmd.c_str(), "r");
  if (!p) return -1;
  char buf[512];
  std::string text;
  while (size_t n = std::fread(buf, 1, sizeof buf, p)) text.append(buf, n);
  const int status = ::pclose(p);
  if (out) *out = text;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(CliType, KeysReplayedAndBadInputWritesNothing) {
  std::string t = (fs::temp_directory_path() / "plectaro-type-XXXXXX").string();
  const fs::path dir = ::mkdtemp(t.data());
  const fs::path in = dir / "in.plm";
  ASSERT_EQ(run(dir / "home", "new '" + in.string() + "'"), 0);

  std::string json;
  const fs::path out = dir / "out.plm";
  ASSERT_EQ(run(dir / "home", "type '" + in.string() + "' - 5 Right 1 2 Right Down x Shift+3 '" + out.string() + "'", &json), 0);
  EXPECT_NE(json.find("\"changed\":true"), std::string::npos) << json;
  Document doc;
  MemorySettingsStore settings;
  ASSERT_EQ(OpenMusicFile(doc, out, settings), OpenOutcome::Opened);
  EXPECT_EQ(doc.score.note(0, 0, 0, 0).Fret, "5");
  EXPECT_EQ(doc.score.note(0, 0, 1, 0).Fret, "12");
  EXPECT_EQ(doc.score.note(0, 0, 2, 1).Fret, "x");
  EXPECT_TRUE(doc.score.beat(0, 0, 2).IsTuplet);
  EXPECT_EQ(doc.score.beat(0, 0, 0).Length, kEighth);

  struct Bad {
    std::string args;
    int code;
  };
  const fs::path never = dir / "never.plm";
  const Bad bad[] = {
      {"type '" + in.string() + "' Foo '" + never.string() + "'", 2},
      {"type '" + in.string() + "'", 2},
      {"type '" + (dir / "missing.plm").string() + "' 5 '" + never.string() + "'", 1},
      {"type '" + in.string() + "' 5 '" + never.string() + "' --track 3", 1},
  };
  for (const Bad& b : bad) {
    EXPECT_EQ(run(dir / "home", b.args), b.code) << b.args;
    EXPECT_FALSE(fs::exists(never)) << b.args;
  }
  fs::remove_all(dir);
}

}  // namespace
}  // namespace plectaro
