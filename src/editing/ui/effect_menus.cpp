#include "editing/ui/effect_menus.h"

#include "editing/ui/effect_dialogs.h"
#include "editing/ui/menu_commands.h"

namespace plectaro {

void ConnectEffectMenus(const std::function<QAction*(const QString& name)>& find, QWidget* parent,
                        EditContext& ctx) {
  EditContext* c = &ctx;
  ConnectMenuCommands(find, {
                                {"mnuNoteEffectsBend", [parent, c] { mnuNoteEffectsBend_Click(parent, *c); }, "B"},
                                {"mnuNoteEffectsTrill", [parent, c] { mnuNoteEffectsTrill_Click(parent, *c); }},
                                {"mnuNoteEffectsGrace", [parent, c] { mnuNoteEffectsGrace_Click(parent, *c); }},
                                {"mnuChordTechniqueTremBar", [parent, c] { mnuChordTechniqueTremBar_Click(parent, *c); }},
                                {"mnuChordText", [parent, c] { mnuChordText_Click(parent, *c); }, "Shift+T"},
                            });
  auto before = ctx.hooks.openDialog;
  ctx.hooks.openDialog = [parent, c, before](EditDialog which) {
    switch (which) {
      case EditDialog::Bend: mnuNoteEffectsBend_Click(parent, *c); return;
      case EditDialog::TremoloBar: mnuChordTechniqueTremBar_Click(parent, *c); return;
      case EditDialog::Trill: mnuNoteEffectsTrill_Click(parent, *c); return;
      case EditDialog::Grace: mnuNoteEffectsGrace_Click(parent, *c); return;
      case EditDialog::Text: mnuChordText_Click(parent, *c); return;
      default:
        if (before) before(which);
    }
  };
}

}  // namespace plectaro
