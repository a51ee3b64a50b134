// Plain-text tablature of one track, as a .txt/.tab file or an HTML page, and the staff body
// they share. The text PDF export lays out the same text, so the builders return it rather
// than writing it.
//
// Output is Windows-1252 with CR LF line ends: what guitarists paste into forums and what the
// classic text-tab readers expect.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "score/score_records.h"

namespace plectaro {

// Where the footers send people who want the program.
inline constexpr std::string_view kProductWebAddress = "https://www.plectaro.org";

struct TextExportOptions {
  bool CopyrightWarning = true;  // "Include (C) warning in ASCII Files:"
  int MaxLineLength = 60;        // "Max Line Length: (ASCII/HTML)"
};

// A fret text right-aligned with '-' to three characters. Frets are at most two digits; a
// longer text (a damaged file) keeps its last three characters so the columns stay aligned.
std::string PadDashes(std::string_view fret);
// Right-aligned with blanks to three characters.
std::string PadBlanks(std::string_view text);

// The two characters after a fret: the technique of the note, if text can show it.
std::string_view TabCellMark(const NoteSlot& note);
// The three characters of the effect line above a beat.
std::string_view EffectCellMark(const Beat& beat);

// The staff rows of a track, each row a block of NumStrings + 1 lines (effect line first)
// followed by an empty line; lines end with CR LF. Text is UTF-8 like the score.
std::string WriteTabRows(const Score& s, int track, int maxLineLength);

// The whole .txt/.tab file and the whole .html page, as bytes to write. ScoreError for a track
// that does not exist.
std::string ExportASCIIText(const Score& s, int track, const TextExportOptions& options);
std::string ExportHTMLText(const Score& s, int track, const TextExportOptions& options);

// Write them to disk atomically; FileError when the file cannot be written.
void ExportASCII(const Score& s, int track, const TextExportOptions& options,
                 const std::filesystem::path& path);
void ExportHTML(const Score& s, int track, const TextExportOptions& options,
                const std::filesystem::path& path);

}  // namespace plectaro
