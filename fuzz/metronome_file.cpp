// Metronome file reader: any bytes load or are refused with a ToolFileError, never a crash;
// what loads writes out and reads back the same, and every set has a usable interval.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "tools/metronome.h"
#include "tools/record_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  try {
    const plectaro::MetronomeFile f = plectaro::ReadMetronome(bytes);
    for (const auto& s : f.Sets)
      if (plectaro::BeatIntervalMs(s) < 1) std::abort();
    if (!(plectaro::ReadMetronome(plectaro::WriteMetronome(f)) == f)) std::abort();
  } catch (const plectaro::ToolFileError&) {
  }
  return 0;
}
