// The Beat menu's rhythm commands: the length of the beat under the cursor, its dot and its
// tuplet. A length change never re-fits the bar; the status bar shows the fill, the Right key
// refuses to leave an over-full bar, and Fix Bar repairs on request.
#pragma once

#include "editing/edit_context.h"

namespace plectaro {

// One step longer (half to whole ... 64th to 32nd) or shorter; at the ends nothing happens.
// A Length outside 0..6 (from a file) is left alone.
void mnuChordLengthIncrease_Click(EditContext& ctx);
void mnuChordLengthDecrease_Click(EditContext& ctx);
void mnuChordDotted_Click(EditContext& ctx);
// Index 0..8 for 3, 5, 6, 7, 9, 10, 11, 12, 13; the tuplet already set is switched off.
void mnuChordXTuplets_Click(EditContext& ctx, int index);
// "Increase Lengths x2" / "Decrease Lengths /2": the same step on every beat of the cursor's
// track, after the user confirms.
void mnuIncreaseLengths_Click(EditContext& ctx);
void MnuDecreaseLengths_Click(EditContext& ctx);

// The steps themselves, for one Length code.
int LongerLength(int length);
int ShorterLength(int length);

}  // namespace plectaro
