#include "exchange/wave_export.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "playback/offline_play.h"
#include "score/file_io.h"
#include "score/score_records.h"

namespace plectaro {

namespace {

constexpr int32_t kLowestSynthRate = 8000;
constexpr int32_t kHighestSynthRate = 96000;
constexpr int32_t kLowestRate = 4000;

// Stereo frames down to `channels`: mono is the mean of the two sides.
std::vector<float> toChannels(const std::vector<float>& stereo, int channels) {
  if (channels == 2) return stereo;
  std::vector<float> mono(stereo.size() / 2);
  for (size_t i = 0; i < mono.size(); ++i) mono[i] = 0.5f * (stereo[2 * i] + stereo[2 * i + 1]);
  return mono;
}

// Keeps every `factor`-th frame after a windowed-sinc low-pass at the new Nyquist rate, so
// that nothing above it folds back as noise.
std::vector<float> decimate(const std::vector<float>& in, int channels, int factor) {
  if (factor <= 1) return in;
  constexpr int kHalf = 24;
  const double cutoff = 0.45 / factor;  // of the input rate
  std::vector<double> taps(2 * kHalf + 1);
  double sum = 0;
  for (int i = -kHalf; i <= kHalf; ++i) {
    const double x = 2 * cutoff * i;
    const double sinc = i == 0 ? 1.0 : std::sin(std::numbers::pi * x) / (std::numbers::pi * x);
    const double window = 0.42 + 0.5 * std::cos(std::numbers::pi * i / kHalf) + 0.08 * std::cos(2 * std::numbers::pi * i / kHalf);
    taps[static_cast<size_t>(i + kHalf)] = sinc * window;
    sum += sinc * window;
  }
  for (double& t : taps) t /= sum;
  const long long frames = static_cast<long long>(in.size()) / channels;
  std::vector<float> out;
  out.reserve(static_cast<size_t>(frames / factor + 1) * static_cast<size_t>(channels));
  for (long long f = 0; f < frames; f += factor) {
    for (int c = 0; c < channels; ++c) {
      double acc = 0;
      for (int i = -kHalf; i <= kHalf; ++i) {
        const long long src = f + i;
        if (src < 0 || src >= frames) continue;
        acc += taps[static_cast<size_t>(i + kHalf)] * in[static_cast<size_t>(src * channels + c)];
      }
      out.push_back(static_cast<float>(acc));
    }
  }
  return out;
}

}  // namespace

WaveSettings LoadWaveSettings(const SettingsStore& store) {
  WaveSettings s;
  auto number = [&](const char* key, long long fallback) {
    const std::string text = store.GetSetting(kWaveSection, key, "");
    char* end = nullptr;
    const long long v = std::strtoll(text.c_str(), &end, 10);
    return text.empty() || *end != '\0' ? fallback : v;
  };
  s.Rate = static_cast<int32_t>(std::clamp<long long>(number("Rte", 110025), INT32_MIN, INT32_MAX));
  s.Channels = static_cast<int16_t>(std::clamp<long long>(number("Chl", 1), INT16_MIN, INT16_MAX));
  s.Bits = static_cast<int16_t>(std::clamp<long long>(number("Res", 16), INT16_MIN, INT16_MAX));
  s.FileName = store.GetSetting(kWaveSection, "WFN", "");
  const std::string was = store.GetSetting(kWaveSection, "WAS", "True");
  s.WAS = was == "True" || was == "-1" || was == "1";
  return s;
}

void SaveWaveSettings(SettingsStore& store, const WaveSettings& s) {
  store.SaveSetting(kWaveSection, "Rte", std::to_string(s.Rate));
  store.SaveSetting(kWaveSection, "Chl", std::to_string(s.Channels));
  store.SaveSetting(kWaveSection, "Res", std::to_string(s.Bits));
  store.SaveSetting(kWaveSection, "WFN", s.FileName);
  store.SaveSetting(kWaveSection, "WAS", s.WAS ? "True" : "False");
}

bool WaveFormatSupported(int32_t rate, int channels, int bits) {
  return rate >= kLowestRate && rate <= kHighestSynthRate && (channels == 1 || channels == 2) &&
         (bits == 8 || bits == 16);
}

WaveExportOutcome ExportWave(const Score& score, const WaveJob& job, const std::filesystem::path& path) {
  if (!WaveFormatSupported(job.Rate, job.Channels, job.Bits))
    throw FileError("cannot write a wave file of " + std::to_string(job.Rate) + " samples a second, " +
                    std::to_string(job.Channels) + " channel(s), " + std::to_string(job.Bits) + " bits");
  const int bars = static_cast<int>(score.BarInfos.size());
  if (job.FromBar < 0 || job.ToBar >= bars || job.FromBar > job.ToBar)
    throw FileError("the bars " + std::to_string(job.FromBar + 1) + " to " + std::to_string(job.ToBar + 1) +
                    " are not in the song (bars 1 to " + std::to_string(bars) + ")");
  if (job.SoundFont.empty()) throw FileError("no SoundFont was found for the built-in synthesizer");

  // The length of the song, for the progress bar: a run without the synthesizer costs
  // little next to the sound itself.
  double songMs = 0;
  if (job.Progress) {
    try {
      const auto trace = TraceSong(score, job.FromBar, job.ToBar, job.Options);
      if (!trace.empty()) songMs = trace.back().TimeMs;
    } catch (const ScoreError& e) {
      throw FileError(e.what());
    }
  }
  const int factor = job.Rate >= kLowestSynthRate ? 1 : (kLowestSynthRate + job.Rate - 1) / job.Rate;
  RenderOptions render;
  render.SampleRate = static_cast<double>(job.Rate) * factor;
  if (job.Progress) {
    render.Progress = [&](double ms) { return job.Progress(songMs > 0 ? std::min(1.0, ms / songMs) : 0.0); };
  }
  RenderedSong song;
  try {
    song = RenderSong(score, job.FromBar, job.ToBar, job.Options, job.SoundFont, render);
  } catch (const ScoreError& e) {
    throw FileError(e.what());
  }
  if (song.Cancelled) return WaveExportOutcome::Cancelled;
  const std::vector<float> samples = decimate(toChannels(song.Samples, job.Channels), job.Channels, factor);
  std::string bytes;
  try {
    bytes = EncodeWav(samples, job.Rate, job.Channels, job.Bits);
  } catch (const FileError& e) {
    throw FileError("cannot write \"" + path.string() + "\": " + e.what());
  }
  WriteFileAtomically(path, bytes);
  if (job.Progress) job.Progress(1.0);
  return WaveExportOutcome::Written;
}

}  // namespace plectaro
