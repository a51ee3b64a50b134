// plectaro-cli [--home DIR] VERB ...
//
// Opening the toolkit, the synthesizer and the eighty libraries behind them costs a batch run
// more memory than a large score does. So this front program links only the music-file verbs
// (new, info, dump, convert, check between .plm files) and runs them itself when the command
// is plainly one of those and the settings file plainly readable; every other command, and
// every doubt, goes unchanged to plectaro-cli-full beside it. Both give the same output.
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>

#include "cli.h"
#include "score/file_io.h"
#include "score/memory_pages.h"
#include "shell/plain_settings.h"

using namespace plectaro;
using namespace plectaro::cli;

namespace {

[[noreturn]] void handOver(char** argv) {
  std::error_code ec;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", ec);
  const std::string full = ((ec ? std::filesystem::path(argv[0]) : self).parent_path() / "plectaro-cli-full").string();
  ::execv(full.c_str(), argv);
  std::cerr << "plectaro-cli: cannot run " << full << ": " << std::strerror(errno) << "\n";
  std::exit(1);
}

// Music files and the verb's own switches only: any option with a value, any other kind of
// file, standard input, all go to the full program.
bool plainlyOurs(const Verb& verb, const std::vector<std::string>& arguments) {
  for (const std::string& a : arguments) {
    bool flag = false;
    for (const std::string& f : verb.flagOptions) flag = flag || a == f;
    if (!flag && ExtensionOf(a) != ".plm") return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  CommandLine line = ParseCommandLine(argc, argv);
  std::vector<std::string>& words = line.words;
  const Verb* verb = words.empty() ? nullptr : FindVerb(words[0]);
  if (!verb) handOver(argv);
  words.erase(words.begin());
  if (!plainlyOurs(*verb, words)) handOver(argv);

  AppFolder app = ResolveAppFolder(line.home);
  std::optional<MemorySettingsStore> settings;
  try {
    const auto file = app.settingsFile();
    settings = std::filesystem::exists(file) ? ReadPlainSettings(ReadWholeFile(file)) : MemorySettingsStore();
  } catch (const std::exception&) {
    // An unreadable settings file is the full program's to report.
  }
  if (!settings) handOver(argv);

  UseLargeMemoryPages();
  Context ctx{app, *settings, std::cout, std::cerr};
  return RunVerb(*verb, words, ctx);
}
