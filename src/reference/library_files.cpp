#include "reference/library_files.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <system_error>

#include "reference/chords.h"
#include "score/file_io.h"
#include "score/text_codec.h"
#include "score/value_text.h"

namespace plectaro {

namespace fs = std::filesystem;

// A library file is a few hundred bytes; anything far larger is not one of ours.
constexpr size_t kMaxLibraryFile = 64 * 1024;

bool CreateLibraryFolder(const fs::path& folder) {
  std::error_code ec;
  if (fs::exists(folder, ec) || ec) return false;
  return fs::create_directories(folder, ec) && !ec;
}

void DeleteLibraryFolder(const fs::path& folder) {
  std::error_code ec;
  for (const std::string& name : ListLibraryFolder(folder)) fs::remove(folder / name, ec);
  fs::remove(folder, ec);  // fails, and so keeps the folder, while a file is left in it
}

std::vector<std::string> ListLibraryFolder(const fs::path& folder) {
  std::vector<std::string> names;
  std::error_code ec;
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    std::error_code fec;
    if (!it->is_regular_file(fec)) continue;
    std::string name = it->path().filename().string();
    if (name.empty() || name.front() == '.') continue;
    names.push_back(std::move(name));
  }
  auto upper = [](std::string s) {
    for (char& c : s) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c);
    return s;
  };
  std::sort(names.begin(), names.end(), [&](const std::string& a, const std::string& b) {
    const std::string ua = upper(a), ub = upper(b);
    return ua != ub ? ua < ub : a < b;
  });
  return names;
}

bool ValidLibraryName(std::string_view name) {
  if (name.empty() || name.front() == '.' || name.size() > 200) return false;
  return name.find_first_of(std::string_view("/\\\0", 3)) == std::string_view::npos;
}

fs::path LibraryFile(const fs::path& folder, const std::string& name) {
  if (!ValidLibraryName(name)) throw LibraryError("\"" + name + "\" is not a valid name");
  return folder / name;
}

std::string NumberLine(int value) {
  return (value < 0 ? "" : " ") + std::to_string(value) + " ";
}

LineReader::LineReader(std::string_view bytes, std::string what)
    : lines_(SplitLines(bytes)), what_(std::move(what)) {}

std::string_view LineReader::line() {
  if (next_ >= lines_.size())
    throw LibraryError("\"" + what_ + "\" ends at line " + std::to_string(lines_.size()));
  return lines_[next_++];
}

int16_t LineReader::number() {
  const std::string_view raw = line();
  const std::string_view t = Trim(raw);
  // An empty line reads as 0, as a number read from text does; other text is an error.
  if (t.empty()) return 0;
  double v = 0;
  const char* begin = t.data() + (t.front() == '+' ? 1 : 0);
  auto [end, ec] = std::from_chars(begin, t.data() + t.size(), v);
  if (ec != std::errc() || end != t.data() + t.size() || v < -32768 || v > 32767)
    throw LibraryError("\"" + what_ + "\" has no number in line " + std::to_string(next_));
  return ParseI16(t);
}

std::string LineReader::text() { return Cp1252ToUtf8(line()); }

std::string ReadLibraryFile(const fs::path& path, const std::string& name) {
  try {
    return ReadWholeFile(path, kMaxLibraryFile);
  } catch (const FileError&) {
    throw LibraryError("\"" + name + "\" cannot be read");
  }
}

void WriteLibraryFile(const fs::path& path, const std::string& name, std::string_view bytes) {
  try {
    WriteFileAtomically(path, bytes);
  } catch (const FileError&) {
    throw LibraryError("\"" + name + "\" cannot be saved");
  }
}

void WriteNewLibraryFile(const fs::path& path, const std::string& name, std::string_view bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) throw LibraryError("\"" + name + "\" cannot be saved");
}

}  // namespace plectaro
