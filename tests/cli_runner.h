// Runs plectaro-cli (the PLECTARO_CLI the test was built with) as a child process with a home
// folder inside `dir`, its standard output into `out` and its standard error into dir/stderr.
// Returns the exit code, or -1 when the process did not exit normally.
#pragma once

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>

inline int RunCli(const std::filesystem::path& dir, const std::string& args, std::string& out) {
  const std::string cmd = std::string(PLECTARO_CLI) + " --home '" + (dir / "home").string() + "' " + args +
                          " 2>'" + (dir / "stderr").string() + "'";
  out.clear();
  FILE* p = ::popen(cmd.c_str(), "r");
  if (!p) return -1;
  std::array<char, 4096> buf;
  size_t n;
  while ((n = std::fread(buf.data(), 1, buf.size(), p)) > 0) out.append(buf.data(), n);
  const int status = ::pclose(p);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
