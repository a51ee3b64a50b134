#include "exchange/ui/text_tab_menus.h"

#include <QAction>
#include <QKeySequence>
#include <QWidget>
#include <algorithm>
#include <filesystem>
#include <memory>

#include "exchange/ui/ascii_import_dialog.h"
#include "score/file_io.h"

namespace plectaro {

namespace {

// Where the export goes: asked with the file kinds of the menu item, the score's own name as
// the suggestion, and the first kind's extension when the user typed none.
// The question's caption is the menu item's own text from the language table, without its
// accelerator and dots ("&ASCII Tab..." asks "ASCII Tab").
void exportTrack(EditContext& edit, const TextExportOptions& options, bool html, QString caption) {
  const Score& s = edit.doc.score;
  const char* filter = html ? "HTML Web Pages|*.html|HTM Web Pages|*.htm|" : "Text File|*.txt|ASCII Tab File|*.tab|";
  const char* ext = html ? ".html" : ".txt";
  std::filesystem::path suggested = s.CurrentFileName.empty() ? std::filesystem::path(s.Title + ext)
                                                              : std::filesystem::path(s.CurrentFileName);
  suggested.replace_extension(ext);
  caption.remove('&');
  while (caption.endsWith('.')) caption.chop(1);
  auto path = edit.prompter.saveFileName(caption.trimmed().toStdString(), filter, suggested.string());
  if (!path || path->empty()) return;
  std::filesystem::path target = *path;
  if (target.extension().empty()) target += ext;
  try {
    if (html)
      ExportHTML(s, edit.doc.CursorTrack, options, target);
    else
      ExportASCII(s, edit.doc.CursorTrack, options, target);
  } catch (const std::exception& e) {
    edit.prompter.message(edit.text("str_CantSave1") + target.string() + edit.text("str_CantSave2") + e.what(),
                          edit.text("str_Error"), MessageIcon::Critical);
  }
}

}  // namespace

void ShowTabImport(QWidget* parent, EditContext& edit, TabSource source, const QString& address) {
  auto* d = new AsciiImportDialog(parent, edit, source);
  d->setAttribute(Qt::WA_DeleteOnClose);
  if (source == TabSource::Web && !address.isEmpty()) d->ImportHTTP(address);
  d->open();
}

void ConnectTextTabMenus(const std::function<QAction*(const QString& name)>& find, QWidget* parent,
                         EditContext& edit, std::function<TextExportOptions()> exportOptions) {
  EditContext* e = &edit;
  auto options = std::make_shared<std::function<TextExportOptions()>>(std::move(exportOptions));
  const std::pair<const char*, std::function<void()>> items[] = {
      {"mnuImportASCII", [parent, e] { ShowTabImport(parent, *e, TabSource::File); }},
      {"mnuImportClipboard", [parent, e] { ShowTabImport(parent, *e, TabSource::Clipboard); }},
      {"mnuImportHTML", [parent, e] { ShowTabImport(parent, *e, TabSource::Web); }},
      {"mnuFileExportASCII", [e, options, find] { exportTrack(*e, (*options)(), false, find("mnuFileExportASCII")->text()); }},
      {"mnuFileExportHTML", [e, options, find] { exportTrack(*e, (*options)(), true, find("mnuFileExportHTML")->text()); }},
  };
  for (const auto& [name, run] : items) {
    QAction* a = find(name);
    if (!a || a->property("textTabConnected").toBool()) continue;
    a->setProperty("textTabConnected", true);
    a->setEnabled(true);
    QObject::connect(a, &QAction::triggered, a, run);
  }
  if (QAction* a = find("mnuImportClipboard"); a && a->shortcut().isEmpty())
    a->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_V));
}

}  // namespace plectaro
