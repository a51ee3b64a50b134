#include "score/text_codec.h"

#include <array>
#include <cstdint>

namespace plectaro {

namespace {

// Characters of the bytes 0x80..0x9F; the rest of the code page equals Latin-1.
constexpr std::array<char32_t, 32> kHigh = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void appendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

char toByte(char32_t c) {
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<char>(c);
  for (size_t i = 0; i < kHigh.size(); ++i)
    if (kHigh[i] == c) return static_cast<char>(0x80 + i);
  return '?';
}

}  // namespace

std::string Cp1252ToUtf8(std::string_view bytes) {
  std::string out;
  AppendCp1252AsUtf8(out, bytes);
  return out;
}

void AppendCp1252AsUtf8(std::string& out, std::string_view bytes) {
  for (char ch : bytes) {
    auto b = static_cast<uint8_t>(ch);
    if (b < 0x80) {
      out += ch;
    } else if (b < 0xA0) {
      appendUtf8(out, kHigh[b - 0x80]);
    } else {
      appendUtf8(out, b);
    }
  }
}

std::string Utf8ToCp1252(std::string_view text) {
  std::string out;
  AppendUtf8AsCp1252(out, text);
  return out;
}

void AppendUtf8AsCp1252(std::string& out, std::string_view text) {
  size_t i = 0;
  while (i < text.size()) {
    auto b = static_cast<uint8_t>(text[i]);
    if (b < 0x80) {
      out += static_cast<char>(b);
      ++i;
      continue;
    }
    int extra = b >= 0xF0 ? 3 : b >= 0xE0 ? 2 : b >= 0xC0 ? 1 : -1;
    if (extra < 0 || i + static_cast<size_t>(extra) >= text.size()) {
      // A stray continuation byte or a sequence cut off at the end: not a character.
      out += '?';
      ++i;
      continue;
    }
    char32_t c = b & (0x3F >> extra);
    bool ok = true;
    for (int k = 1; k <= extra; ++k) {
      auto cont = static_cast<uint8_t>(text[i + static_cast<size_t>(k)]);
      if ((cont & 0xC0) != 0x80) {
        ok = false;
        break;
      }
      c = (c << 6) | (cont & 0x3F);
    }
    if (!ok) {
      out += '?';
      ++i;
      continue;
    }
    out += toByte(c);
    i += static_cast<size_t>(extra) + 1;
  }
}

}  // namespace plectaro
