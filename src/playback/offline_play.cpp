#include "playback/offline_play.h"

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "playback/fluidsynth_out.h"
#include "playback/virtual_clock.h"
#include "score/file_io.h"

namespace plectaro {

namespace {

// Runs the scheduler on the clock until it stops by itself, or until `keepGoing` says no
// (false comes back then).
bool runToEnd(Scheduler& scheduler, VirtualClock& clock, const std::function<bool(double)>& keepGoing = {}) {
  while (scheduler.playing()) {
    if (!clock.fireNext(kOfflineLimitMs)) break;
    if (keepGoing && !keepGoing(clock.nowMs())) {
      scheduler.StopTab();
      return false;
    }
  }
  if (scheduler.playing()) {
    scheduler.StopTab();
    throw ScoreError("the song does not end within three hours of playing; is a repeat endless?");
  }
  return true;
}

// The synthesizer catches up with the clock before each message, so every message sounds at
// its exact sample.
class RenderingOut : public MidiOut {
 public:
  RenderingOut(FluidSynthOut& synth, const VirtualClock& clock, std::vector<float>& samples)
      : synth_(synth), clock_(clock), samples_(samples) {}

  int openDevice(int n) override { return synth_.openDevice(n); }
  void closeDevice() override { synth_.closeDevice(); }
  bool isOpen() const override { return synth_.isOpen(); }
  int shortMsg(uint32_t word) override {
    catchUp(clock_.nowMs());
    ++messages;
    lastMs = clock_.nowMs();
    return synth_.shortMsg(word);
  }
  std::vector<MidiDeviceInfo> devices() override { return synth_.devices(); }
  std::string errorText(int code) const override { return synth_.errorText(code); }

  void catchUp(double ms) {
    const size_t target = static_cast<size_t>(std::llround(ms * synth_.sampleRate() / 1000.0));
    const size_t have = samples_.size() / 2;
    if (target > have) synth_.render(target - have, samples_);
  }

  size_t messages = 0;
  double lastMs = 0;

