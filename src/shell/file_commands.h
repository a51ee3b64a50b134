// The File menu's commands on the open document: New, Open, Open Recent, Save, Save As, the
// question before a document is dropped, and the password guard every editing command passes.
// Plain C++: the windows call these and redraw; the questions go through a Prompter.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "score/document.h"
#include "score/settings_store.h"
#include "shell/app_folder.h"
#include "shell/ini_settings.h"
#include "shell/language.h"
#include "score/prompter.h"

namespace plectaro {

class FileCommands {
 public:
  FileCommands(Document& doc, const SettingsStore& settings, IniSettings& ini,
               const Messages& messages, Prompter& prompter)
      : doc_(doc), settings_(settings), ini_(ini), msg_(messages), prompter_(prompter) {}

  // Called after the document was replaced (opened, new) so the window can reset its view.
  std::function<void()> documentReplaced;
  // Called after the file name or the recent-file list changed.
  std::function<void()> fileNameChanged;
  // Called after the document was written to its file.
  std::function<void()> saved;

  // Opens by extension without asking first. ".plm" opens; an old ".pl4" and file kinds that
  // belong to tools give a message and keep the document. A damaged file opens with a message
  // saying how much was read, and without a file name. true when the document was replaced.
  bool ForceOpenFile(const std::string& path);
  // Saves without asking; a failure names the file and the reason and changes nothing.
  bool ForceSaveFile(const std::string& path);

  void mnuFileNew_Click();
  void mnuFileOpen_Click();
  // false when the user cancelled or the save failed.
  bool mnuFileSave_Click();
  bool mnuFileSaveAs_Click();
  void mnuFileOpenRecentItem_Click(int index);
  // A file dropped on the window or given by the shell while running.
  void openAfterAsking(const std::string& path);

  // The question before the document is dropped. true: go on (saved, or not wanted); false:
  // the command that asked stops.
  bool AskToSave();

  // The guard of every command that alters the document: asks for the password of a protected
  // score once per opening. true when editing may go on.
  bool PasswordCorrect();

  // The current file's name without its folder, or "Unsaved.plm".
  std::string displayName() const;
  // Whether dropping the document would lose anything: it changed, and it is not just the
  // untouched empty document of a new file.
  bool hasUnsavedWork() const;

  void AddRecentFile();

 private:
  Document& doc_;
  const SettingsStore& settings_;
  IniSettings& ini_;
  const Messages& msg_;
  Prompter& prompter_;

  enum class SaveResult { Saved, Cancelled, Failed };
  // Save under the current name, or ask for one when there is none.
  SaveResult save();
  void replaced();
  void nameChanged();
  const std::string& str(std::string_view key) const { return msg_.str(key); }
};

}  // namespace plectaro
