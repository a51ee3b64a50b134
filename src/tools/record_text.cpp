#include "tools/record_text.h"

#include "score/value_text.h"

namespace plectaro {

LineReader::LineReader(std::string_view text) : lines_(SplitLines(text)) {}

void LineReader::need(uint64_t count, std::string_view what) const {
  if (count > remaining())
    throw ToolFileError("the file ends before " + std::string(what));
}

std::string_view LineReader::text() {
  need(1, "its last value");
  return lines_[pos_++];
}

int16_t LineReader::i16() { return ParseI16(text()); }
int32_t LineReader::i32() { return ParseI32(text()); }
bool LineReader::boolean() { return ParseBool(text()); }

void LineWriter::text(std::string_view line) {
  out_ += line;
  out_ += "\r\n";
}

void LineWriter::number(int64_t value) {
  // The record-print form puts a blank where a minus sign would stand, and one after.
  text((value < 0 ? "" : " ") + std::to_string(value) + " ");
}

void LineWriter::boolean(bool value) { text(FormatBool(value)); }

}  // namespace plectaro
