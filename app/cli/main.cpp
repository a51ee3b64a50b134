// plectaro-cli-full [--home DIR] VERB ...: every verb, over every library. plectaro-cli runs
// the everyday music-file verbs itself and hands everything else to this program.
#include <iostream>

#include "cli.h"
#include "score/memory_pages.h"
#include "shell/qt_settings_store.h"

using namespace plectaro;
using namespace plectaro::cli;

int main(int argc, char** argv) {
  UseLargeMemoryPages();
  CommandLine line = ParseCommandLine(argc, argv);
  std::vector<std::string>& words = line.words;
  if (words.empty() || words[0] == "--help" || words[0] == "help") {
    PrintUsage(words.empty() ? std::cerr : std::cout);
    return words.empty() ? 2 : 0;
  }
  const Verb* verb = FindVerb(words[0]);
  if (!verb) {
    std::cerr << "plectaro-cli: unknown verb \"" << words[0] << "\"\n";
    PrintUsage(std::cerr);
    return 2;
  }
  words.erase(words.begin());
  AppFolder app = ResolveAppFolder(line.home);
  QtSettingsStore settings(app.settingsFile());
  Context ctx{app, settings, std::cout, std::cerr};
  return RunVerb(*verb, words, ctx);
}
