// The built-in synthesizer reading its SoundFont on a worker thread: what the channels are told
// meanwhile, what is dropped, and an output closed or destroyed before the font is in.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "playback/fluidsynth_out.h"

namespace plectaro {
namespace {

FluidSynthOut::Config offline(const std::string& font, bool background) {
  return {.SoundFont = font, .Live = false, .Background = background};
}

// The loudest sample of a block rendered now.
float peakOf(FluidSynthOut& synth, size_t frames = 8192) {
  std::vector<float> out;
  synth.render(frames, out);
  float peak = 0;
  for (float v : out) peak = std::max(peak, std::fabs(v));
  return peak;
}

// Middle C on channel 0, rendered.
std::vector<float> middleC(FluidSynthOut& synth) {
  synth.shortMsg(MIDIPack(0x90, 60, 100));
  std::vector<float> out;
  synth.render(8192, out);
  return out;
}

class BackgroundLoad : public ::testing::Test {
 protected:
  void SetUp() override {
    font = FindSoundFont(nullptr);
    if (font.empty()) GTEST_SKIP() << "no General MIDI SoundFont installed";
  }
  std::string font;
};

TEST_F(BackgroundLoad, NotesWhileLoadingAreDroppedAndInstrumentsKept) {
  FluidSynthOut synth(offline(font, true));
  std::atomic<int> told{0};
  synth.setOnLoaded([&] { ++told; });
  ASSERT_EQ(synth.openDevice(0), kMidiOk);  // returns before the font is in
  EXPECT_TRUE(synth.isOpen());
  synth.shortMsg(MIDIPack(0xB0, 0, 0));
  synth.shortMsg(MIDIPack(0xC0, 24, 0));      // nylon guitar, kept
  synth.shortMsg(MIDIPack(0x90, 64, 100));    // dropped: it would sound late
  synth.waitLoaded();
  EXPECT_FALSE(synth.loading());
  EXPECT_TRUE(synth.isOpen());
  EXPECT_EQ(told.load(), 1);
  EXPECT_EQ(synth.activeVoices(), 0);
  EXPECT_LT(peakOf(synth), 1e-4f);

  // The kept instrument is the one that sounds: the same note as on a synthesizer told
  // directly, and not the piano a fresh one starts with.
  const std::vector<float> loaded = middleC(synth);
  FluidSynthOut direct(offline(font, false));
  ASSERT_EQ(direct.openDevice(0), kMidiOk);
  FluidSynthOut piano(offline(font, false));
  ASSERT_EQ(piano.openDevice(0), kMidiOk);
  direct.shortMsg(MIDIPack(0xC0, 24, 0));
  peakOf(direct);  // the same silence before the note as the loaded one had
  peakOf(piano);
  EXPECT_EQ(loaded, middleC(direct));
  EXPECT_NE(loaded, middleC(piano));
  EXPECT_GT(synth.activeVoices(), 0);
}

TEST_F(BackgroundLoad, ClosedOrDestroyedBeforeTheFontIsIn) {
  {
    // Destroyed at once, with someone listening: no crash, no call into a dead listener.
    auto synth = std::make_unique<FluidSynthOut>(offline(font, true));
    int calls = 0;
    synth->setOnLoaded([&calls] { ++calls; });
    ASSERT_EQ(synth->openDevice(0), kMidiOk);
    synth->shortMsg(MIDIPack(0xC0, 30, 0));
    synth.reset();
    EXPECT_LE(calls, 1);
  }
  // Closed while loading: the close waits, the font stays, and the next open is immediate.
  FluidSynthOut synth(offline(font, true));
  ASSERT_EQ(synth.openDevice(0), kMidiOk);
  synth.closeDevice();
  EXPECT_FALSE(synth.isOpen());
  EXPECT_FALSE(synth.loading());
  EXPECT_EQ(synth.shortMsg(MIDIPack(0x90, 60, 100)), kMidiNotOpen);
  ASSERT_EQ(synth.openDevice(0), kMidiOk);
  EXPECT_FALSE(synth.loading());
  synth.shortMsg(MIDIPack(0x90, 60, 100));
  EXPECT_GT(peakOf(synth), 0.01f);
}

TEST(BackgroundLoadFailure, AnUnreadableFontFailsOnTheWorkerAndSaysWhy) {
  const auto path = std::filesystem::temp_directory_path() / "plectaro_not_a_soundfont.sf2";
  std::ofstream(path, std::ios::binary) << "RIFF junk, not a SoundFont";
  // Several times over, each destroyed at a different point of its load.
  for (int round = 0; round < 4; ++round) {
    FluidSynthOut synth(offline(path.string(), true));
    std::atomic<int> told{0};
    synth.setOnLoaded([&] { ++told; });
    ASSERT_EQ(synth.openDevice(0), kMidiOk);
    if (round == 3) continue;  // gone before it has ended
    synth.shortMsg(MIDIPack(0xC0, 24, 0));
    if (round == 2) {
      synth.waitLoaded();
      EXPECT_EQ(told.load(), 1);
      EXPECT_FALSE(synth.isOpen());
      EXPECT_NE(synth.errorText(kMidiOpenFailed).find("cannot be read"), std::string::npos);
      EXPECT_EQ(synth.shortMsg(MIDIPack(0x90, 60, 100)), kMidiNotOpen);
    }
  }
  std::filesystem::remove(path);
}

TEST(BackgroundLoadFailure, AMissingFontFailsAtOnce) {
  FluidSynthOut synth(offline("/nonexistent/gm.sf2", true));
  EXPECT_EQ(synth.openDevice(0), kMidiOpenFailed);
  EXPECT_FALSE(synth.loading());
  EXPECT_FALSE(synth.isOpen());
  EXPECT_NE(synth.errorText(kMidiOpenFailed).find("/nonexistent/gm.sf2"), std::string::npos);
}

}  // namespace
}  // namespace plectaro
