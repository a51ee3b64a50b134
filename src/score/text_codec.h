// Windows-1252 at the boundary of the native file formats, UTF-8 in memory.
//
// Every one of the 256 bytes has a character, so that any byte of a field survives a load and a
// save: the five bytes that the code page leaves unassigned (0x81, 0x8D, 0x8F, 0x90, 0x9D) map to
// the control characters of the same number. A character that the code page cannot hold is
// written as '?'.
#pragma once

#include <string>
#include <string_view>

namespace plectaro {

std::string Cp1252ToUtf8(std::string_view bytes);
std::string Utf8ToCp1252(std::string_view text);
// Appends without a temporary string; the writers of large files use these.
void AppendUtf8AsCp1252(std::string& out, std::string_view text);
void AppendCp1252AsUtf8(std::string& out, std::string_view bytes);

}  // namespace plectaro
