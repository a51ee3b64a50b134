#include "playback/qt/player.h"

#include <algorithm>

#include "playback/fluidsynth_out.h"
#include "playback/output_devices.h"
#include "playback/qt/qt_clock.h"
#include "playback/sounding.h"
#include "score/bar_timing.h"

namespace plectaro {

PlayMarkerPos PlayMarkerPosition(const Document& doc, int track, int bar, int beat) {
  PlayMarkerPos pos;
  if (track < 0 || static_cast<size_t>(track) >= doc.Layout.size()) return pos;
  const auto& bars = doc.Layout[static_cast<size_t>(track)];
  if (bar < 0 || static_cast<size_t>(bar) >= bars.size()) return pos;
  const BarLayout& l = bars[static_cast<size_t>(bar)];
  // A bar that opens with a signature has its first beat further right.
  pos.Left = l.DrawX + beat * l.BeatSpacing + (l.ShowsSignature ? 75 : 11);
  pos.Top = l.DrawY + 20;
  pos.Known = true;
  return pos;
}

Player::Player(const SettingsStore* settings, QObject* parent)
    : QObject(parent),
      devices_(std::make_unique<OutputDevices>(FindSoundFont(settings), true)),
      ownClock_(std::make_unique<QtPlaybackClock>()),
      out_(devices_.get()),
      scheduler_(std::make_unique<Scheduler>(*out_, *ownClock_)),
      tmrStop_(ownClock_->createTimer()) {
  wire();
}

Player::Player(MidiOut& out, PlaybackClock& clock, QObject* parent)
    : QObject(parent), out_(&out), scheduler_(std::make_unique<Scheduler>(out, clock)),
      tmrStop_(clock.createTimer()) {
  wire();
}

Player::~Player() {
  // No signals from a half-destroyed player, nor news of a load that ends while it goes.
  out_->setOnLoaded({});
  scheduler_->hooks = {};
  scheduler_.reset();
  // A typed note may still be sounding; a hardware synthesizer would hold it for ever.
  if (tmrStop_->Enabled()) MIDIAllNotesOff(*out_);
  if (devices_) MIDIClose(*devices_);
}

void Player::wire() {
  scheduler_->hooks.marker = [this](int bar, int beat, bool visible) {
    emit playPositionChanged(bar, beat, visible);
    if (shown_) {
      const PlayMarkerPos pos = PlayMarkerPosition(*shown_, options_.CurrentTrack, bar, beat);
      emit playMarkerMoved(pos.Left, pos.Top, visible && pos.Known);
    }
  };
  scheduler_->hooks.follow = [this](int bar) {
    // The scheduler asks on the first two steps of a bar; the view needs to scroll once.
    if (bar == lastFollowBar_) return;
    lastFollowBar_ = bar;
    emit followBar(bar);
  };
  scheduler_->hooks.beatStarts = [this](int track, int bar, int beat) {
    if (track == options_.CurrentTrack) emit beatSounding(track, bar, beat);
  };
  scheduler_->hooks.trainerPass = [this](int pass, int tempo) { emit trainerPass(pass, tempo); };
  scheduler_->hooks.stopped = [this] {
    emit playMarkerMoved(0, 0, false);
    emit playingChanged(false);
    reportSilence();
  };
  // The device tells from its loading thread; the news is handled here, on ours.
  out_->setOnLoaded([this] { QMetaObject::invokeMethod(this, [this] { soundLoaded(); }, Qt::QueuedConnection); });
  // The editor's single notes end by themselves a moment later.
  tmrStop_->setOnTimer([this] {
    if (!scheduler_->playing()) scheduler_->SilenceBeat();
    tmrStop_->setEnabled(false);
  });
}

void Player::reportSilence() {
  const std::string why = out_->takeNotice();
  if (!why.empty()) emit noSound(QString::fromStdString(why));
}

void Player::LoadMIDI(int outputDeviceId, int16_t outputBank) {
  options_.OutputBank = outputBank;
  MIDIClose(*out_);
  list_ = MIDIListDevices(*out_);
  int number = OutputDevices::kDefaultDevice;
  if (outputDeviceId >= 0 && static_cast<size_t>(outputDeviceId) < list_.size())
    number = list_[static_cast<size_t>(outputDeviceId)].ItemData;
  MIDIOpen(*out_, number);
  MIDIProgramChange(*out_, 0, outputBank, 24);
  reportSilence();
  if (!out_->loading()) emit soundReady();
}

void Player::soundLoaded() {
  if (out_->loading()) return;  // a stale call from an earlier load
  // Said the way a device that fails to open at once is said.
  if (!out_->isOpen()) MIDIReportError(*out_, kMidiOpenFailed);
  if (waiting_) {
    std::function<void()> begin = std::move(waiting_);
    waiting_ = nullptr;
    launch(begin);
    if (!scheduler_->playing()) emit playingChanged(false);  // it said true while waiting
  }
  reportSilence();
  emit soundReady();
}

std::vector<MidiDeviceInfo> Player::devices() {
  list_ = MIDIListDevices(*out_);
  return list_;
}

bool Player::openDeviceRow(int row) {
  if (row < 0 || static_cast<size_t>(row) >= list_.size()) return false;
  const bool ok = MIDIOpen(*out_, list_[static_cast<size_t>(row)].ItemData);
  if (!ok) {
    const std::string why = out_->errorText(kMidiOpenFailed);
    emit noSound(QString::fromStdString(why));
  }
  return ok;
}

void Player::playBar(const Document& doc) { play(doc, doc.CursorBar, doc.CursorBar); }

void Player::playFromHere(const Document& doc) {
  const int last = doc.score.Tracks.empty() ? 0 : doc.score.GetLastBar(std::clamp<int>(doc.CursorTrack, 0, doc.score.LastTrack()));
  play(doc, doc.CursorBar, last);
}

void Player::playFromStart(const Document& doc) {
  play(doc, 0, static_cast<int>(doc.score.BarInfos.size()) - 1);
}

void Player::play(const Document& doc, int startBar, int endBar) {
  start(doc, [this, startBar, endBar] { scheduler_->PlayTab(snapshot_, startBar, endBar); });
}

void Player::playTrainer(const Document& doc, const SpeedTrainer& trainer) {
  start(doc, [this, trainer] { scheduler_->PlayTrainer(snapshot_, trainer); });
}

void Player::setMix(const Score& score, const std::vector<bool>& silenced) {
  options_.Silenced = silenced;
  if (!scheduler_->playing()) return;
  std::vector<bool> was = scheduler_->options.Silenced;
  scheduler_->options.Silenced = silenced;
  // Only the sound fields change under the running scheduler; bars stay as they were taken.
  if (snapshot_.Tracks.size() == score.Tracks.size()) {
    for (size_t t = 0; t < score.Tracks.size(); ++t) {
      Track& playing = snapshot_.Tracks[t];
      const Track& now = score.Tracks[t];
      if (playing.Channel != now.Channel || playing.EffectChannel != now.EffectChannel) {
        MIDIChannelNotesOff(*out_, playing.Channel);
        MIDIChannelNotesOff(*out_, playing.EffectChannel);
      }
      playing.Volume = now.Volume;
      playing.Instrument = now.Instrument;
      playing.InstrumentName = now.InstrumentName;
      playing.Channel = now.Channel;
      playing.EffectChannel = now.EffectChannel;
    }
  }
  for (size_t t = 0; t < silenced.size() && t < snapshot_.Tracks.size(); ++t) {
    const bool before = t < was.size() && was[t];
    if (silenced[t] && !before) {
      MIDIChannelNotesOff(*out_, snapshot_.Tracks[t].Channel);
      MIDIChannelNotesOff(*out_, snapshot_.Tracks[t].EffectChannel);
    }
  }
}

void Player::start(const Document& doc, std::function<void()> begin) {
  tmrStop_->setEnabled(false);
  if (scheduler_->playing()) scheduler_->StopTab();
  snapshot_ = doc.score;
  shown_ = &doc;
  options_.CurrentTrack = doc.CursorTrack;
  if (out_->loading()) {
    // The song as it was when Play was pressed starts once the sounds are in. Its
    // instruments go to the device now, so that they load with the font.
    selectInstruments(snapshot_);
    const bool was = static_cast<bool>(waiting_);
    waiting_ = std::move(begin);
    if (!was) emit playingChanged(true);  // Stop is offered, and ends the wait
    emit waitingForSound();
    return;
  }
  launch(begin);
}

void Player::launch(const std::function<void()>& begin) {
  // Before the clock starts: an instrument whose sounds load on first use then delays the
  // start a little instead of the first beat against the rest.
  selectInstruments(snapshot_);
  scheduler_->options = options_;
  lastFollowBar_ = -1;
  begin();
  if (scheduler_->playing()) emit playingChanged(true);
  reportSilence();
}

void Player::selectInstruments(const Score& score) {
  for (const Track& t : score.Tracks) {
    MIDIProgramChange(*out_, t.Channel, options_.OutputBank, t.Instrument);
    MIDIProgramChange(*out_, t.EffectChannel, options_.OutputBank, t.Instrument);
  }
}

void Player::stop() {
  if (waiting_) {
    waiting_ = nullptr;
    emit playingChanged(false);
    return;
  }
  const bool was = scheduler_->playing();
  scheduler_->StopTab();
  if (!was) MIDIAllNotesOff(*out_);
}

bool Player::isPlaying() const { return scheduler_->playing() || waiting_; }

void Player::soundBeat(const Score& score, int track, int bar, int beat) {
  if (scheduler_->playing()) return;
  scheduler_->options = options_;
  scheduler_->SoundBeat(score, track, bar, beat);
  // Let it sound about as long as the beat would, within reason; a bend runs a little past
  // its beat, and is heard to its end.
  double ms = 500;
  try {
    ms = GetNumOf64ths(score.beat(track, bar, beat)) * IntervalForTempo(score.Tempo) * 1.05;
  } catch (const ScoreError&) {
  }
  tmrStop_->setInterval(static_cast<int32_t>(std::clamp(ms, 250.0, 4500.0)));
  tmrStop_->setEnabled(true);
  reportSilence();
}

void Player::soundChordDiagram(const Track& track, const BeatChord& chord) {
  if (scheduler_->playing()) return;
  MIDIAllNotesOff(*out_);
  PlayChordDiagram({*out_, options_.OutputBank}, track, chord);
  tmrStop_->setInterval(1500);
  tmrStop_->setEnabled(true);
  reportSilence();
}

void Player::soundDrum(int sound) {
  const int key = GetDrumNote(sound);
  if (scheduler_->playing() || key == 0) return;
  MIDINoteOn(*out_, 9, key, 100);  // the General MIDI percussion channel
  tmrStop_->setInterval(600);
  tmrStop_->setEnabled(true);
  reportSilence();
}

}  // namespace plectaro
