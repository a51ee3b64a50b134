// Note names of a string relative to its standard pitch. Each of the seven strings offers 25
// pitches, an octave either side of its standard open pitch: the standard pitch has the bare
// note name ("E"), lower pitches a leading "-" ("-D#"), higher ones a leading "+" ("+F").
// These names are what the tuning boxes of the track, chord, scale and tuner windows show.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace plectaro {

// Number of names a string offers; index 12 of them is the string's standard pitch.
inline constexpr int kNoteNamesPerString = 25;
inline constexpr int kStandardNoteIndex = 12;

// Standard open pitch of string 1 (highest) to 7; 0 for a string number outside 1..7.
int StandardPitchOfString(int stringNumber);

// The name of `pitch` on the string, or "" when the string number or the pitch lies outside the
// string's 25 pitches.
std::string PitchToNoteName(int stringNumber, int pitch);

// The pitch named on the string, or 0 when the string number is outside 1..7 or the name is not
// one of the string's 25 names. Blanks around the name are ignored.
int NoteNameToPitch(int stringNumber, std::string_view noteName);

// The string's 25 names from the lowest pitch up, for filling a tuning box.
std::vector<std::string> NoteNamesOfString(int stringNumber);

// Plain note name of a pitch ("C", "C#", ... "B"), sharp spellings only.
const char* PitchClassName(int pitch);

}  // namespace plectaro
