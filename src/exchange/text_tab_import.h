// Plain-text guitar tab (from a file, the clipboard or a web page) read into a track.
//
// The text keeps only its digits and dashes: bar lines, string names, chord names and lyrics
// go. Effect letters beside a fret ("5h7", "7b9", "12~~", "(5)") become dashes so the columns
// of a staff stay aligned, and set the effect they stand for on the note. Staves are the runs
// of tab lines between other lines; a column holding digits is a beat; the gap to the next
// beat gives its length; bars are made by time, since the text's bar lines are gone.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "score/score_records.h"

namespace plectaro {

// The choices of the length list, longest first; the index is the Beat Length.
inline constexpr std::array<const char*, 7> kImportLengthNames = {
    "Whole Note", "Half Note", "4th Note", "8th Note", "16th Note", "32nd Note", "64th Note!"};

struct AsciiImportOptions {
  bool GetFileDetails = false;      // look for "Title:", "Artist:"... in the text
  bool EnforceLength = false;       // every beat takes Length instead of its gap's length
  int Length = kSixteenth;
  bool EnforceTiming = false;       // every bar takes the time signature Timing ("N:D")
  std::string Timing = "4:4";
  std::string AcceptedChars = "1234567890-";
  bool FromWeb = false;             // the text is a downloaded page
};

// The three markers that pages made for the program carry.
struct TabPageMarkers {
  std::string ResourceText;   // <pl_res_text='...'
  std::string MusicFileAddress;  // <pl_plm_addr='...': a music file of the same song
  std::string ResourceAddress;   // <pl_res_addr='...'
};

struct AsciiImportResult {
  int Staves = 0;
  int Beats = 0;
  int Bars = 0;  // bars the track now has notes in
  TabPageMarkers Markers;
};

// Bytes of a text file or page to UTF-8: UTF-8 when they are valid UTF-8 (a byte order mark is
// dropped), else Windows-1252.
std::string DecodeTabText(std::string_view bytes);

// "N:D" with N from 1 to 32 and D one of 1, 2, 4, 8, 16, 32.
bool ParseTiming(std::string_view text, int& numerator, int& denominator);

// The value of a marker (key up to the closing "'"), "" when the text has none.
std::string ReadMarker(std::string_view text, std::string_view key);

// Removes every markup tag: a "<" followed by a letter, "/", "!" or "?", up to the next ">".
// A "<" before a digit or a blank is tab ("<12>" natural harmonic) and stays.
std::string StripTags(std::string_view text);

// What a label scan finds; the fallbacks fill what the text does not name.
struct TabDetails {
  std::string Author, Artist, TabAuthor, Email, Album, Title;
};
TabDetails ScanDetails(std::string_view text);

// Replaces the current contents of `track` with the tab in `text` (UTF-8). Throws ScoreError
// when the timing is not valid, the text holds no tab, or the track cannot take it; the score
// may then be half written, so callers run this under Transact (or RunCommand).
AsciiImportResult ASCIIToPLM(Score& s, int track, std::string_view text,
                             const AsciiImportOptions& options);

}  // namespace plectaro
