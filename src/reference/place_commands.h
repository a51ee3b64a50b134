// Putting a library chord or scale into the score at the cursor. These are editing commands:
// they pass the password guard and run through RunCommand, so they can be undone, and they
// refuse a percussion track without a word (there is nothing to fret there).
#pragma once

#include <string>

#include "editing/edit_context.h"
#include "reference/cell_drawing.h"

namespace plectaro {

// Marks the cursor's beat as holding this chord diagram, with its name.
bool AddChordAsDiagram(EditContext& ctx, const std::string& name, const ChordData& chord);
// Writes the chord's fret texts into the cursor's beat: frets as absolute frets, "x" as a dead
// note, a blank string as no note; strings beyond the track's are not touched.
bool AddChordAsNotes(EditContext& ctx, const ChordData& chord);
// Writes the scale as eighth notes in playing order: the first into the cursor's beat, the
// rest into new beats after it in the same bar. Notes on strings the track lacks are left out.
bool AddScaleAsNotes(EditContext& ctx, const ScaleData& scale, const ScaleView& view);

// The chord as the beat record keeps it.
BeatChord ToBeatChord(const std::string& name, const ChordData& chord);

}  // namespace plectaro
