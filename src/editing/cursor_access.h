// The records under the cursor, bounds-checked (a bad cursor throws ScoreError, which the
// command guard turns into a message). Writing through the ...Mut forms detaches the bar from
// any undo snapshot that shares it.
#pragma once

#include "score/document.h"

namespace plectaro {

inline const NoteSlot& CursorSlot(const Document& d) {
  return d.score.note(d.CursorTrack, d.CursorBar, d.CursorBeat, d.CursorString);
}
inline NoteSlot& CursorSlotMut(Document& d) {
  return d.score.noteMut(d.CursorTrack, d.CursorBar, d.CursorBeat, d.CursorString);
}
inline const Beat& CursorBeat(const Document& d) {
  return d.score.beat(d.CursorTrack, d.CursorBar, d.CursorBeat);
}
inline Beat& CursorBeatMut(Document& d) { return d.score.beatMut(d.CursorTrack, d.CursorBar, d.CursorBeat); }

}  // namespace plectaro
