// Small scores built in code for the rendering tests.
#pragma once

#include <string>

#include "score/document.h"

namespace plectaro::test {

// A one-track document with `bars` bars of `beats` quarter notes each (fret 0 on string 0).
inline Document MakeDoc(int bars, int beats, bool treble = false, bool bass = false, bool tab = true,
                        int strings = 6) {
  Document doc;
  Track& t = doc.score.Tracks[0];
  t.TrebleStaff = treble;
  t.BassStaff = bass;
  t.TabStaff = tab;
  t.Tuning.NumStrings = static_cast<int16_t>(strings);
  doc.score.SetBarCount(bars - 1);
  for (int b = 0; b < bars; ++b) {
    doc.score.SetBeatCount(0, b, beats - 1);
    for (int k = 0; k < beats; ++k) {
      Beat& beat = doc.score.beatMut(0, b, k);
      beat.Length = kQuarter;
      beat.Notes[0].Fret = "0";
    }
  }
  return doc;
}

}  // namespace plectaro::test
