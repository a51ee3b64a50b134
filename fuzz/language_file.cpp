// Language file reader: any bytes give every window's texts without a crash.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "shell/language.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  // The messages read every window's section once. The one-window reader splits the same lines
  // and reads one section of them; a loop over all fifty-odd windows would only split the same
  // bytes that many times over, so each input reads one window, picked by its length.
  plectaro::Messages messages;
  messages.load(bytes);
  const auto& starts = plectaro::LanguageSectionStarts();
  const size_t n = plectaro::LoadLanguage(bytes, starts[size % starts.size()].form).size();
  return n + messages.str("str_InvalidFile").size() > 100000 ? 1 : 0;
}
