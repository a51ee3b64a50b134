// What the chord and scale libraries share: the folder of one-record text files, the number
// form of their lines, and a reader of lines that fails at a read past the end.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace plectaro {

// Creates the folder when it is absent; false when it already exists (or cannot be made), so
// that generation happens exactly once.
bool CreateLibraryFolder(const std::filesystem::path& folder);
// Every file, then the folder; whatever will not go is passed over.
void DeleteLibraryFolder(const std::filesystem::path& folder);
// File names of the folder, case-blind alphabetical as a file list shows them. Hidden files
// (the temporaries of an interrupted save) are left out.
std::vector<std::string> ListLibraryFolder(const std::filesystem::path& folder);
// The file of a name in a folder; LibraryError for a name that is no plain file name.
std::filesystem::path LibraryFile(const std::filesystem::path& folder, const std::string& name);

// A number as the library files write it: one blank in the place of a plus sign and one
// after (" 6 ", "-1 ").
std::string NumberLine(int value);

// The lines of a library file, read in order. Past the last line, or on a number line that
// holds no number, it throws LibraryError naming the file.
class LineReader {
 public:
  LineReader(std::string_view bytes, std::string what);
  std::string_view line();
  int16_t number();
  // The line as text of the interface (the files are Windows-1252).
  std::string text();

 private:
  std::vector<std::string_view> lines_;
  size_t next_ = 0;
  std::string what_;
};

// Reads a library file whole (small files only) or throws LibraryError.
std::string ReadLibraryFile(const std::filesystem::path& path, const std::string& name);
void WriteLibraryFile(const std::filesystem::path& path, const std::string& name, std::string_view bytes);
// A file of a library being generated: there is no old file to keep, and flushing hundreds of
// small files one by one to the disk would make the first start slow.
void WriteNewLibraryFile(const std::filesystem::path& path, const std::string& name, std::string_view bytes);

}  // namespace plectaro
