// Wave export: the song played offline by the built-in synthesizer, on the virtual clock and
// faster than real time, and written as a PCM wave file of the chosen rate, channels and bits.
// There is no sound card to record from, so what the player would send to the synthesizer
// is rendered straight into samples; the temporary file becomes the target only when whole.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "playback/scheduler.h"
#include "score/settings_store.h"

namespace plectaro {

struct Score;

// The dialog's settings, section "WavExport" of the settings store.
struct WaveSettings {
  int32_t Rate = 110025;  // the stored default really has the extra digit; no rate button shows it
  int16_t Channels = 1;
  int16_t Bits = 16;
  std::string FileName;  // the last target
  bool WAS = true;
  bool operator==(const WaveSettings&) const = default;
};
inline constexpr const char* kWaveSection = "WavExport";

WaveSettings LoadWaveSettings(const SettingsStore& store);
void SaveWaveSettings(SettingsStore& store, const WaveSettings& settings);

// The rates of the dialog's buttons, highest first.
inline constexpr int32_t kWaveRates[] = {44100, 22050, 11025, 8000, 6000};

// What the writer can take. The synthesizer renders 8000 to 96000 samples a second; lower
// rates down to 4000 are rendered at a multiple and filtered down. Anything else (the
// stored default 110025 among them) is refused before any work is done.
bool WaveFormatSupported(int32_t rate, int channels, int bits);

struct WaveJob {
  int FromBar = 0;  // 0-based, inclusive
  int ToBar = 0;
  int32_t Rate = 44100;
  int Channels = 2;
  int Bits = 16;
  PlaybackOptions Options;  // count-in and metronome as set
  std::string SoundFont;
  // Called now and then with the share done (0..1); false cancels.
  std::function<bool(double done)> Progress;
};

enum class WaveExportOutcome { Written, Cancelled };

// Renders and writes the wave file. Throws FileError for a format the writer cannot take, a
// range of bars outside the song, a missing SoundFont or a file that cannot be written;
// the old target stays whole in every case, and on Cancel too.
WaveExportOutcome ExportWave(const Score& score, const WaveJob& job, const std::filesystem::path& path);

}  // namespace plectaro
