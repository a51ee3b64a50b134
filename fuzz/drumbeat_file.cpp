// Drumbeat readers, new (.p4d) and old (.pld): any bytes load or are refused with a
// ToolFileError, never a crash; what loads writes out and reads back the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "tools/drum_pattern.h"
#include "tools/record_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  for (auto read : {plectaro::ReadDrumbeat, plectaro::ReadOldDrumbeat}) {
    try {
      const plectaro::DrumPattern p = read(bytes);
      (void)plectaro::StepIntervalMs(p, 0);
      // Names with line breaks cannot survive a line-based file; everything else must.
      bool multiline = false;
      for (const auto& n : p.Instruments) multiline |= n.find_first_of("\r\n") != std::string::npos;
      if (!multiline && !(plectaro::ReadDrumbeat(plectaro::WriteDrumbeat(p)) == p)) std::abort();
    } catch (const plectaro::ToolFileError&) {
    }
  }
  return 0;
}
