#include "exchange/ui/exchange_menus.h"

#include <QAction>
#include <QApplication>
#include <QCursor>
#include <QObject>

#include "exchange/midi_export.h"
#include "exchange/ui/batch_convert_dialog.h"
#include "exchange/ui/midi_import_dialog.h"
#include "rendering/qt/page_export.h"
#include "score/new_score.h"
#include "shell/session.h"

namespace plectaro {

namespace {

constexpr const char* kMidiFilter = "MIDI Files|*.mid;*.midi|";

std::string pathText(const QString& s) { return s.toStdString(); }

}  // namespace

void MIDIImport(QWidget* parent, Session& session, const ExchangeHooks& hooks, const QString& given) {
  FileCommands& files = session.files();
  const Messages& msg = session.messages();
  const std::string caption = msg.text("ntne_frmMIDIImport", "Caption");
  if (files.hasUnsavedWork() && !session.prompter().yesNo(msg.str("str_MIDIWillLoseCurrentFile"), caption)) return;
  std::string path = pathText(given);
  if (path.empty()) {
    auto chosen = session.prompter().openFileName(caption, kMidiFilter, "");
    if (!chosen || chosen->empty()) return;
    path = *chosen;
  }
  MidiImportSource source;
  try {
    source = OpenMIDIFile(path);
  } catch (const std::exception& e) {
    session.prompter().message(e.what(), caption, MessageIcon::Warning);
    return;
  }
  MidiImportDialog dialog(source, QString::fromStdString(caption), parent);
  if (dialog.exec() != QDialog::Accepted) return;
  MidiImportOptions options = dialog.options();
  if (options.Tracks.empty()) {
    session.prompter().message(msg.str("str_SelectAtLeastOneTrack"), caption, MessageIcon::Information);
    return;
  }
  Document& doc = session.doc();
  Document imported;
  InitScore(imported, session.settings());
  std::vector<MidiImportTrackReport> reports;
  try {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    reports = FullImport(source, options, imported.score);
    QApplication::restoreOverrideCursor();
  } catch (const std::exception& e) {
    QApplication::restoreOverrideCursor();
    session.prompter().message(e.what(), caption, MessageIcon::Warning);
    return;
  }
  // The new document has no file yet: saving asks where, so the MIDI file is never overwritten
  // with a music file.
  imported.score.Title = std::filesystem::path(path).stem().string();
  imported.score.CurrentFileName.clear();
  doc.score = std::move(imported.score);
  doc.CursorTrack = doc.CursorBar = doc.CursorBeat = doc.CursorString = doc.CursorLine = 0;
  doc.Layout.clear();
  doc.touched();
  doc.PasswordEntered = false;
  if (files.documentReplaced) files.documentReplaced();
  if (files.fileNameChanged) files.fileNameChanged();
  if (hooks.drawDocument) hooks.drawDocument();

  int lost = 0;
  for (const auto& r : reports) lost += r.Lost;
  if (lost > 0)
    session.prompter().message(std::to_string(lost) + " notes fit no string and were left out.", caption,
                               MessageIcon::Information);
}

void MIDIExport(QWidget*, Session& session, const QString& given) {
  const Messages& msg = session.messages();
  const std::string caption = msg.str("str_MIDExport");
  std::string path = pathText(given);
  if (path.empty()) {
    const Document& doc = session.doc();
    std::string suggested = doc.score.CurrentFileName.empty()
                                ? doc.score.Title + ".mid"
                                : std::filesystem::path(doc.score.CurrentFileName).replace_extension(".mid").string();
    auto chosen = session.prompter().saveFileName(caption, kMidiFilter, suggested);
    if (!chosen || chosen->empty()) return;
    path = *chosen;
    if (std::filesystem::path(path).extension().empty()) path += ".mid";
  }
  try {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    MakeMIDIFile(session.doc().score, path);
    QApplication::restoreOverrideCursor();
  } catch (const std::exception& e) {
    QApplication::restoreOverrideCursor();
    session.prompter().message(msg.str("str_CantSave1") + std::filesystem::path(path).filename().string() +
                                   msg.str("str_CantSave2") + e.what(),
                               caption, MessageIcon::Warning);
  }
}

void ConnectExchangeMenus(const std::function<QAction*(const QString& name)>& find, QWidget* parent, Session& session,
                          ExchangeHooks hooks) {
  Session* s = &session;
  // The engraved PDF for batch conversion: every track, on the default pages.
  AddBatchFormat({".pdf", "PDF documents", {}, {},
                  [](const Document& original, const std::filesystem::path& path, const BatchSettings&) {
                    Document doc = original;
                    std::vector<int> tracks;
                    for (int t = 0; t <= doc.score.LastTrack(); ++t) tracks.push_back(t);
                    ExportPagesPDF(doc, tracks, LayoutSettings{}, DrawTexts{}, path);
                  }});
  const std::pair<const char*, std::function<void()>> items[] = {
      {"mnuImportMIDI", [parent, s, hooks] { MIDIImport(parent, *s, hooks); }},
      {"mnuFileExportMIDI", [parent, s] { MIDIExport(parent, *s); }},
      {"mnuFileBatchConvert",
       [parent, s] {
         BatchConvertDialog dialog(s->settings(), s->messages(), parent);
         dialog.setTextOptions({s->ini().CopyrightWarning, s->ini().MaxLineLength});
         dialog.exec();
       }},
  };
  for (const auto& [name, run] : items) {
    QAction* a = find(name);
    if (!a) continue;
    a->setEnabled(true);
    QObject::connect(a, &QAction::triggered, parent, run);
  }
}

}  // namespace plectaro
