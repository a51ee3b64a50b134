// One open document: the Score, the editing position, the flags that commands set, and the
// results of the last page layout. Everything that works on "the document" is handed a
// Document; there is no program-wide document state.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "score/score_records.h"

namespace plectaro {

// Where the last page layout put one bar of a track. Recomputed on every draw and never saved;
// kept beside the Score (not in it) so that undo snapshots and equality ignore it.
struct BarLayout {
  int16_t DrawX = 0;
  int32_t DrawY = 0;
  int16_t DrawWidth = 0;
  bool ShowsSignature = true;  // a bar not laid out yet is taken to open with a signature
  int16_t RowFirstBar = 0;     // first bar of the row this bar stands in
  int16_t BeatSpacing = 0;
  int16_t RowLastBar = 0;      // last bar of that row
  int16_t LayoutOrdinal = 0;
  bool operator==(const BarLayout&) const = default;
};

class Document {
 public:
  Score score;

  // The editing position, shared by the editor, the view and playback.
  int16_t CursorTrack = 0;
  int16_t CursorBar = 0;
  int16_t CursorBeat = 0;
  int16_t CursorString = 0;
  int16_t CursorLine = 0;

  bool ScoreChanged = false;    // something a save would keep has changed
  bool FullRelayout = true;     // the page layout must be computed from the first bar
  bool PasswordEntered = false; // the user has given the password of a protected score

  // Layout results per track and bar; the drawing code sizes it as it lays out.
  std::vector<std::vector<BarLayout>> Layout;

  // Clamps the cursor into the document after bars, beats or tracks went away.
  void clampCursor();

  // Marks the document changed and due for a full relayout.
  void touched() {
    ScoreChanged = true;
    FullRelayout = true;
  }
};

// Runs a command on the document. If it throws ScoreError, the Score and the cursor are put
// back exactly as they were and the error goes on to the caller, who reports its message.
// Copying the Score is cheap: bars are shared until written.
template <class Fn>
decltype(auto) Transact(Document& doc, Fn&& fn) {
  Score before = doc.score;
  const int16_t pos[5] = {doc.CursorTrack, doc.CursorBar, doc.CursorBeat, doc.CursorString,
                          doc.CursorLine};
  const bool changed = doc.ScoreChanged;
  try {
    return std::forward<Fn>(fn)();
  } catch (const ScoreError&) {
    doc.score = std::move(before);
    doc.CursorTrack = pos[0];
    doc.CursorBar = pos[1];
    doc.CursorBeat = pos[2];
    doc.CursorString = pos[3];
    doc.CursorLine = pos[4];
    doc.ScoreChanged = changed;
    throw;
  }
}

}  // namespace plectaro
