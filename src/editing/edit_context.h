// Everything an editing command needs besides the Document: the editor's settings, the way to
// ask the user something, the hooks into the window and the player, the undo ring and the bar
// clipboard. One EditContext per open window; no editing state is program-wide.
//
// Every command is a plain function taking the EditContext. The key handler, the menu item and
// the toolbar button all call the same function, so they always do the same thing.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "editing/undo_ring.h"
#include "score/document.h"
#include "score/prompter.h"

namespace plectaro {

struct EditSettings {
  int16_t UndoLevels = 100;  // the options dialog's undo levels; apply with EditContext::setUndoLevels
  bool PlayAsTyped = true;  // sound a beat as a note is typed into it
};

// Dialogs of other parts of the program that a key can open.
enum class EditDialog { Bend, Chord, Text, Trill, Grace, TremoloBar };

// The window's side. Every hook may be left empty; the editor then does without it.
struct EditHooks {
  // The password guard; when empty, a protected score asks through the Prompter.
  std::function<bool()> passwordCorrect;
  // Sounds beat (track, bar, beat): play as typed and the commands that change a sound.
  std::function<void(int track, int bar, int beat)> playChord;
  // Sounds a beat of another version of the score (an effect editor's Play before OK).
  std::function<void(const Score& score, int track, int bar, int beat)> playScoreBeat;
  std::function<bool()> isPlaying;
  std::function<void()> stopPlayback;
  std::function<void()> playFromStart;
  std::function<void()> playFromHere;
  // Draws the document now (DrawDocument of the window), status panels included.
  std::function<void()> drawDocument;
  // The cursor moved to another track.
  std::function<void()> trackChanged;
  // Beats or bars came or went (or an undo happened), so go-to points may have too.
  std::function<void()> gotoPointsChanged;
  // The undo menu item must be enabled or disabled.
  std::function<void(bool enabled)> undoEnabled;
  // The undo or redo lists changed: the Edit menu renames and enables its two items.
  std::function<void()> undoChanged;
  // Opens a dialog of the effect editors or the chord manager on the cursor's beat.
  std::function<void(EditDialog)> openDialog;
  // ntne_frmEndRepeat: how many times the section is to be repeated; nullopt when cancelled.
  // When empty, the question goes through the Prompter as a line of text.
  std::function<std::optional<int>()> askRepeatCount;
  // Opens the right-click menu at a point of the picture.
  std::function<void(int x, int y)> openRightMenu;
  // A passing note in the status bar ("This pitch cannot be played..."): no box to close.
  std::function<void(const std::string& text)> status;
  // Sounds one sound of the percussion list (1 "Acoustic Bass Drum" ...), as the drum
  // cursor walks onto it.
  std::function<void(int sound)> playPercussion;
  // A message text of the interface language by its key ("str_ExceededBar"...); when empty
  // or when it answers "", the English text is used.
  std::function<std::string(std::string_view key)> text;
};

struct BarClipboard {
  std::vector<Cow<TrackBar>> bars;   // copied whole: notes and effects go along
  std::vector<BarInfo> infos;        // their time signatures and marks
  bool drumTrack = false;            // bars of a drum track only paste onto a drum track
  // Bars copied from every track at once (a band arrangement): one list per track, in track
  // order; `bars` then holds the cursor track's list. Empty for a copy of one track.
  std::vector<std::vector<Cow<TrackBar>>> trackBars;
  std::vector<bool> drumTracks;
  bool empty() const { return bars.empty(); }
};

// Marked beats or bars; see editing/selection.h.
struct Selection {
  bool active = false;
  bool allTracks = false;
  int16_t anchorBar = 0;
  int16_t anchorBeat = 0;
};

class EditContext {
 public:
  EditContext(Document& doc, Prompter& prompter) : doc(doc), prompter(prompter) {
    undo.setLevels(settings.UndoLevels);
  }

  Document& doc;
  Prompter& prompter;
  EditSettings settings;
  EditHooks hooks;
  UndoRing undo;
  BarClipboard clipboard;
  Selection selection;

  bool NotationEntry = false;      // Enter switched note entry to the notation staff
  bool KeyChanged = false;         // the last command changed the Score
  bool VolumesWholeChord = false;  // a volume command acts on every string of the beat

  void setUndoLevels(int16_t levels) {
    settings.UndoLevels = levels;
    undo.setLevels(levels);
    notifyUndo();
  }
  // Another document was opened or a new one made: its edits cannot be undone into it. The
  // bar clipboard stays, so bars can be copied from one song into another.
  void documentReplaced() {
    undo.clear();
    NotationEntry = false;
    selection = Selection{};
    notifyUndo();
  }

  // The message text for a key, in the interface language when the window gave one.
  std::string text(std::string_view key) const;
  void message(std::string_view textKey, MessageIcon icon = MessageIcon::Information);
  void redraw();
  void status(const std::string& text) {
    if (hooks.status) hooks.status(text);
  }
  void notifyUndo() {
    if (hooks.undoEnabled) hooks.undoEnabled(undo.canUndo());
    if (hooks.undoChanged) hooks.undoChanged();
  }
  void playBeat() {
    if (hooks.playChord) hooks.playChord(doc.CursorTrack, doc.CursorBar, doc.CursorBeat);
  }

  // Set while a key is being handled: commands called from the key leave the drawing to the
  // end of the key.
  int depth = 0;

 private:
  friend class UndoStep;
  // The undo step being gathered: nesting depth, the document before it, its name.
  int stepDepth_ = 0;
  Score stepBefore_;
  std::array<int16_t, 5> stepCursor_{};
  std::string stepName_;
};

// Everything that changes the Score while one of these lives becomes a single undo step: a key
// that runs several commands, a dialog that applies its answers in parts, a tool that writes a
// whole passage. Steps nest; only the outermost one files the snapshot, and only when the
// Score really changed. Without a name it takes the name of the first named command inside.
class UndoStep {
 public:
  explicit UndoStep(EditContext& ctx, std::string_view name = {});
  ~UndoStep();
  UndoStep(const UndoStep&) = delete;
  UndoStep& operator=(const UndoStep&) = delete;

 private:
  EditContext& ctx_;
};

// The guard every command that alters the document passes first.
bool PasswordCorrect(EditContext& ctx);

// Runs one editing command: the password guard, then `change` under Transact. When the
// change throws ScoreError the document is put back exactly as it was and the reason is shown.
// When the Score changed: ScoreChanged, KeyChanged, FullRelayout if the layout is touched, and
// one undo step named `step` ("Time Signature"; the Edit menu shows "Undo Time Signature").
// Then the cursor is clamped and the document drawn. Returns false when refused or failed.
bool RunCommand(EditContext& ctx, const std::function<void()>& change, std::string_view step = {});

// The Edit menu's Undo and Redo (also the z key, Ctrl+Z, Ctrl+Y and Ctrl+Shift+Z).
void mnuEditUndo_Click(EditContext& ctx);
void mnuEditRedo_Click(EditContext& ctx);

// A command that only moves the cursor: no password, no change flags; clamps and draws.
void RunCursorMove(EditContext& ctx, const std::function<void()>& move);

// Whether two versions of a Score differ in anything the page layout depends on: bars, beat
// counts, signatures, staves, strings. Bars shared between the two are skipped at once.
bool LayoutAffected(const Score& before, const Score& after);

}  // namespace plectaro
