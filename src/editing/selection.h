// The selection: beats or bars marked with Shift and the arrows, Home/End or a mouse drag, in
// the cursor's track or in all tracks. It runs from an anchor (where the marking started) to
// the cursor. Within one bar it holds the beats between the two; once it crosses a bar line it
// holds the whole bars, which is what a guitarist copies, clears or transposes.
#pragma once

#include <optional>
#include <vector>

#include "editing/edit_context.h"

namespace plectaro {

struct SelectedRange {
  int firstBar = 0, lastBar = 0;
  int firstBeat = 0, lastBeat = 0;  // only meaningful when !wholeBars
  bool wholeBars = true;
  std::vector<int> tracks;          // the cursor's track, or every track
  std::vector<int> bars() const;    // firstBar..lastBar
};

// The range marked now; nullopt when nothing is selected.
std::optional<SelectedRange> SelectionOf(const EditContext& ctx);

// Extends the selection with a cursor move: the first extension drops the anchor where the
// cursor stands. `allTracks` widens it to every track.
void ExtendSelection(EditContext& ctx, const std::function<void()>& move, bool allTracks);
// Marks from the anchor to a point the mouse reached (bar, beat of the cursor's track).
void SelectTo(EditContext& ctx, int bar, int beat, bool allTracks);
// Every bar of the cursor's track (or of all tracks).
void SelectAllBars(EditContext& ctx, bool allTracks);
void Deselect(EditContext& ctx);

// The commands that take the selection as their range. Each returns false when nothing is
// selected, so the caller can fall back on its dialog or on the cursor.
bool CopySelection(EditContext& ctx);
bool CutSelection(EditContext& ctx);
// Clears the selected beats, or the selected bars to one blank beat each.
bool ClearSelection(EditContext& ctx);
// Increase Lengths x2 / Decrease Lengths /2 on the selected beats or bars.
bool StepSelectionLengths(EditContext& ctx, bool longer);
// Pastes the clipboard once after the cursor's bar: bars copied from all tracks go back into
// all tracks, a single track's bars into the cursor's track.
bool PasteAtCursor(EditContext& ctx);

// Where the selection stands on the page: one rectangle per bar of the cursor's track that it
// touches, in picture coordinates of the last layout.
struct BandRect {
  double x, y, w, h;
};
std::vector<BandRect> SelectionBand(const EditContext& ctx);

}  // namespace plectaro
