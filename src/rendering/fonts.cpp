#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <utility>

#include "rendering/surface.h"

namespace plectaro {

namespace {

// Windows faces that scores name, and the free faces that stand in for them: metric-compatible
// where one exists (Liberation), else the nearest in shape (DejaVu).
constexpr std::array<std::pair<const char*, const char*>, 11> kFontMap = {{
    {"times new roman", "Liberation Serif"},
    {"arial", "Liberation Sans"},
    {"courier new", "Liberation Mono"},
    {"trebuchet ms", "DejaVu Sans"},
    {"small fonts", "DejaVu Sans Condensed"},
    {"ms sans serif", "Liberation Sans"},
    {"microsoft sans serif", "Liberation Sans"},
    {"tahoma", "DejaVu Sans"},
    {"verdana", "DejaVu Sans"},
    {"georgia", "DejaVu Serif"},
    {"comic sans ms", "DejaVu Sans"},
}};

}  // namespace

std::string MapFontFamily(std::string_view storedName) {
  std::string key(storedName);
  std::transform(key.begin(), key.end(), key.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  for (const auto& [from, to] : kFontMap)
    if (key == from) return to;
  if (key.empty()) return "Liberation Sans";
  return std::string(storedName);
}

}  // namespace plectaro
