// picRightMenu: the pop-up menu of a right click on the page. It holds the commands for the
// spot clicked: the note's when the click found a note, the beat's and the bar's always, and
// the Edit menu's cut, copy, paste and clear when a selection is marked. The items are the
// main window's own actions, so captions, keys and checked state are the same as in the menus.
#pragma once

#include <QString>
#include <functional>

#include "editing/edit_context.h"

class QAbstractScrollArea;
class QAction;
class QMenu;

namespace plectaro {

// The object names of the items, in menu order, for a spot with or without a note and with or
// without a selection; an empty name is a separator.
std::vector<const char*> RightMenuItems(bool onNote, bool selection);

// Fills `menu` for the spot the cursor stands on now; `find` gives the window's actions.
void FillRightMenu(QMenu* menu, const std::function<QAction*(const QString& name)>& find, const EditContext& ctx);

// Sets the editor's openRightMenu hook: the menu opens at the point clicked in `view`.
void ConnectRightMenu(const std::function<QAction*(const QString& name)>& find, QAbstractScrollArea* view,
                      EditContext& ctx);

}  // namespace plectaro
