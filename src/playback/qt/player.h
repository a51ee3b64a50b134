// The window's handle on playback: open the output device, play the document (a bar, from
// the cursor, from the start), stop, follow the play marker, and sound what the user types.
//
// The Player owns the output devices, the real clock and the scheduler. It plays a snapshot
// of the Score taken at the start (copies share bars, so this is cheap), so nothing the
// window does while playing can pull the score from under the scheduler.
//
// Wiring in the main window:
//   Play bar / Play from here / Play from start  ->  playBar(doc), playFromHere(doc), playFromStart(doc)
//   Stop                                         ->  stop()
//   playMarkerMoved(x, y, visible)               ->  move a small marker widget over the page
//   followBar(bar)                               ->  scroll the page so that the bar is shown
//   playingChanged(bool)                         ->  disable menus and scroll bars while playing
//   noSound(text)                                ->  say once, in the status bar, why nothing sounds
//   waitingForSound() / soundReady()             ->  say that Play waits for the sounds to load
//   a key that wrote a note                      ->  soundBeat(doc, track, bar, beat)
//   clicking a chord chart                       ->  soundChordDiagram(track, chord)
#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

#include "playback/midi_out.h"
#include "playback/scheduler.h"
#include "score/document.h"
#include "score/settings_store.h"

namespace plectaro {

class OutputDevices;
class QtPlaybackClock;

// Where the play marker stands on the page, in page pixels, for a beat of a laid-out bar.
struct PlayMarkerPos {
  int Left = 0;
  int Top = 0;
  bool Known = false;  // false when the bar has not been laid out
};
PlayMarkerPos PlayMarkerPosition(const Document& doc, int track, int bar, int beat);

class Player : public QObject {
  Q_OBJECT

 public:
  // `settings` may name a SoundFont (section "Playback", key "SoundFont"); it may be null.
  explicit Player(const SettingsStore* settings, QObject* parent = nullptr);
  // An output of one's own (a recorder in tests) instead of the machine's devices.
  Player(MidiOut& out, PlaybackClock& clock, QObject* parent = nullptr);
  ~Player() override;

  // The sound start-up: list the devices, open the one at list row `outputDeviceId` (the
  // built-in synthesizer if that row does not exist), and set the nylon guitar on channel 0.
  // The built-in synthesizer then reads its SoundFont in the background; soundReady() says when
  // it is done (at once for any other device, or when nothing would open).
  //
  // Until then, what the user plays is handled so that no sound comes late: Play (and the speed
  // trainer) waits, says so through waitingForSound(), and starts from the beginning of its
  // count-in when the sounds are in, the instruments of the song already loaded; Stop ends the
  // wait. A note typed, a chord clicked or a tool's click while loading does not sound (the
  // device drops notes until ready; instruments chosen meanwhile are kept).
  void LoadMIDI(int outputDeviceId, int16_t outputBank);
  std::vector<MidiDeviceInfo> devices();
  // Opens the device of a list row at once, so the user hears the change.
  bool openDeviceRow(int row);

  void playBar(const Document& doc);
  void playFromHere(const Document& doc);
  void playFromStart(const Document& doc);
  void play(const Document& doc, int startBar, int endBar);
  // The speed trainer dialog: loop bars, faster each pass.
  void playTrainer(const Document& doc, const SpeedTrainer& trainer);
  // The Score that plays now (a copy taken at the start); empty when idle.
  const Score& playingScore() const { return snapshot_; }
  void stop();
  // Sends each track's instrument to its channels, as playback would. The built-in synthesizer
  // reads an instrument's sounds when it is first chosen, so this gets them in ahead of time.
  void selectInstruments(const Score& score);
  bool isPlaying() const;

  // Play as typed: sounds beat (track, bar, beat) with its effects and silences it again
  // shortly after. Nothing of the score is kept.
  void soundBeat(const Score& score, int track, int bar, int beat);
  void soundBeat(const Document& doc, int track, int bar, int beat) { soundBeat(doc.score, track, bar, beat); }
  void soundChordDiagram(const Track& track, const BeatChord& chord);
  // One sound of the percussion list (1 "Acoustic Bass Drum" ...), as the drum cursor meets it.
  void soundDrum(int sound);

  // The mix table changed: the sound fields of each track (volume, instrument, channels) of
  // `score` go into the song that plays, and the silenced tracks stop at once. Also kept for
  // the next start.
  void setMix(const Score& score, const std::vector<bool>& silenced);

  // Follow playback, count-in, metronome, output bank. Read at each start.
  PlaybackOptions& options() { return options_; }
  MidiOut& midi() { return *out_; }

 signals:
  void playMarkerMoved(int left, int top, bool visible);
  void playPositionChanged(int bar, int beat, bool visible);
  // A beat of the window's track starts sounding (whether or not the page follows), for the
  // fretboard and piano; past the bar's last beat while the track waits for the next bar.
  void beatSounding(int track, int bar, int beat);
  // The speed trainer begins a pass (from 1) at this tempo.
  void trainerPass(int pass, int tempo);
  void followBar(int bar);
  void playingChanged(bool playing);
  void noSound(const QString& why);
  // Play was asked for while the sounds load; it starts when they are in.
  void waitingForSound();
  // The output opened by LoadMIDI is ready, or will not be (noSound says why).
  void soundReady();

 private:
  void wire();
  void start(const Document& doc, std::function<void()> begin);
  void launch(const std::function<void()>& begin);
  void soundLoaded();
  void reportSilence();

  std::unique_ptr<OutputDevices> devices_;
  std::unique_ptr<QtPlaybackClock> ownClock_;
  MidiOut* out_;
  std::unique_ptr<Scheduler> scheduler_;
  std::unique_ptr<HiPreTimer> tmrStop_;
  PlaybackOptions options_;
  Score snapshot_;
  const Document* shown_ = nullptr;  // for marker geometry; only read while playing
  std::vector<MidiDeviceInfo> list_;
  int lastFollowBar_ = -1;
  std::function<void()> waiting_;  // a start that waits for the sounds to load
};

}  // namespace plectaro
