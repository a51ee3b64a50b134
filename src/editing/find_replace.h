// Find and Replace: beat texts, lyrics, go-to names, and fret numbers on a string. Finding
// walks from the cursor to the next beat that matches; replacing changes every match of the
// chosen tracks at once, as one undo step, and says how many terms it replaced.
#pragma once

#include <string>
#include <vector>

#include "editing/edit_context.h"

namespace plectaro {

struct FindRequest {
  std::string What;
  std::string With;
  bool Texts = true;      // the text written on a beat
  bool Lyrics = true;     // the track's five lyric lines
  bool GotoNames = true;  // go-to names of beats
  bool Frets = false;     // fret numbers: What and With are whole fret texts ("12", "x")
  int String = -1;        // frets on this string only (0 the top line); -1 every string
  bool MatchCase = false;
  bool AllTracks = false;  // else the cursor's track only
};

enum class MatchKind { Text, Lyric, GotoName, Fret };

struct FindMatch {
  MatchKind Kind = MatchKind::Text;
  int Track = 0;
  int Bar = 0;     // for a lyric: 0
  int Beat = 0;    // for a lyric: 0
  int Index = 0;   // the string of a fret, the line of a lyric (0..4), else 0
  int Count = 1;   // occurrences of the term in that text
  bool operator==(const FindMatch&) const = default;
};

// Every place that holds the term, track by track, bar by bar, beat by beat.
std::vector<FindMatch> FindAll(const Score& score, const FindRequest& request, int cursorTrack);

// Moves the cursor to the next beat after it that matches (round to the start after the
// end). False, with the "no matches" message, when nothing matches anywhere.
bool FindNext(EditContext& ctx, const FindRequest& request);

// Replaces every match as one step of undo; shows "N terms were replaced." or the "no
// matches" message. A fret replacement must itself be a fret text ("" clears the notes).
// Returns the number of terms replaced.
int ReplaceAll(EditContext& ctx, const FindRequest& request);

}  // namespace plectaro
