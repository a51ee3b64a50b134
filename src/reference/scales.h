// The scale library: a folder of text files, one scale per file, named by the scale. A scale is
// a pattern of notes in a seven-fret window on each string, stored for the key of E in
// standard tuning (offset 0 is the open string), plus keywords to search by.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "reference/chords.h"

namespace plectaro {

constexpr int kScaleRows = 7;     // strings 1 to 7
constexpr int kScaleOffsets = 7;  // frets of the window

struct ScaleData {
  std::string Keywords;  // "minor, classical, acoustic"
  int16_t NumStrings = 6;
  // Positions[d][r]: a note at offset d of the window on row r (row 0 is string 1).
  std::array<std::array<bool, kScaleRows>, kScaleOffsets> Positions{};
  std::array<int16_t, kScaleRows> Tuning{};
  bool operator==(const ScaleData&) const = default;
};

// <data>/My Scales
std::filesystem::path ScaleFolder(const std::filesystem::path& dataFolder);

// The 38 built-in scales when the folder is absent; true when written.
bool CreateAllScales(const std::filesystem::path& dataFolder);
void DeleteAllScales(const std::filesystem::path& dataFolder);
void RestoreScales(const std::filesystem::path& dataFolder);
std::vector<std::string> ListScaleNames(const std::filesystem::path& dataFolder);

// A pattern from one text of offset digits per string, string 1 first; "9" is a string
// without notes. Row 6 gets the mark at offset 0 that every built-in scale carries.
ScaleData ScaleFromDigits(const std::array<std::string_view, 6>& strings, std::string_view keywords);

ScaleData LoadScaleFile(const std::filesystem::path& dataFolder, const std::string& name);
void SaveScale(const std::filesystem::path& dataFolder, const std::string& name, const ScaleData& scale);
bool ScaleExists(const std::filesystem::path& dataFolder, const std::string& name);
std::string ScaleFileText(const ScaleData& scale);
ScaleData ParseScaleFile(std::string_view bytes, const std::string& what);

// ---- keys ----
// The key menu lists A, A#, B, C, ... G#; the patterns are stored in E (item 7, offset 0).
extern const std::array<const char*, 12> kScaleKeys;
int ScaleKeyOffset(int keyItem);  // item 0..11 -> semitones above E, 0..11
int ScaleKeyItem(int offset);     // the inverse

// One note of a scale drawn or played in a key.
struct ScaleNote {
  int row = 0;    // 0 is string 1
  int fret = 0;   // on the neck
  int pitch = 0;  // MIDI key
  bool operator==(const ScaleNote&) const = default;
};
// The notes in playing order: lowest string to highest and up each string when ascending,
// the exact reverse when descending. `high` moves the pattern an octave up the neck.
std::vector<ScaleNote> ScaleNotes(const ScaleData& scale, int keyOffset, bool high, bool ascending);

// One place of a scale on a whole neck.
struct NeckDot {
  int string = 0;  // 0 is string 1
  int fret = 0;
  bool root = false;  // the key's own note
  bool operator==(const NeckDot&) const = default;
};
// Every fret from 0 to `frets` on strings of these open pitches (string 1 first) that sounds a
// note of the scale in this key: the scale's notes taken as pitch classes, so the pattern
// repeats up the neck and follows any tuning. The patterns are stored in E, so the root is E
// moved up by the key offset.
std::vector<NeckDot> ScaleOnNeck(const ScaleData& scale, int keyOffset, const std::vector<int>& openPitches, int frets);

}  // namespace plectaro
