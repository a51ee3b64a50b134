#include "playback/fluidsynth_out.h"

#include <fluidsynth.h>

#include <atomic>
#include <filesystem>
#include <mutex>
#include <thread>

#include "playback/channel_memory.h"

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

// A background load: the worker thread and what it shares with the caller's thread. The worker
// owns `made` until it sets `state`; after that only the caller's thread touches anything.
struct FluidSynthOut::Loader {
  enum State : int { kRunning, kReady, kFailed };
  std::atomic<int> state{kRunning};
  std::mutex mutex;         // guards `told` until `state` leaves kRunning
  ChannelMemory told;       // what the channels were told while the font loads
  std::unique_ptr<Impl> made;
  std::string failure;
  std::thread thread;
};

namespace {

int sendToSynth(fluid_synth_t* s, uint32_t word) {
  const int status = static_cast<int>(word & 0xFF);
  const int d1 = static_cast<int>((word >> 8) & 0x7F);
  const int d2 = static_cast<int>((word >> 16) & 0x7F);
  const int ch = status & 0x0F;
  switch (status & 0xF0) {
    case 0x80: return fluid_synth_noteoff(s, ch, d1);
    case 0x90: return d2 == 0 ? fluid_synth_noteoff(s, ch, d1) : fluid_synth_noteon(s, ch, d1, d2);
    case 0xB0: return fluid_synth_cc(s, ch, d1, d2);
    case 0xC0: return fluid_synth_program_change(s, ch, d1);
    case 0xD0: return fluid_synth_channel_pressure(s, ch, d1);
    case 0xE0: return fluid_synth_pitch_bend(s, ch, d1 | (d2 << 7));
    default: return FLUID_OK;
  }
}

}  // namespace

FluidSynthOut::FluidSynthOut(Config config) : config_(std::move(config)) { installLogHook(); }

// A window closed while the font loads waits for the load to end: the worker cannot be
// interrupted inside FluidSynth, and leaving it running past our own end would let it write
// into freed memory. The wait is bounded by the load itself.
FluidSynthOut::~FluidSynthOut() {
  setOnLoaded({});
  if (loader_ && loader_->thread.joinable()) loader_->thread.join();
}

std::unique_ptr<FluidSynthOut::Impl> FluidSynthOut::createSynth(const Config& config, std::string& failure) {
  auto impl = std::make_unique<Impl>();
  impl->settings = new_fluid_settings();
  fluid_settings_setnum(impl->settings, "synth.sample-rate", config.SampleRate);
  fluid_settings_setnum(impl->settings, "synth.gain", config.Gain);
  fluid_settings_setint(impl->settings, "synth.reverb.active", 1);
  // Only the samples of the instruments the channels have selected are read into memory,
  // when they are selected: a song of three instruments keeps a few megabytes of a General
  // MIDI SoundFont instead of all of it, and the font opens in a fraction of the time. The
  // samples of a program change are in before the call returns, so the next note sounds.
  fluid_settings_setint(impl->settings, "synth.dynamic-sample-loading", 1);
  impl->synth = new_fluid_synth(impl->settings);
  if (!impl->synth) {
    failure = "the built-in synthesizer could not start: " + takeFluidError();
    return nullptr;
  }
  impl->soundFontId = fluid_synth_sfload(impl->synth, config.SoundFont.c_str(), 1);
  if (impl->soundFontId == FLUID_FAILED) {
    failure = "the SoundFont \"" + config.SoundFont + "\" cannot be read";
    return nullptr;
  }
  return impl;
}

std::string FluidSynthOut::openDriver(Impl& impl) {
  // The build's default audio system first, then the others a desktop may run.
  impl.driver = new_fluid_audio_driver(impl.settings, impl.synth);
  std::string why = impl.driver ? std::string() : takeFluidError();
  for (const char* name : {"pulseaudio", "pipewire", "alsa", "jack", "sdl2"}) {
    if (impl.driver) break;
    if (fluid_settings_setstr(impl.settings, "audio.driver", name) != FLUID_OK) continue;
    impl.driver = new_fluid_audio_driver(impl.settings, impl.synth);
    takeFluidError();
  }
  if (impl.driver) return {};
  return "there is no sound: the built-in synthesizer cannot open an audio output" +
         (why.empty() ? std::string() : " (" + why + ")");
}

