#include "tools/tuner.h"

#include <algorithm>

#include "score/value_text.h"

namespace plectaro {

namespace {

bool wholeNumberIn(std::string_view text, double lo, double hi) {
  const std::string_view t = Trim(text);
  if (t.empty() || t.find_first_not_of("0123456789") != std::string_view::npos) return false;
  const double v = ParseNumber(t);
  return v >= lo && v <= hi;
}

}  // namespace

std::string CheckTunerSettings(const TunerSettings& s, int numStrings) {
  if (!wholeNumberIn(s.rate, 1, 6000)) return "str_PleaseValidPlayRate";
  if (!wholeNumberIn(s.wait, 0, 60000)) return "str_PleaseValidPlayWait";
  for (int i = 0; i < std::min(numStrings, 7); ++i)
    if (s.strings[static_cast<size_t>(i)]) return {};
  return "str_PleaseAtLeastOneString";
}

TunerPlayer::TunerPlayer(MidiOut& out, PlaybackClock& clock)
    : out_(out), tmrPlay_(clock.createTimer()), tmrWait_(clock.createTimer()) {
  for (auto* t : {tmrPlay_.get(), tmrWait_.get()}) {
    t->setResolution(1);
    t->setPeriodic(true);
  }
  tmrPlay_->setOnTimer([this] { tickString(); });
  tmrWait_->setOnTimer([this] { tickWait(); });
}

TunerPlayer::~TunerPlayer() {
  tmrPlay_->setEnabled(false);
  tmrWait_->setEnabled(false);
}

void TunerPlayer::play(const TuningData& tuning, const TunerSettings& settings) {
  stop();
  tuning_ = tuning;
  settings_ = settings;
  first_ = 0;
  last_ = 0;
  for (int n = 1; n <= std::min<int>(tuning.NumStrings, 7); ++n) {
    if (!settings.strings[static_cast<size_t>(n - 1)]) continue;
    if (first_ == 0) first_ = n;
    last_ = n;
  }
  if (first_ == 0) return;
  playing_ = true;
  tmrPlay_->setInterval(std::max(1, 60000 / std::max(1, static_cast<int>(ParseNumber(settings.rate)))));
  tmrWait_->setInterval(std::max(1, static_cast<int>(ParseNumber(settings.wait))));
  startStroke(settings.stroke != kStrokeUp && settings.stroke != kStrokeUpDown);
}

void TunerPlayer::stop() {
  tmrPlay_->setEnabled(false);
  tmrWait_->setEnabled(false);
  if (playing_) MIDIChannelNotesOff(out_, kTunerChannel);
  playing_ = false;
  lastNote_ = -1;
}

void TunerPlayer::startStroke(bool down) {
  down_ = down;
  // Down runs from the lowest string (the highest number) towards string 1.
  current_ = down ? last_ : first_;
  tmrPlay_->setEnabled(true);
}

void TunerPlayer::tickString() {
  const int n = current_;
  if (settings_.strings[static_cast<size_t>(n - 1)]) {
    if (!settings_.reverb && lastNote_ >= 0) MIDINoteOff(out_, kTunerChannel, lastNote_);
    lastNote_ = std::clamp(tuning_.pitch(n), 0, 127);
    MIDINoteOn(out_, kTunerChannel, lastNote_, kTunerVelocity);
    if (stringSounded) stringSounded(n);
  }
  current_ += down_ ? -1 : 1;
  if (current_ < first_ || current_ > last_) {
    tmrPlay_->setEnabled(false);
    tmrWait_->setEnabled(true);
  }
}

void TunerPlayer::tickWait() {
  tmrWait_->setEnabled(false);
  if (!settings_.reverb) {
    MIDIChannelNotesOff(out_, kTunerChannel);
    lastNote_ = -1;
  }
  bool down = true;
  switch (settings_.stroke) {
    case kStrokeUp: down = false; break;
    case kStrokeDownUp:
    case kStrokeUpDown: down = !down_; break;
    default: down = true; break;
  }
  startStroke(down);
}

}  // namespace plectaro
