#include "playback/fluidsynth_out.h"

#include <fluidsynth.h>

#include <filesystem>
#include <mutex>

namespace plectaro {

namespace {

// FluidSynth reports through a process-wide log hook. We keep its last error so the failure
// can be told in our own words, once, instead of lines on stderr.
std::mutex gLogMutex;
std::string gLastFluidError;

void fluidLog(int level, const char* message, void*) {
  if (level > FLUID_WARN || !message) return;
  std::lock_guard lock(gLogMutex);
  gLastFluidError = message;
}

std::string takeFluidError() {
  std::lock_guard lock(gLogMutex);
  std::string e = std::move(gLastFluidError);
  gLastFluidError.clear();
  return e;
}

void installLogHook() {
  static std::once_flag once;
  std::call_once(once, [] {
    for (int level : {FLUID_PANIC, FLUID_ERR, FLUID_WARN}) fluid_set_log_function(level, fluidLog, nullptr);
    fluid_set_log_function(FLUID_INFO, nullptr, nullptr);
    fluid_set_log_function(FLUID_DBG, nullptr, nullptr);
  });
}

bool isFile(const std::string& path) {
  std::error_code ec;
  return !path.empty() && std::filesystem::is_regular_file(path, ec);
}

}  // namespace

std::string FindSoundFont(const SettingsStore* settings) {
  if (settings) {
    if (auto path = settings->value(kSoundFontSection, kSoundFontKey); path && isFile(*path)) return *path;
  }
  for (const char* path : {"/usr/share/sounds/sf2/FluidR3_GM.sf2", "/usr/share/sounds/sf2/default-GM.sf2",
                           "/usr/share/soundfonts/default.sf2", "/usr/share/soundfonts/FluidR3_GM.sf2"}) {
    if (isFile(path)) return path;
  }
  return {};
}

struct FluidSynthOut::Impl {
  fluid_settings_t* settings = nullptr;
  fluid_synth_t* synth = nullptr;
  fluid_audio_driver_t* driver = nullptr;
  int soundFontId = -1;

