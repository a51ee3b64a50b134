#include "editing/ui/menu_commands.h"

#include <QAction>
#include <QVariant>
#include <string>

#include "editing/bar_commands.h"
#include "editing/key_map.h"
#include "editing/note_commands.h"
#include "editing/rhythm_commands.h"
#include "editing/selection.h"
#include "editing/ui/bar_dialogs.h"
#include "editing/ui/shortcuts_dialog.h"

namespace plectaro {

namespace {

// Items of an indexed menu ("mnuNoteVolumes0" ...) run one command with their index. The
// names are kept alive for the const char* of MenuCommand.
void indexed(std::vector<MenuCommand>& out, const char* base, int count,
             const std::function<void(int)>& run, const char* const* keys = nullptr) {
  static std::vector<std::unique_ptr<std::string>> names;
  for (int i = 0; i < count; ++i) {
    names.push_back(std::make_unique<std::string>(std::string(base) + std::to_string(i)));
    out.push_back({names.back()->c_str(), [run, i] { run(i); }, keys ? keys[i] : nullptr});
  }
}

}  // namespace

std::vector<MenuCommand> EditingMenuCommands(QWidget* parent, EditContext& ctx) {
  EditContext* c = &ctx;
  std::vector<MenuCommand> m = {
      {"mnuEditUndo", [c] { mnuEditUndo_Click(*c); }},
      {"mnuEditRedo", [c] { mnuEditRedo_Click(*c); }},
      // The Edit menu works on the selection when there is one and falls back on the bar
      // clipboard dialogs; its Paste puts the clipboard after the cursor's bar (in every track
      // when it was copied from every track). The Bar menu keeps the dialogs.
      {"mnuEditCut", [parent, c] { if (!CutSelection(*c)) mnuBarCut_Click(parent, *c); }},
      {"mnuEditCopy", [parent, c] { if (!CopySelection(*c)) mnuBarCopy_Click(parent, *c); }},
      {"mnuEditPaste", [c] { PasteAtCursor(*c); }},
      {"mnuEditSelectAll", [c] { SelectAllBars(*c, false); }},
      {"mnuHelpShortcuts", [parent] { ShowShortcutKeys(parent); }},
      {"mnuEditSelectAllTracks", [c] { SelectAllBars(*c, true); }},

      {"mnuNoteUp", [c] { mnuNoteUp_Click(*c); }, "Shift+Num +"},
      {"mnuNoteDown", [c] { mnuNoteDown_Click(*c); }, "Shift+Num -"},
      {"mnuNoteShiftUp", [c] { mnuNoteShiftUp_Click(*c); }, "Shift+Up"},
      {"mnuNoteShiftDown", [c] { mnuNoteShiftDown_Click(*c); }, "Shift+Down"},
      {"mnuNoteInsertBeat", [c] { mnuNoteInsertBeat_Click(*c); }, "Shift+Ins"},
      {"mnuNoteDeleteBeat", [c] { mnuNoteDeleteBeat_Click(*c); }, "Shift+Del"},
      {"mnuNoteVolumesWholeChord", [c] { mnuNoteVolumesWholeChord_Click(*c); }},
      {"mnuNoteLinkNote", [c] { mnuNoteLinkNote_Click(*c); }, "L"},
      {"mnuNoteEffectsGhostNote", [c] { mnuNoteEffectsGhostNote_Click(*c); }, "G"},
      {"mnuNoteEffectsLetRing", [c] { mnuNoteEffectsLetRing_Click(*c); }, "Shift+R"},
      {"mnuNoteEffectsAccentuate", [c] { mnuNoteEffectsAccentuate_Click(*c); }},

      {"mnuChordLengthIncrease", [c] { mnuChordLengthIncrease_Click(*c); }, "Num +"},
      {"mnuChordLengthDecrease", [c] { mnuChordLengthDecrease_Click(*c); }, "Num -"},
      {"mnuChordDotted", [c] { mnuChordDotted_Click(*c); }, "."},
      {"mnuChordUpStroke", [c] { mnuChordUpStroke_Click(*c); }, "U"},
      {"mnuChordDownStroke", [c] { mnuChordDownStroke_Click(*c); }, "D"},

      {"mnuBarCut", [parent, c] { mnuBarCut_Click(parent, *c); }},
      {"mnuBarCopy", [parent, c] { mnuBarCopy_Click(parent, *c); }},
      {"mnuBarPaste", [parent, c] { mnuBarPaste_Click(parent, *c); }},
      {"mnuBarInsert", [parent, c] { mnuBarInsert_Click(parent, *c); }},
      {"mnuBarRemove", [parent, c] { mnuRemoveBar_Click(parent, *c); }},
      {"mnuBarClear", [c] { if (!ClearSelection(*c)) mnuBarClear_Click(*c); }},
      {"mnuBarFirst", [c] { mnuBarFirst_Click(*c); }},
      {"mnuBarPrevious", [c] { mnuBarPrevious_Click(*c); }},
      {"mnuBarNext", [c] { mnuBarNext_Click(*c); }},
      {"mnuBarLast", [c] { mnuBarLast_Click(*c); }},
      {"mnuBarTimeSignature", [parent, c] { mnuBarTimeSignature_Click(parent, *c); }},
      {"mnuBarKeySignature", [parent, c] { mnuBarKeySignature_Click(parent, *c); }},
      {"mnuBarCoda", [parent, c] { mnuBarCoda_Click(parent, *c); }},
      {"mnuBarRepeatOpen", [c] { mnuBarRepeatOpen_Click(*c); }},
      {"mnuBarRepeatClose", [c] { mnuBarRepeatClose_Click(*c); }},

      {"mnuIncreaseLengths", [c] { if (!StepSelectionLengths(*c, true)) mnuIncreaseLengths_Click(*c); }},
      {"MnuDecreaseLengths", [c] { if (!StepSelectionLengths(*c, false)) MnuDecreaseLengths_Click(*c); }},
  };
  indexed(m, "mnuNoteVolumes", 8, [c](int i) { mnuNoteVolumes_Click(*c, i); });
  indexed(m, "mnuNoteLHFS", 5, [c](int i) { mnuNoteLHFS_Click(*c, i); });
  indexed(m, "mnuNoteRHFS", 5, [c](int i) { mnuNoteRHFS_Click(*c, i); });
  indexed(m, "mnuNoteEffectsHarmonics", 7, [c](int i) { mnuNoteEffectsHarmonics_Click(*c, i); });
  static const char* const techniqueKeys[10] = {nullptr, nullptr, nullptr, nullptr, nullptr,
                                                nullptr, "S", nullptr, nullptr, "H"};
  indexed(m, "mnuNoteEffectsTechniques", 10, [c](int i) { mnuNoteEffectsTechniques_Click(*c, i); },
          techniqueKeys);
  static const char* const tupletKeys[9] = {"Shift+3", "Shift+5", "Shift+6", "Shift+7", "Shift+9",
                                            nullptr, nullptr, nullptr, nullptr};
  indexed(m, "mnuChordXTuplets", 9, [c](int i) { mnuChordXTuplets_Click(*c, i); }, tupletKeys);
  static const char* const chordTechniqueKeys[7] = {"V", nullptr, nullptr, "T", nullptr, nullptr, nullptr};
  indexed(m, "mnuChordTechniques", 7, [c](int i) { mnuChordTechniques_Click(*c, i); },
          chordTechniqueKeys);
  return m;
}

void ConnectMenuCommands(const std::function<QAction*(const QString& name)>& find,
                         std::vector<MenuCommand> commands) {
  for (MenuCommand& cmd : commands) {
    QAction* a = find(QString::fromLatin1(cmd.name));
    if (!a) continue;
    if (cmd.keys) {
      QString text = a->text();
      const int tab = text.indexOf('\t');
      if (tab >= 0) text.truncate(tab);
      a->setText(text + '\t' + QString::fromLatin1(cmd.keys));
      // Toolbar buttons show the icon text: the caption alone, without the key; their tip
      // names the key after it.
      a->setIconText(QString(text).remove('&'));
      a->setToolTip(a->iconText() + " (" + QString::fromLatin1(cmd.keys) + ")");
    }
    if (a->property("plectaroEditing").toBool()) continue;
    // An item the window already serves itself (it is enabled) keeps its own command; two
    // connections would run the move twice.
    if (a->isEnabled()) continue;
    a->setProperty("plectaroEditing", true);
    a->setEnabled(true);
    QObject::connect(a, &QAction::triggered, a, [run = std::move(cmd.run)] { run(); });
  }
}

void ConnectEditingMenus(const std::function<QAction*(const QString& name)>& find, QWidget* parent,
                         EditContext& ctx) {
  if (!ctx.hooks.askRepeatCount) ctx.hooks.askRepeatCount = [parent] { return AskRepeatCount(parent); };
  // The Edit menu follows every step at once, not only at the next paint.
  if (!ctx.hooks.undoChanged) {
    const EditContext* c = &ctx;
    ctx.hooks.undoChanged = [find, c] { UpdateUndoMenus(find, *c); };
  }
  // Undo and Redo name their step after the caption of the language file; remember that
  // caption each time the texts were (re)loaded.
  for (const char* n : {"mnuEditUndo", "mnuEditRedo"})
    if (QAction* a = find(QString::fromLatin1(n))) a->setProperty("plectaroCaption", a->text());
  ConnectMenuCommands(find, EditingMenuCommands(parent, ctx));
}

void UpdateEditingMenus(const std::function<QAction*(const QString& name)>& find, const EditContext& ctx) {
  const Document& d = ctx.doc;
  if (d.CursorBar < 0 || static_cast<size_t>(d.CursorBar) >= d.score.BarInfos.size()) return;
  const BarInfo& bi = d.score.BarInfos[static_cast<size_t>(d.CursorBar)];
  if (QAction* a = find("mnuBarRepeatOpen")) a->setChecked(bi.RepeatOpen);
  if (QAction* a = find("mnuBarRepeatClose")) a->setChecked(bi.RepeatClose > 0);
  if (QAction* a = find("mnuNoteVolumesWholeChord")) a->setChecked(ctx.VolumesWholeChord);
  UpdateUndoMenus(find, ctx);
}

void UpdateUndoMenus(const std::function<QAction*(const QString& name)>& find, const EditContext& ctx) {
  auto name = [&](const char* item, bool enabled, const std::string& step) {
    QAction* a = find(QString::fromLatin1(item));
    if (!a) return;
    a->setEnabled(enabled);
    QString caption = a->property("plectaroCaption").toString();
    if (caption.isEmpty()) return;
    if (enabled && !step.empty()) caption += ' ' + QString::fromStdString(step);
    a->setText(caption);
  };
  name("mnuEditUndo", ctx.undo.canUndo(), ctx.undo.undoName());
  name("mnuEditRedo", ctx.undo.canRedo(), ctx.undo.redoName());
}

}  // namespace plectaro
