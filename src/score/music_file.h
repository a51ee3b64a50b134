// The .plm music file: a version line and one stream of tags, enciphered as a whole.
//
// The tag stream has no escaping: a field holding '<' splits its tag and a field holding '>'
// ends it early on the next load. Files in the wild depend on the exact byte order of the tags
// and on the reader's quirks, so both are kept as they are (see music_file.cpp).
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "score/document.h"
#include "score/file_io.h"
#include "score/settings_store.h"

namespace plectaro {

inline constexpr std::string_view kVersionLine = "Plectaro 4.0";

// The plain text of a music file, before enciphering.
std::string WriteMusicText(const Score& score);

// Damaged: the tag stream stopped before every bar it declared had its beats, or the text
// lacks the line end that closes every saved file (a file cut off by a full disk, a copy that
// never finished). What could be read is in the Score all the same.
enum class ReadOutcome { Ok, WrongFile, Damaged };

// How much of a file came in: bars whose beats all arrived, of the bars its sizes declared
// (counted over every track).
struct ReadProgress {
  int barsRead = 0;
  int barsDeclared = 0;
};

// "damaged or incomplete: 17 of 1000 bars could be read", for errors of batch work.
std::string DescribeDamage(const ReadProgress& progress);

// Fills `score` from plain text. The caller hands in the Score that InitScore made, so that
// a file without a document tag keeps the user's default for it. WrongFile when the first line
// is not a music file's version line; `score` is then untouched. Throws FileError when the
// tag stream declares more than the file could hold (a damaged file).
//
// A file may declare beats it never writes out (blank whole-note rests cost no bytes, a bar
// copy of a long bar costs a few), so the reader allows `perByte` beats for every byte plus
// `spare`, and refuses a file that declares more. The fuzz harnesses pass a small allowance: the
// same paths are taken, with far less to allocate and clear on every run.
struct BeatAllowance {
  size_t perByte = 16;
  size_t spare = 65536;
};
inline constexpr BeatAllowance kFuzzAllowance{1, 256};
// The text is read, and a file deciphered, in pieces of this size: a large score is never held
// whole as text beside its records.
inline constexpr size_t kMusicReadPiece = size_t(256) << 10;
ReadOutcome ReadMusicText(std::string_view plain, Score& score, ReadProgress* progress = nullptr,
                          BeatAllowance allowance = {});

// Saves the score enciphered; the old file stays whole if anything fails (FileError).
void SaveMusicFile(const Score& score, const std::filesystem::path& path);

enum class OpenOutcome { Opened, WrongFile, Damaged };

// Opens a music file into the document, as the File > Open command does: InitScore, the tags,
// the path as the new file name, the password asked again before the first edit.
// - A file that cannot be read throws FileError and leaves the document as it was.
// - A file that is not a music file (another kind of file renamed, an empty or old plain-text
//   file) gives WrongFile and a new empty Score, the way a new file command leaves it.
// - A damaged file gives Damaged: the document holds what could be read, takes no file name
//   (so that a save cannot overwrite the damaged original) and counts as changed.
OpenOutcome OpenMusicFile(Document& doc, const std::filesystem::path& path,
                          const SettingsStore& settings, ReadProgress* progress = nullptr);

// OpenMusicFile on plain text already deciphered, for files that wrap a music file (recovery).
// The document takes no file name; the caller gives it one. `allowance` as for ReadMusicText.
OpenOutcome OpenMusicText(Document& doc, std::string_view plain, const SettingsStore& settings,
                          ReadProgress* progress = nullptr, BeatAllowance allowance = {});

}  // namespace plectaro
