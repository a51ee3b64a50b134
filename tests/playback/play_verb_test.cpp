// The `play` verb as a user runs it: trace lines, bar and track choices, errors, devices.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>

#include "playback/offline_play.h"
#include "score/file_io.h"
#include "score/music_file.h"
#include "song_builder.h"
#include "../cli_runner.h"

namespace plectaro {
namespace {

namespace fs = std::filesystem;

class PlayVerb : public ::testing::Test {
 protected:
  PlayVerb() {
    std::string t = (fs::temp_directory_path() / "plectaro-play-XXXXXX").string();
    dir_ = ::mkdtemp(t.data());
    // Two tracks, three bars; track 2 plays the low E on channel 2.
    song_ = test::MakeSong(2, 3);
    for (int b = 0; b < 3; ++b) {
      test::FourQuarters(song_, 0, b, 0, std::to_string(b).c_str());
      test::AddBeat(song_, 1, b, kWhole, {{5, "0"}});
    }
    SaveMusicFile(song_, file());
  }
  ~PlayVerb() override {
    std::error_code ec;
    fs::remove_all(dir_, ec);
  }
  std::string file() const { return (dir_ / "song.plm").string(); }

  int run(const std::string& args, std::string& out) {
    return RunCli(dir_, args, out);
  }
  std::string err() const { return ReadWholeFile(dir_ / "stderr"); }
  long errLines() const {
    const std::string e = err();
    return std::count(e.begin(), e.end(), '\n');
  }

  static std::string Lines(const std::vector<MidiMessage>& msgs) {
    std::string s;
    for (const MidiMessage& m : msgs) s += FormatTraceLine(m) + "\n";
    return s;
  }

  fs::path dir_;
  Score song_;
};

TEST_F(PlayVerb, TraceOfBarsAndTracksCountedFromOne) {
  std::string out;
  ASSERT_EQ(run("play '" + file() + "' --trace", out), 0) << err();
  EXPECT_EQ(out, Lines(TraceSong(song_, 0, 2, {.FollowPlayback = false})));
  ASSERT_EQ(run("play '" + file() + "' --trace --from 2 --to 2", out), 0) << err();
  EXPECT_EQ(out, Lines(TraceSong(song_, 1, 1, {.FollowPlayback = false})));

  ASSERT_EQ(run("play '" + file() + "' --trace --track 2", out), 0) << err();
  Score solo = song_;
  solo.Tracks.erase(solo.Tracks.begin());
  EXPECT_EQ(out, Lines(TraceSong(solo, 0, 2, {.FollowPlayback = false})));
  EXPECT_EQ(out.find(" 90 64 "), std::string::npos);  // the first track is silent
}

TEST_F(PlayVerb, BadChoicesAreClearErrors) {
  const std::pair<std::string, int> cases[] = {
      {"--from 0", 1}, {"--from 4", 1}, {"--from 3 --to 2", 1}, {"--to 9", 1},
      {"--track 3", 1}, {"--track 0", 1}, {"--from two", 2}, {"--loud", 2},
  };
  for (const auto& [args, code] : cases) {
    std::string out;
    EXPECT_EQ(run("play '" + file() + "' --trace " + args, out), code) << args;
    EXPECT_TRUE(out.empty()) << args;
    EXPECT_FALSE(err().empty()) << args;
    EXPECT_EQ(errLines(), code == 1 ? 1 : 2) << args << ": " << err();
  }
  std::string out;
  EXPECT_EQ(run("play '" + (dir_ / "missing.plm").string() + "' --trace", out), 1);
}

TEST_F(PlayVerb, DevicesAndLivePlayWithoutASoundCard) {
  std::string out;
  ASSERT_EQ(run("play --list-devices", out), 0) << err();
  EXPECT_EQ(out.substr(0, out.find('\n')), "0 Built-in synthesizer");
  // The default device; on a machine without sound the song still runs to its end and the
  // reason is told once.
  EXPECT_EQ(run("play '" + file() + "' --from 3", out), 0) << err();
  EXPECT_LE(errLines(), 1) << err();
}

}  // namespace
}  // namespace plectaro
