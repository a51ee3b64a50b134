#include "tools/drum_machine.h"

#include <algorithm>

#include "playback/midi_out.h"

namespace plectaro {

namespace {

// Steps first..last of a pattern as a pattern of their own (the same instruments).
DrumPattern takeSteps(const DrumPattern& p, int first, int last) {
  DrumPattern out = p;
  const auto b = static_cast<std::ptrdiff_t>(first), e = static_cast<std::ptrdiff_t>(last) + 1;
  auto slice = [&](auto& v, const auto& src) { v.assign(src.begin() + b, src.begin() + e); };
  slice(out.Pattern, p.Pattern);
  slice(out.BeatLength, p.BeatLength);
  slice(out.TupletCode, p.TupletCode);
  slice(out.Tupleted, p.Tupleted);
  slice(out.Dotted, p.Dotted);
  return out;
}

void eraseSteps(DrumPattern& p, int first, int last) {
  const auto b = static_cast<std::ptrdiff_t>(first), e = static_cast<std::ptrdiff_t>(last) + 1;
  auto cut = [&](auto& v) { v.erase(v.begin() + b, v.begin() + e); };
  cut(p.Pattern);
  cut(p.BeatLength);
  cut(p.TupletCode);
  cut(p.Tupleted);
  cut(p.Dotted);
}

// Inserts the steps of `src` before `at`; rows are matched by position, so a clipboard taken
// before instruments were added or removed pastes into the rows they share.
void insertSteps(DrumPattern& p, int at, const DrumPattern& src) {
  const auto pos = static_cast<std::ptrdiff_t>(at);
  auto rows = src.Pattern;
  for (auto& row : rows) row.resize(static_cast<size_t>(p.instruments()), false);
  p.Pattern.insert(p.Pattern.begin() + pos, rows.begin(), rows.end());
  auto ins = [&](auto& v, const auto& from) { v.insert(v.begin() + pos, from.begin(), from.end()); };
  ins(p.BeatLength, src.BeatLength);
  ins(p.TupletCode, src.TupletCode);
  ins(p.Tupleted, src.Tupleted);
  ins(p.Dotted, src.Dotted);
}

}  // namespace

std::string DrumMachine::titleSuffix() const {
  if (fileName.empty()) return " - [Untitled]";
  return " - [" + fileName + "]";
}

void DrumMachine::SetTrackNameTo(int step, int instrument, bool on) {
  pattern.setCell(step, instrument, on);
  touched();
}

void DrumMachine::SetFileStatusTo(int step, int code) {
  if (!validStep(step)) return;
  pattern.BeatLength[static_cast<size_t>(step)] = std::clamp(code, kWholeNote, kSixtyFourthNote);
  touched();
}

void DrumMachine::ClearFile() {
  for (auto& row : pattern.Pattern) std::fill(row.begin(), row.end(), false);
  touched();
}

void DrumMachine::ResizeFileTo(int lastStep, const std::vector<std::string>& instruments) {
  ResizePattern(pattern, lastStep + 1, static_cast<int>(instruments.size()));
  pattern.Instruments = instruments;
  std::fill(pattern.Volumes.begin(), pattern.Volumes.end(), int16_t{127});
  selection_.reset();
  touched();
}

void DrumMachine::ResetAllTiming() {
  std::fill(pattern.BeatLength.begin(), pattern.BeatLength.end(), kSixteenthNote);
  std::fill(pattern.TupletCode.begin(), pattern.TupletCode.end(), 0);
  std::fill(pattern.Tupleted.begin(), pattern.Tupleted.end(), false);
  std::fill(pattern.Dotted.begin(), pattern.Dotted.end(), false);
  touched();
}

void DrumMachine::toggle(int step, int instrument) {
  if (!validStep(step) || instrument < 0 || instrument >= pattern.instruments()) return;
  pattern.setCell(step, instrument, !pattern.cell(step, instrument));
  touched();
}

std::string DrumMachine::addStep() {
  if (pattern.steps() >= kMaxDrumSteps) return "str_NoBeatsCanBeAdded";
  const int last = pattern.steps() - 1;
  ResizePattern(pattern, pattern.steps() + 1, pattern.instruments());
  // A new step continues the rhythm of the one before it, which is what a pattern being
  // lengthened wants far more often than a jump back to sixteenths.
  if (last >= 0) {
    const auto l = static_cast<size_t>(last);
    pattern.BeatLength.back() = pattern.BeatLength[l];
    pattern.TupletCode.back() = pattern.TupletCode[l];
    pattern.Tupleted.back() = pattern.Tupleted[l];
    pattern.Dotted.back() = pattern.Dotted[l];
  }
  touched();
  return {};
}

std::string DrumMachine::removeStep() {
  if (pattern.steps() <= 1) return "str_GottaHaveOneBeat";
  ResizePattern(pattern, pattern.steps() - 1, pattern.instruments());
  if (selection_ && selection_->second >= pattern.steps()) selection_.reset();
  touched();
  return {};
}

std::string DrumMachine::addInstrument() {
  if (pattern.instruments() >= kMaxDrumInstruments) return "str_NoMoreTracks";
  // The new row takes the first sound of the list that the pattern does not use yet.
  std::string name;
  for (int n = 1; !GetDrumString(n).empty(); ++n) {
    const std::string drum = GetDrumString(n);
    if (std::find(pattern.Instruments.begin(), pattern.Instruments.end(), drum) == pattern.Instruments.end()) {
      name = drum;
      break;
    }
  }
  ResizePattern(pattern, pattern.steps(), pattern.instruments() + 1);
  pattern.Instruments.back() = name.empty() ? GetDrumString(1) : name;
  touched();
  return {};
}

std::string DrumMachine::removeInstrument(int instrument) {
  if (pattern.instruments() <= 1) return "str_GottaHaveOneTrack";
  if (instrument < 0 || instrument >= pattern.instruments()) return {};
  const auto i = static_cast<std::ptrdiff_t>(instrument);
  pattern.Instruments.erase(pattern.Instruments.begin() + i);
  pattern.Volumes.erase(pattern.Volumes.begin() + i);
  for (auto& row : pattern.Pattern) row.erase(row.begin() + i);
  touched();
  return {};
}

void DrumMachine::setInstrument(int instrument, const std::string& name) {
  if (instrument < 0 || instrument >= pattern.instruments()) return;
  pattern.Instruments[static_cast<size_t>(instrument)] = name;
  touched();
}

void DrumMachine::setVolume(int instrument, int volume) {
  if (instrument < 0 || instrument >= pattern.instruments()) return;
  pattern.Volumes[static_cast<size_t>(instrument)] = static_cast<int16_t>(std::clamp(volume, 0, 127));
  touched();
}

void DrumMachine::setTempo(int tempo) {
  pattern.Tempo = static_cast<int16_t>(std::clamp(tempo, 1, 999));
  touched();
}

void DrumMachine::setStepLength(int step, int code) { SetFileStatusTo(step, code); }

void DrumMachine::setStepTuplet(int step, int listIndex) {
  if (!validStep(step)) return;
  const auto s = static_cast<size_t>(step);
  // The first entry of the list is "no tuplet"; the others are the tuplet codes in order.
  pattern.Tupleted[s] = listIndex > 0;
  if (listIndex > 0) pattern.TupletCode[s] = std::min(listIndex - 1, kTupletCodes - 1);
  touched();
}

void DrumMachine::setStepDotted(int step, bool dotted) {
  if (!validStep(step)) return;
  pattern.Dotted[static_cast<size_t>(step)] = dotted;
  touched();
}

void DrumMachine::select(int first, int last) {
  if (first > last) std::swap(first, last);
  first = std::max(first, 0);
  last = std::min(last, pattern.steps() - 1);
  if (first > last) {
    selection_.reset();
    return;
  }
  selection_ = {first, last};
}

std::string DrumMachine::copy() {
  if (!selection_) return "str_ChooseSomethingToCopy";
  clipboard_ = takeSteps(pattern, selection_->first, selection_->second);
  return {};
}

std::string DrumMachine::cut() {
  if (!selection_) return "str_ChooseSomethingToCopy";
  if (selection_->second - selection_->first + 1 >= pattern.steps()) return "str_CantCutFile";
  clipboard_ = takeSteps(pattern, selection_->first, selection_->second);
  eraseSteps(pattern, selection_->first, selection_->second);
  selection_.reset();
  touched();
  return {};
}

std::string DrumMachine::paste(int step) {
  if (!hasClipboard()) return "str_CopySomethingFirst";
  if (pattern.steps() + clipboard_.steps() > kMaxDrumSteps) return "str_NoBeatsCanBeAdded";
  insertSteps(pattern, std::clamp(step, 0, pattern.steps()), clipboard_);
  touched();
  return {};
}

void DrumMachine::NewFile() {
  pattern = NewDrumPattern();
  fileName.clear();
  dirty = false;
  selection_.reset();
}

}  // namespace plectaro
