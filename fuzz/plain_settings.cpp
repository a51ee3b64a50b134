// Feeds arbitrary bytes to the quick reader of the settings file: it must never crash, and a
// file it takes must give back every value it holds when written out again the same way.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "shell/plain_settings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace plectaro;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto store = ReadPlainSettings(bytes);
  if (!store) return 0;
  // Every value taken is plain: written back under its section, it is read again unchanged.
  std::string again;
  std::string_view rest = bytes;
  std::string section;
  while (!rest.empty()) {
    const size_t end = rest.find('\n');
    const std::string_view line = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    if (line.empty()) continue;
    if (line.front() == '[') {
      section = line.substr(1, line.size() - 2);
      continue;
    }
    const size_t eq = line.find('=');
    const std::string key(line.substr(0, eq));
    if (store->value(section, key) != std::string(line.substr(eq + 1))) __builtin_trap();
    again += "[" + section + "]\n" + key + "=" + *store->value(section, key) + "\n";
  }
  if (!ReadPlainSettings(again)) __builtin_trap();
  return 0;
}
