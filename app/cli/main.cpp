// plectaro-cli [--home DIR] VERB ...
#include <iostream>
#include <string>
#include <vector>

#include "cli.h"
#include "score/file_io.h"
#include "score/memory_pages.h"
#include "score/score_records.h"
#include "shell/qt_settings_store.h"

using namespace plectaro;
using namespace plectaro::cli;

namespace {

void printUsage(std::ostream& out) {
  out << "usage: plectaro-cli [--home DIR] VERB ...\n\nverbs:\n";
  for (const Verb& v : Verbs()) out << "  " << v.usage << "\n";
}

const Verb* findVerb(const std::string& name) {
  for (const Verb& v : Verbs())
    if (v.name == name) return &v;
  return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  UseLargeMemoryPages();
  std::vector<std::string> words(argv + 1, argv + argc);
  std::string home;
  if (words.size() >= 2 && words[0] == "--home") {
    home = words[1];
    words.erase(words.begin(), words.begin() + 2);
  }
  if (words.empty() || words[0] == "--help" || words[0] == "help") {
    printUsage(words.empty() ? std::cerr : std::cout);
    return words.empty() ? 2 : 0;
  }
  const Verb* verb = findVerb(words[0]);
  if (!verb) {
    std::cerr << "plectaro-cli: unknown verb \"" << words[0] << "\"\n";
    printUsage(std::cerr);
    return 2;
  }
  words.erase(words.begin());

  AppFolder app = ResolveAppFolder(home);
  QtSettingsStore settings(app.settingsFile());
  Context ctx{app, settings, std::cout, std::cerr};
  try {
    Args args(words, verb->valueOptions, verb->flagOptions);
    ctx.args = &args;
    return verb->run(ctx, args);
  } catch (const UsageError& e) {
    std::cerr << "plectaro-cli " << verb->name << ": " << e.what() << "\nusage: plectaro-cli "
              << verb->usage << "\n";
    return 2;
  } catch (const InputError& e) {
    std::cerr << "plectaro-cli: " << e.what() << "\n";
    return 1;
  } catch (const FileError& e) {
    std::cerr << "plectaro-cli: " << e.what() << "\n";
    return 1;
  } catch (const ScoreError& e) {
    std::cerr << "plectaro-cli: " << e.what() << "\n";
    return 1;
  } catch (const std::exception& e) {
    std::cerr << "plectaro-cli: " << e.what() << "\n";
    return 1;
  }
}
