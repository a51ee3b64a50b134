#include "tools/drum_pattern.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "playback/midi_out.h"
#include "score/file_io.h"
#include "score/value_text.h"
#include "tools/record_text.h"

namespace plectaro {

namespace {

// Bounds of what a file may ask for. The grid is indexed by 16-bit numbers, and a file that
// claims more rows than it has lines is refused before anything is allocated.
constexpr int kMaxFileSteps = 32767;
constexpr int kMaxFileInstruments = 1024;

constexpr int kOldSize = 16;
constexpr int kOldKeyBase = 35;

}  // namespace

int TupletNumber(int tupletCode) {
  static constexpr std::array<int, kTupletCodes> kN = {3, 5, 6, 7, 9, 10, 11, 12, 13};
  return (tupletCode >= 0 && tupletCode < kTupletCodes) ? kN[static_cast<size_t>(tupletCode)] : 3;
}

bool DrumPattern::cell(int step, int instrument) const {
  if (step < 0 || step >= steps()) return false;
  const auto& row = Pattern[static_cast<size_t>(step)];
  return instrument >= 0 && static_cast<size_t>(instrument) < row.size() && row[static_cast<size_t>(instrument)];
}

void DrumPattern::setCell(int step, int instrument, bool on) {
  if (step < 0 || step >= steps()) return;
  auto& row = Pattern[static_cast<size_t>(step)];
  if (instrument >= 0 && static_cast<size_t>(instrument) < row.size()) row[static_cast<size_t>(instrument)] = on;
}

const std::vector<std::string>& DefaultDrumInstruments() {
  static const std::vector<std::string> kNames = {
      "Crash Cymbal 1", "Crash Cymbal 2",  "Splash Cymbal",  "Chinese Cymbal",
      "Cowbell",        "Ride Bell",       "Ride Cymbal 2",  "Open High-Hat",
      "Closed High-Hat", "Pedal High-Hat", "Side Stick",     "Acoustic Snare",
      "Low-Mid Tom",    "Low Tom",         "High Floor Tom", "Acoustic Bass Drum"};
  return kNames;
}

DrumPattern NewDrumPattern() {
  DrumPattern p;
  ResizePattern(p, 32, 16);
  p.Instruments = DefaultDrumInstruments();
  return p;
}

void Resize2DBooleanArray(std::vector<std::vector<bool>>& grid, int first, int second) {
  grid.resize(static_cast<size_t>(std::max(first, 0)));
  for (auto& row : grid) row.resize(static_cast<size_t>(std::max(second, 0)), false);
}

void ResizePattern(DrumPattern& p, int steps, int instruments) {
  const auto s = static_cast<size_t>(std::max(steps, 0));
  const auto n = static_cast<size_t>(std::max(instruments, 0));
  Resize2DBooleanArray(p.Pattern, steps, instruments);
  p.Instruments.resize(n);
  p.Volumes.resize(n, 127);
  p.BeatLength.resize(s, kSixteenthNote);
  p.TupletCode.resize(s, 0);
  p.Tupleted.resize(s, false);
  p.Dotted.resize(s, false);
}

int GetDrumIndex(std::string_view name) {
  for (int n = 1;; ++n) {
    const std::string drum = GetDrumString(n);
    if (drum.empty()) return 0;
    if (drum == name) return GetDrumNote(n);
  }
}

std::string DrumNameForKey(int key) {
  for (int n = 1;; ++n) {
    const std::string drum = GetDrumString(n);
    if (drum.empty()) return {};
    if (GetDrumNote(n) == key) return drum;
  }
}

double StepFactor(const DrumPattern& p, int step) {
  if (step < 0 || step >= p.steps()) return 0;
  const auto i = static_cast<size_t>(step);
  const int code = std::clamp<int32_t>(p.BeatLength[i], kWholeNote, kSixtyFourthNote);
  double factor = 4.0 / static_cast<double>(1 << code);
  if (p.Tupleted[i]) factor *= 2.0 / TupletNumber(p.TupletCode[i]);
  if (p.Dotted[i]) factor *= 1.5;
  return factor;
}

int32_t StepIntervalMs(const DrumPattern& p, int step) {
  if (step < 0 || step >= p.steps()) return 1;
  const double factor = StepFactor(p, step);
  const double tempo = std::max<int16_t>(p.Tempo, 1);
  // The lengths are exact decimals (a dotted quarter at 90 is 1000 ms); the small nudge keeps
  // binary rounding from cutting such a value down to 999.
  const double ms = 3750.0 / tempo * 16.0 * factor + 1e-9;
  return std::max<int32_t>(1, static_cast<int32_t>(std::min(ms, 2.0e9)));
}

std::string WriteDrumbeat(const DrumPattern& p) {
  LineWriter w;
  w.text("PL4D");
  w.number(p.instruments() - 1);
  w.number(p.steps() - 1);
  w.number(p.BeatsPerGroup);
  w.number(p.Tempo);
  for (const auto& name : p.Instruments) w.text(name);
  for (int16_t v : p.Volumes) w.number(v);
  for (int s = 0; s < p.steps(); ++s)
    for (int i = 0; i < p.instruments(); ++i) w.text(p.cell(s, i) ? "1" : "0");
  for (size_t s = 0; s < p.Pattern.size(); ++s) {
    w.number(p.BeatLength[s]);
    w.number(p.TupletCode[s]);
    w.boolean(p.Tupleted[s]);
    w.boolean(p.Dotted[s]);
  }
  return w.bytes();
}

DrumPattern ReadDrumbeat(std::string_view bytes) {
  LineReader r(bytes);
  if (r.remaining() == 0 || Trim(r.text()) != "PL4D") throw ToolFileError("not a drumbeat file");
  r.need(4, "its header");
  const int lastInstrument = r.i16();
  const int lastStep = r.i16();
  if (lastInstrument < 0 || lastInstrument >= kMaxFileInstruments || lastStep < 0 || lastStep >= kMaxFileSteps)
    throw ToolFileError("the drumbeat's size is out of range");
  const uint64_t n = static_cast<uint64_t>(lastInstrument) + 1;
  const uint64_t s = static_cast<uint64_t>(lastStep) + 1;
  r.need(2 + 2 * n + s * n + 4 * s, "the whole drumbeat");
  DrumPattern p;
  p.BeatsPerGroup = r.i16();
  p.Tempo = r.i16();
  ResizePattern(p, static_cast<int>(s), static_cast<int>(n));
  for (auto& name : p.Instruments) name = std::string(Trim(r.text()));
  for (auto& v : p.Volumes) v = r.i16();
  for (size_t st = 0; st < s; ++st)
    for (size_t i = 0; i < n; ++i) p.Pattern[st][i] = Trim(r.text()) == "1";
  for (size_t st = 0; st < s; ++st) {
    p.BeatLength[st] = r.i32();
    p.TupletCode[st] = r.i32();
    p.Tupleted[st] = r.boolean();
    p.Dotted[st] = r.boolean();
  }
  return p;
}

DrumPattern ReadOldDrumbeat(std::string_view bytes) {
  LineReader r(bytes);
  r.need(2 * kOldSize + 1 + kOldSize * kOldSize, "the whole old drumbeat");
  DrumPattern p;
  ResizePattern(p, kOldSize, kOldSize);
  for (auto& name : p.Instruments) name = DrumNameForKey(r.i16() + kOldKeyBase);
  for (auto& v : p.Volumes) v = r.i16();
  p.Tempo = r.i16();
  for (int s = 0; s < kOldSize; ++s)
    for (int i = 0; i < kOldSize; ++i) p.setCell(s, i, r.boolean());
  return p;
}

DrumPattern LoadDrumbeatFile(const std::filesystem::path& path) {
  const std::string bytes = ReadWholeFile(path, size_t(64) << 20);
  std::string ext = path.extension().string();
  std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return ext == ".pld" ? ReadOldDrumbeat(bytes) : ReadDrumbeat(bytes);
}

void SaveDrumbeatFile(const std::filesystem::path& path, const DrumPattern& p) {
  WriteFileAtomically(path, WriteDrumbeat(p));
}

std::filesystem::path ConvertFile(const std::filesystem::path& oldFile) {
  std::filesystem::path out = oldFile;
  out.replace_extension(".p4d");
  SaveDrumbeatFile(out, ReadOldDrumbeat(ReadWholeFile(oldFile, size_t(1) << 20)));
  return out;
}

}  // namespace plectaro
