#include "score/value_text.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace plectaro {

namespace {

template <class Int>
Int clampRound(double v) {
  if (std::isnan(v)) return 0;
  v = std::nearbyint(v);  // default rounding mode: halves to even
  if (v < static_cast<double>(std::numeric_limits<Int>::min())) return std::numeric_limits<Int>::min();
  if (v > static_cast<double>(std::numeric_limits<Int>::max())) return std::numeric_limits<Int>::max();
  return static_cast<Int>(v);
}

template <class F>
std::string formatShortest(F value) {
  if (std::isnan(value)) return "0";
  char buf[64];
  auto [ptr, ec] = std::to_chars(buf, buf + sizeof buf, value);
  std::string s(buf, ec == std::errc() ? ptr : buf);
  for (char& c : s)
    if (c == 'e') c = 'E';
  return s;
}

}  // namespace

std::string_view Trim(std::string_view text) {
  const char* ws = " \t\r\n";
  size_t a = text.find_first_not_of(ws);
  if (a == std::string_view::npos) return {};
  size_t b = text.find_last_not_of(ws);
  return text.substr(a, b - a + 1);
}

double ParseNumber(std::string_view text) {
  text = Trim(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  double v = 0;
  auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), v);
  if (ec == std::errc::result_out_of_range) {
    return (!text.empty() && text.front() == '-') ? -std::numeric_limits<double>::max()
                                                  : std::numeric_limits<double>::max();
  }
  if (ec != std::errc() || !std::isfinite(v)) return 0;
  return v;
}

int16_t ParseI16(std::string_view text) { return clampRound<int16_t>(ParseNumber(text)); }
int32_t ParseI32(std::string_view text) { return clampRound<int32_t>(ParseNumber(text)); }

float ParseFloat(std::string_view text) {
  double v = ParseNumber(text);
  constexpr double kMax = std::numeric_limits<float>::max();
  if (v > kMax) return std::numeric_limits<float>::max();
  if (v < -kMax) return -std::numeric_limits<float>::max();
  return static_cast<float>(v);
}

bool ParseBool(std::string_view text) {
  text = Trim(text);
  if (text.size() == 4) {
    auto lower = [](char c) { return static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c); };
    if (lower(text[0]) == 't' && lower(text[1]) == 'r' && lower(text[2]) == 'u' && lower(text[3]) == 'e')
      return true;
  }
  return ParseNumber(text) != 0;
}

std::vector<std::string_view> SplitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    lines.push_back(line);
    start = end + 1;
  }
  return lines;
}

std::string FormatFloat(float value) { return formatShortest(value); }
std::string FormatDouble(double value) { return formatShortest(value); }

}  // namespace plectaro
