// Autosave and recovery. While the editor runs, an edited document is written now and then to a
// recovery file in <app>/Data/Recovery, never over the user's own file. A clean exit or a save
// removes it; one that is still there at the next start was left by a crash or a kill, and the
// start offers to restore it.
//
// Several editors may run on one app folder at once: each writes its own file and holds a lock
// beside it for as long as it lives. The kernel drops the lock when the process dies, however it
// dies, so a file whose lock can be taken belongs to nobody any more.
#pragma once

#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "score/document.h"
#include "score/music_file.h"
#include "score/settings_store.h"

namespace plectaro {

// The settings store keeps the interval; 0 turns autosave off.
inline constexpr std::string_view kAutosaveSection = "Options";
inline constexpr std::string_view kAutosaveKey = "AutosaveMinutes";
inline constexpr int kDefaultAutosaveMinutes = 1;
int AutosaveMinutes(const SettingsStore& settings);

std::filesystem::path RecoveryFolder(const std::filesystem::path& dataFolder);

class Autosave {
 public:
  // Takes this process's lock in <data>/Recovery; the folder is made if needed.
  explicit Autosave(const std::filesystem::path& dataFolder);
  ~Autosave();
  Autosave(const Autosave&) = delete;
  Autosave& operator=(const Autosave&) = delete;

  // Writes the document if it has changes that the last write did not hold; a document with
  // nothing to lose (just opened, saved or new) removes the file instead. true when a file was
  // written. Throws FileError when it could not be written; the last good file then stays.
  bool save(const Document& doc, std::time_t now);
  // Removes this process's recovery file: after a save, a new document or a clean exit.
  void discard();
  const std::filesystem::path& path() const { return file_; }

 private:
  std::filesystem::path file_;
  std::filesystem::path lock_;
  int lockFd_ = -1;
  std::optional<Score> written_;  // what the file holds; bars are shared, so this is cheap
};

// A recovery file left by an editor that is no longer running.
struct RecoveryFile {
  std::filesystem::path path;
  std::string documentName;  // the document's file name then, "" for one never saved
  std::time_t savedAt = 0;
};

// Leftover recovery files, newest first. Files of running editors are not listed.
std::vector<RecoveryFile> FindRecoveryFiles(const std::filesystem::path& dataFolder);

// Reads a recovery file into `doc`: the score as it was, under its old file name, marked changed
// so that closing asks; fills in the name and time of `file` from it. Throws FileError (and
// leaves `doc` alone) when the file is damaged.
void ReadRecoveryFile(RecoveryFile& file, Document& doc, const SettingsStore& settings);
// Removes a leftover once it was restored or declined.
void RemoveRecoveryFile(const std::filesystem::path& path);

// Renames a damaged recovery file so that it is offered no more but stays for a rescue by hand.
// Returns the new path.
std::filesystem::path SetRecoveryFileAside(const std::filesystem::path& path);

// The bytes of a recovery file; public for the fuzz target.
std::string RecoveryFileBytes(const Document& doc, std::time_t savedAt);
// Parses them; throws FileError when they are not a whole recovery file. `allowance` as for
// ReadMusicText: the fuzz target passes a small one so that each run allocates little.
void ParseRecoveryFile(std::string_view bytes, RecoveryFile& info, Document& doc,
                       const SettingsStore& settings, BeatAllowance allowance = {});

}  // namespace plectaro
