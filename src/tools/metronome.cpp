#include "tools/metronome.h"

#include <algorithm>

#include "score/file_io.h"
#include "score/value_text.h"
#include "tools/record_text.h"

namespace plectaro {

namespace {

bool validLower(int lower) { return lower == 1 || lower == 2 || lower == 4 || lower == 8 || lower == 16 || lower == 32; }

bool playable(const BeatSet& s) {
  return s.BeatsUpper >= 1 && s.BeatSetBars >= 1 && s.BeatSetBPM >= 1 && validLower(s.BeatsLower);
}

}  // namespace

int32_t BeatIntervalMs(const BeatSet& set) {
  const double bpm = std::max<int16_t>(set.BeatSetBPM, 1);
  const double lower = validLower(set.BeatsLower) ? set.BeatsLower : 4;
  return std::max<int32_t>(1, static_cast<int32_t>(60000.0 / bpm * 4.0 / lower + 1e-9));
}

int16_t ParseBeatsUpper(std::string_view text) {
  const double v = ParseNumber(text);
  if (IsBlank(text) || v != static_cast<int>(v) || v < 1 || v > 32) return 4;
  return static_cast<int16_t>(v);
}

std::string CheckPlayable(const MetronomeFile& f, const std::function<std::string(std::string_view)>& text) {
  if (f.Sets.empty()) return text("str_MustHaveAtLeastOneBeatSet");
  for (size_t i = 0; i < f.Sets.size(); ++i)
    if (!playable(f.Sets[i]))
      return text("str_CantPlay1") + std::to_string(i + 1) + text("str_CantPlay2") + text("str_CantPlay3");
  return {};
}

std::string WriteMetronome(const MetronomeFile& f) {
  LineWriter w;
  w.text("PL4M");
  w.number(f.Instrument);
  w.number(f.BeatPitch);
  w.number(f.BeatVolume);
  w.number(f.FirstBeatVolume);
  w.boolean(f.Loop);
  w.number(static_cast<int64_t>(f.Sets.size()) - 1);
  for (const BeatSet& s : f.Sets) {
    w.number(s.BeatsUpper);
    w.number(s.BeatsLower);
    w.number(s.BeatSetBPM);
    w.number(s.BeatSetBars);
  }
  return w.bytes();
}

MetronomeFile ReadMetronome(std::string_view bytes) {
  LineReader r(bytes);
  r.need(7, "its settings");
  r.text();  // the magic: files have always been taken without testing it
  MetronomeFile f;
  f.Instrument = static_cast<int16_t>(std::clamp<int>(r.i16(), 0, 127));
  f.BeatPitch = static_cast<int16_t>(std::clamp<int>(r.i16(), 0, 127));
  f.BeatVolume = static_cast<int16_t>(std::clamp<int>(r.i16(), 0, 127));
  f.FirstBeatVolume = static_cast<int16_t>(std::clamp<int>(r.i16(), 0, 127));
  f.Loop = r.boolean();
  const int upper = r.i16();
  if (upper < 0 || upper >= kMaxBeatSets) throw ToolFileError("the number of beat sets is out of range");
  r.need(4 * static_cast<uint64_t>(upper + 1), "its last beat set");
  f.Sets.resize(static_cast<size_t>(upper) + 1);
  for (BeatSet& s : f.Sets) {
    s.BeatsUpper = r.i16();
    s.BeatsLower = r.i16();
    s.BeatSetBPM = r.i16();
    s.BeatSetBars = r.i16();
  }
  return f;
}

MetronomeFile LoadMetronomeFile(const std::filesystem::path& path) {
  return ReadMetronome(ReadWholeFile(path, size_t(1) << 20));
}

void SaveMetronomeFile(const std::filesystem::path& path, const MetronomeFile& f) {
  WriteFileAtomically(path, WriteMetronome(f));
}

MetronomePlayer::MetronomePlayer(MidiOut& out, PlaybackClock& clock, int bank)
    : out_(out), bank_(bank), timer_(clock.createTimer()) {
  timer_->setResolution(1);
  timer_->setPeriodic(true);
  timer_->setOnTimer([this] { tick(); });
}

MetronomePlayer::~MetronomePlayer() { timer_->setEnabled(false); }

bool MetronomePlayer::playing() const { return timer_->Enabled(); }

void MetronomePlayer::play(const MetronomeFile& f) {
  timer_->setEnabled(false);
  file_ = &f;
  pos_ = {};
  passesDone_ = 0;
  lastNote_ = -1;
  if (f.Sets.empty()) return;
  MIDIProgramChange(out_, kMetronomeChannel, bank_, std::clamp<int>(f.Instrument, 0, 127));
  timer_->setInterval(BeatIntervalMs(f.Sets[0]));
  timer_->setEnabled(true);
}

void MetronomePlayer::stop() {
  if (!timer_->Enabled()) return;
  timer_->setEnabled(false);
  if (lastNote_ >= 0) MIDINoteOff(out_, kMetronomeChannel, lastNote_);
  lastNote_ = -1;
  if (hooks.stopped) hooks.stopped();
}

void MetronomePlayer::tick() {
  const MetronomeFile& f = *file_;
  if (pos_.set >= static_cast<int>(f.Sets.size())) {  // the list shrank while playing
    stop();
    return;
  }
  if (lastNote_ >= 0) MIDINoteOff(out_, kMetronomeChannel, lastNote_);
  lastNote_ = std::clamp<int>(f.BeatPitch, 0, 127);
  const int volume = pos_.beat == 0 ? f.FirstBeatVolume : f.BeatVolume;
  MIDINoteOn(out_, kMetronomeChannel, lastNote_, std::clamp(volume, 0, 127));
  if (hooks.beatSounded) hooks.beatSounded(pos_);

  const BeatSet* set = &f.Sets[static_cast<size_t>(pos_.set)];
  if (++pos_.beat < set->BeatsUpper) return;
  pos_.beat = 0;
  if (++pos_.bar < set->BeatSetBars) return;
  pos_.bar = 0;
  if (++pos_.set >= static_cast<int>(f.Sets.size())) {
    pos_.set = 0;
    ++passesDone_;
    if (!f.Loop || (passes > 0 && passesDone_ >= passes)) {
      // The last click is left to ring out; Stop would cut it.
      timer_->setEnabled(false);
      lastNote_ = -1;
      if (hooks.stopped) hooks.stopped();
      return;
    }
  }
  set = &f.Sets[static_cast<size_t>(pos_.set)];
  timer_->setInterval(BeatIntervalMs(*set));
}

}  // namespace plectaro
