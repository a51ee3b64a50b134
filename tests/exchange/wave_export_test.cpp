// Wave export: formats, refusals before any work, settings, cancel.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "../playback/song_builder.h"
#include "exchange/wave_export.h"
#include "playback/fluidsynth_out.h"
#include "score/file_io.h"

namespace plectaro {
namespace {

namespace fs = std::filesystem;

Score twoBars() {
  Score s = test::MakeSong(2, 2);
  for (int b = 0; b < 2; ++b) {
    test::FourQuarters(s, 0, b, 0, "3");
    test::AddBeat(s, 1, b, kWhole, {{5, "0"}});
  }
  return s;
}

fs::path temp(const std::string& name) { return fs::temp_directory_path() / ("plectaro-wave-" + name); }

TEST(WaveExport, EachFormatAsChosen) {
  const std::string sf = FindSoundFont(nullptr);
  if (sf.empty()) GTEST_SKIP() << "no General MIDI SoundFont installed";
  struct Case {
    int rate, channels, bits;
  };
  // Each render loads the SoundFont, so a few combinations stand for all: both channel counts,
  // both sample sizes, a rate the synthesizer takes and one it is filtered down to.
  for (const Case c : {Case{44100, 2, 16}, Case{22050, 1, 8}, Case{6000, 2, 16}}) {
    SCOPED_TRACE(std::to_string(c.rate) + " " + std::to_string(c.channels) + " " + std::to_string(c.bits));
    WaveJob job;
    job.FromBar = 0;
    job.ToBar = 1;
    job.Rate = c.rate;
    job.Channels = c.channels;
    job.Bits = c.bits;
    job.SoundFont = sf;
    const fs::path out = temp("format.wav");
    ASSERT_EQ(ExportWave(twoBars(), job, out), WaveExportOutcome::Written);
    SF_INFO info{};
    SNDFILE* f = sf_open(out.c_str(), SFM_READ, &info);
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(info.samplerate, c.rate);
    EXPECT_EQ(info.channels, c.channels);
    EXPECT_EQ(info.format, SF_FORMAT_WAV | (c.bits == 8 ? SF_FORMAT_PCM_U8 : SF_FORMAT_PCM_16));
    // Two bars at 120 (about 4 s) and the two-second tail.
    EXPECT_NEAR(static_cast<double>(info.frames) / c.rate, 6.0, 0.2);
    std::vector<float> samples(static_cast<size_t>(info.frames * info.channels));
    sf_readf_float(f, samples.data(), info.frames);
    sf_close(f);
    float peak = 0;
    for (float v : samples) peak = std::max(peak, std::fabs(v));
    EXPECT_GT(peak, 0.05f);   // it sounds
    EXPECT_LT(peak, 0.99f);   // and is not clipped
    fs::remove(out);
  }
}

TEST(WaveExport, RefusedBeforeAnyWorkAndOldFileKept) {
  const fs::path out = temp("kept.wav");
  WriteFileAtomically(out, "old");
  struct Case {
    const char* name;
    int rate, channels, bits, from, to;
  };
  for (const Case c : {Case{"the stored default rate", 110025, 1, 16, 0, 1}, Case{"too low a rate", 3000, 1, 16, 0, 1},
                       Case{"three channels", 44100, 3, 16, 0, 1}, Case{"24 bits", 44100, 2, 24, 0, 1},
                       Case{"bars beyond the song", 44100, 2, 16, 0, 2}, Case{"bars the wrong way", 44100, 2, 16, 1, 0}}) {
    SCOPED_TRACE(c.name);
    WaveJob job;
    job.Rate = c.rate;
    job.Channels = c.channels;
    job.Bits = c.bits;
    job.FromBar = c.from;
    job.ToBar = c.to;
    job.SoundFont = "/nonexistent/gm.sf2";  // never reached: the check comes first
    try {
      ExportWave(twoBars(), job, out);
      ADD_FAILURE() << "expected a refusal";
    } catch (const FileError& e) {
      EXPECT_EQ(std::string(e.what()).find("SoundFont"), std::string::npos) << e.what();
    }
  }
  const std::string sf = FindSoundFont(nullptr);
  if (!sf.empty()) {
    WaveJob job;
    job.ToBar = 1;
    job.SoundFont = sf;
    double seen = 0;
    job.Progress = [&](double done) {
      seen = done;
      return done < 0.5;
    };
    EXPECT_EQ(ExportWave(twoBars(), job, out), WaveExportOutcome::Cancelled);
    EXPECT_GE(seen, 0.5);
    EXPECT_LT(seen, 0.6);
  }
  EXPECT_EQ(ReadWholeFile(out), "old");
  fs::remove(out);
}

TEST(WaveExport, SettingsDefaultsAndRoundTrip) {
  MemorySettingsStore store;
  const WaveSettings defaults = LoadWaveSettings(store);
  EXPECT_EQ(defaults.Rate, 110025);
  EXPECT_EQ(defaults.Channels, 1);
  EXPECT_EQ(defaults.Bits, 16);
  EXPECT_EQ(defaults.FileName, "");
  EXPECT_TRUE(defaults.WAS);
  EXPECT_FALSE(WaveFormatSupported(defaults.Rate, defaults.Channels, defaults.Bits));
  WaveSettings s{22050, 2, 8, "/tmp/a b.wav", false};
  SaveWaveSettings(store, s);
  EXPECT_EQ(store.GetSetting("WavExport", "Rte"), "22050");
  EXPECT_EQ(store.GetSetting("WavExport", "WAS"), "False");
  EXPECT_EQ(LoadWaveSettings(store), s);
  store.SaveSetting("WavExport", "Rte", "fast");
  EXPECT_EQ(LoadWaveSettings(store).Rate, 110025);
}

}  // namespace
}  // namespace plectaro
