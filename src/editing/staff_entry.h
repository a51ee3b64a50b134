// Entry on the notation staff and on drum tracks, where the cursor stands on a line of the
// staff (CursorLine) instead of a string of the tab.
//
// On a normal track the line is a sounding pitch (capo and octave flags included), from the
// lowest open string up 29 semitones. Writing puts that pitch on the beat, on the string that
// takes it with the lowest fret among the strings still free.
//
// On a drum track the line is a sound of the percussion list (1 "Acoustic Bass Drum" ...),
// walked in the order a drum staff reads from the top. A letter writes its symbol on the tab
// line whose drum map sounds that sound for that symbol.
#pragma once

#include <array>
#include <string>

#include "editing/edit_context.h"

namespace plectaro {

// The lowest pitch of the notation line on a track: its lowest open string as it sounds.
// The highest is this + kNotationLineSpan.
int NotationLineBottom(const Track& track);
constexpr int kNotationLineSpan = 29;
// Frets the notation writer may choose.
constexpr int kHighestWrittenFret = 24;

// The sounding pitch of fret 0 on a string of the track (tuning, capo, octave flags).
int OpenStringPitch(const Track& track, int string);

struct StringFret {
  int string = -1;  // -1: no string takes the pitch
  int fret = -1;
  bool operator==(const StringFret&) const = default;
};
// Where a pitch goes on a beat: among the strings with no note yet, the one that plays it
// with the lowest fret (the higher string on a tie). `onString` >= 0 asks for that string only.
StringFret PlaceForPitch(const Track& track, const Beat& beat, int pitch, int onString = -1);

// The notation writer: the pitch of CursorLine onto the cursor's beat. `onString` -1 lets the
// writer choose; 0.. asks for that string. A pitch already on the beat is left, with the
// cursor moved to its string. When no string can take it, the status line says so and nothing
// changes. Returns true when the beat holds the pitch afterwards.
bool WriteNotationNote(EditContext& ctx, int onString = -1);
// Del in notation entry: the note of the beat that sounds CursorLine is cleared.
void ClearNotationNote(EditContext& ctx);
// Enter: notation entry on or off. Switching on puts the line at the cursor's note (or the
// open string under the cursor) so that the first Up or Down starts from where the eye is.
void ToggleNotationEntryAt(EditContext& ctx);

// The drum staff from the top down, as sounds of the percussion list.
constexpr std::array<int16_t, 19> kDrumWalk = {15, 17, 18, 12, 8, 16, 20, 13, 14, 4,
                                               3,  11, 9,  7,  22, 10, 1,  2,  19};
// One step of the walk: down stops at the last sound, up wraps from the first to the last.
// A sound not in the walk starts it at the top.
int NextDrumLine(int line, bool down);

// The tab line of a drum track that sounds `sound` for the symbol at `symbolIndex` of
// kDrumSymbols; with symbolIndex -1 for any symbol. -1 when no line does.
int DrumLineOf(const Track& track, int sound, int symbolIndex = -1);

// A drum letter on a drum track: the symbol is written on the line that sounds CursorLine for
// it. Where no line has that pairing yet, the line that already plays the sound learns the
// letter if it is free there, or else takes the symbol that plays the sound on it; a sound no
// line plays is learnt by the line with the fewest sounds. So a letter always sounds what the
// cursor shows. Returns false when no line can take it.
bool WriteDrumNote(EditContext& ctx, char symbol);

}  // namespace plectaro
