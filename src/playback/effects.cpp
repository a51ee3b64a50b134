#include "playback/effects.h"

#include <algorithm>
#include <cmath>

namespace plectaro {

namespace {

constexpr int kWheelCentre = 64;
// Vibrato swings round 66, not 64: the wheel sits slightly sharp while it shakes. Songs were
// tuned by ear against this, so it stays.
constexpr int kVibratoCentre = 66;

// Collects the messages that the MIDI routines would send, one firing at a time, so that plans
// are made of exactly the messages the routines make (invalid ones dropped the same way).
class Capture : public MidiOut {
 public:
  explicit Capture(EffectPlan& plan) : plan_(plan) {}
  int openDevice(int) override { return kMidiOk; }
  void closeDevice() override {}
  bool isOpen() const override { return true; }
  int shortMsg(uint32_t word) override {
    plan_.Firings.back().push_back(word);
    return kMidiOk;
  }
  std::vector<MidiDeviceInfo> devices() override { return {}; }
  // Opens the next firing; messages go into it until the next call.
  Capture& next() {
    plan_.Firings.emplace_back();
    return *this;
  }

 private:
  EffectPlan& plan_;
};

int wheel(double v) { return std::clamp(static_cast<int>(std::nearbyint(v)), 0, 127); }

double finite(double v) { return std::isfinite(v) ? v : 0.0; }

int32_t interval(double ms) {
  if (!std::isfinite(ms)) return 1;
  return static_cast<int32_t>(std::clamp(std::nearbyint(ms), 1.0, 1000000.0));
}

// Walks a curve from position 0 to `limit` in tenths. Between two points the height is
// interpolated linearly, lagging one point behind the position (at 3.5 it stands half-way
// between points 2 and 3); in the first stretch the nearest of points 0 and 1 is taken.
// The position is a single-precision number, as stored curves were always played with it.
template <size_t N>
EffectPlan planCurve(EffectKind kind, const std::array<double, N>& curve, int channel, int32_t ms,
                     double coefficient, float limit) {
  EffectPlan plan;
  plan.Kind = kind;
  plan.Channel = channel;
  plan.IntervalMs = ms;
  Capture cap(plan);
  for (float position = 0; position < limit; position += 0.1f) {
    const int i = static_cast<int>(position);
    const double f = position - static_cast<float>(i);
    double v = 0;
    if (i == 0) {
      v = coefficient * finite(curve[static_cast<size_t>(std::nearbyint(position))]);
    } else {
      const double a = finite(curve[static_cast<size_t>(i - 1)]);
      v = coefficient * (f * (finite(curve[static_cast<size_t>(i)]) - a) + a);
    }
    MIDIPitchBend(cap.next(), channel, 0, wheel(v + kWheelCentre));
  }
  MIDIPitchBend(cap.next(), channel, 0, kWheelCentre);
  return plan;
}

int countOver(double beat64ths, double period64ths) {
  if (!(period64ths > 0) || !std::isfinite(beat64ths)) return 1;
  return std::max(1, static_cast<int>(beat64ths / period64ths + 1e-9));
}

}  // namespace

int32_t CurveInterval(double stepMs, double beat64ths, double divisions) {
  return interval(stepMs * beat64ths / divisions);
}

std::vector<MidiMessage> EffectMessages(const EffectPlan& plan, double startMs) {
  std::vector<MidiMessage> out;
  for (size_t k = 0; k < plan.Firings.size(); ++k)
    for (uint32_t w : plan.Firings[k])
      out.push_back({startMs + static_cast<double>(k) * plan.IntervalMs, static_cast<uint8_t>(w & 0xFF),
                     static_cast<uint8_t>((w >> 8) & 0xFF), static_cast<uint8_t>((w >> 16) & 0xFF)});
  return out;
}

EffectPlan PlanBend(const std::array<double, 26>& curve, int channel, double stepMs, double beat64ths,
                    double coefficient) {
  // 250 steps of a tenth cover the beat; the 26th point adds ten more, so a bend runs a
  // little past its beat, and past it by far when the floor of 1 ms holds the steps back.
  return planCurve(EffectKind::Bend, curve, channel, CurveInterval(stepMs, beat64ths, 25 / 0.1), coefficient,
                   26.0f);
}

EffectPlan PlanTremoloBar(const std::array<double, 25>& curve, int channel, double stepMs, double beat64ths,
                          double coefficient) {
  return planCurve(EffectKind::TremoloBar, curve, channel, CurveInterval(stepMs, beat64ths, 24 / 0.1),
                   coefficient, 25.0f);
}

EffectPlan PlanVibrato(int channel, double stepMs, double beat64ths, bool wide, const EffectSettings& settings) {
  EffectPlan plan;
  plan.Kind = EffectKind::Vibrato;
  plan.Channel = channel;
  const int count = std::max(1, settings.VibratoCount);
  plan.IntervalMs = CurveInterval(stepMs, beat64ths, count);
  const int bend = wide ? settings.WideVibratoBend : settings.NormalVibratoBend;
  Capture cap(plan);
  bool up = false;
  for (int left = count; left > 0; --left) {
    MIDIPitchBend(cap.next(), channel, 0, wheel(up ? kVibratoCentre + bend : kVibratoCentre - bend));
    up = !up;
    if (left == 1) MIDIPitchBend(cap, channel, 0, kWheelCentre);
  }
  return plan;
}

EffectPlan PlanSlide(int channel, int from, int to, int velocity, int holdFirings, int32_t intervalMs,
                     bool strikeFirst) {
  EffectPlan plan;
  plan.Kind = EffectKind::Slide;
  plan.Channel = channel;
  plan.IntervalMs = std::max<int32_t>(1, intervalMs);
  Capture cap(plan);
  cap.next();
  if (strikeFirst) MIDINoteOn(cap, channel, from, velocity);
  for (int k = 1; k < holdFirings; ++k) cap.next();
  const int dir = to > from ? 1 : -1;
  for (int key = from; key != to; key += dir) {
    cap.next();
    MIDINoteOff(cap, channel, key);
    MIDINoteOn(cap, channel, key + dir, velocity);
  }
  return plan;
}

EffectPlan PlanTrill(int channel, int main, int other, int velocity, double stepMs, double beat64ths,
                     double period64ths) {
  EffectPlan plan;
  plan.Kind = EffectKind::Trill;
  plan.Channel = channel;
  plan.IntervalMs = interval(stepMs * period64ths);
  Capture cap(plan);
  // Each note of the trill ends the one before it, and nothing else: a channel-wide stop would
  // also silence a bend or the rest of a chord held beside the trill, which on a guitar ring on.
  bool second = false;
  int sounding = -1;
  for (int left = countOver(beat64ths, period64ths); left > 0; --left) {
    cap.next();
    const int key = second ? other : main;
    if (sounding >= 0) MIDINoteOff(cap, channel, sounding);
    MIDINoteOn(cap, channel, key, velocity);
    sounding = key;
    second = !second;
  }
  return plan;
}

EffectPlan PlanTremoloPicking(int channel, const std::vector<int>& keys, int velocity, double stepMs,
                              double beat64ths, double period64ths) {
  EffectPlan plan;
  plan.Kind = EffectKind::TremoloPicking;
  plan.Channel = channel;
  plan.IntervalMs = interval(stepMs * period64ths);
  Capture cap(plan);
  for (int left = countOver(beat64ths, period64ths); left > 0; --left) {
    MIDIChannelNotesOff(cap.next(), channel);
    for (int key : keys) MIDINoteOn(cap, channel, key, velocity);
  }
  return plan;
}

EffectPlan PlanGrace(int channel, int graceKey, int graceVelocity, int mainKey, int mainVelocity,
                     double stepMs, double grace64ths) {
  EffectPlan plan;
  plan.Kind = EffectKind::Grace;
  plan.Channel = channel;
  plan.IntervalMs = interval(stepMs * grace64ths);
  Capture cap(plan);
  cap.next();
  if (graceKey >= 0) {
    MIDINoteOn(cap, channel, graceKey, graceVelocity);
  } else {
    // A dead grace note is the muted string struck: a click with no pitch to hold.
    MIDINoteOn(cap, channel, mainKey, graceVelocity);
    MIDINoteOff(cap, channel, mainKey);
  }
  MIDIChannelNotesOff(cap.next(), channel);
  MIDINoteOn(cap, channel, mainKey, mainVelocity);
  return plan;
}

// ---- EffectPlayer ----

struct EffectPlayer::Element {
  std::unique_ptr<HiPreTimer> timer;
  EffectPlan plan;
  size_t next = 0;
  bool busy = false;
};

EffectPlayer::EffectPlayer(MidiOut& out, PlaybackClock& clock) : out_(out), clock_(clock) {}

EffectPlayer::~EffectPlayer() {
  for (auto& e : elements_) e->timer->setEnabled(false);
}

void EffectPlayer::fire(Element& e) {
  if (!e.busy || e.next >= e.plan.Firings.size()) {
    e.timer->setEnabled(false);
    e.busy = false;
    return;
  }
  for (uint32_t w : e.plan.Firings[e.next]) {
    const int r = out_.shortMsg(w);
    if (r != kMidiOk) MIDIReportError(out_, r);
  }
  ++e.next;
  if (e.next >= e.plan.Firings.size()) {
    e.timer->setEnabled(false);
    e.busy = false;
  }
}

void EffectPlayer::start(EffectPlan plan) {
  if (plan.Firings.empty()) return;
  if (plan.movesWheel()) {
    wheelChannels_.insert(plan.Channel);
    for (auto& e : elements_) {
      if (e->busy && e->plan.movesWheel() && e->plan.Channel == plan.Channel) {
        e->timer->setEnabled(false);
        e->busy = false;
      }
    }
  }
  Element* free = nullptr;
  for (auto& e : elements_)
    if (!e->busy) {
      free = e.get();
      break;
    }
  if (!free) {
    auto e = std::make_unique<Element>();
    e->timer = clock_.createTimer();
    e->timer->setPeriodic(true);
    e->timer->setResolution(1);
    Element* raw = e.get();
    e->timer->setOnTimer([this, raw] { fire(*raw); });
    elements_.push_back(std::move(e));
    free = raw;
  }
  free->plan = std::move(plan);
  free->next = 0;
  free->busy = true;
  free->timer->setInterval(free->plan.IntervalMs);
  fire(*free);
  if (free->busy) free->timer->setEnabled(true);
}

void EffectPlayer::stopAll() {
  for (auto& e : elements_) {
    e->timer->setEnabled(false);
    e->busy = false;
  }
  for (int ch : wheelChannels_) MIDIPitchBend(out_, ch, 0, kWheelCentre);
  wheelChannels_.clear();
}

int EffectPlayer::running() const {
  return static_cast<int>(std::count_if(elements_.begin(), elements_.end(), [](const auto& e) { return e->busy; }));
}

}  // namespace plectaro
