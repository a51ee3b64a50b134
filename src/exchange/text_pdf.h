// Plain text as a PDF of Type 1 text pages: a small writer of its own that needs no library.
//
// Its output is fixed down to the byte, quirks included, because files made by earlier
// versions are compared against new ones: every line written ends in a lone CR that the
// writer's position count does not see (so the offsets in the cross-reference table drift by
// one byte per line), the table has no "xref" keyword, and every shown string carries a
// CR LF before its closing parenthesis.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "exchange/text_tab_export.h"

namespace plectaro {

struct Score;

struct TextPdfOptions {
  double PageWidthInches = 8.5;
  double PageHeightInches = 11;
  std::string FontName = "Courier";
  double FontSize = 8;
  int16_t PageRotation = 0;
  // Info dictionary, UTF-8 (written as Windows-1252, the font's encoding).
  std::string Author;
  std::string Creator;
  std::string Keywords;
  std::string Subject;
  std::string Title;
  std::string CreationDate;  // "YYYYMMDDHHNNSS"; see PdfCreationDate
};

// The options a Score's text tab is printed with: letter paper, Courier 8, Author, Artist as
// the creator, Title, and the date of now.
TextPdfOptions TextPdfOptionsFor(const Score& score);

// "YYYYMMDDHHNNSS" of now in local time; when SOURCE_DATE_EPOCH is set, of that time in UTC,
// so that a build or a test makes the same bytes every time.
std::string PdfCreationDate();

// The PDF of the text (UTF-8; lines end in LF, CR LF or CR; a form feed starts a new page).
// Throws FileError when the text needs more than the writer's 5000 objects (about 1660 pages).
std::string TextToPDF(std::string_view text, const TextPdfOptions& options);

// The file version: reads `input` (Windows-1252 text, as the text exporter writes it) and
// writes `output` atomically. Returns false, writing nothing, when the input does not exist.
bool TextToPDF(const std::filesystem::path& input, const std::filesystem::path& output,
               const TextPdfOptions& options);

// ExportPDF: the text tab of a track (as the text export writes it) printed into a PDF with
// the Score's options. FileError when the file cannot be written; ScoreError for a track that
// does not exist.
void ExportPDF(const Score& score, int track, const TextExportOptions& options, const std::filesystem::path& path);

}  // namespace plectaro
