// The playback scheduler: one step per 64th note walks all tracks side by side through the
// bars, serves repeats, D.S. and coda, clicks the count-in and the metronome, reports where
// the play marker stands, and sounds every beat the moment it starts.
//
// It owns no clock of its own: PlayTimer and the metronome timer come from a PlaybackClock,
// so the same steps drive the speakers in real time and a trace or a wave file offline.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "playback/hi_pre_timer.h"
#include "playback/midi_out.h"
#include "playback/sounding.h"
#include "score/score_records.h"

namespace plectaro {

struct PlaybackOptions {
  bool FollowPlayback = true;  // "Follow tab playback": report the marker and scroll
  bool CountIn = false;
  bool Metronome = false;
  int16_t OutputBank = 0;
  int CurrentTrack = 0;  // the track shown in the window, whose beats move the marker
  // Tracks the mix table has muted (or left out of a solo), by track index; a track beyond
  // the list sounds. They still keep time, so unmuting brings them in at the right beat.
  std::vector<bool> Silenced = {};
  EffectSettings Effects = {};
};

struct SpeedTrainer {
  int16_t StartBar = 0, EndBar = 0, Loops = 0, Tempo = 60, MaxTempo = 60, Step = 0;
};

struct PlaybackHooks {
  // A beat of the current track starts at (bar, beat); visible is false when the index
  // stands past the bar's last beat.
  std::function<void(int bar, int beat, bool visible)> marker;
  // A new bar begins on the current track: scroll to it.
  std::function<void(int bar)> follow;
  // Playback has ended, at the end or by StopTab.
  std::function<void()> stopped;
  // Any track reaches beat `beat` of `bar` (past the last beat when it waits for the bar to
  // change), before the messages of that beat go out. The MIDI file writer places the
  // messages that follow by it.
  std::function<void(int track, int bar, int beat)> beatStarts;
  // The speed trainer begins pass `pass` (from 1) at this tempo.
  std::function<void(int pass, int tempo)> trainerPass;
};

enum class PlayState { Idle, CountIn, Playing };

class Scheduler {
 public:
  Scheduler(MidiOut& out, PlaybackClock& clock);
  ~Scheduler();
  Scheduler(const Scheduler&) = delete;
  Scheduler& operator=(const Scheduler&) = delete;

  PlaybackOptions options;
  PlaybackHooks hooks;

  // Starts playing bars startBar..endBar of `score`, which must stay alive and unchanged
  // until playback ends. Bars are clamped into the score; a running playback is stopped first.
  void PlayTab(const Score& score, int startBar, int endBar);
  // The speed trainer: loops bars StartBar..EndBar, raising the tempo by Step each pass.
  void PlayTrainer(const Score& score, const SpeedTrainer& trainer);
  // Ends playback from any state and silences every channel. Safe to call when idle.
  void StopTab();
  // Sounds one beat with its effects at once, outside playback (an effect editor's Play).
  // The beat is read at the call; nothing of `score` is kept.
  void SoundBeat(const Score& score, int track, int bar, int beat);
  // Ends what SoundBeat started: its effects, its notes, the wheel.
  void SilenceBeat();

  PlayState state() const { return state_; }
  bool playing() const { return state_ != PlayState::Idle; }

  // The timer handlers; public so that tests and tools can step by hand.
  void PlayTimer_Timer();
  void tmrMetronome_Timer();
  void tmrStrum_Timer();
  void PlayStep();

  int16_t GetMetronomeInterval(bool wantCount) const;
  int16_t CursorBar() const { return cursorBar_; }
  HiPreTimer& playTimer() { return *playTimer_; }
  HiPreTimer& metronomeTimer() { return *tmrMetronome_; }

 private:
  void start(const Score& score, int startBar, int endBar);
  void barEnd(int t, int lastTrack);
  // A beat of track t starts at this step; false if playback stopped on it.
  bool startBeat(int t, int lastTrack);
  void resetBeats();
  SoundOut soundOut() const { return {out_, options.OutputBank}; }

  MidiOut& out_;
  std::unique_ptr<HiPreTimer> playTimer_;
  std::unique_ptr<HiPreTimer> tmrMetronome_;
  // Strokes: the held-back notes of each track's strummed beat, sounded one per firing.
  std::unique_ptr<HiPreTimer> tmrStrum_;
  std::vector<Strum> strums_;
  EffectPlayer effects_;
  const Score* score_ = nullptr;
  PlayState state_ = PlayState::Idle;
  bool stopRequested_ = false;

  int16_t cursorBar_ = 0;
  int16_t endBar_ = 0;
  std::vector<int16_t> trackBeat_;
  std::vector<double> trackElapsed_;
  int16_t repeatStartBar_ = 0;
  int16_t repeatsLeft_ = 0;
  bool inRepeat_ = false;
  int16_t repeatCloseBar_ = -1;  // the close mark whose passes are being served
  int16_t signBar_ = 0;
  int16_t codaBar_ = 0;
  bool dsTaken_ = false;
  bool codaTaken_ = false;
  int16_t countInLeft_ = 0;
  bool speedTrainerOn_ = false;
  SpeedTrainer trainer_;
  int16_t trainerTempo_ = 0;
  int16_t trainerLoopsLeft_ = 0;
  int recursion_ = 0;
  bool barRestarted_ = false;  // the last track began a bar during this step
};

// The last bar (highest index) with the segno or the coda flag; 0 if none.
int16_t GetSignLocation(const Score& s);
int16_t GetCodaLocation(const Score& s);
// The tempo written on a beat as text, "t=140"; 0 if none or not a number.
int16_t GetTempoMark(const Score& s, int track, int bar, int beat);
// The track with the most beats in a bar; the lower index on ties; 0 if all are empty.
int TrackWithMostStrumsOnBar(const Score& s, int bar);

}  // namespace plectaro
