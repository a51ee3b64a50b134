// One run of the editor without its windows: the app folder, the settings store, PL4.ini, the
// message texts, the open document and the file commands, brought up in the start-up order
// and written back at the end. The main window owns one; tests drive one directly.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "score/document.h"
#include "score/settings_store.h"
#include "shell/app_folder.h"
#include "shell/file_commands.h"
#include "shell/ini_settings.h"
#include "shell/language.h"
#include "score/prompter.h"
#include "shell/recovery.h"

namespace plectaro {

struct CommandLine {
  std::string home;        // --home DIR
  std::string file;        // a file to open
  std::string webAddress;  // an http(s):// address handed over for the web tab import
  bool printStartupTime = false;  // also skips the recovery question, which would stop the clock
  std::string error;       // non-empty on wrong usage
};

// argv without the program name. Accepts --home DIR, --home=DIR, --print-startup-time, and one
// file path or web address; a path given as a file: URL is taken as the path.
CommandLine ParseCommandLine(const std::vector<std::string>& args);

// Makes <app>/Data, copies the language files from the first seed folder holding a Languages
// folder (only files not there yet), and on a first run makes CurrentLanguage.txt a copy of
// English. Errors are ignored: the program runs on with English texts.
void PrepareDataFolder(const AppFolder& folder,
                       const std::vector<std::filesystem::path>& seedFolders);

// Removes <app>/Data/temp and <app>/Data/temp2, each only if it is there. Saving no longer goes
// through them, but a crash of an older version may have left them behind.
void DelTempFiles(const AppFolder& folder);

class Session {
 public:
  Session(AppFolder folder, Prompter& prompter);
  ~Session();

  // The start-up: language texts, data folder, settings, a new document, the command line's
  // file, and on a first run the defaults and a new PL4.ini. Returns the file's open result
  // (true when there was no file).
  bool start(const CommandLine& cmd, const std::vector<std::filesystem::path>& seedFolders);
  // Writes the settings; a failure is reported and the old file stays. A clean exit leaves no
  // recovery file.
  void shutdown();

  // Writes the recovery file if the document has unsaved changes it does not hold yet; the
  // window calls this on its autosave timer. false when nothing was written (also when the
  // disk refused: the next tick tries again, and the user's file is never touched).
  bool autosaveNow(std::time_t now);
  // Minutes between autosaves from the settings; 0 when turned off.
  int autosaveMinutes() const { return AutosaveMinutes(*store_); }

  // Copies the chosen language over CurrentLanguage.txt; false if it could not.
  bool chooseLanguage(const std::string& name);
  std::vector<std::string> languages() const;

  const AppFolder& folder() const { return folder_; }
  SettingsStore& settings() { return *store_; }
  IniSettings& ini() { return ini_; }
  const Messages& messages() const { return messages_; }
  Document& doc() { return doc_; }
  FileCommands& files() { return files_; }
  Prompter& prompter() { return prompter_; }
  bool firstRun() const { return firstRun_; }
  // A web address given at start, for the import of tab from a web page.
  const std::string& StartAddress() const { return startAddress_; }
  // The virtual fretboard's picture style (0 to 2) and marker colour, kept between runs.
  int FretboardStyle = 0;
  int FretboardMarker = 0;
  std::filesystem::path languageFile() const { return folder_.data() / "CurrentLanguage.txt"; }

 private:
  AppFolder folder_;
  Prompter& prompter_;
  std::unique_ptr<SettingsStore> store_;
  IniSettings ini_;
  Messages messages_;
  Document doc_;
  FileCommands files_;
  std::unique_ptr<Autosave> autosave_;
  bool firstRun_ = false;
  std::string startAddress_;

  // Offers the recovery files that crashed or killed editors left, newest first; true when
  // one was restored into the document.
  bool offerRecovery();
};

}  // namespace plectaro
