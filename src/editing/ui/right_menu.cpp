#include "editing/ui/right_menu.h"

#include <QAbstractScrollArea>
#include <QAction>
#include <QMenu>

#include "editing/cursor_access.h"

namespace plectaro {

std::vector<const char*> RightMenuItems(bool onNote, bool selection) {
  std::vector<const char*> items;
  auto add = [&items](std::initializer_list<const char*> names) {
    if (!items.empty()) items.push_back("");
    items.insert(items.end(), names);
  };
  // What the selection offers comes first: with a band marked, the click was about it.
  if (selection) add({"mnuEditCut", "mnuEditCopy", "mnuEditPaste", "mnuBarClear", "mnuOperationsTranspose"});
  if (onNote)
    add({"mnuNoteUp", "mnuNoteDown", "mnuNoteShiftUp", "mnuNoteShiftDown", "mnuNoteLinkNote",
         "mnuNoteEffectsGhostNote", "mnuNoteEffectsLetRing", "mnuNoteEffectsBend", "mnuNoteEffectsGrace"});
  add({"mnuNoteInsertBeat", "mnuNoteDeleteBeat", "mnuChordLengthIncrease", "mnuChordLengthDecrease",
       "mnuChordDotted", "mnuChordText", "mnuChordChord"});
  if (!selection) add({"mnuBarCut", "mnuBarCopy", "mnuBarPaste", "mnuBarClear"});
  add({"mnuBarInsert", "mnuBarRemove", "mnuBarTimeSignature", "mnuBarKeySignature", "mnuBarRepeatOpen",
       "mnuBarRepeatClose"});
  return items;
}

void FillRightMenu(QMenu* menu, const std::function<QAction*(const QString& name)>& find, const EditContext& ctx) {
  menu->clear();
  bool onNote = false;
  try {
    onNote = !CursorSlot(ctx.doc).Fret.empty();
  } catch (const ScoreError&) {
  }
  bool separate = false;
  for (const char* name : RightMenuItems(onNote, ctx.selection.active)) {
    if (!*name) {
      separate = true;
      continue;
    }
    QAction* a = find(QString::fromLatin1(name));
    // A command not built into this window is left out rather than shown greyed.
    if (!a || !a->isEnabled()) continue;
    if (separate && !menu->isEmpty()) menu->addSeparator();
    separate = false;
    menu->addAction(a);
  }
}

void ConnectRightMenu(const std::function<QAction*(const QString& name)>& find, QAbstractScrollArea* view,
                      EditContext& ctx) {
  auto* menu = new QMenu(view);
  menu->setObjectName("picRightMenu");
  ctx.hooks.openRightMenu = [menu, find, view, &ctx](int x, int y) {
    FillRightMenu(menu, find, ctx);
    // The click arrives in page units; the view may be zoomed, so turn it back into pixels.
    const QVariant zoom = view->property("zoom");
    const double z = zoom.isValid() ? zoom.toDouble() : 1.0;
    if (!menu->isEmpty())
      menu->popup(view->viewport()->mapToGlobal(QPoint(qRound(x * z), qRound(y * z))));
  };
}

}  // namespace plectaro
