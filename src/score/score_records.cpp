#include "score/score_records.h"

#include <charconv>
#include <string>

namespace plectaro {

namespace {

[[noreturn]] void outOfRange(const char* what, int index, size_t size) {
  throw ScoreError(std::string(what) + " " + std::to_string(index) + " is out of range (0 to " +
                   std::to_string(static_cast<long>(size) - 1) + ")");
}

template <class Vec>
void checkIndex(const Vec& v, int i, const char* what) {
  if (i < 0 || static_cast<size_t>(i) >= v.size()) outOfRange(what, i, v.size());
}

}  // namespace

bool Beat::isRest() const {
  for (const NoteSlot& n : Notes)
    if (n.hasNote()) return false;
  return true;
}

const Track& Score::track(int t) const {
  checkIndex(Tracks, t, "track");
  return Tracks[static_cast<size_t>(t)];
}

Track& Score::trackMut(int t) {
  checkIndex(Tracks, t, "track");
  return Tracks[static_cast<size_t>(t)];
}

const BarInfo& Score::barInfo(int b) const {
  checkIndex(BarInfos, b, "bar");
  return BarInfos[static_cast<size_t>(b)];
}

BarInfo& Score::barInfoMut(int b) {
  checkIndex(BarInfos, b, "bar");
  return BarInfos[static_cast<size_t>(b)];
}

const TrackBar& Score::bar(int t, int b) const {
  const Track& tr = track(t);
  checkIndex(tr.Bars, b, "bar");
  return *tr.Bars[static_cast<size_t>(b)];
}

TrackBar& Score::barMut(int t, int b) {
  Track& tr = trackMut(t);
  checkIndex(tr.Bars, b, "bar");
  return tr.Bars[static_cast<size_t>(b)].mut();
}

const Beat& Score::beat(int t, int b, int k) const {
  const TrackBar& tb = bar(t, b);
  checkIndex(tb.Beats, k, "beat");
  return tb.Beats[static_cast<size_t>(k)];
}

Beat& Score::beatMut(int t, int b, int k) {
  TrackBar& tb = barMut(t, b);
  checkIndex(tb.Beats, k, "beat");
  return tb.Beats[static_cast<size_t>(k)];
}

const NoteSlot& Score::note(int t, int b, int k, int s) const {
  const Beat& bt = beat(t, b, k);
  checkIndex(bt.Notes, s, "string");
  return bt.Notes[static_cast<size_t>(s)];
}

NoteSlot& Score::noteMut(int t, int b, int k, int s) {
  Beat& bt = beatMut(t, b, k);
  checkIndex(bt.Notes, s, "string");
  return bt.Notes[static_cast<size_t>(s)];
}

int Score::GetLastBar(int t) const { return static_cast<int>(track(t).Bars.size()) - 1; }

int Score::GetLastBeat(int t, int b) const { return static_cast<int>(bar(t, b).Beats.size()) - 1; }

void Score::SetBeatCount(int t, int b, int lastBeat) {
  if (lastBeat < 0 || lastBeat > kMaxIndex)
    throw ScoreError("a bar must hold 1 to 32768 beats, not " + std::to_string(lastBeat + 1));
  TrackBar& tb = barMut(t, b);
  tb.Beats.resize(static_cast<size_t>(lastBeat) + 1);
}

void Score::ClearBeat(int t, int b, int k) {
  Beat& bt = beatMut(t, b, k);
  for (NoteSlot& n : bt.Notes) {
    n.Accentuate = false;
    n.Harmonic = kNoHarmonic;
    n.HasBend = false;
    n.HasGrace = false;
    n.HasTrill = false;
    n.Tied = false;
    n.Fret.clear();
    n.Technique = kNoTechnique;
    n.Volume = kVolMF;
    n.LeftFinger = 0;
    n.RightFinger = 0;
    n.GhostNote = false;
    n.LetRing = false;
  }
  bt.Dotted = false;
  bt.HasTremoloBar = false;
  bt.IsTuplet = false;
  bt.Stroke = kNoStroke;
  bt.ChordTechnique = kNoChordTechnique;
  bt.HasChord = false;
  bt.Text.clear();
}

void Score::SetTuning(int t, const std::array<int16_t, kMaxStrings>& offsets, int numStrings) {
  if (numStrings < 1 || numStrings > kMaxStrings)
    throw ScoreError("a track has 1 to 7 strings, not " + std::to_string(numStrings));
  Track& tr = trackMut(t);
  tr.Tuning.Offset = offsets;
  tr.Tuning.NumStrings = static_cast<int16_t>(numStrings);
}

void Score::SetTimeSignature(int b, int numerator, int denominator) {
  BarInfo& bi = barInfoMut(b);
  bi.TimeSigNumerator = numerator;
  bi.TimeSigDenominator = denominator;
}

void Score::SetBarCount(int lastBar) {
  if (lastBar < 0 || lastBar > kMaxIndex)
    throw ScoreError("a score holds 1 to 32768 bars, not " + std::to_string(lastBar + 1));
  const size_t n = static_cast<size_t>(lastBar) + 1;
  BarInfos.resize(n);
  for (Track& tr : Tracks) tr.Bars.resize(n);
}

int Score::GetNotePitch(int t, int b, int k, int s) const {
  const NoteSlot& n = note(t, b, k, s);
  int fret = 0;
  if (!FretNumber(n.Fret, fret)) throw ScoreError("\"" + n.Fret + "\" is not a fret number");
  return fret + track(t).Tuning.Offset[static_cast<size_t>(s)] + GetStringPitch(s);
}

int GetStringPitch(int string) {
  if (string < 0 || string >= kMaxStrings) outOfRange("string", string, kMaxStrings);
  return kStandardStringPitch[static_cast<size_t>(string)];
}

bool FretNumber(std::string_view fret, int& out) {
  size_t first = fret.find_first_not_of(' ');
  size_t last = fret.find_last_not_of(' ');
  if (first == std::string_view::npos) return false;
  const char* begin = fret.data() + first;
  const char* end = fret.data() + last + 1;
  auto [ptr, ec] = std::from_chars(begin, end, out);
  return ec == std::errc() && ptr == end;
}

}  // namespace plectaro
