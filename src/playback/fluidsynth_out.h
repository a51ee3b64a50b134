// The built-in synthesizer: a General MIDI SoundFont played by FluidSynth. It is the default
// output device, so a fresh machine with no MIDI hardware still sounds.
//
// Live, the synthesizer plays through an audio driver. Offline (no driver), the caller pulls
// samples with render(), which is how songs become wave files and how we listen on machines
// without a sound card.
//
// Reading the SoundFont takes a noticeable moment (a fifth of a second for the General MIDI
// one, more on a slow disk). The editor opens it in the background: openDevice then returns at
// once and the font is read on a worker thread. Until it is in, the device counts as open,
// remembers what the channels are told (instruments, controllers, the pitch wheel; see
// ChannelMemory) and drops notes, so that nothing sounds late; the remembered instruments are
// loaded on the worker before the device says it is ready, so the first note after that sounds
// at once. Everything but the worker runs on the caller's thread. Closing or destroying the
// device during the load waits for the load to end (FluidSynth cannot be interrupted).
#pragma once

#include <memory>
#include <mutex>
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
    bool Background = false;   // the first openDevice reads the SoundFont on a worker thread
  };

  explicit FluidSynthOut(Config config);
  ~FluidSynthOut() override;

  int openDevice(int deviceNumber) override;
  void closeDevice() override;
  bool isOpen() const override;
  int shortMsg(uint32_t word) override;
  std::vector<MidiDeviceInfo> devices() override;
  std::string errorText(int code) const override;
  bool loading() const override;
  void setOnLoaded(std::function<void()> onLoaded) override;
  // Blocks until a background load has ended (at once when there is none).
  void waitLoaded();

  // Offline only, once loaded: renders `frames` stereo frames, interleaved left/right, appended
  // to `out`.
  void render(size_t frames, std::vector<float>& out);
  double sampleRate() const { return config_.SampleRate; }
  // Voices still sounding (a tail after the last note may be rendered until it is 0).
  int activeVoices() const;

  static constexpr const char* kDeviceName = "Built-in synthesizer";

 private:
  struct Impl;
  struct Loader;
  static std::unique_ptr<Impl> createSynth(const Config& config, std::string& failure);
  static std::string openDriver(Impl& impl);
  void loadInBackground();
  // Takes over what a finished background load made; waits for it if it still runs.
  void finishLoad();

  Config config_;
  std::unique_ptr<Impl> impl_;
  bool open_ = false;
  std::string failure_;
  std::unique_ptr<Loader> loader_;  // while a background load runs or is not yet taken over
  std::mutex onLoadedMutex_;
  std::function<void()> onLoaded_;
};

}  // namespace plectaro
