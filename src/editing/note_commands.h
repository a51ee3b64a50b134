// The Note menu and the simple effect toggles: commands on the NoteSlot under the cursor or on
// its whole Beat. Each passes the password guard, changes the document under the command guard
// and redraws (see RunCommand).
#pragma once

#include "editing/edit_context.h"

namespace plectaro {

// Fret typing: digit 0..9 on the cursor's slot. After "1" or "2" the digit is appended
// ("1" then "2" is "12"); any other text is replaced.
void TypeFretDigit(EditContext& ctx, int digit);
// Del: "Clear Note Value".
void ClearNoteValue(EditContext& ctx);
// X: dead note on, or off again.
void ToggleDeadNote(EditContext& ctx);

void mnuNoteUp_Click(EditContext& ctx);          // "+1 Semitone"
void mnuNoteDown_Click(EditContext& ctx);        // "-1 Semitone", never below 0
void mnuNoteShiftUp_Click(EditContext& ctx);     // the note to the next string up, same pitch
void mnuNoteShiftDown_Click(EditContext& ctx);   // the note to the next string down
void mnuNoteInsertBeat_Click(EditContext& ctx);  // a blank beat at the cursor
void mnuNoteDeleteBeat_Click(EditContext& ctx);  // removes the cursor's beat (or its bar)
void mnuNoteVolumes_Click(EditContext& ctx, int index);  // 0 "FFF" .. 7 "PPP"
void mnuNoteVolumesWholeChord_Click(EditContext& ctx);   // toggles ctx.VolumesWholeChord
void mnuNoteLinkNote_Click(EditContext& ctx);            // "Tie Note"
void mnuNoteLHFS_Click(EditContext& ctx, int index);     // 0 "T", 1 "1" .. 4 "4"
void mnuNoteRHFS_Click(EditContext& ctx, int index);     // 0 "T", 1 "I", 2 "M", 3 "A", 4 "O"

// Effects that toggle a field; choosing what is already set clears it.
void mnuNoteEffectsGhostNote_Click(EditContext& ctx);
void mnuNoteEffectsLetRing_Click(EditContext& ctx);
void mnuNoteEffectsAccentuate_Click(EditContext& ctx);
void mnuNoteEffectsHarmonics_Click(EditContext& ctx, int index);   // 0..6
void mnuNoteEffectsTechniques_Click(EditContext& ctx, int index);  // 0..9, menu order
void mnuChordTechniques_Click(EditContext& ctx, int index);        // 0..6
void mnuChordUpStroke_Click(EditContext& ctx);
void mnuChordDownStroke_Click(EditContext& ctx);

// R: the previous beat (across the bar line) copied whole onto this one.
void RepeatPreviousChord(EditContext& ctx);
// Shift+M / Shift+N: the beat changes places with its right / left neighbour in the bar.
void MoveChordRight(EditContext& ctx);
void MoveChordLeft(EditContext& ctx);
// Shift+O: the notes of the beat move into the next beat of the bar, leaving a rest; the
// lengths stay where they are.
void ShiftChordRight(EditContext& ctx);

// The stored NoteTechnique code of each entry of the techniques menu (its order crosses the
// two "Slide Into" codes).
constexpr int kTechniqueMenuCodes[10] = {1, 2, 3, 4, 6, 7, 8, 10, 9, 11};

}  // namespace plectaro
