// Whole-file reading and atomic writing. Every file the program saves goes through
// WriteFileAtomically, so a failed save never leaves a half-written or missing target.
#pragma once

#include <filesystem>
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

// Writes to a temporary file beside the target, flushes it to disk, then renames it over the
// target. On any failure the temporary file is removed, the target is as it was, and FileError
// is thrown.
void WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes);

}  // namespace plectaro
