// The Operations menu (check and repair of bar timing, removing rests, transposing) and the
// Go menu's go-to points. Every change runs through RunCommand.
#pragma once

#include <string>
#include <vector>

#include "editing/edit_context.h"

namespace plectaro {

// ---- bar timing ----

// Check this Bar: the message for the cursor's bar, in one of three forms (complete, too long,
// too short), with both sums in the "0.0##" form and " 64ths".
struct BarCheckMessage {
  std::string text;
  std::string titleKey;
};
BarCheckMessage CheckBarMessage(const EditContext& ctx, int track, int bar);
void mnuOperationsCheckBar_Click(EditContext& ctx);
// Fix this Bar: an exact bar is left alone with "does not need fixing"; others are repaired
// the way Fix all Bars repairs each bar.
void mnuFixThisBar_Click(EditContext& ctx);
void mnuFixAllBars_Click(EditContext& ctx);

// ---- rests ----

// Removes every rest beat of the track. A bar that holds nothing but rests keeps its first
// beat, since a bar never goes empty. Returns the number of beats removed.
int RemoveRests(Score& s, int track);
// Asks first, then removes the rests of the cursor's track.
void mnuOperationsRemoveRests_Click(EditContext& ctx);

// ---- transposing ----

// Highest fret a note is moved to; a modern guitar neck has 24.
inline constexpr int kHighestFret = 24;

// A note that had no place on the strings at its new pitch; it is left as it was.
struct UnplacedNote {
  int track = 0, bar = 0, beat = 0, string = 0;
  std::string fret;
};

struct SelectedRange;

// Moves every fretted note of the chosen tracks by `semitones` (only the bars, or the beats of
// one bar, that `range` holds when one is given). A note stays on its string
// when the new fret lies in 0..kHighestFret; otherwise it moves, with its effects, to the
// nearest string of the track that is free in that beat and can play the pitch. A note that
// fits nowhere keeps its old fret and is returned. Drum tracks and dead notes are skipped.
std::vector<UnplacedNote> TransposeTracks(Score& s, const std::vector<int>& tracks, int semitones,
                                          const SelectedRange* range = nullptr);
// ntne_frmTranspose: the change as one command; any unplaced notes are named in a message.
bool Transpose(EditContext& ctx, const std::vector<int>& tracks, int semitones,
               const SelectedRange* range = nullptr);

// ---- go-to points ----

struct GotoPoint {
  std::string name;
  int track = 0, bar = 0, beat = 0;
};
// Every go-to point of the score, track by track, bar by bar.
std::vector<GotoPoint> GotoPoints(const Score& s);
// The points of one track (NumberOfGotoPoints counts these).
int NumberOfGotoPoints(const Score& s, int track);
// The go-to points a document may hold: the Go To menu lists them all.
inline constexpr int kMaxGotoPoints = 100;
// Add a Go-To Point on the cursor's beat. Refused with a message when the name is blank or
// taken, or the document holds kMaxGotoPoints already.
bool AddGotoPoint(EditContext& ctx, const std::string& name);
// Removes the point of that name after asking; returns true when it was removed.
bool DeleteGotoPoint(EditContext& ctx, const std::string& name);
// Moves the cursor to the point (switching track if needed).
bool GoToPoint(EditContext& ctx, const std::string& name);

}  // namespace plectaro
