// Playing a song with no one listening in real time: the scheduler runs on a VirtualClock as
// fast as the machine allows. It gives the message trace of `play --trace`, and with the
// built-in synthesizer rendering between messages, the sound of the song as samples.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "playback/recording_out.h"
#include "playback/scheduler.h"
#include "score/score_records.h"

namespace plectaro {

// A song that has not ended after this much playing time is taken to loop for ever.
inline constexpr double kOfflineLimitMs = 3.0 * 60 * 60 * 1000;

class VirtualClock;

// Runs a scheduler that has been started on `clock` until it stops by itself. Throws
// ScoreError (after stopping it) if the song does not end within kOfflineLimitMs.
void RunToEnd(Scheduler& scheduler, VirtualClock& clock);

// Runs bars startBar..endBar and returns every message with its time. Each message is also
// handed to `onMessage` as it goes, if given. Throws ScoreError if the song does not end
// within kOfflineLimitMs.
std::vector<MidiMessage> TraceSong(const Score& score, int startBar, int endBar,
                                   const PlaybackOptions& options,
                                   const std::function<void(const MidiMessage&)>& onMessage = {});

// The speed trainer offline: its passes over the bars of `trainer`, every message with its
// time, and each pass's start (time, pass from 1, tempo) to `onPass`.
std::vector<MidiMessage> TraceTrainer(const Score& score, const SpeedTrainer& trainer, const PlaybackOptions& options,
                                      const std::function<void(const MidiMessage&)>& onMessage = {},
                                      const std::function<void(double ms, int pass, int tempo)>& onPass = {});

struct RenderedSong {
  std::vector<float> Samples;  // interleaved stereo
  double SampleRate = 44100;
  double SongMs = 0;           // when the last message went out
  size_t Messages = 0;
  bool Cancelled = false;
};

// Plays the song into the built-in synthesizer and returns its sound, with `tailMs` after the
// last message so the final notes can die away. Throws ScoreError when the SoundFont cannot
// be loaded or the song does not end.
RenderedSong RenderSong(const Score& score, int startBar, int endBar, const PlaybackOptions& options,
                        const std::string& soundFont, double tailMs = 2000);

struct RenderOptions {
  double SampleRate = 44100;  // what the synthesizer takes: 8000 to 96000
  double TailMs = 2000;
  // Called as the song goes on with the playing time reached; false cancels the render,
  // which then returns what it has with Cancelled set.
  std::function<bool(double songMs)> Progress;
};

// RenderSong with a rate of its own and a way to watch and cancel it.
RenderedSong RenderSong(const Score& score, int startBar, int endBar, const PlaybackOptions& options,
                        const std::string& soundFont, const RenderOptions& render);

// A PCM wave file in memory: interleaved samples of `channels` channels, clipped to -1..1,
// as 8-bit (unsigned) or 16-bit samples. Throws FileError when libsndfile refuses the format.
std::string EncodeWav(const std::vector<float>& samples, int rate, int channels, int bits);

// 16-bit PCM wave file; samples are clipped to -1..1. The old file stays whole on failure
// (FileError).
void WriteWav16(const std::filesystem::path& path, const RenderedSong& song);

}  // namespace plectaro
