#include "editing/undo_ring.h"

#include <utility>

namespace plectaro {

std::array<int16_t, 5> CursorOf(const Document& doc) {
  return {doc.CursorTrack, doc.CursorBar, doc.CursorBeat, doc.CursorString, doc.CursorLine};
}

void SetCursor(Document& doc, const std::array<int16_t, 5>& c) {
  doc.CursorTrack = c[0];
  doc.CursorBar = c[1];
  doc.CursorBeat = c[2];
  doc.CursorString = c[3];
  doc.CursorLine = c[4];
}

void UndoRing::setLevels(int16_t levels) {
  UndoLevels = levels < 0 ? int16_t{0} : levels;
  UndoPosition = 0;
  ring_.assign(static_cast<size_t>(UndoLevels) + 1, UndoEntry{});
}

void UndoRing::clear() { setLevels(UndoLevels); }

void UndoRing::push(Score before, const std::array<int16_t, 5>& cursor) {
  if (UndoLevels < 1) return;
  UndoEntry& e = ring_[static_cast<size_t>(UndoPosition)];
  e.score = std::move(before);
  e.cursor = cursor;
  e.Filled = true;
  UndoPosition = UndoPosition == 0 ? UndoLevels : static_cast<int16_t>(UndoPosition - 1);
}

bool UndoRing::canUndo() const {
  return UndoLevels != 0 && ring_[static_cast<size_t>(next(UndoPosition))].Filled;
}

bool UndoRing::undo(Document& doc) {
  UndoPosition = next(UndoPosition);
  UndoEntry& e = ring_[static_cast<size_t>(UndoPosition)];
  if (!e.Filled || UndoLevels == 0) return false;
  e.Filled = false;
  doc.score = std::move(e.score);
  e.score = Score{};
  SetCursor(doc, e.cursor);
  doc.clampCursor();
  doc.touched();
  return true;
}

}  // namespace plectaro
