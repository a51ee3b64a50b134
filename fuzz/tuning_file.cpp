// Tuning file reader: any bytes either load as a tuning whose values are in range, or are
// refused with a TuningError; a loaded tuning writes out and reads back the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "reference/tunings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    const plectaro::TuningData t = plectaro::ReadTuningText(text);
    if (t.NumStrings < 1 || t.NumStrings > plectaro::kMaxStrings) std::abort();
    for (int16_t n : t.StringNote)
      if (n < 0 || n > 24) std::abort();
    if (!(plectaro::ReadTuningText(plectaro::WriteTuningText(t)) == t)) std::abort();
  } catch (const plectaro::TuningError&) {
  }
  return 0;
}
