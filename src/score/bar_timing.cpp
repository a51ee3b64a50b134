#include "score/bar_timing.h"

#include <array>
#include <cstdio>
#include <cstdlib>

namespace plectaro {

double GetNumOf64ths(int length, int tuplet, bool isTuplet, bool dotted) {
  if (length < kWhole || length > kSixtyFourth)
    throw ScoreError("beat length " + std::to_string(length) + " is not a note value");
  double v = static_cast<double>(64 >> length);
  if (isTuplet) {
    if (tuplet < 0 || tuplet >= kTupletKinds)
      throw ScoreError("tuplet kind " + std::to_string(tuplet) + " is not known");
    v = v * 2 / kTupletNotes[static_cast<size_t>(tuplet)];
  }
  if (dotted) v *= 1.5;
  return v;
}

double GetNumOf64ths(const Beat& b) { return GetNumOf64ths(b.Length, b.Tuplet, b.IsTuplet, b.Dotted); }

double GetBeatsLength(const Score& s, int track, int bar) {
  if (bar < 0 || bar > s.GetLastBar(track)) return 0;
  double sum = 0;
  for (const Beat& b : s.bar(track, bar).Beats) sum += GetNumOf64ths(b);
  return sum;
}

double GetBarLength(const Score& s, int track, int bar) {
  if (bar < 0 || bar > s.GetLastBar(track)) return 0;
  const BarInfo& bi = s.barInfo(bar);
  if (bi.TimeSigDenominator == 0)
    throw ScoreError("bar " + std::to_string(bar + 1) + " has a time signature with denominator 0");
  return static_cast<double>(bi.TimeSigNumerator) / bi.TimeSigDenominator * 64;
}

namespace {

// The three-decimal round trip of "0.0##".
double roundTrip(double v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.3f", v);
  return std::strtod(buf, nullptr);
}

// Rest durations a repair may add, shortest first, with the beat fields that give each.
struct Candidate {
  double length64;
  int32_t length;
  bool isTuplet;
  int32_t tuplet;
};
constexpr std::array<Candidate, 16> kCandidates = {{
    {2.0 / 13, kSixtyFourth, true, k13Tuplet}, {2.0 / 12, kSixtyFourth, true, k12Tuplet},
    {2.0 / 11, kSixtyFourth, true, k11Tuplet}, {2.0 / 10, kSixtyFourth, true, k10Tuplet},
    {2.0 / 9, kSixtyFourth, true, k9Tuplet},   {2.0 / 7, kSixtyFourth, true, k7Tuplet},
    {2.0 / 6, kSixtyFourth, true, k6Tuplet},   {2.0 / 5, kSixtyFourth, true, k5Tuplet},
    {2.0 / 3, kSixtyFourth, true, kTriplet},   {1, kSixtyFourth, false, 0},
    {2, kThirtySecond, false, 0},              {4, kSixteenth, false, 0},
    {8, kEighth, false, 0},                    {16, kQuarter, false, 0},
    {32, kHalf, false, 0},                     {64, kWhole, false, 0},
}};

}  // namespace

BarCheck CheckBar(const Score& s, int track, int bar) {
  const double beats = roundTrip(GetBeatsLength(s, track, bar));
  const double want = roundTrip(GetBarLength(s, track, bar));
  if (beats == want) return kBarExact;
  return beats > want ? kBarTooLong : kBarTooShort;
}

BarCheck FixBar(Score& s, int track, int bar) {
  BarCheck c = CheckBar(s, track, bar);
  while (c == kBarTooShort) {
    const double remainder = GetBarLength(s, track, bar) - GetBeatsLength(s, track, bar);
    TrackBar& tb = s.barMut(track, bar);
    if (tb.Beats.size() > static_cast<size_t>(kMaxIndex))
      throw ScoreError("bar " + std::to_string(bar + 1) + " cannot hold more than 32768 beats");
    // A blank beat is a whole-note rest; it stays so when even the shortest candidate is
    // longer than the gap, which ends the repair with a bar that is too long.
    Beat& rest = tb.Beats.emplace_back();
    for (const Candidate& cand : kCandidates) {
      if (cand.length64 <= remainder) {
        rest.Length = cand.length;
        rest.IsTuplet = cand.isTuplet;
        rest.Tuplet = cand.tuplet;
      }
    }
    c = CheckBar(s, track, bar);
  }
  return c;
}

void RepairBar(Score& s, int track, int b) {
  if (CheckBar(s, track, b) == kBarTooShort) FixBar(s, track, b);
  if (CheckBar(s, track, b) == kBarTooLong) {
    // Drops beats until the bar is short, even past an exact fit, then fills the gap. A bar
    // whose single beat is too long keeps it: a bar never loses its last beat.
    while (CheckBar(s, track, b) != kBarTooShort && s.GetLastBeat(track, b) > 0)
      s.barMut(track, b).Beats.pop_back();
    FixBar(s, track, b);
  }
}

void FixAllBars(Score& s, int track) {
  const int last = s.GetLastBar(track);
  for (int b = 0; b <= last; ++b) RepairBar(s, track, b);
}

std::string Format64ths(double value) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.3f", value);
  std::string t(buf);
  // One decimal place always, two more only when they are not zero: "48.0", "10.667".
  while (t.size() > 2 && t.back() == '0' && t[t.size() - 2] != '.') t.pop_back();
  if (t == "-0.0") t = "0.0";
  return t;
}

}  // namespace plectaro
