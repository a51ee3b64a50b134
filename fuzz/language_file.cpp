// Language file reader: any bytes give every window's texts without a crash.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "shell/language.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  size_t n = 0;
  for (const auto& start : plectaro::LanguageSectionStarts())
    n += plectaro::LoadLanguage(bytes, start.form).size();
  plectaro::Messages messages;
  messages.load(bytes);
  return n > 100000 ? 1 : 0;
}
