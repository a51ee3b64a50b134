#include "shell/app_folder.h"

#include <unistd.h>

#include <cstdlib>

namespace plectaro {

namespace {

std::filesystem::path envPath(const char* name) {
  const char* v = std::getenv(name);
  return v && *v ? std::filesystem::path(v) : std::filesystem::path();
}

std::filesystem::path executableFolder() {
  std::error_code ec;
  auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  return ec ? std::filesystem::path() : exe.parent_path();
}

std::filesystem::path userHome() {
  auto h = envPath("HOME");
  return h.empty() ? std::filesystem::path("/tmp") : h;
}

}  // namespace

std::filesystem::path AppFolder::settingsFile() const {
  if (explicitHome) return root / "settings" / "plectaro.ini";
  auto config = envPath("XDG_CONFIG_HOME");
  if (config.empty()) config = userHome() / ".config";
  return config / "plectaro" / "plectaro.ini";
}

AppFolder ResolveAppFolder(const std::string& home) {
  if (!home.empty()) return {std::filesystem::absolute(home), true};
  if (auto env = envPath("PLECTARO_HOME"); !env.empty()) return {std::filesystem::absolute(env), true};
  std::error_code ec;
  auto beside = executableFolder();
  if (!beside.empty() && std::filesystem::is_directory(beside / "Data", ec)) return {beside, false};
  auto data = envPath("XDG_DATA_HOME");
  if (data.empty()) data = userHome() / ".local" / "share";
  return {data / "plectaro", false};
}

}  // namespace plectaro
