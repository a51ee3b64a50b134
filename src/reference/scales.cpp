#include "reference/scales.h"

#include <algorithm>
#include <array>
#include <system_error>

#include "reference/library_files.h"
#include "score/text_codec.h"
#include "score/value_text.h"

namespace plectaro {

namespace fs = std::filesystem;

const std::array<const char*, 12> kScaleKeys = {"A", "A#", "B", "C", "C#", "D",
                                                "D#", "E", "F", "F#", "G", "G#"};

namespace {

// The built-in library in its order; the names and keywords are those users search for,
// spelling included.
struct DefaultScaleRow {
  const char* name;
  const char* keywords;
  std::array<std::string_view, 6> strings;  // string 1 first
};
const DefaultScaleRow kDefaultScales[] = {
    {"Spanish", "spanish, classical, acoustic", {"013", "13", "023", "023", "013", "013"}},
    {"Major", "major, classical, acoustic, happy", {"9", "245", "124", "124", "024", "024"}},
    {"Natural Minor", "minor, classical, acoustic, depressing, sad", {"0", "013", "02", "024", "023", "023"}},
    {"Harmonic Minor", "minor, classical, acoustic, happy", {"9", "0145", "02", "024", "023", "023"}},
    {"Melodic Minor", "melodic, happy, classical, acoustic", {"9", "0245", "02", "124", "024", "023"}},
    {"Arabian", "arabian, alternative", {"9", "45", "235", "1246", "013", "024"}},
    {"Balinese", "balinese, alternative", {"9", "9", "235", "235", "013", "013"}},
    {"Byzantine", "byzantine, alternative", {"9", "45", "245", "1236", "023", "014"}},
    {"Diminished Scale HW", "diminished, alternative", {"9", "235", "0134", "023", "124", "0134"}},
    {"Diminished Scale WH", "diminished, alternative", {"9", "9", "9", "023", "0134", "023"}},
    {"East Indian Purvi", "indian, alternative", {"9", "45", "13", "123", "123", "014"}},
    {"Enigmatic", "enigmatic, alternative", {"9", "1345", "13", "0123", "13", "014"}},
    {"Harmonic Major", "major, happy, harmonic, acoustic, classical", {"0", "14", "124", "124", "023", "024"}},
    {"Hijaz", "hijaz, alternative", {"0", "013", "12", "023", "023", "014"}},
    {"Hungarian Gypsy", "hungarian gypsy, alternative", {"0", "012", "13", "24", "1234", "024"}},
    {"Hungarian Major", "hungarian major, alternative", {"9", "9", "9", "02", "124", "034"}},
    {"Hungarian Minor", "hungarian minor, alternative", {"9", "9", "9", "12", "123", "023"}},
    {"Neopolitan Major", "neopolitan major, alternative", {"9", "9", "9", "12", "024", "013"}},
    {"Oriental", "oriental, asian, alternative", {"9", "9", "9", "02", "014", "014"}},
    {"Persian", "persian, asian, alternative", {"9", "9", "9", "12", "013", "014"}},
    {"Whole Tone Scale", "whole tone, unusual, alternative", {"9", "9", "9", "0", "13", "024"}},
    {"Major Pentatonic", "major, pentatonic, happy, rock", {"9", "9", "9", "2", "24", "024"}},
    {"Minor Pentatonic", "minor, pentatonic, rock, funky", {"9", "9", "9", "2", "24", "023"}},
    {"Suspended Pentatonic", "suspended, pentatonic, rock", {"9", "9", "9", "02", "02", "02"}},
    {"Japanese In Sen Scale", "japanese, alternative", {"9", "9", "9", "1", "02", "01"}},
    {"2nd Mode of In Sen", "japanese, 2nd mode, alternative", {"9", "9", "9", "02", "14", "04"}},
    {"Dorian", "dorian, majorish", {"9", "9", "9", "12", "024", "023"}},
    {"Phrygian", "phrygian, horror", {"9", "9", "9", "12", "023", "013"}},
    {"Lydian", "lydian, majorish", {"9", "9", "9", "12", "124", "024"}},
    {"Mixolydian", "mixolydian, majorish, happy", {"9", "9", "9", "02", "024", "024"}},
    {"Locrian", "locrian, alternative", {"9", "9", "9", "02", "013", "013"}},
    {"Phrygian #6", "phrygian #6, alternative", {"9", "9", "9", "02", "024", "013"}},
    {"Lydian Augmented", "lydian, augmented, alternative", {"9", "9", "9", "12", "134", "024"}},
    {"Lydian Dominant", "lydian, dominant, alternative", {"9", "9", "9", "02", "124", "024"}},
    {"Fifth Mode", "fifth mode", {"9", "9", "9", "02", "023", "024"}},
    {"Locrian #2", "locrian #2", {"9", "9", "9", "02", "013", "023"}},
    {"Basic Pentatonic", "pentatonic, rock, blues, metal, punk, solo, electric, acoustic, alternative", {"03", "03", "02", "02", "02", "03"}},
    {"Blues Scale", "pentatonic, rock, blues, metal, punk, solo, electric, acoustic, alternative", {"03", "03", "023", "02", "012", "03"}},
};

}  // namespace

fs::path ScaleFolder(const fs::path& dataFolder) { return dataFolder / "My Scales"; }

ScaleData ScaleFromDigits(const std::array<std::string_view, 6>& strings, std::string_view keywords) {
  ScaleData s;
  s.Keywords = std::string(keywords);
  s.NumStrings = 6;
  s.Tuning = kLibraryTuning;
  for (int d = 0; d < kScaleOffsets; ++d) {
    const char digit = static_cast<char>('0' + d);
    for (int r = 0; r < 6; ++r)
      s.Positions[static_cast<size_t>(d)][static_cast<size_t>(r)] =
          strings[static_cast<size_t>(r)].find(digit) != std::string_view::npos;
  }
  // The unused seventh string has always carried a note at offset 0; files depend on it.
  s.Positions[0][6] = true;
  return s;
}

bool CreateAllScales(const fs::path& dataFolder) {
  const fs::path folder = ScaleFolder(dataFolder);
  if (!CreateLibraryFolder(folder)) return false;
  for (const DefaultScaleRow& row : kDefaultScales)
    WriteNewLibraryFile(folder / row.name, row.name, ScaleFileText(ScaleFromDigits(row.strings, row.keywords)));
  return true;
}

void DeleteAllScales(const fs::path& dataFolder) { DeleteLibraryFolder(ScaleFolder(dataFolder)); }

void RestoreScales(const fs::path& dataFolder) {
  DeleteAllScales(dataFolder);
  CreateAllScales(dataFolder);
}

std::vector<std::string> ListScaleNames(const fs::path& dataFolder) {
  return ListLibraryFolder(ScaleFolder(dataFolder));
}

std::string ScaleFileText(const ScaleData& s) {
  std::string t = NumberLine(s.NumStrings) + "\r\n";
  // Offset-major, string-minor: the order every scale file has.
  for (const auto& offset : s.Positions)
    for (bool on : offset) t += on ? "1\r\n" : "0\r\n";
  for (int16_t p : s.Tuning) t += NumberLine(p) + "\r\n";
  t += Utf8ToCp1252(s.Keywords) + "\r\n";
  return t;
}

ScaleData ParseScaleFile(std::string_view bytes, const std::string& what) {
  LineReader in(bytes, what);
  ScaleData s;
  s.NumStrings = in.number();
  for (auto& offset : s.Positions) {
    for (auto&& on : offset) {
      const std::string_view v = Trim(in.line());
      if (v == "1") on = true;
      else if (v == "0") on = false;
    }
  }
  for (int16_t& p : s.Tuning) p = in.number();
  s.Keywords = in.text();
  return s;
}

ScaleData LoadScaleFile(const fs::path& dataFolder, const std::string& name) {
  const fs::path path = LibraryFile(ScaleFolder(dataFolder), name);
  return ParseScaleFile(ReadLibraryFile(path, name), name);
}

void SaveScale(const fs::path& dataFolder, const std::string& name, const ScaleData& scale) {
  const fs::path folder = ScaleFolder(dataFolder);
  const fs::path path = LibraryFile(folder, name);
  std::error_code ec;
  fs::create_directories(folder, ec);
  WriteLibraryFile(path, name, ScaleFileText(scale));
}

bool ScaleExists(const fs::path& dataFolder, const std::string& name) {
  return ValidLibraryName(name) && FileExists(ScaleFolder(dataFolder) / name);
}

int ScaleKeyOffset(int keyItem) {
  int offset = keyItem - 7;
  if (offset < 0) offset += 12;
  return offset;
}

int ScaleKeyItem(int offset) {
  int item = offset + 7;
  if (item > 11) item -= 12;
  return item;
}

std::vector<ScaleNote> ScaleNotes(const ScaleData& s, int keyOffset, bool high, bool ascending) {
  std::vector<ScaleNote> notes;
  const int shift = keyOffset + (high ? 12 : 0);
  const int rows = std::clamp<int>(s.NumStrings, 0, kScaleRows);
  for (int r = rows - 1; r >= 0; --r) {
    for (int d = 0; d < kScaleOffsets; ++d) {
      if (!s.Positions[static_cast<size_t>(d)][static_cast<size_t>(r)]) continue;
      const int pitch = s.Tuning[static_cast<size_t>(r)] + d + shift;
      notes.push_back({r, d + shift, pitch});
    }
  }
  if (!ascending) std::reverse(notes.begin(), notes.end());
  return notes;
}

std::vector<NeckDot> ScaleOnNeck(const ScaleData& s, int keyOffset, const std::vector<int>& openPitches, int frets) {
  std::array<bool, 12> inScale{};
  for (const ScaleNote& n : ScaleNotes(s, keyOffset, false, true)) inScale[static_cast<size_t>(((n.pitch % 12) + 12) % 12)] = true;
  constexpr int kPitchClassOfE = 4;
  const int root = (kPitchClassOfE + keyOffset % 12 + 12) % 12;
  std::vector<NeckDot> dots;
  for (size_t string = 0; string < openPitches.size(); ++string) {
    for (int fret = 0; fret <= frets; ++fret) {
      const int pc = ((openPitches[string] + fret) % 12 + 12) % 12;
      if (inScale[static_cast<size_t>(pc)]) dots.push_back({static_cast<int>(string), fret, pc == root});
    }
  }
  return dots;
}

}  // namespace plectaro
