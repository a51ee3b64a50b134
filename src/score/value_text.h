// Numbers and booleans as text, the way the native files and the settings store hold them.
// Parsing is lenient and never throws: surrounding blanks are ignored, a number stops at the
// first character that cannot continue it, text that holds no number reads as 0, and a value
// too large for its field is clamped to the field's range.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace plectaro {

double ParseNumber(std::string_view text);
// Rounds halves to the even number, as an integer conversion of the classic runtime does.
int16_t ParseI16(std::string_view text);
int32_t ParseI32(std::string_view text);
float ParseFloat(std::string_view text);
// "True" (any case) or a non-zero number is true; anything else is false.
bool ParseBool(std::string_view text);

// Shortest text that reads back as the same value; "120" for 120, "7.5" for 7.5.
std::string FormatFloat(float value);
std::string FormatDouble(double value);
inline const char* FormatBool(bool value) { return value ? "True" : "False"; }

std::string_view Trim(std::string_view text);
inline bool IsBlank(std::string_view text) { return Trim(text).empty(); }

// The lines of a text file, without their CR LF or LF; views into `text`.
std::vector<std::string_view> SplitLines(std::string_view text);

}  // namespace plectaro
