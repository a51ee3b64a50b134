// ntne_frmShortcuts: the keys of the editor, grouped, as a fixed table.
#pragma once

class QWidget;

namespace plectaro {

void ShowShortcutKeys(QWidget* parent);

}  // namespace plectaro