 private:
  FluidSynthOut& synth_;
  const VirtualClock& clock_;
  std::vector<float>& samples_;
};

// libsndfile writes into memory, so the file on disk is replaced in one step.
struct MemoryFile {
  std::string bytes;
  sf_count_t pos = 0;
};

sf_count_t vLength(void* user) { return static_cast<sf_count_t>(static_cast<MemoryFile*>(user)->bytes.size()); }
sf_count_t vSeek(sf_count_t offset, int whence, void* user) {
  auto* f = static_cast<MemoryFile*>(user);
  sf_count_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? f->pos : static_cast<sf_count_t>(f->bytes.size());
  f->pos = std::max<sf_count_t>(0, base + offset);
  return f->pos;
}
sf_count_t vRead(void* ptr, sf_count_t count, void* user) {
  auto* f = static_cast<MemoryFile*>(user);
  sf_count_t avail = std::max<sf_count_t>(0, static_cast<sf_count_t>(f->bytes.size()) - f->pos);
  sf_count_t n = std::min(count, avail);
  if (n > 0) std::memcpy(ptr, f->bytes.data() + f->pos, static_cast<size_t>(n));
  f->pos += n;
  return n;
}
sf_count_t vWrite(const void* ptr, sf_count_t count, void* user) {
  auto* f = static_cast<MemoryFile*>(user);
  const size_t end = static_cast<size_t>(f->pos + count);
  if (end > f->bytes.size()) f->bytes.resize(end);
  std::memcpy(f->bytes.data() + f->pos, ptr, static_cast<size_t>(count));
  f->pos += count;
  return count;
}
sf_count_t vTell(void* user) { return static_cast<MemoryFile*>(user)->pos; }

}  // namespace

void RunToEnd(Scheduler& scheduler, VirtualClock& clock) { runToEnd(scheduler, clock); }

std::vector<MidiMessage> TraceSong(const Score& score, int startBar, int endBar, const PlaybackOptions& options,
                                   const std::function<void(const MidiMessage&)>& onMessage) {
  VirtualClock clock;
  RecordingMidiOut out([&clock] { return clock.nowMs(); });
  out.onMessage = onMessage;
  Scheduler scheduler(out, clock);
  scheduler.options = options;
  scheduler.PlayTab(score, startBar, endBar);
  runToEnd(scheduler, clock);
  return std::move(out.messages);
}

std::vector<MidiMessage> TraceTrainer(const Score& score, const SpeedTrainer& trainer, const PlaybackOptions& options,
                                      const std::function<void(const MidiMessage&)>& onMessage,
                                      const std::function<void(double ms, int pass, int tempo)>& onPass) {
  VirtualClock clock;
  RecordingMidiOut out([&clock] { return clock.nowMs(); });
  out.onMessage = onMessage;
  Scheduler scheduler(out, clock);
  scheduler.options = options;
  if (onPass) scheduler.hooks.trainerPass = [&](int pass, int tempo) { onPass(clock.nowMs(), pass, tempo); };
  scheduler.PlayTrainer(score, trainer);
  runToEnd(scheduler, clock);
  return std::move(out.messages);
}

RenderedSong RenderSong(const Score& score, int startBar, int endBar, const PlaybackOptions& options,
                        const std::string& soundFont, double tailMs) {
  RenderOptions render;
  render.TailMs = tailMs;
  return RenderSong(score, startBar, endBar, options, soundFont, render);
}

RenderedSong RenderSong(const Score& score, int startBar, int endBar, const PlaybackOptions& options,
                        const std::string& soundFont, const RenderOptions& render) {
  RenderedSong song;
  const double tailMs = render.TailMs;
  FluidSynthOut synth({soundFont, false, render.SampleRate});
  VirtualClock clock;
  RenderingOut out(synth, clock, song.Samples);
  if (!MIDIOpen(out, 0)) throw ScoreError(synth.errorText(kMidiOpenFailed));
  song.SampleRate = synth.sampleRate();
  {
    Scheduler scheduler(out, clock);
    scheduler.options = options;
    scheduler.PlayTab(score, startBar, endBar);
    song.Cancelled = !runToEnd(scheduler, clock, render.Progress);
  }
  song.SongMs = out.lastMs;
  song.Messages = out.messages;
  out.catchUp(out.lastMs + std::max(0.0, tailMs));
  return song;
}

std::string EncodeWav(const std::vector<float>& samples, int rate, int channels, int bits) {
  MemoryFile file;
  SF_VIRTUAL_IO io{vLength, vSeek, vRead, vWrite, vTell};
  SF_INFO info{};
  info.samplerate = rate;
  info.channels = channels;
  info.format = SF_FORMAT_WAV | (bits == 8 ? SF_FORMAT_PCM_U8 : SF_FORMAT_PCM_16);
  SNDFILE* sf = sf_open_virtual(&io, SFM_WRITE, &info, &file);
  if (!sf) throw FileError(std::string("the wave format is not possible: ") + sf_strerror(nullptr));
  // Clip rather than wrap: a too-loud mix must not turn into crackle.
  sf_command(sf, SFC_SET_CLIPPING, nullptr, SF_TRUE);
  const sf_count_t frames = static_cast<sf_count_t>(samples.size() / static_cast<size_t>(channels));
  const sf_count_t written = sf_writef_float(sf, samples.data(), frames);
  sf_close(sf);
  if (written != frames) throw FileError("the sound could not be encoded");
  return std::move(file.bytes);
}

void WriteWav16(const std::filesystem::path& path, const RenderedSong& song) {
  std::string bytes;
  try {
    bytes = EncodeWav(song.Samples, static_cast<int>(song.SampleRate), 2, 16);
  } catch (const FileError& e) {
    throw FileError("cannot write \"" + path.string() + "\": " + e.what());
  }
  WriteFileAtomically(path, bytes);
}

}  // namespace plectaro
