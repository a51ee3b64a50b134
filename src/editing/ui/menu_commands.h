// The editing commands of the main window's menus, by the menu item's object name. The window
// connects each item to its command with ConnectEditingMenus; the keys that do the same thing
// are shown beside the item's caption but are handled by the key handler, never bound to the
// item, so that a key always passes through picDocument_KeyDown and its undo snapshot.
#pragma once

#include <QString>
#include <functional>
#include <vector>

#include "editing/edit_context.h"

class QAction;
class QWidget;

namespace plectaro {

struct MenuCommand {
  const char* name;            // object name of the menu item, e.g. "mnuNoteUp"
  std::function<void()> run;   // what the item does
  const char* keys = nullptr;  // the key that does the same, shown after a tab in the caption
};

// Every menu item of the editing commands. `parent` is the window the dialogs open over.
std::vector<MenuCommand> EditingMenuCommands(QWidget* parent, EditContext& ctx);

// Connects and enables each item that `find` returns (null for items the window lacks) and
// adds its key to the caption; gives the editor the repeat count dialog and keeps Undo and Redo
// named after their steps. Items the window has enabled with a command of its own are left
// to it. Call again after the captions were set from a language file: connections are made
// once per item only.
void ConnectEditingMenus(const std::function<QAction*(const QString& name)>& find, QWidget* parent,
                         EditContext& ctx);

// Connects and enables the items of `commands` that `find` returns, with their keys in the
// captions; the worker of ConnectEditingMenus, for other groups of items.
void ConnectMenuCommands(const std::function<QAction*(const QString& name)>& find,
                         std::vector<MenuCommand> commands);

// The check marks and the enabled state that follow the cursor and the undo ring: Repeat
// Open / Repeat Close of the cursor's bar, Apply to the Whole Chord, Undo. Call after a draw.
void UpdateEditingMenus(const std::function<QAction*(const QString& name)>& find, const EditContext& ctx);
// Undo and Redo alone: enabled when there is a step, captioned with its name ("Undo Paste").
void UpdateUndoMenus(const std::function<QAction*(const QString& name)>& find, const EditContext& ctx);

}  // namespace plectaro
