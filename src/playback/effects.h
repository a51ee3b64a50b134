// How playing effects sound: bends, the tremolo bar, vibrato, slides, trills, tremolo picking
// and grace notes, that is every note that changes after it starts.
//
// Each running effect is one element with a periodic timer of its own, so that any number of
// effects run at once beside the 64th steps of the scheduler. What an element sends is worked
// out in full when it starts (an `EffectPlan`: the messages of every firing and the interval
// between firings); the element then only replays it on its timer. The same plans give the
// effect messages with their times to anything that writes them out instead of sounding them.
//
// Firing 0 goes out the moment the effect starts; firing k goes out k x IntervalMs later.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <set>
#include <vector>

#include "playback/hi_pre_timer.h"
#include "playback/midi_out.h"
#include "playback/recording_out.h"

namespace plectaro {

struct Score;

// The user's effect settings, kept in PL4.ini.
struct EffectSettings {
  // Wheel steps (of the upper seven bits) per quarter tone of a bend curve. No bend range is
  // ever sent to the synthesizer, so this is how the user fits bends to it.
  double BendCoefficient = 7.9;
  int NormalVibratoBend = 4;
  int WideVibratoBend = 12;
  int VibratoCount = 6;
};

enum class EffectKind { Bend, TremoloBar, Vibrato, Slide, Trill, TremoloPicking, Grace };

struct EffectPlan {
  EffectKind Kind = EffectKind::Bend;
  int Channel = 0;
  int32_t IntervalMs = 1;  // never below 1: the timer's floor
  // The packed short messages of each firing (status + data1 * 256 + data2 * 65536).
  std::vector<std::vector<uint32_t>> Firings;

  bool movesWheel() const {
    return Kind == EffectKind::Bend || Kind == EffectKind::TremoloBar || Kind == EffectKind::Vibrato;
  }
};

// The messages of a plan with their times, the effect starting at startMs.
std::vector<MidiMessage> EffectMessages(const EffectPlan& plan, double startMs);

// ---- the plans, one per effect; stepMs is one 64th in milliseconds, beat64ths the length
// of the beat the effect stands on ----

// A bend over the 26 points of a curve (heights in quarter tones), on a note already sounding.
EffectPlan PlanBend(const std::array<double, 26>& curve, int channel, double stepMs, double beat64ths,
                    double coefficient);
// The tremolo bar: the same over 25 points.
EffectPlan PlanTremoloBar(const std::array<double, 25>& curve, int channel, double stepMs, double beat64ths,
                          double coefficient);
EffectPlan PlanVibrato(int channel, double stepMs, double beat64ths, bool wide, const EffectSettings& settings);
// A slide from one key to another in semitone steps, as a run of separate notes. The note
// at `from` is held for `holdFirings` firings before the first step; with sounding false it
// is already sounding, else firing 0 strikes it.
EffectPlan PlanSlide(int channel, int from, int to, int velocity, int holdFirings, int32_t intervalMs,
                     bool strikeFirst);
// Alternates `main` and `other` (starting with main), one note every period64ths; each note
// ends the one before, leaving the channel's other notes alone.
EffectPlan PlanTrill(int channel, int main, int other, int velocity, double stepMs, double beat64ths,
                     double period64ths);
// Strikes the same notes again every period64ths for the length of the beat.
EffectPlan PlanTremoloPicking(int channel, const std::vector<int>& keys, int velocity, double stepMs,
                              double beat64ths, double period64ths);
// A grace note (a negative key for a dead one, which only clicks) on the beat, then the main
// note when the grace has had its length.
EffectPlan PlanGrace(int channel, int graceKey, int graceVelocity, int mainKey, int mainVelocity,
                     double stepMs, double grace64ths);

// Interval of a curve effect: the beat divided into `divisions`, rounded to the nearest
// millisecond (ties to even), never below 1.
int32_t CurveInterval(double stepMs, double beat64ths, double divisions);

// ---- the running elements ----

class EffectPlayer {
 public:
  EffectPlayer(MidiOut& out, PlaybackClock& clock);
  ~EffectPlayer();
  EffectPlayer(const EffectPlayer&) = delete;
  EffectPlayer& operator=(const EffectPlayer&) = delete;

  EffectSettings settings;

  // Sends the plan's first firing now and runs the rest on a free element. A wheel effect
  // takes the wheel of its channel over from one still running there: two curves moving one
  // wheel by turns would be heard as a warble that nobody wrote.
  void start(EffectPlan plan);
  // Ends every element and puts the wheel back to the centre on every channel that a wheel
  // effect moved since the last stop, so that nothing stays bent after Stop.
  void stopAll();
  int running() const;

 private:
  struct Element;
  void fire(Element& e);

  MidiOut& out_;
  PlaybackClock& clock_;
  std::vector<std::unique_ptr<Element>> elements_;
  std::set<int> wheelChannels_;
};

}  // namespace plectaro
