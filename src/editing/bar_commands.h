// The Bar menu: clearing, inserting and removing bars, the bar clipboard, moving between bars,
// time and key signatures, repeats and the coda marks. The commands that open a dialog in the
// window are split in two: the dialog (src/editing/ui) collects the answers, and the function
// here carries them out, so the same work can be driven from tests and scripts.
#pragma once

#include <vector>

#include "editing/edit_context.h"

namespace plectaro {

// ---- score routines shared by the commands ----

// Cuts the bar to one beat and makes that beat blank (its length stays).
void ClearBar(Score& s, int track, int bar);
// The add-bar routine: one bar more at the end of every track. The new bar keeps the time
// signature of the bar before it, and each track keeps its key.
void AddBar(Score& s);
// Moves the bars of the chosen tracks from `bar` on one place right (the last bar of the track
// is dropped, so callers AddBar first) and clears `bar`. When every track is chosen, the bar
// records (signatures, repeats) move with them and the new bar has the signature of `bar`.
void InsertBarAt(Score& s, int bar, const std::vector<int>& tracks);
// Removes `bar` from the chosen tracks; their later bars move left. When every track is
// chosen the score loses the bar; otherwise the chosen tracks end with a blank bar. The only
// bar of a score is cleared instead of removed.
void RemoveBarAt(Score& s, int bar, const std::vector<int>& tracks);

// Selection: the bars the selection touches (the cursor's bar when nothing is selected), and
// for a key signature its tracks too.
enum class ApplyRange { ThisBar = 0, FromThisBar = 1, AllBars = 2, Selection = 3 };

// ---- commands ----

void mnuBarClear_Click(EditContext& ctx);
void mnuBarFirst_Click(EditContext& ctx);
void mnuBarPrevious_Click(EditContext& ctx);
void mnuBarNext_Click(EditContext& ctx);
void mnuBarLast_Click(EditContext& ctx);

// ntne_frmInsertBar: a bar inserted at the cursor in the chosen tracks.
bool InsertBar(EditContext& ctx, const std::vector<int>& tracks);
// ntne_frmRemoveBar: the cursor's bar removed from the chosen tracks; with whole bars
// selected, the selected bars (one undo step).
bool RemoveBar(EditContext& ctx, const std::vector<int>& tracks);

// ntne_frmCutCopyPaste. Copy takes the chosen bars of the cursor's track. Cut copies the
// chosen bars of the first chosen track (the cursor's track when it is chosen) and clears
// them in every chosen track; no bar is removed. Paste inserts the clipboard `pastings` times
// after (or before) the cursor's bar: the chosen tracks get the copied bars, the others blank
// bars, so the tracks stay aligned. A refusal shows its message and changes nothing.
bool CopyBars(EditContext& ctx, const std::vector<int>& bars);
// The chosen bars of the chosen tracks as a clipboard; all tracks give a band clipboard.
BarClipboard ClipOfTracks(const Score& s, int cursorTrack, const std::vector<int>& tracks,
                          const std::vector<int>& bars);
bool CutBars(EditContext& ctx, const std::vector<int>& tracks, const std::vector<int>& bars);
bool PasteBars(EditContext& ctx, const std::vector<int>& tracks, int pastings, bool after);

// ntne_frmBarTimeSig: numerator 1..32 and denominator 1, 2, 4, 8, 16 or 32 over the range.
bool ApplyTimeSignature(EditContext& ctx, int numerator, int denominator, ApplyRange range);
// ntne_frmBarKeySig: the key code on the cursor track's bars of the range.
bool ApplyKeySignature(EditContext& ctx, int32_t key, bool minor, ApplyRange range);
// The key code of an entry of the dialog's lists (0 "Cb"/"Abm" .. 7 C/Am .. 14 "C#"/"A#m"),
// and back. Flat keys are stored as 8..14 (one to seven flats); codes -7..-1 that files may
// hold are also read as flats.
int32_t KeyCodeOfListIndex(int index);
int KeyListIndexOfCode(int32_t key);
// The lists of the key dialog, in order.
extern const char* const kMajorKeyNames[15];
extern const char* const kMinorKeyNames[15];

void mnuBarRepeatOpen_Click(EditContext& ctx);
// A bar that closes a repeat loses it at once; otherwise the count is asked for.
void mnuBarRepeatClose_Click(EditContext& ctx);
bool SetRepeatClose(EditContext& ctx, int count);  // 0 removes the mark

// ntne_frmCoda's four answers; -1 leaves that mark out. Any earlier marks are removed.
bool SetCoda(EditContext& ctx, int signBar, int dsAlCodaBar, int toCodaBar, int codaBar);

}  // namespace plectaro
