// Chord and scale file readers: any bytes either load as a record or are refused with a
// LibraryError; a loaded record writes out and reads back the same. The first byte picks
// the reader.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "reference/scales.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  try {
    if (data[0] & 1) {
      const plectaro::ScaleData s = plectaro::ParseScaleFile(text, "fuzz");
      plectaro::ScaleData back = plectaro::ParseScaleFile(plectaro::ScaleFileText(s), "fuzz");
      if (!(back == s)) std::abort();
      (void)plectaro::ScaleNotes(s, 11, true, false);
    } else {
      const plectaro::ChordData c = plectaro::ParseChordFile(text, "fuzz");
      const plectaro::ChordData back = plectaro::ParseChordFile(plectaro::ChordFileText(c), "fuzz");
      if (back.Barre != c.Barre || back.Tuning != c.Tuning || back.Fingers != c.Fingers ||
          back.StartFret != c.StartFret || back.NumStrings != c.NumStrings)
        std::abort();
      int fret = 0;
      for (int i = 0; i < plectaro::kChordStrings; ++i) (void)c.absoluteFret(i, fret);
    }
  } catch (const plectaro::LibraryError&) {
  }
  return 0;
}
