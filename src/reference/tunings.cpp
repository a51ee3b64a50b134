#include "reference/tunings.h"

#include <algorithm>
#include <cmath>
#include <system_error>

#include "reference/note_names.h"
#include "score/file_io.h"
#include "score/value_text.h"

namespace plectaro {

namespace fs = std::filesystem;

namespace {

constexpr int kTuningLines = 1 + kMaxStrings;
// A tuning file is 8 short lines; anything much larger is not one.
constexpr size_t kMaxTuningFileBytes = 4096;

// Numbers are written with a blank where a plus sign would stand and one after, so files
// written here look like the ones users already have.
std::string numberLine(int value) {
  return (value < 0 ? "" : " ") + std::to_string(value) + " \r\n";
}

TuningData row(int s7, int s6, int s5, int s4, int s3, int s2, int s1) {
  TuningData t;
  t.NumStrings = 6;
  t.StringNote = {static_cast<int16_t>(s1), static_cast<int16_t>(s2), static_cast<int16_t>(s3),
                  static_cast<int16_t>(s4), static_cast<int16_t>(s5), static_cast<int16_t>(s6),
                  static_cast<int16_t>(s7)};
  return t;
}

}  // namespace

int TuningData::pitch(int stringNumber) const {
  if (stringNumber < 1 || stringNumber > kMaxStrings) return 0;
  return StandardPitchOfString(stringNumber) + StringNote[static_cast<size_t>(stringNumber - 1)] -
         kStandardNoteIndex;
}

TuningInfo ToTuningInfo(const TuningData& tuning) {
  TuningInfo info;
  info.NumStrings = tuning.NumStrings;
  for (size_t i = 0; i < kMaxStrings; ++i)
    info.Offset[i] = static_cast<int16_t>(
        std::clamp<int>(tuning.StringNote[i], 0, kNoteNamesPerString - 1) - kStandardNoteIndex);
  return info;
}

TuningData FromTuningInfo(const TuningInfo& info) {
  TuningData tuning;
  tuning.NumStrings = static_cast<int16_t>(std::clamp<int>(info.NumStrings, 1, kMaxStrings));
  for (size_t i = 0; i < kMaxStrings; ++i)
    tuning.StringNote[i] = static_cast<int16_t>(
        std::clamp(info.Offset[i] + kStandardNoteIndex, 0, kNoteNamesPerString - 1));
  return tuning;
}

std::string WriteTuningText(const TuningData& tuning) {
  std::string text = numberLine(tuning.NumStrings);
  for (int s = kMaxStrings; s >= 1; --s) text += numberLine(tuning.StringNote[static_cast<size_t>(s - 1)]);
  return text;
}

TuningData ReadTuningText(std::string_view text) {
  const std::vector<std::string_view> lines = SplitLines(text);
  if (lines.size() < kTuningLines)
    throw TuningError("A tuning file has " + std::to_string(kTuningLines) + " lines; this one has " +
                      std::to_string(lines.size()) + ".");
  TuningData tuning;
  const double count = std::floor(ParseNumber(lines[0]));
  if (count < 1 || count > kMaxStrings)
    throw TuningError("A tuning has 1 to 7 strings; this file says " + std::string(Trim(lines[0])) + ".");
  tuning.NumStrings = static_cast<int16_t>(count);
  for (int s = kMaxStrings; s >= 1; --s) {
    const size_t line = static_cast<size_t>(1 + kMaxStrings - s);
    const int16_t note = ParseI16(lines[line]);
    if (note < 0 || note >= kNoteNamesPerString)
      throw TuningError("Line " + std::to_string(line + 1) + " of the tuning file is not a note of string " +
                        std::to_string(s) + ".");
    tuning.StringNote[static_cast<size_t>(s - 1)] = note;
  }
  return tuning;
}

namespace {

// Pitch class of a plain note name with an optional sharp or flat; -1 when it is none.
int pitchClassOf(std::string_view name) {
  static constexpr std::string_view kLetters = "C D EF G A B";
  if (name.empty() || name.size() > 2) return -1;
  const char letter = static_cast<char>(name[0] >= 'a' && name[0] <= 'z' ? name[0] - 32 : name[0]);
  const size_t at = kLetters.find(letter);
  if (letter == ' ' || at == std::string_view::npos) return -1;
  int pc = static_cast<int>(at);
  if (name.size() == 2) {
    if (name[1] == '#') ++pc;
    else if (name[1] == 'b') --pc;
    else return -1;
  }
  return (pc + 12) % 12;
}

// A note with its octave number ("E1", "F#2", "Bb0") as a MIDI pitch (C4 = 60); -1 when the
// name is not one or the pitch lies outside 0..127.
int pitchWithOctave(std::string_view name) {
  size_t digits = name.size();
  while (digits > 0 && name[digits - 1] >= '0' && name[digits - 1] <= '9') --digits;
  if (digits == name.size() || name.size() - digits > 1 || digits == 0) return -1;
  const int pc = pitchClassOf(name.substr(0, digits));
  if (pc < 0) return -1;
  // A flat below C belongs to the octave under the letter ("Cb4" is B3).
  int pitch = (name[digits] - '0' + 1) * 12 + pc;
  if (name.substr(0, digits).size() == 2 && name[1] == 'b' && pc == 11) pitch -= 12;
  if (name.substr(0, digits).size() == 2 && name[1] == '#' && pc == 0) pitch += 12;
  return pitch >= 0 && pitch <= 127 ? pitch : -1;
}

}  // namespace

std::string OffsetName(int stringNumber, int offset) {
  const int standard = StandardPitchOfString(stringNumber);
  if (standard == 0) return "";
  if (offset >= -kStandardNoteIndex && offset <= kStandardNoteIndex)
    return PitchToNoteName(stringNumber, standard + offset);
  const int pitch = standard + offset;
  if (pitch < 0 || pitch > 127) return "";
  return std::string(PitchClassName(pitch)) + std::to_string(pitch / 12 - 1);
}

TuningInfo BassTuning(int strings) {
  TuningInfo info;
  info.NumStrings = static_cast<int16_t>(std::clamp(strings, 1, kMaxStrings));
  // Open pitches from string 1 down.
  std::vector<int> pitches;
  if (strings == 4) pitches = {43, 38, 33, 28};
  else if (strings == 5) pitches = {43, 38, 33, 28, 23};
  else if (strings == 6) pitches = {48, 43, 38, 33, 28, 23};
  for (size_t i = 0; i < pitches.size(); ++i)
    info.Offset[i] = static_cast<int16_t>(pitches[i] - StandardPitchOfString(static_cast<int>(i) + 1));
  return info;
}

std::optional<TuningInfo> ParseTuningNames(std::string_view text) {
  std::vector<std::string_view> names;
  while (!(text = Trim(text)).empty()) {
    const size_t end = std::min(text.find_first_of(" \t,"), text.size());
    names.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  if (names.empty() || names.size() > kMaxStrings) return std::nullopt;
  TuningInfo info;
  info.NumStrings = static_cast<int16_t>(names.size());
  for (size_t i = 0; i < names.size(); ++i) {
    const int string = static_cast<int>(names.size() - i);  // the first name is the lowest string
    const int standard = StandardPitchOfString(string);
    int pitch = NoteNameToPitch(string, names[i]);
    if (pitch == 0) pitch = std::max(0, pitchWithOctave(names[i]));
    if (pitch == 0) {
      const int pc = pitchClassOf(names[i]);
      if (pc < 0) return std::nullopt;
      const int up = ((pc - standard) % 12 + 12) % 12;  // 0..11 semitones above the standard
      pitch = up <= 5 ? standard + up : standard + up - 12;
    }
    info.Offset[static_cast<size_t>(string - 1)] = static_cast<int16_t>(pitch - standard);
  }
  return info;
}

const std::vector<std::pair<std::string, TuningData>>& BuiltInTunings() {
  static const std::vector<std::pair<std::string, TuningData>> kTunings = {
      {"Standard Tuning", row(12, 12, 12, 12, 12, 12, 12)},
      {"Dropped D", row(12, 10, 12, 12, 12, 12, 12)},
      {"Open A", row(12, 12, 12, 14, 14, 14, 12)},
      {"Open C", row(12, 8, 10, 10, 12, 13, 12)},
      {"Open C Minor", row(12, 8, 10, 10, 12, 13, 11)},
      {"Open D", row(12, 10, 12, 12, 11, 10, 10)},
      {"Open D Minor", row(12, 10, 12, 12, 10, 10, 10)},
      {"Open Dsus4", row(12, 10, 12, 12, 12, 10, 10)},
      {"Open E", row(12, 12, 14, 14, 13, 12, 12)},
      {"Open E Minor", row(12, 12, 14, 14, 12, 12, 12)},
      {"Open Esus11", row(12, 12, 12, 14, 12, 12, 12)},
      {"Open F", row(12, 8, 8, 10, 10, 10, 8)},
      {"Open F", row(12, 13, 12, 10, 10, 13, 13)},
      {"Open G", row(12, 10, 10, 12, 12, 12, 10)},
      {"Open G", row(12, 15, 14, 12, 12, 12, 10)},
      {"Alternate I", row(12, 12, 10, 12, 9, 10, 12)},
      {"Alternate II", row(12, 8, 10, 12, 14, 5, 15)},
      {"Alternate III", row(12, 8, 10, 12, 12, 12, 12)},
      {"Nashville", row(12, 24, 24, 24, 24, 12, 12)},
      {"Down a step", row(11, 11, 11, 11, 11, 11, 11)},
      {"Down 2 steps", row(10, 10, 10, 10, 10, 10, 10)},
      {"Up a step", row(13, 13, 13, 13, 13, 13, 13)},
      {"Up 2 steps", row(14, 14, 14, 14, 14, 14, 14)},
      {"6 String Bass", row(12, 7, 7, 7, 7, 8, 8)},
  };
  return kTunings;
}

TuningLibrary::TuningLibrary(const fs::path& dataFolder) : folder_(dataFolder / "My Tunings") {}

bool TuningLibrary::validName(std::string_view name) {
  if (name.empty() || name == "." || name == "..") return false;
  if (name.front() == ' ' || name.back() == ' ') return false;
  return std::none_of(name.begin(), name.end(),
                      [](char c) { return c == '/' || c == '\\' || c == '\0' || c == '\r' || c == '\n'; });
}

fs::path TuningLibrary::pathOf(const std::string& name) const {
  if (!validName(name)) throw TuningError("\"" + name + "\" cannot be the name of a tuning.");
  return folder_ / name;
}

bool TuningLibrary::createAll() const {
  std::error_code ec;
  if (fs::exists(folder_, ec) || ec) return false;
  if (!fs::create_directories(folder_, ec) || ec) return false;
  for (const auto& [name, tuning] : BuiltInTunings()) save(name, tuning);
  return true;
}

std::vector<std::string> TuningLibrary::names() const {
  std::vector<std::string> result;
  std::error_code ec;
  for (fs::directory_iterator it(folder_, ec), end; !ec && it != end; it.increment(ec))
    if (it->is_regular_file(ec)) result.push_back(it->path().filename().string());
  std::sort(result.begin(), result.end());
  return result;
}

bool TuningLibrary::exists(const std::string& name) const {
  std::error_code ec;
  return validName(name) && fs::is_regular_file(folder_ / name, ec);
}

TuningData TuningLibrary::load(const std::string& name) const {
  const fs::path path = pathOf(name);
  try {
    return ReadTuningText(ReadWholeFile(path, kMaxTuningFileBytes));
  } catch (const FileError&) {
    throw TuningError("The tuning \"" + name + "\" cannot be read.");
  } catch (const TuningError& e) {
    throw TuningError("The tuning \"" + name + "\" is damaged: " + e.what());
  }
}

void TuningLibrary::save(const std::string& name, const TuningData& tuning) const {
  const fs::path path = pathOf(name);
  try {
    std::error_code ec;
    fs::create_directories(folder_, ec);
    WriteFileAtomically(path, WriteTuningText(tuning));
  } catch (const FileError&) {
    throw TuningError("The tuning \"" + name + "\" cannot be saved.");
  }
}

void TuningLibrary::remove(const std::string& name) const {
  std::error_code ec;
  fs::remove(pathOf(name), ec);
  if (ec) throw TuningError("The tuning \"" + name + "\" cannot be deleted.");
}

void TuningLibrary::restore() const {
  std::error_code ec;
  fs::remove_all(folder_, ec);
  if (ec) throw TuningError("The tunings folder cannot be emptied.");
  createAll();
}

}  // namespace plectaro
