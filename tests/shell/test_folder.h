// A fresh temporary folder per test, removed afterwards.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>

#include "score/file_io.h"

namespace plectaro::testing {

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
