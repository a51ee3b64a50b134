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
  levels_ = levels < 0 ? int16_t{0} : levels;
  clear();
}

void UndoRing::clear() {
  undo_.clear();
  redo_.clear();
}

void UndoRing::push(Score before, const std::array<int16_t, 5>& cursor, std::string name) {
  redo_.clear();
  if (levels_ < 1) return;
  undo_.push_back(UndoEntry{std::move(before), cursor, std::move(name)});
  while (undo_.size() > static_cast<size_t>(levels_)) undo_.pop_front();
}

const std::string& UndoRing::undoName() const {
  static const std::string none;
  return undo_.empty() ? none : undo_.back().name;
}

const std::string& UndoRing::redoName() const {
  static const std::string none;
  return redo_.empty() ? none : redo_.back().name;
}

namespace {

// Moves the last entry of `from` over the document and files the document's present state,
// under the same name, at the end of `to`.
bool swapIn(std::deque<UndoEntry>& from, std::deque<UndoEntry>& to, Document& doc) {
  if (from.empty()) return false;
  UndoEntry e = std::move(from.back());
  from.pop_back();
  to.push_back(UndoEntry{std::move(doc.score), CursorOf(doc), e.name});
  doc.score = std::move(e.score);
  SetCursor(doc, e.cursor);
  doc.clampCursor();
  doc.touched();
  return true;
}

}  // namespace

bool UndoRing::undo(Document& doc) { return swapIn(undo_, redo_, doc); }
bool UndoRing::redo(Document& doc) { return swapIn(redo_, undo_, doc); }

}  // namespace plectaro
