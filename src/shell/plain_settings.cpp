#include "shell/plain_settings.h"

#include <set>
#include <string>
#include <utility>

namespace plectaro {

namespace {

bool isNameChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '.' || c == '-';
}

bool isName(std::string_view s) {
  if (s.empty()) return false;
  for (const char c : s)
    if (!isNameChar(c)) return false;
  return true;
}

// Printable ASCII without the characters the writer quotes or escapes (" \ , ; = and, first,
// @), without those a hand-edited file could mean as comments (# ;) and without blanks at
// either end, which the writer would have quoted.
bool isPlainValue(std::string_view v) {
  if (v.empty()) return true;
  if (v.front() == ' ' || v.back() == ' ' || v.front() == '@') return false;
  for (const char c : v) {
    if (c < 0x20 || c > 0x7e) return false;
    if (c == '"' || c == '\\' || c == ',' || c == ';' || c == '=' || c == '#') return false;
  }
  return true;
}

}  // namespace

std::optional<MemorySettingsStore> ReadPlainSettings(std::string_view bytes) {
  MemorySettingsStore store;
  std::set<std::pair<std::string, std::string>> seen;
  std::string section;
  while (!bytes.empty()) {
    const size_t end = bytes.find('\n');
    const std::string_view line = bytes.substr(0, end);
    bytes = end == std::string_view::npos ? std::string_view() : bytes.substr(end + 1);
    if (line.empty()) continue;
    if (line.front() == '[') {
      if (line.back() != ']') return std::nullopt;
      const std::string_view name = line.substr(1, line.size() - 2);
      // [General] holds the keys outside every section, which the writer files differently.
      if (!isName(name) || name == "General") return std::nullopt;
      section = name;
      continue;
    }
    const size_t eq = line.find('=');
    if (section.empty() || eq == std::string_view::npos) return std::nullopt;
    const std::string_view key = line.substr(0, eq), value = line.substr(eq + 1);
    if (!isName(key) || !isPlainValue(value)) return std::nullopt;
    // Which of two equal keys wins is the full reader's business.
    if (!seen.emplace(section, std::string(key)).second) return std::nullopt;
    store.setValue(section, key, value);
  }
  return store;
}

}  // namespace plectaro