  ~Impl() {
    if (driver) delete_fluid_audio_driver(driver);
    if (synth) delete_fluid_synth(synth);
    if (settings) delete_fluid_settings(settings);
  }
};

FluidSynthOut::FluidSynthOut(Config config) : config_(std::move(config)) { installLogHook(); }

FluidSynthOut::~FluidSynthOut() = default;

int FluidSynthOut::openDevice(int deviceNumber) {
  if (deviceNumber != 0) return kMidiNoDevice;
  if (open_) return kMidiOk;
  failure_.clear();
  if (!impl_) {
    // The SoundFont is large and slow to load; it is loaded once and kept for the whole run.
    if (!isFile(config_.SoundFont)) {
      failure_ = config_.SoundFont.empty()
                     ? "no General MIDI SoundFont is installed for the built-in synthesizer"
                     : "the SoundFont \"" + config_.SoundFont + "\" cannot be found";
      return kMidiOpenFailed;
    }
    auto impl = std::make_unique<Impl>();
    impl->settings = new_fluid_settings();
    fluid_settings_setnum(impl->settings, "synth.sample-rate", config_.SampleRate);
    fluid_settings_setnum(impl->settings, "synth.gain", config_.Gain);
    fluid_settings_setint(impl->settings, "synth.reverb.active", 1);
    // Only the samples of the instruments the channels have selected are read into memory,
    // when they are selected: a song of three instruments keeps a few megabytes of a General
    // MIDI SoundFont instead of all of it, and the font opens in a fraction of the time. The
    // samples of a program change are in before the call returns, so the next note sounds.
    fluid_settings_setint(impl->settings, "synth.dynamic-sample-loading", 1);
    impl->synth = new_fluid_synth(impl->settings);
    if (!impl->synth) {
      failure_ = "the built-in synthesizer could not start: " + takeFluidError();
      return kMidiOpenFailed;
    }
    impl->soundFontId = fluid_synth_sfload(impl->synth, config_.SoundFont.c_str(), 1);
    if (impl->soundFontId == FLUID_FAILED) {
      failure_ = "the SoundFont \"" + config_.SoundFont + "\" cannot be read";
      return kMidiOpenFailed;
    }
    impl_ = std::move(impl);
  }
  if (config_.Live && !impl_->driver) {
    // The build's default audio system first, then the others a desktop may run.
    impl_->driver = new_fluid_audio_driver(impl_->settings, impl_->synth);
    std::string why = impl_->driver ? std::string() : takeFluidError();
    for (const char* name : {"pulseaudio", "pipewire", "alsa", "jack", "sdl2"}) {
      if (impl_->driver) break;
      if (fluid_settings_setstr(impl_->settings, "audio.driver", name) != FLUID_OK) continue;
      impl_->driver = new_fluid_audio_driver(impl_->settings, impl_->synth);
      takeFluidError();
    }
    if (!impl_->driver) {
      failure_ = "there is no sound: the built-in synthesizer cannot open an audio output" +
                 (why.empty() ? std::string() : " (" + why + ")");
      return kMidiOpenFailed;
    }
  }
  open_ = true;
  return kMidiOk;
}

void FluidSynthOut::closeDevice() {
  if (impl_ && impl_->synth) fluid_synth_system_reset(impl_->synth);
  if (impl_ && impl_->driver) {
    delete_fluid_audio_driver(impl_->driver);
    impl_->driver = nullptr;
  }
  open_ = false;
}

int FluidSynthOut::shortMsg(uint32_t word) {
  if (!open_ || !impl_) return kMidiNotOpen;
  const int status = static_cast<int>(word & 0xFF);
  const int d1 = static_cast<int>((word >> 8) & 0x7F);
  const int d2 = static_cast<int>((word >> 16) & 0x7F);
  const int ch = status & 0x0F;
  fluid_synth_t* s = impl_->synth;
  int r = FLUID_OK;
  switch (status & 0xF0) {
    case 0x80: r = fluid_synth_noteoff(s, ch, d1); break;
    case 0x90: r = d2 == 0 ? fluid_synth_noteoff(s, ch, d1) : fluid_synth_noteon(s, ch, d1, d2); break;
    case 0xB0: r = fluid_synth_cc(s, ch, d1, d2); break;
    case 0xC0: r = fluid_synth_program_change(s, ch, d1); break;
    case 0xD0: r = fluid_synth_channel_pressure(s, ch, d1); break;
    case 0xE0: r = fluid_synth_pitch_bend(s, ch, d1 | (d2 << 7)); break;
    default: break;
  }
  // A note-off for a note that does not sound is not a failure worth reporting.
  (void)r;
  return kMidiOk;
}

std::vector<MidiDeviceInfo> FluidSynthOut::devices() { return {{kDeviceName, 0}}; }

std::string FluidSynthOut::errorText(int code) const {
  if (code == kMidiOpenFailed && !failure_.empty()) return failure_;
  return MidiOut::errorText(code);
}

void FluidSynthOut::render(size_t frames, std::vector<float>& out) {
  const size_t start = out.size();
  out.resize(start + frames * 2, 0.0f);
  if (!impl_ || !impl_->synth || frames == 0) return;
  float* base = out.data() + start;
  // Render in blocks; FluidSynth takes an int count.
  size_t done = 0;
  while (done < frames) {
    const int n = static_cast<int>(std::min<size_t>(frames - done, 4096));
    float* p = base + done * 2;
    fluid_synth_write_float(impl_->synth, n, p, 0, 2, p, 1, 2);
    done += static_cast<size_t>(n);
  }
}

int FluidSynthOut::activeVoices() const {
  return impl_ && impl_->synth ? fluid_synth_get_active_voice_count(impl_->synth) : 0;
}

}  // namespace plectaro
