// The effect editors in the main window: the menu items Bend, Trill, Grace Note, Tremolo Bar
// and Text, and the keys that open the same editors (B, Shift+T).
#pragma once

#include <QString>
#include <functional>

#include "editing/edit_context.h"

class QAction;
class QWidget;

namespace plectaro {

// Connects the items and answers the editor's requests to open an effect dialog; requests for
// other dialogs go on to whatever answered them before.
void ConnectEffectMenus(const std::function<QAction*(const QString& name)>& find, QWidget* parent,
                        EditContext& ctx);

}  // namespace plectaro
