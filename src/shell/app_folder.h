// The app folder: the folder that holds Data/ (languages, temporary files, libraries) and
// PL4.ini. Resolved once at start-up:
//   1. --home DIR, or $PLECTARO_HOME;
//   2. the folder beside the executable, if it holds Data/ (portable use; the build tree);
//   3. ~/.local/share/plectaro (or $XDG_DATA_HOME/plectaro), seeded from the installed data.
#pragma once

#include <filesystem>
#include <string>

namespace plectaro {

struct AppFolder {
  std::filesystem::path root;      // <app>
  bool explicitHome = false;       // given by --home or $PLECTARO_HOME

  std::filesystem::path data() const { return root / "Data"; }
  std::filesystem::path iniFile() const { return root / "PL4.ini"; }
  // Where the settings store keeps its file: inside an explicit home, so tests and portable
  // installs never touch the user's own settings; else the per-user config folder.
  std::filesystem::path settingsFile() const;
};

// home: the --home argument, or "" when none was given.
AppFolder ResolveAppFolder(const std::string& home);

}  // namespace plectaro