int FluidSynthOut::openDevice(int deviceNumber) {
  if (deviceNumber != 0) return kMidiNoDevice;
  if (loader_) {
    if (open_ && loading()) return kMidiOk;  // already on its way
    finishLoad();
  }
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
    if (config_.Background) {
      loader_ = std::make_unique<Loader>();
      loader_->thread = std::thread([this] { loadInBackground(); });
      open_ = true;
      return kMidiOk;
    }
    impl_ = createSynth(config_, failure_);
    if (!impl_) return kMidiOpenFailed;
  }
  if (config_.Live && !impl_->driver) {
    failure_ = openDriver(*impl_);
    if (!failure_.empty()) return kMidiOpenFailed;
  }
  open_ = true;
  return kMidiOk;
}

void FluidSynthOut::loadInBackground() {
  Loader& l = *loader_;
  std::string failure;
  std::unique_ptr<Impl> impl = createSynth(config_, failure);
  if (impl && config_.Live) failure = openDriver(*impl);
  // What the channels were told meanwhile goes in here, so that the instruments' samples are
  // read on this thread and not on the caller's at its first note. More may arrive while that
  // runs: repeat until nothing is new, and say ready under the same lock as that last look, so
  // that nothing told in between is lost.
  ChannelMemory sent;
  for (;;) {
    std::vector<uint32_t> words;
    {
      std::lock_guard lock(l.mutex);
      if (impl) words = l.told.changesSince(sent);
      if (words.empty()) {
        const bool ready = impl && failure.empty();
        l.failure = std::move(failure);
        l.made = std::move(impl);
        l.state.store(ready ? Loader::kReady : Loader::kFailed, std::memory_order_release);
        break;
      }
      sent = l.told;
    }
    for (uint32_t w : words) sendToSynth(impl->synth, w);
  }
  std::lock_guard lock(onLoadedMutex_);
  if (onLoaded_) onLoaded_();
}

void FluidSynthOut::finishLoad() {
  if (!loader_) return;
  if (loader_->thread.joinable()) loader_->thread.join();
  std::unique_ptr<Loader> l = std::move(loader_);
  impl_ = std::move(l->made);  // kept even without an audio output, as a direct open would
  failure_ = std::move(l->failure);
  open_ = open_ && l->state.load(std::memory_order_acquire) == Loader::kReady;
}

void FluidSynthOut::waitLoaded() { finishLoad(); }

bool FluidSynthOut::loading() const {
  return loader_ && loader_->state.load(std::memory_order_acquire) == Loader::kRunning;
}

void FluidSynthOut::setOnLoaded(std::function<void()> onLoaded) {
  std::lock_guard lock(onLoadedMutex_);
  onLoaded_ = std::move(onLoaded);
}

bool FluidSynthOut::isOpen() const {
  return open_ && !(loader_ && loader_->state.load(std::memory_order_acquire) == Loader::kFailed);
}

void FluidSynthOut::closeDevice() {
  // Closing while the font loads waits for it; the font is kept for the next open either way.
  finishLoad();
  if (impl_ && impl_->synth) fluid_synth_system_reset(impl_->synth);
  if (impl_ && impl_->driver) {
    delete_fluid_audio_driver(impl_->driver);
    impl_->driver = nullptr;
  }
  open_ = false;
}

int FluidSynthOut::shortMsg(uint32_t word) {
  if (!open_) return kMidiNotOpen;
  if (loader_) {
    if (loader_->state.load(std::memory_order_acquire) == Loader::kRunning) {
      std::lock_guard lock(loader_->mutex);
      if (loader_->state.load(std::memory_order_relaxed) == Loader::kRunning) {
        loader_->told.remember(word);  // notes are dropped: late is worse than silent
        return kMidiOk;
      }
    }
    finishLoad();
    if (!open_) return kMidiNotOpen;
  }
  if (!impl_) return kMidiNotOpen;
  // A note-off for a note that does not sound is not a failure worth reporting.
  sendToSynth(impl_->synth, word);
  return kMidiOk;
}

std::vector<MidiDeviceInfo> FluidSynthOut::devices() { return {{kDeviceName, 0}}; }

std::string FluidSynthOut::errorText(int code) const {
  // A load that has ended but is not taken over yet: its reason is final and the worker is done
  // with it.
  if (code == kMidiOpenFailed && loader_ && loader_->state.load(std::memory_order_acquire) == Loader::kFailed)
    return loader_->failure;
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
