// The tools keep their files as plain text, one value per line: numbers in the record-print
// form (" 6 ", "-6 "), booleans as the words True and False, names as they are. This is the
// shared reader and writer of such files.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace plectaro {

// A tool file that cannot be read: the message says what was wrong, in one line.
class ToolFileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Walks the lines of a file; asking past the end throws ToolFileError, so a short file never
// reads garbage.
class LineReader {
 public:
  explicit LineReader(std::string_view text);
  size_t remaining() const { return lines_.size() - pos_; }
  // Throws unless at least `count` more lines are there (checked before sizing arrays).
  void need(uint64_t count, std::string_view what) const;
  std::string_view text();
  int16_t i16();
  int32_t i32();
  bool boolean();

 private:
  std::vector<std::string_view> lines_;
  size_t pos_ = 0;
};

// Builds a file line by line, each line ended by CR LF.
class LineWriter {
 public:
  void text(std::string_view line);
  void number(int64_t value);  // " 6 " or "-6 "
  void boolean(bool value);    // "True" or "False"
  const std::string& bytes() const { return out_; }

 private:
  std::string out_;
};

}  // namespace plectaro
