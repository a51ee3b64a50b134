// The chord library: a folder of small text files, one chord per file, named by the chord
// ("A m7", "C# 7+9-5") and without an extension. The built-in library is written on first use
// and never again while the folder exists, so a user's own chords, edits and deletions survive.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace plectaro {

constexpr int kChordStrings = 7;

// One chord as its file holds it. Index 0 of every array is string 1, the highest.
struct ChordData {
  int16_t StartFret = 0;   // stored frets are relative to it; 0 is the nut
  int16_t NumStrings = 6;  // 4 to 7
  bool Barre = false;
  std::array<std::string, kChordStrings> Frets;  // number, "x" not played, blank/empty beyond NumStrings
  std::array<int16_t, kChordStrings> Tuning{};   // MIDI pitch of each open string
  std::array<int16_t, kChordStrings> Fingers{};  // 0 none, 1..4, 5 the thumb
  bool operator==(const ChordData&) const = default;

  // Absolute fret of string i (0-based): the stored number plus StartFret; false for a string
  // that sounds nothing ("x", blank, beyond the array).
  bool absoluteFret(int i, int& fret) const;
};

// A library file that could not be read; the message names the file.
class LibraryError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The open-string pitches of the generated chords and scales, string 1 to string 7: standard
// six-string tuning with a low B below it.
constexpr std::array<int16_t, kChordStrings> kLibraryTuning = {64, 59, 55, 50, 45, 40, 35};

// The twelve roots of the generated names, sharp spellings only, in library order.
extern const std::array<const char*, 12> kChordRoots;

// <data>/My Chords
std::filesystem::path ChordFolder(const std::filesystem::path& dataFolder);

// Writes the 396 built-in chords when the folder is absent; an existing folder, even an empty
// one, is left as it is. True when the library was written.
bool CreateAllChords(const std::filesystem::path& dataFolder);
// Removes every file of the folder, then the folder. A file that will not go is passed over,
// and then the folder stays too (CreateAllChords will then write nothing).
void DeleteAllChords(const std::filesystem::path& dataFolder);
// Restore: DeleteAllChords, then CreateAllChords.
void RestoreChords(const std::filesystem::path& dataFolder);

// The chord names of the folder, sorted as the file list shows them; empty when the folder
// is absent.
std::vector<std::string> ListChordNames(const std::filesystem::path& dataFolder);

// Throws LibraryError when the file is missing, short or holds text where a number belongs.
ChordData LoadChordFile(const std::filesystem::path& dataFolder, const std::string& name);
// Writes (overwriting) through a temporary file; throws LibraryError on a bad name or a
// failed write, and the old file is kept.
void SaveChordFile(const std::filesystem::path& dataFolder, const std::string& name, const ChordData& chord);
bool ChordExists(const std::filesystem::path& dataFolder, const std::string& name);

// The bytes of a chord file, and the record from them (LibraryError naming `what`).
std::string ChordFileText(const ChordData& chord);
ChordData ParseChordFile(std::string_view bytes, const std::string& what);

// Whether a name can be a library file: not empty, no path separators, not "." or "..".
bool ValidLibraryName(std::string_view name);

// Whether path names a file that can be read.
bool FileExists(const std::filesystem::path& path);

}  // namespace plectaro
