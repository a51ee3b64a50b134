// picDocument_KeyDown: what a key means in the document picture. The window hands every key
// here (and toolbar buttons and menus may hand made-up keys); the handler moves the cursor,
// types frets and calls the same command functions that the menus call.
//
// Around every key: the password guard, a snapshot for the undo ring (kept only when the key
// changed the document), play as typed, and one redraw at the end.
#pragma once

#include "editing/edit_context.h"
#include "editing/keys.h"

#include <vector>

namespace plectaro {

// Returns true when the key meant something to the editor (so the window need not pass it on).
bool picDocument_KeyDown(EditContext& ctx, Key key, Modifiers mods);

// The cursor moves of the arrow keys, also the "Move left a chord" / "Move right a chord" /
// "Move up a string" / "Move down a string" entries.
void MoveCursorLeft(EditContext& ctx);
// Right on the last beat: under-full bar grows a beat of the same length, an exact bar passes
// on (adding a bar at the end of the score when needed), an over-full bar refuses with a
// message.
void MoveCursorRight(EditContext& ctx);
void MoveCursorUp(EditContext& ctx);
void MoveCursorDown(EditContext& ctx);
// Enter: "Toggle notation note".
void ToggleNotationEntry(EditContext& ctx);
// Moves the cursor to another track (the window's track list); the bar stays.
void SetCursorTrack(EditContext& ctx, int track);

// The pairs of the Shortcut Keys dialog (ntne_frmShortcuts), grouped, in the dialog's order.
// `keys` is written as ParseKeyPress reads it ("+" is the keypad's plus). A text ending in
// " *" is for normal tracks only.
struct ShortcutEntry {
  int group;
  const char* text;
  const char* keys;
};
const std::vector<ShortcutEntry>& ShortcutTable();

// The drum symbol each drum letter key writes (C, X, S, O, F, T); 0 for other keys.
char DrumSymbolOfKey(Key key);

}  // namespace plectaro
