// The undo ring: snapshots of the whole document taken around keyboard edits.
//
// A snapshot is a copy of the Score. Bars are held in copy-on-write boxes, so a snapshot shares
// every bar that has not been written since; fifty levels of one-note edits cost fifty copies
// of the bar lists plus fifty changed bars, not fifty documents.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "score/document.h"

namespace plectaro {

struct UndoEntry {
  Score score;
  // CursorTrack, CursorBar, CursorBeat, CursorString, CursorLine at the time.
  std::array<int16_t, 5> cursor{};
  bool Filled = false;
};

class UndoRing {
 public:
  explicit UndoRing(int16_t levels = 1) { setLevels(levels); }

  // UndoLevels is the highest ring index: levels + 1 places, 0 meaning no undo at all.
  // Changing it empties the ring. Negative values count as 0.
  void setLevels(int16_t levels);
  int16_t levels() const { return UndoLevels; }
  int16_t position() const { return UndoPosition; }

  // Stores the document as it was before an edit, with the cursor of that time.
  void push(Score before, const std::array<int16_t, 5>& cursor);
  // Whether the menu item is enabled: the next place back is filled and levels are not 0.
  bool canUndo() const;
  // Steps back one place and puts that snapshot over the document. false when there was
  // nothing to restore.
  bool undo(Document& doc);
  // Forgets every snapshot (another document was opened).
  void clear();

  const std::vector<UndoEntry>& entries() const { return ring_; }

 private:
  int16_t UndoLevels = 1;
  int16_t UndoPosition = 0;
  std::vector<UndoEntry> ring_;

  int16_t next(int16_t p) const { return p + 1 > UndoLevels ? 0 : static_cast<int16_t>(p + 1); }
};

std::array<int16_t, 5> CursorOf(const Document& doc);
void SetCursor(Document& doc, const std::array<int16_t, 5>& cursor);

}  // namespace plectaro
