// Whole-file reading and atomic writing. Every file the program saves goes through
// WriteFileAtomically, so a failed save never leaves a half-written or missing target.
#pragma once

#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace plectaro {

// A file could not be read or written; the message names the file and the reason.
class FileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads the whole file; throws FileError if it cannot be read or is larger than maxBytes.
std::string ReadWholeFile(const std::filesystem::path& path, size_t maxBytes = size_t(1) << 30);

// A file read a piece at a time, so that a large one is never held whole beside what is made
// of it. Opening fails as ReadWholeFile does.
class FileReader {
 public:
  explicit FileReader(const std::filesystem::path& path, size_t maxBytes = size_t(1) << 30);
  size_t size() const { return size_; }
  // Appends up to `most` bytes; false, appending nothing, once the file is read.
  bool readSome(std::string& to, size_t most);

 private:
  std::filesystem::path path_;
  std::ifstream in_;
  size_t size_ = 0, done_ = 0;
};

// Writes to a temporary file beside the target, flushes it to disk, then renames it over the
// target. On any failure the temporary file is removed, the target is as it was, and FileError
// is thrown.
void WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes);
// The same for bytes made piece by piece: `produce` hands each piece, in order, to the function
// it is given. An exception out of `produce` fails the save as a failed write does.
using ByteSink = std::function<void(std::string_view)>;
void WriteFileAtomically(const std::filesystem::path& path, const std::function<void(const ByteSink&)>& produce);

}  // namespace plectaro
