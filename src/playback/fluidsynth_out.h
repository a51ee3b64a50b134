// The built-in synthesizer: a General MIDI SoundFont played by FluidSynth. It is the default
// output device, so a fresh machine with no MIDI hardware still sounds.
//
// Live, the synthesizer plays through an audio driver. Offline (no driver), the caller pulls
// samples with render(), which is how songs become wave files and how we listen on machines
// without a sound card.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "playback/midi_out.h"
#include "score/settings_store.h"

namespace plectaro {

// Where the SoundFont is looked for: a path in the settings (section "Playback", key
// "SoundFont") if that file exists, else the standard install paths of the General MIDI
// SoundFont packages. Empty if none is found.
std::string FindSoundFont(const SettingsStore* settings);
inline constexpr const char* kSoundFontSection = "Playback";
inline constexpr const char* kSoundFontKey = "SoundFont";

class FluidSynthOut : public MidiOut {
 public:
  struct Config {
    std::string SoundFont;
    bool Live = true;          // open an audio driver; false: render() pulls the samples
    double SampleRate = 44100;
    double Gain = 0.3;         // leaves headroom for a full band playing at once
  };

  explicit FluidSynthOut(Config config);
  ~FluidSynthOut() override;

  int openDevice(int deviceNumber) override;
  void closeDevice() override;
  bool isOpen() const override { return open_; }
  int shortMsg(uint32_t word) override;
  std::vector<MidiDeviceInfo> devices() override;
  std::string errorText(int code) const override;

  // Offline only: renders `frames` stereo frames, interleaved left/right, appended to `out`.
  void render(size_t frames, std::vector<float>& out);
  double sampleRate() const { return config_.SampleRate; }
  // Voices still sounding (a tail after the last note may be rendered until it is 0).
  int activeVoices() const;

  static constexpr const char* kDeviceName = "Built-in synthesizer";

 private:
  struct Impl;
  Config config_;
  std::unique_ptr<Impl> impl_;
  bool open_ = false;
  std::string failure_;
};

}  // namespace plectaro
