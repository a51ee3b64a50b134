// Scores the benchmarks share.
#pragma once

#include <string>

#include "score/document.h"

namespace plectaro {

// A 6-string track with treble staff and tab, 8 eighth-note beats a bar, a note on every beat,
// the cursor in the middle.
inline Document BigTabSong(int bars) {
  Document doc;
  doc.score.Tracks[0].TrebleStaff = true;
  doc.score.SetBarCount(bars - 1);
  for (int b = 0; b < bars; ++b) {
    doc.score.SetBeatCount(0, b, 7);
    for (int k = 0; k < 8; ++k) {
      Beat& beat = doc.score.beatMut(0, b, k);
      beat.Length = kEighth;
      beat.Notes[static_cast<size_t>(k % 6)].Fret = std::to_string((b + k) % 13);
      if (k % 4 == 0) beat.Notes[5].Fret = "0";
    }
  }
  doc.CursorBar = static_cast<int16_t>(bars / 2);
  return doc;
}

}  // namespace plectaro
