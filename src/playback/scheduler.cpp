#include "playback/scheduler.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "score/bar_timing.h"
#include "score/value_text.h"

namespace plectaro {

namespace {

constexpr int kMetronomeChannel = 0;
constexpr int kClickProgram = 115;  // wood block
constexpr int kClickNote = 90;
// Time between the strings of a strum: six strings take 25 ms, heard as one stroke, not as
// an arpeggio.
constexpr int32_t kStrumGapMs = 5;

const BarInfo* barInfoAt(const Score& s, int b) {
  if (b < 0 || static_cast<size_t>(b) >= s.BarInfos.size()) return nullptr;
  return &s.BarInfos[static_cast<size_t>(b)];
}

const std::vector<Beat>* beatsOf(const Score& s, int t, int b) {
  if (t < 0 || t > s.LastTrack()) return nullptr;
  const Track& tr = s.Tracks[static_cast<size_t>(t)];
  if (b < 0 || static_cast<size_t>(b) >= tr.Bars.size()) return nullptr;
  return &tr.Bars[static_cast<size_t>(b)]->Beats;
}

int lastBeatOf(const Score& s, int t, int b) {
  const auto* beats = beatsOf(s, t, b);
  return beats ? static_cast<int>(beats->size()) - 1 : -1;
}

// How many steps the beat at index k lasts. Before the first beat (-1) the length is 0, so the
// first beat starts at once; past the last beat the track waits for the bar to change.
double beatLength(const Score& s, int t, int b, int k) {
  const auto* beats = beatsOf(s, t, b);
  if (k < 0) return 0;
  if (!beats || static_cast<size_t>(k) >= beats->size()) return std::numeric_limits<double>::infinity();
  try {
    return GetNumOf64ths((*beats)[static_cast<size_t>(k)]);
  } catch (const ScoreError&) {
    // A Length or Tuplet number from a damaged file: play the beat as a quarter rather than
    // stop the song.
    return 16;
  }
}

int16_t clampI16(long v) {
  return static_cast<int16_t>(std::clamp<long>(v, 0, kMaxIndex));
}

}  // namespace

Scheduler::Scheduler(MidiOut& out, PlaybackClock& clock)
    : out_(out), playTimer_(clock.createTimer()), tmrMetronome_(clock.createTimer()),
      tmrStrum_(clock.createTimer()), effects_(out, clock) {
  playTimer_->setPeriodic(true);
  playTimer_->setResolution(1);
  playTimer_->setOnTimer([this] { PlayTimer_Timer(); });
  tmrMetronome_->setPeriodic(true);
  tmrMetronome_->setResolution(1);
  tmrMetronome_->setOnTimer([this] { tmrMetronome_Timer(); });
  tmrStrum_->setPeriodic(true);
  tmrStrum_->setResolution(1);
  tmrStrum_->setInterval(kStrumGapMs);
  tmrStrum_->setOnTimer([this] { tmrStrum_Timer(); });
}

Scheduler::~Scheduler() {
  if (playing()) StopTab();
}

void Scheduler::PlayTab(const Score& score, int startBar, int endBar) {
  speedTrainerOn_ = false;
  start(score, startBar, endBar);
}

void Scheduler::PlayTrainer(const Score& score, const SpeedTrainer& trainer) {
  trainer_ = trainer;
  trainerTempo_ = trainer.Tempo;
  trainerLoopsLeft_ = trainer.Loops;
  start(score, trainer.StartBar, trainer.EndBar);
  if (!playing()) return;
  trainer_.StartBar = cursorBar_;
  trainer_.EndBar = endBar_;
  speedTrainerOn_ = true;
  playTimer_->setInterval(IntervalForTempo(trainerTempo_));
  // The count-in clicks at the pass's tempo too.
  if (state_ == PlayState::CountIn) tmrMetronome_->setInterval(GetMetronomeInterval(false));
  if (hooks.trainerPass) hooks.trainerPass(1, trainerTempo_);
}

void Scheduler::start(const Score& score, int startBar, int endBar) {
  if (playing()) StopTab();
  score_ = &score;
  const int lastBar = static_cast<int>(score.BarInfos.size()) - 1;
  if (lastBar < 0 || score.Tracks.empty()) return;
  startBar = std::clamp(startBar, 0, lastBar);
  endBar = std::clamp(endBar, startBar, lastBar);

  playTimer_->setInterval(IntervalForTempo(score.Tempo));
  effects_.stopAll();
  effects_.settings = options.Effects;
  MIDIAllNotesOff(out_);
  const size_t tracks = score.Tracks.size();
  trackElapsed_.assign(tracks, 0.0);
  trackBeat_.assign(tracks, 0);
  strums_.assign(tracks, Strum());
  cursorBar_ = static_cast<int16_t>(startBar);
  endBar_ = static_cast<int16_t>(endBar);
  repeatStartBar_ = 0;
  repeatsLeft_ = 0;
  inRepeat_ = false;
  repeatCloseBar_ = -1;
  dsTaken_ = false;
  codaTaken_ = false;
  signBar_ = GetSignLocation(score);
  codaBar_ = GetCodaLocation(score);

  if (options.CountIn) {
    state_ = PlayState::CountIn;
    tmrMetronome_->setInterval(GetMetronomeInterval(false));
    countInLeft_ = GetMetronomeInterval(true);
    tmrMetronome_->setEnabled(true);
  } else if (options.Metronome) {
    state_ = PlayState::CountIn;
    tmrMetronome_->setInterval(GetMetronomeInterval(false));
    countInLeft_ = 0;
    tmrMetronome_->setEnabled(true);
  } else {
    state_ = PlayState::Playing;
    playTimer_->setEnabled(true);
  }
}

void Scheduler::StopTab() {
  const bool wasPlaying = playing();
  playTimer_->setEnabled(false);
  // Unlike the all-notes-off, this also centres every wheel an effect moved: a stop in the
  // middle of a bend must not leave the next song out of tune.
  effects_.stopAll();
  MIDIAllNotesOff(out_);
  speedTrainerOn_ = false;
  tmrMetronome_->setEnabled(false);
  tmrStrum_->setEnabled(false);
  for (Strum& st : strums_) st = Strum();
  state_ = PlayState::Idle;
  // Once more: a note that an effect started in between must not hang either.
  MIDIAllNotesOff(out_);
  if (wasPlaying && hooks.stopped) hooks.stopped();
}

void Scheduler::SoundBeat(const Score& score, int track, int bar, int beat) {
  effects_.stopAll();
  effects_.settings = options.Effects;
  PlayChord(soundOut(), score, track, bar, beat, true, false, nullptr, &effects_);
}

void Scheduler::SilenceBeat() {
  effects_.stopAll();
  MIDIAllNotesOff(out_);
}

void Scheduler::PlayTimer_Timer() {
  if (!playing() || !score_) return;
  if (state_ == PlayState::CountIn && playTimer_->Enabled()) state_ = PlayState::Playing;
  PlayStep();
}

void Scheduler::resetBeats() {
  std::fill(trackBeat_.begin(), trackBeat_.end(), int16_t{-1});
  barRestarted_ = true;
}

void Scheduler::PlayStep() {
  const Score& s = *score_;
  if (!speedTrainerOn_) playTimer_->setInterval(IntervalForTempo(s.Tempo));

  // Tracks may have been added or removed while playing; new ones join at the next bar.
  const int lastTrack = s.LastTrack();
  if (lastTrack < 0) {
    StopTab();
    return;
  }
  if (trackBeat_.size() != s.Tracks.size()) {
    trackBeat_.resize(s.Tracks.size(), -1);
    trackElapsed_.resize(s.Tracks.size(), 0.0);
    strums_.resize(s.Tracks.size());
  }

  const int cur = options.CurrentTrack;
  if (options.FollowPlayback && hooks.follow && cur >= 0 && cur <= lastTrack &&
      trackBeat_[static_cast<size_t>(cur)] == 0 && trackElapsed_[static_cast<size_t>(cur)] <= 1)
    hooks.follow(cursorBar_);

  barRestarted_ = false;
  for (int t = 0; t <= lastTrack; ++t) {
    const size_t ti = static_cast<size_t>(t);
    if (t == lastTrack) {
      const BarInfo* info = barInfoAt(s, cursorBar_);
      if (info && info->RepeatOpen) repeatStartBar_ = cursorBar_;
    }

    // Only a bar with no beats at all (a damaged file) leaves the last track past its end;
    // it must end the bar at once, or playback would wait there for ever.
    const int lastBeat = lastBeatOf(s, t, cursorBar_);
    const bool emptyLast = t == lastTrack && trackBeat_[ti] > lastBeat;
    const double length = emptyLast ? 0 : beatLength(s, t, cursorBar_, trackBeat_[ti]);
    if (trackElapsed_[ti] >= length) {
      const bool lastOfBar = emptyLast || trackBeat_[ti] == lastBeat;
      if (speedTrainerOn_ && lastOfBar && cursorBar_ == trainer_.EndBar && t == lastTrack) {
        if (trainerLoopsLeft_ <= 0) {
          StopTab();
          return;
        }
        int16_t passTempo = trainer_.MaxTempo;
        if (trainerTempo_ + trainer_.Step > trainer_.MaxTempo) {
          playTimer_->setInterval(IntervalForTempo(trainer_.MaxTempo));
        } else {
          trainerTempo_ = static_cast<int16_t>(trainerTempo_ + trainer_.Step);
          playTimer_->setInterval(IntervalForTempo(trainerTempo_));
          passTempo = trainerTempo_;
        }
        cursorBar_ = trainer_.StartBar;
        resetBeats();
        --trainerLoopsLeft_;
        if (hooks.trainerPass) hooks.trainerPass(trainer_.Loops - trainerLoopsLeft_ + 1, passTempo);
        // With Count In on, every pass is counted in at its own new tempo, so the player is
        // ready for the faster speed before the first note of it.
        if (options.CountIn) {
          playTimer_->setEnabled(false);
          MIDIAllNotesOff(out_);
          state_ = PlayState::CountIn;
          countInLeft_ = GetMetronomeInterval(true);
          tmrMetronome_->setInterval(GetMetronomeInterval(false));
          tmrMetronome_->setEnabled(true);
          return;
        }
        // The first beat of the new pass plays now, not one step later.
        if (recursion_ == 0) {
          ++recursion_;
          PlayTimer_Timer();
          --recursion_;
        }
        return;
      }
      trackElapsed_[ti] = 0;
      if (lastOfBar) barEnd(t, lastTrack);
      trackBeat_[ti] = static_cast<int16_t>(trackBeat_[ti] + 1);
    }

    if (trackElapsed_[ti] == 0 && !startBeat(t, lastTrack)) return;
    trackElapsed_[ti] += 1;

    // When the last track has moved to another bar (or back to the start of the same one), the
    // tracks before it were already
    // served this step, still in the old bar; start them on the new bar now, so that all
    // tracks begin a bar together instead of the earlier ones lagging by one step.
    if (t == lastTrack && barRestarted_) {
      for (int e = 0; e < lastTrack; ++e) {
        const size_t ei = static_cast<size_t>(e);
        trackBeat_[ei] = 0;
        trackElapsed_[ei] = 0;
        if (!startBeat(e, lastTrack)) return;
        trackElapsed_[ei] = 1;
      }
    }
  }
}

bool Scheduler::startBeat(int t, int lastTrack) {
  const Score& s = *score_;
  const size_t ti = static_cast<size_t>(t);
  const int k = trackBeat_[ti];
  const Track& tr = s.Tracks[ti];
  const int lastBeat = lastBeatOf(s, t, cursorBar_);
  if (options.FollowPlayback && t == options.CurrentTrack && hooks.marker)
    hooks.marker(cursorBar_, k, k >= 0 && k <= lastBeat);
  if (hooks.beatStarts) hooks.beatStarts(t, cursorBar_, k);

  // The usual end of every sounding note: the next beat of its track starts, unless the
  // notes before are tied over or let ring. Drums end by themselves.
  if (!tr.DrumTrack) {
    int pb = 0, pk = 0;
    const bool held = PreviousBeat(s, t, cursorBar_, k, pb, pk) &&
                      (IsTie(s, t, pb, pk) || IsRing(s, t, pb, pk));
    if (!held) {
      MIDIChannelNotesOff(out_, tr.Channel);
      MIDIChannelNotesOff(out_, tr.EffectChannel);
    }
  }
  // A strum still crossing the strings when the next beat comes is cut short.
  strums_[ti] = Strum();

  if (cursorBar_ == endBar_ + 1 && t == lastTrack) {
    StopTab();
    return false;
  }

  if (k >= 0 && k <= lastBeat) {
    // A tempo mark changes only the one step after it: the next step sets the score's tempo
    // again. Songs were written against this, so it stays.
    const int16_t mark = GetTempoMark(s, t, cursorBar_, k);
    if (mark > 0) playTimer_->setInterval(IntervalForTempo(mark));
    const Beat& beat = (*beatsOf(s, t, cursorBar_))[static_cast<size_t>(k)];
    if (ti < options.Silenced.size() && options.Silenced[ti]) return true;
    const double tempo = speedTrainerOn_ ? trainerTempo_ : s.Tempo;
    PlayChord(soundOut(), s, t, cursorBar_, k, false, beat.Stroke == kUpStroke, &strums_[ti], &effects_, tempo);
    // Each new strum restarts the timer, so its strings keep their spacing from its first.
    if (strums_[ti].pending()) tmrStrum_->setEnabled(true);
  }
  return true;
}

void Scheduler::tmrStrum_Timer() {
  bool more = false;
  for (Strum& st : strums_) {
    if (!st.pending()) continue;
    const Strum::Note& n = st.Notes[static_cast<size_t>(st.Next++)];
    PlayNote(out_, n.Pitch, n.Harmonic, n.Channel, n.Velocity, false);
    more = more || st.pending();
  }
  if (!more) tmrStrum_->setEnabled(false);
}

void Scheduler::barEnd(int t, int lastTrack) {
  if (t != lastTrack) return;
  const BarInfo* info = barInfoAt(*score_, cursorBar_);
  const int16_t close = info ? info->RepeatClose : int16_t{0};
  if (!inRepeat_ && close > 0) {
    repeatsLeft_ = close;
    inRepeat_ = true;
    repeatCloseBar_ = cursorBar_;
  }
  if (inRepeat_) {
    // Inside the section being repeated, a second close mark (a repeat with no open mark
    // between, "back to the start") is passed over: serving it would restart the outer
    // repeat's count, and the two would send each other back for ever.
    if (close < 1 || cursorBar_ != repeatCloseBar_) {
      cursorBar_ = static_cast<int16_t>(cursorBar_ + 1);
    } else if (repeatsLeft_ < 1) {
      inRepeat_ = false;
    } else {
      --repeatsLeft_;
      cursorBar_ = repeatStartBar_;
    }
    resetBeats();
  }
  if (!inRepeat_) {
    info = barInfoAt(*score_, cursorBar_);
    // The jump to the coda is taken once: with the coda written before the to-coda mark,
    // taking it every time round would loop for ever.
    if (info && info->ToCoda && dsTaken_ && !codaTaken_) {
      cursorBar_ = static_cast<int16_t>(codaBar_ - 1);
      codaTaken_ = true;
    }
    info = barInfoAt(*score_, cursorBar_);
    if (info && info->DSAlCoda && !dsTaken_) {
      cursorBar_ = static_cast<int16_t>(signBar_ - 1);
      dsTaken_ = true;
    }
    resetBeats();
    cursorBar_ = static_cast<int16_t>(cursorBar_ + 1);
  }
}

void Scheduler::tmrMetronome_Timer() {
  if (!playing()) return;
  if (countInLeft_ == 0) {
    if (!options.Metronome) {
      tmrMetronome_->setEnabled(false);
      if (!playTimer_->Enabled()) {
        playTimer_->setEnabled(true);
        PlayTimer_Timer();
      }
      return;
    }
    countInLeft_ = GetMetronomeInterval(true);
    if (!playTimer_->Enabled()) {
      playTimer_->setEnabled(true);
      PlayTimer_Timer();
      if (!playing()) return;
    }
  }
  tmrMetronome_->setInterval(GetMetronomeInterval(false));
  MIDIProgramChange(out_, kMetronomeChannel, options.OutputBank, kClickProgram);
  MIDINoteOn(out_, kMetronomeChannel, kClickNote, 127);
  --countInLeft_;
}

int16_t Scheduler::GetMetronomeInterval(bool wantCount) const {
  int n = 0, d = 0;
  if (score_) {
    if (const BarInfo* info = barInfoAt(*score_, cursorBar_)) {
      if (info->TimeSigNumerator >= 1 && info->TimeSigNumerator <= 32) n = info->TimeSigNumerator;
      switch (info->TimeSigDenominator) {
        case 1: case 2: case 4: case 8: case 16: case 32: d = info->TimeSigDenominator; break;
        default: break;
      }
    }
  }
  if (wantCount) return static_cast<int16_t>(n);
  // d over n of a quarter: the quarter in 4/4, longer clicks in 3/4. A signature that cannot
  // be read clicks quarters rather than every millisecond.
  const double quarter = playTimer_->Interval() * 16.0;
  const double ms = (n == 0 || d == 0) ? quarter : static_cast<double>(d) / n * quarter;
  return static_cast<int16_t>(std::clamp(std::nearbyint(ms), 1.0, 32767.0));
}

int16_t GetSignLocation(const Score& s) {
  for (size_t b = s.BarInfos.size(); b-- > 0;)
    if (s.BarInfos[b].Sign) return clampI16(static_cast<long>(b));
  return 0;
}

int16_t GetCodaLocation(const Score& s) {
  for (size_t b = s.BarInfos.size(); b-- > 0;)
    if (s.BarInfos[b].Coda) return clampI16(static_cast<long>(b));
  return 0;
}

int16_t GetTempoMark(const Score& s, int track, int bar, int beat) {
  const auto* beats = beatsOf(s, track, bar);
  if (!beats || beat < 0 || static_cast<size_t>(beat) >= beats->size()) return 0;
  const std::string& text = (*beats)[static_cast<size_t>(beat)].Text;
  if (text.find("t=") == std::string::npos) return 0;
  std::string rest;
  for (char c : text)
    if (c != 't' && c != '=' && c != ' ') rest += c;
  return ParseI16(rest);
}

int TrackWithMostStrumsOnBar(const Score& s, int bar) {
  int best = 0;
  size_t most = 0;
  for (int t = 0; t <= s.LastTrack(); ++t) {
    const auto* beats = beatsOf(s, t, bar);
    if (beats && beats->size() > most) {
      most = beats->size();
      best = t;
    }
  }
  return best;
}

}  // namespace plectaro
