// A fresh temporary folder per test, removed afterwards.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "score/file_io.h"

namespace plectaro::testing {

// The lines of a text, without their CR LF or LF.
inline std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::string line;
  std::istringstream in(text);
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

class TempFolder {
 public:
  TempFolder() {
    std::random_device rd;
    path_ = std::filesystem::temp_directory_path() /
            ("plectaro-shell-" + std::to_string(rd()) + std::to_string(rd()));
    std::filesystem::create_directories(path_);
  }
  ~TempFolder() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

inline std::filesystem::path SourceData() { return std::filesystem::path(PLECTARO_SOURCE_DIR) / "data"; }

}  // namespace plectaro::testing
