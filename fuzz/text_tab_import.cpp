// Text tab reader: any bytes, as a file or as a web page, either fill the track with bars that
// hold beats or fail with ScoreError, and the writer can always put the result back as text.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "exchange/text_tab_export.h"
#include "exchange/text_tab_import.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace plectaro;
  if (size == 0) return 0;
  // The first byte picks the options, so every path of the reader is reached.
  const uint8_t flags = data[0];
  const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
  AsciiImportOptions o;
  o.GetFileDetails = flags & 1;
  o.FromWeb = flags & 2;
  o.EnforceLength = flags & 4;
  o.Length = (flags >> 3) % 7;
  o.EnforceTiming = flags & 64;
  o.Timing = (flags & 128) ? "7:8" : "3:4";
  Score s;
  try {
    ASCIIToPLM(s, 0, DecodeTabText(bytes), o);
  } catch (const ScoreError&) {
    return 0;
  }
  for (int b = 0; b <= s.GetLastBar(0); ++b)
    if (s.bar(0, b).Beats.empty()) std::abort();
  (void)ExportASCIIText(s, 0, {true, 60});
  return 0;
}
