#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "playback/fluidsynth_out.h"
#include "playback/offline_play.h"
#include "score/file_io.h"
#include "song_builder.h"

namespace plectaro {
namespace {

TEST(Render, SongThroughTheBuiltInSynthesizer) {
  const std::string sf = FindSoundFont(nullptr);
  if (sf.empty()) GTEST_SKIP() << "no General MIDI SoundFont installed";
  Score s = test::MakeSong(2, 2);
  for (int b = 0; b < 2; ++b) {
    test::FourQuarters(s, 0, b, 0, "3");
    test::AddBeat(s, 1, b, kWhole, {{5, "0"}});
  }
  const RenderedSong song = RenderSong(s, 0, 1, {}, sf, 500);
  const double seconds = static_cast<double>(song.Samples.size() / 2) / song.SampleRate;
  // Two bars at tempo 120 (64 steps of 31 ms each), the stop step, and the tail.
  EXPECT_NEAR(seconds, (31 + 128 * 31 + 500) / 1000.0, 0.01);
  float peak = 0;
  double energy = 0;
  for (float v : song.Samples) {
    peak = std::max(peak, std::fabs(v));
    energy += static_cast<double>(v) * v;
  }
  EXPECT_GT(peak, 0.05f);  // it sounds
  EXPECT_LT(peak, 1.0f);   // and does not clip
  EXPECT_GT(std::sqrt(energy / static_cast<double>(song.Samples.size())), 0.005);

  const auto path = std::filesystem::temp_directory_path() / "plectaro_render_test.wav";
  WriteWav16(path, song);
  const std::string bytes = ReadWholeFile(path);
  EXPECT_EQ(bytes.substr(0, 4), "RIFF");
  EXPECT_EQ(bytes.substr(8, 4), "WAVE");
  EXPECT_EQ(bytes.size(), 44 + song.Samples.size() * 2);
  std::filesystem::remove(path);
}

TEST(Render, MissingSoundFontIsAClearError) {
  Score s = test::MakeSong(1, 1);
  try {
    RenderSong(s, 0, 0, {}, "/nonexistent/gm.sf2");
    FAIL() << "expected an error";
  } catch (const ScoreError& e) {
    EXPECT_NE(std::string(e.what()).find("/nonexistent/gm.sf2"), std::string::npos);
  }
}

}  // namespace
}  // namespace plectaro
