// The Guitar Tuner's play loop: the open strings of a tuning sounded one after the other in
// strokes, down or up, at a rate in notes per minute with a wait between strokes, so the
// player can tune by ear.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "playback/hi_pre_timer.h"
#include "playback/midi_out.h"
#include "reference/tunings.h"

namespace plectaro {

// The stroke patterns of the "Stroke:" list, by index.
enum TunerStroke { kStrokeDown = 0, kStrokeUp = 1, kStrokeDownUp = 2, kStrokeUpDown = 3 };
inline constexpr std::array<const char*, 4> kTunerStrokeNames = {"Down", "Up", "Down, Up", "Up, Down"};

struct TunerSettings {
  std::string rate = "60";   // notes per minute, as typed
  std::string wait = "1000"; // milliseconds between strokes, as typed
  int stroke = kStrokeDown;  // -1 when nothing is selected: taken as Down
  bool reverb = false;       // let notes ring into each other
  std::array<bool, 7> strings{true, true, true, true, true, true, false};  // string 1 first
};

// "" when the settings can play, else the message key that says why not.
std::string CheckTunerSettings(const TunerSettings& s, int numStrings);

inline constexpr int kTunerChannel = 0;
inline constexpr int kTunerVelocity = 110;

class TunerPlayer {
 public:
  TunerPlayer(MidiOut& out, PlaybackClock& clock);
  ~TunerPlayer();

  // Starts with the first stroke of the pattern; the settings must have passed the check.
  void play(const TuningData& tuning, const TunerSettings& settings);
  void stop();
  bool playing() const { return playing_; }

  // Called with the string number (1..7) as it sounds, for the window to mark it.
  std::function<void(int stringNumber)> stringSounded;

 private:
  void startStroke(bool down);
  void tickString();
  void tickWait();

  MidiOut& out_;
  std::unique_ptr<HiPreTimer> tmrPlay_;
  std::unique_ptr<HiPreTimer> tmrWait_;
  TuningData tuning_;
  TunerSettings settings_;
  bool playing_ = false;
  bool down_ = true;
  int current_ = 0;      // string number being walked
  int first_ = 0, last_ = 0;  // lowest and highest checked string numbers
  int lastNote_ = -1;
};

}  // namespace plectaro
