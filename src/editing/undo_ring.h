// Undo and redo: snapshots of the whole document, one per command.
//
// A snapshot is a copy of the Score. Bars are held in copy-on-write boxes, so a snapshot shares
// every bar that has not been written since; a hundred levels of one-note edits cost a hundred
// copies of the bar lists plus a hundred changed bars, not a hundred documents.
//
// Every command that changes the Score leaves one step here, whether it came from a key, a menu,
// a dialog or a tool. Each step carries the command's name, so the Edit menu can say what it
// will take back ("Undo Time Signature"). Taking a step back moves it to the redo list; any new
// change empties that list, as in every editor.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <string>

#include "score/document.h"

namespace plectaro {

struct UndoEntry {
  Score score;
  // CursorTrack, CursorBar, CursorBeat, CursorString, CursorLine at the time.
  std::array<int16_t, 5> cursor{};
  std::string name;  // the command, as the Edit menu names it
};

class UndoRing {
 public:
  explicit UndoRing(int16_t levels = 100) { setLevels(levels); }

  // How many steps can be taken back; 0 turns undo off. Changing it empties both lists.
  // Negative values count as 0.
  void setLevels(int16_t levels);
  int16_t levels() const { return levels_; }

  // Stores the document as it was before an edit, with the cursor of that time. The oldest
  // step falls out when the levels are full. Empties the redo list.
  void push(Score before, const std::array<int16_t, 5>& cursor, std::string name);
  bool canUndo() const { return !undo_.empty(); }
  bool canRedo() const { return !redo_.empty(); }
  // The names of the steps that undo and redo would take ("" when there is none).
  const std::string& undoName() const;
  const std::string& redoName() const;
  // Puts the last snapshot over the document and keeps the document's present state for redo.
  // false when there was nothing to restore.
  bool undo(Document& doc);
  // Takes the last undone step again. false when there was nothing to redo.
  bool redo(Document& doc);
  // Forgets every snapshot (another document was opened).
  void clear();

  const std::deque<UndoEntry>& undoEntries() const { return undo_; }
  const std::deque<UndoEntry>& redoEntries() const { return redo_; }

 private:
  int16_t levels_ = 100;
  std::deque<UndoEntry> undo_;  // oldest first
  std::deque<UndoEntry> redo_;  // most recently undone last
};

std::array<int16_t, 5> CursorOf(const Document& doc);
void SetCursor(Document& doc, const std::array<int16_t, 5>& cursor);

}  // namespace plectaro
