#include "shell/file_commands.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <string_view>

#include "score/file_io.h"
#include "score/music_file.h"
#include "score/new_score.h"

namespace plectaro {

namespace {

std::string upperExtension(const std::string& path) {
  std::string ext = std::filesystem::path(path).extension().string();
  if (!ext.empty() && ext.front() == '.') ext.erase(0, 1);
  std::transform(ext.begin(), ext.end(), ext.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return ext;
}

std::string fileNameOf(const std::string& path) {
  return std::filesystem::path(path).filename().string();
}

// Files of versions 3.5 to 3.7 are plain text starting with their version line.
bool isOldPlainMusicFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  char head[11] = {};
  in.read(head, sizeof head);
  return in.gcount() == sizeof head && std::string_view(head, sizeof head) == "Plectaro 3.";
}

}  // namespace

void FileCommands::replaced() {
  if (documentReplaced) documentReplaced();
}

void FileCommands::nameChanged() {
  if (fileNameChanged) fileNameChanged();
}

std::string FileCommands::displayName() const {
  return doc_.score.CurrentFileName.empty() ? str("txt_Unsaved")
                                            : fileNameOf(doc_.score.CurrentFileName);
}

bool FileCommands::hasUnsavedWork() const {
  if (!doc_.ScoreChanged) return false;
  if (!doc_.score.CurrentFileName.empty()) return true;
  Document fresh;
  InitScore(fresh, settings_);
  return !(fresh.score == doc_.score);
}

bool FileCommands::ForceOpenFile(const std::string& path) {
  const std::string ext = upperExtension(path);
  if (ext == "PL4" || (ext == "PLM" && isOldPlainMusicFile(path))) {
    prompter_.message(str("txt_OldFormatNotReadable") + "\n" + path, str("str_Error"),
                      MessageIcon::Warning);
    return false;
  }
  if (ext != "PLM") {
    prompter_.message(str("txt_UnknownFileType") + fileNameOf(path), str("str_Error"),
                      MessageIcon::Warning);
    return false;
  }
  try {
    // OpenMusicFile reads the whole file before it touches the document, so a file that cannot
    // be read leaves the open document as it was.
    ReadProgress progress;
    const OpenOutcome r = OpenMusicFile(doc_, path, settings_, &progress);
    if (r == OpenOutcome::WrongFile) {
      prompter_.message(str("str_InvalidFile") + "\n" + path, str("str_Error"),
                        MessageIcon::Critical);
      replaced();
      nameChanged();
      return true;
    }
    if (r == OpenOutcome::Damaged) {
      // What could be read is shown, but under no name: Ctrl+S must not write the cut-off
      // song over the file the user may still rescue some other way.
      prompter_.message(str("txt_DamagedFile1") + fileNameOf(path) + str("txt_DamagedFile2") +
                            std::to_string(progress.barsRead) + str("txt_DamagedFile3") +
                            std::to_string(progress.barsDeclared) + str("txt_DamagedFile4"),
                        str("str_Error"), MessageIcon::Warning);
      replaced();
      nameChanged();
      return true;
    }
  } catch (const FileError& e) {
    prompter_.message(str("str_FileError") + "\n" + e.what(), str("str_Error"),
                      MessageIcon::Critical);
    return false;
  } catch (const ScoreError& e) {
    prompter_.message(str("str_FileError") + "\n" + path + ": " + e.what(), str("str_Error"),
                      MessageIcon::Critical);
    return false;
  }
  AddRecentFile();
  replaced();
  nameChanged();
  return true;
}

bool FileCommands::ForceSaveFile(const std::string& path) {
  try {
    SaveMusicFile(doc_.score, path);
  } catch (const std::exception& e) {
    prompter_.message(str("str_CantSave1") + path + str("str_CantSave2") + e.what(),
                      str("str_Error"), MessageIcon::Critical);
    return false;
  }
  doc_.score.CurrentFileName = path;
  doc_.ScoreChanged = false;
  AddRecentFile();
  nameChanged();
  if (saved) saved();
  return true;
}

void FileCommands::mnuFileNew_Click() {
  if (!AskToSave()) return;
  ForceNewFile(doc_, settings_);
  replaced();
  nameChanged();
}

void FileCommands::mnuFileOpen_Click() {
  if (!AskToSave()) return;
  std::string folder;
  if (!doc_.score.CurrentFileName.empty())
    folder = std::filesystem::path(doc_.score.CurrentFileName).parent_path().string();
  auto path = prompter_.openFileName(str("mnuFileOpen"), str("txt_OpenFilter"), folder);
  if (!path || path->empty()) return;
  ForceOpenFile(*path);
}

FileCommands::SaveResult FileCommands::save() {
  if (!doc_.score.CurrentFileName.empty())
    return ForceSaveFile(doc_.score.CurrentFileName) ? SaveResult::Saved : SaveResult::Failed;
  auto path = prompter_.saveFileName(str("mnuFileSaveAs"), str("txt_SaveFilter"), "");
  if (!path || path->empty()) return SaveResult::Cancelled;
  std::string target = *path;
  if (std::filesystem::path(target).extension().empty()) target += ".plm";
  std::error_code ec;
  if (std::filesystem::exists(target, ec) &&
      !prompter_.yesNo(str("str_FileExists1") + fileNameOf(target) + str("str_FileExists2"),
                       str("str_ConfirmationRequired")))
    return SaveResult::Cancelled;
  // ForceSaveFile names the document only once the file is written.
  return ForceSaveFile(target) ? SaveResult::Saved : SaveResult::Failed;
}

bool FileCommands::mnuFileSave_Click() { return save() == SaveResult::Saved; }

bool FileCommands::mnuFileSaveAs_Click() {
  // The name is given up first: a cancelled Save As leaves the document without a name, and
  // the next Save asks again. A save that failed keeps the last name that worked, so the
  // window's title still tells where the song lives.
  const std::string before = doc_.score.CurrentFileName;
  doc_.score.CurrentFileName.clear();
  const SaveResult r = save();
  if (r == SaveResult::Failed) doc_.score.CurrentFileName = before;
  nameChanged();
  return r == SaveResult::Saved;
}

void FileCommands::mnuFileOpenRecentItem_Click(int index) {
  if (index < 0 || index >= static_cast<int>(ini_.RecentFiles.size())) return;
  const std::string path = ini_.RecentFiles[static_cast<size_t>(index)];
  if (path.empty()) return;
  std::error_code ec;
  if (!std::filesystem::exists(path, ec)) {
    prompter_.message(str("str_RecentFileNotExist1") + path + str("str_RecentFileNotExist2"),
                      str("str_Error"), MessageIcon::Warning);
    ini_.RecentFiles.erase(ini_.RecentFiles.begin() + index);
    ini_.RecentFiles.resize(kRecentFileCount);
    nameChanged();
    return;
  }
  openAfterAsking(path);
}

void FileCommands::openAfterAsking(const std::string& path) {
  if (!AskToSave()) return;
  ForceOpenFile(path);
}

bool FileCommands::AskToSave() {
  if (!hasUnsavedWork()) return true;
  const Answer a = prompter_.yesNoCancel(str("str_WouldYouLikeToSave") + displayName() + "' ?",
                                         str("str_ConfirmationRequired"));
  if (a == Answer::Cancel) return false;
  if (a == Answer::No) return true;
  // A save that was cancelled or failed must not let the document go.
  return mnuFileSave_Click();
}

bool FileCommands::PasswordCorrect() {
  if (!doc_.score.PasswordProtected) {
    doc_.PasswordEntered = true;
    return true;
  }
  if (doc_.PasswordEntered) return true;
  auto entered = prompter_.textInput(msg_.text("ntne_frmPassword", "lblPrompt"),
                                     msg_.text("ntne_frmPassword", "Caption"), true);
  doc_.PasswordEntered = entered && *entered == doc_.score.Password;
  if (entered && !doc_.PasswordEntered)
    prompter_.message(str("str_mayNotEdit"), str("str_Password"), MessageIcon::Warning);
  return doc_.PasswordEntered;
}

void FileCommands::AddRecentFile() {
  const std::string& path = doc_.score.CurrentFileName;
  if (path.empty()) return;
  auto& list = ini_.RecentFiles;
  list.erase(std::remove(list.begin(), list.end(), path), list.end());
  list.insert(list.begin(), path);
  list.resize(kRecentFileCount);
}

}  // namespace plectaro
