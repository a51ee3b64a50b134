#include "shell/ui/main_window.h"

#include <algorithm>

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QScreen>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>

#include "score/new_score.h"
#include "shell/status_time.h"
#include "shell/ui/desktop_palette.h"
#include "shell/ui/document_view.h"
#include "shell/ui/file_properties_dialog.h"
#include "shell/ui/help_dialogs.h"
#include "shell/ui/language_ui.h"
#include "shell/ui/options_dialog.h"
#include "shell/ui/toolbar_icons.h"
#include "shell/ui/window_fit.h"

namespace plectaro {

namespace {

QString q(std::string_view s) {
  return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

Qt::ToolBarArea areaOf(int a) {
  switch (a) {
    case 1: return Qt::BottomToolBarArea;
    case 2: return Qt::LeftToolBarArea;
    case 3: return Qt::RightToolBarArea;
    default: return Qt::TopToolBarArea;
  }
}

int areaIndex(Qt::ToolBarArea a) {
  switch (a) {
    case Qt::BottomToolBarArea: return 1;
    case Qt::LeftToolBarArea: return 2;
    case Qt::RightToolBarArea: return 3;
    default: return 0;
  }
}

// The message key of each toolbar's title, in PL4.ini order.
constexpr std::array<const char*, kToolbarCount> kToolbarTitles = {
    "str_WT_File", "str_WT_Input", "str_WT_Edit", "str_WT_Sound", "str_WT_Misc",
    "str_WT_Beat", "str_Cut",      "str_WT_Track", "str_WT_FX1", "str_WT_FX2",
    "str_WT_FX3",  "str_WT_FX4",   "str_WT_FX5",  "str_WT_FX6", "str_WT_FX7",
    "str_WT_Bar",  "str_WT_Bar",   "str_WT_Navigation"};

// Which menu items each toolbar carries, in PL4.ini order.
const std::array<std::vector<const char*>, kToolbarCount> kToolbarItems = {{
    {"mnuFileNew", "mnuFileOpen", "mnuFileSave", "mnuFilePrint", "mnuFileProperties"},
    {"mnuNoteInsertBeat", "mnuNoteDeleteBeat"},
    {"mnuNoteUp", "mnuNoteDown", "mnuNoteShiftUp", "mnuNoteShiftDown"},
    {"mnuSoundPlayFromStart", "mnuSoundPlayFromHere", "mnuSoundPlayBar", "mnuSoundStop"},
    {"mnuNoteLinkNote", "mnuNoteVolumesWholeChord"},
    {"mnuChordLengthIncrease", "mnuChordLengthDecrease", "mnuChordDotted"},
    {"mnuBarCut", "mnuBarCopy", "mnuBarPaste"},
    {"mnuTrackAdd", "mnuTrackProperties", "mnuTrackPrevious", "mnuTrackNext"},
    {"mnuNoteEffectsGhostNote", "mnuNoteEffectsLetRing", "mnuNoteEffectsAccentuate"},
    {"mnuNoteEffectsBend", "mnuNoteEffectsGrace", "mnuNoteEffectsTrill"},
    {"mnuNoteEffectsHarmonics0", "mnuNoteEffectsHarmonics1", "mnuNoteEffectsHarmonics2",
     "mnuNoteEffectsHarmonics3"},
    {"mnuNoteEffectsTechniques0", "mnuNoteEffectsTechniques4", "mnuNoteEffectsTechniques5",
     "mnuNoteEffectsTechniques9"},
    {"mnuChordUpStroke", "mnuChordDownStroke"},
    {"mnuChordTechniques0", "mnuChordTechniques1", "mnuChordTechniques2"},
    {"mnuChordTechniqueTremBar", "mnuChordText", "mnuChordChord"},
    {"mnuBarInsert", "mnuBarRemove", "mnuBarClear"},
    {"mnuBarTimeSignature", "mnuBarKeySignature", "mnuBarRepeatOpen", "mnuBarRepeatClose"},
    {"mnuBarFirst", "mnuBarPrevious", "mnuBarNext", "mnuBarLast"},
}};

}  // namespace

MainWindow::MainWindow(Session& session) : session_(session) {
  setObjectName("frmMain");
  setAcceptDrops(true);
  view_ = new DocumentView(session_.doc(), session_.ini(), this);
  view_->setTexts([this](std::string_view k) { return session_.messages().str(k); });
  setCentralWidget(view_);
  buildMenus();
  buildToolbars();
  buildStatusBar();
  applyTexts();
  connect(view_, &DocumentView::drawn, this, &MainWindow::showStatus);

  FileCommands& files = session_.files();
  files.documentReplaced = [this] {
    view_->resetScroll();
    DrawDocument();
  };
  files.fileNameChanged = [this] {
    UpdateRecentFiles();
    SetWindowCaption();
  };
  // The first time, the window fits the screen it opens on; later its stored place rules.
  if (const QScreen* sc = screen() ? screen() : QGuiApplication::primaryScreen())
    setGeometry(FirstWindowPlace(sc->availableGeometry()));
  new ToolbarWrapper(this, {toolbars_.begin(), toolbars_.end()});
  UpdateRecentFiles();
  SetWindowCaption();
}

MainWindow::~MainWindow() {
  // The session may outlive the window; its commands must not call back into it.
  session_.files().documentReplaced = nullptr;
  session_.files().fileNameChanged = nullptr;
}

QString MainWindow::str(std::string_view key) const { return q(session_.messages().str(key)); }

QAction* MainWindow::action(const QString& name) const {
  return findChild<QAction*>(name);
}

QMenu* MainWindow::menu(QMenu* parent, const char* name) {
  QMenu* m = parent ? parent->addMenu(QString()) : menuBar()->addMenu(QString());
  m->setObjectName(name);
  return m;
}

QAction* MainWindow::item(QMenu* menu, const char* name, std::function<void()> fn,
                          QKeySequence shortcut) {
  QAction* a = menu->addAction(QString());
  a->setObjectName(name);
  if (!shortcut.isEmpty()) a->setShortcut(shortcut);
  // Items whose command has not come yet stand in the menu, greyed out.
  a->setEnabled(bool(fn));
  if (fn) connect(a, &QAction::triggered, this, [fn] { fn(); });
  return a;
}

// Shortcuts are spelled out rather than taken from the platform's standard keys, so they are
// the same on every desktop and match what the menus show.
void MainWindow::buildMenus() {
  FileCommands& files = session_.files();
  auto indexed = [this](QMenu* parent, const char* name, int count) {
    QMenu* m = menu(parent, name);
    for (int i = 0; i < count; ++i) {
      const std::string n = std::string(name) + std::to_string(i);
      QAction* a = m->addAction(QString());
      a->setObjectName(q(n));
      a->setEnabled(false);
    }
    return m;
  };

  QMenu* file = menu(nullptr, "mnuFile");
  item(file, "mnuFileNew", [&files] { files.mnuFileNew_Click(); }, QKeySequence(Qt::CTRL | Qt::Key_N));
  item(file, "mnuFileOpen", [&files] { files.mnuFileOpen_Click(); }, QKeySequence(Qt::CTRL | Qt::Key_O));
  QMenu* recent = menu(file, "mnuFileOpenRecent");
  for (int i = 0; i < kRecentFileCount; ++i) {
    recent_[static_cast<size_t>(i)] = item(
        recent, ("mnuFileOpenRecentItem" + std::to_string(i)).c_str(),
        [&files, i] { files.mnuFileOpenRecentItem_Click(i); });
  }
  recentNone_ = item(recent, "mnuFileOpenRecentNone");
  file->addSeparator();
  item(file, "mnuFileSave", [&files] { files.mnuFileSave_Click(); }, QKeySequence(Qt::CTRL | Qt::Key_S));
  item(file, "mnuFileSaveAs", [&files] { files.mnuFileSaveAs_Click(); },
       QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S));
  file->addSeparator();
  QMenu* import = menu(file, "mnuFileImport");
  for (const char* n : {"mnuImportMIDI", "mnuImportASCII", "mnuImportHTML", "mnuImportClipboard"})
    item(import, n);
  QMenu* exportMenu = menu(file, "mnuFileExport");
  for (const char* n : {"mnuFileExportASCII", "mnuFileExportHTML", "mnuFileExportPDF",
                        "mnuFileExportMIDI", "mnuFileExportWAV", "mnuFileExportBMP"})
    item(exportMenu, n);
  item(file, "mnuFileBatchConvert");
  file->addSeparator();
  item(file, "mnuFilePageSetup");
  item(file, "mnuFilePrintPreview");
  item(file, "mnuFilePrint", nullptr, QKeySequence(Qt::CTRL | Qt::Key_P));
  file->addSeparator();
  item(file, "mnuFileProperties", [this] { mnuFileProperties_Click(); },
       QKeySequence(Qt::ALT | Qt::Key_Return));
  file->addSeparator();
  item(file, "mnuFileExit", [this] { close(); }, QKeySequence(Qt::CTRL | Qt::Key_Q));

  QMenu* edit = menu(nullptr, "mnuEdit");
  item(edit, "mnuEditUndo", nullptr, QKeySequence(Qt::CTRL | Qt::Key_Z));
  item(edit, "mnuEditRedo")->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Y),
                                            QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
  edit->addSeparator();
  item(edit, "mnuEditCut", nullptr, QKeySequence(Qt::CTRL | Qt::Key_X));
  item(edit, "mnuEditCopy", nullptr, QKeySequence(Qt::CTRL | Qt::Key_C));
  item(edit, "mnuEditPaste", nullptr, QKeySequence(Qt::CTRL | Qt::Key_V));
  item(edit, "mnuEditSelectAll", nullptr, QKeySequence(Qt::CTRL | Qt::Key_A));
  item(edit, "mnuEditSelectAllTracks", nullptr, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_A));
  edit->addSeparator();
  item(edit, "mnuEditFindReplace", nullptr, QKeySequence(Qt::CTRL | Qt::Key_F));

  QMenu* viewMenu = menu(nullptr, "mnuView");
  menu(viewMenu, "mnuViewToolbars");  // filled with the toolbars' own toggles
  viewMenu->addSeparator();
  for (const char* n : {"mnuViewFretboard", "mnuViewPiano", "mnuViewLefty", "mnuViewMixTable"})
    item(viewMenu, n);

  QMenu* note = menu(nullptr, "mnuNote");
  for (const char* n : {"mnuNoteUp", "mnuNoteDown", "mnuNoteShiftUp", "mnuNoteShiftDown"})
    item(note, n);
  note->addSeparator();
  item(note, "mnuNoteInsertBeat");
  item(note, "mnuNoteDeleteBeat");
  note->addSeparator();
  QMenu* volumes = indexed(note, "mnuNoteVolumes", 8);
  volumes->addSeparator();
  item(volumes, "mnuNoteVolumesWholeChord")->setCheckable(true);
  item(note, "mnuNoteLinkNote");
  indexed(note, "mnuNoteLHFS", 5);
  indexed(note, "mnuNoteRHFS", 5);
  QMenu* effects = menu(note, "mnuNoteEffects");
  for (const char* n : {"mnuNoteEffectsGhostNote", "mnuNoteEffectsLetRing",
                        "mnuNoteEffectsAccentuate", "mnuNoteEffectsBend", "mnuNoteEffectsGrace",
                        "mnuNoteEffectsTrill"})
    item(effects, n);
  indexed(effects, "mnuNoteEffectsHarmonics", 7);
  indexed(effects, "mnuNoteEffectsTechniques", 10);

  QMenu* chord = menu(nullptr, "mnuChord");
  item(chord, "mnuChordLengthIncrease");
  item(chord, "mnuChordLengthDecrease");
  item(chord, "mnuChordDotted");
  indexed(chord, "mnuChordXTuplets", 9);
  chord->addSeparator();
  item(chord, "mnuChordUpStroke");
  item(chord, "mnuChordDownStroke");
  indexed(chord, "mnuChordTechniques", 7);
  item(chord, "mnuChordTechniqueTremBar");
  item(chord, "mnuChordText");
  item(chord, "mnuChordChord");

  QMenu* bar = menu(nullptr, "mnuBar");
  for (const char* n : {"mnuBarCut", "mnuBarCopy", "mnuBarPaste", "mnuBarInsert", "mnuBarRemove",
                        "mnuBarClear"})
    item(bar, n);
  bar->addSeparator();
  // Moving through the bars only moves the cursor, so it works on any document.
  auto lastBar = [this] { return session_.doc().score.GetLastBar(session_.doc().CursorTrack); };
  item(bar, "mnuBarFirst", [this] { moveCursorBar(0); }, QKeySequence(Qt::CTRL | Qt::Key_Home));
  item(bar, "mnuBarPrevious", [this] { moveCursorBar(session_.doc().CursorBar - 1); },
       QKeySequence(Qt::CTRL | Qt::Key_Left));
  item(bar, "mnuBarNext", [this] { moveCursorBar(session_.doc().CursorBar + 1); },
       QKeySequence(Qt::CTRL | Qt::Key_Right));
  item(bar, "mnuBarLast", [this, lastBar] { moveCursorBar(lastBar()); },
       QKeySequence(Qt::CTRL | Qt::Key_End));
  bar->addSeparator();
  for (const char* n : {"mnuBarTimeSignature", "mnuBarKeySignature", "mnuBarCoda"})
    item(bar, n);
  item(bar, "mnuBarRepeatOpen")->setCheckable(true);
  item(bar, "mnuBarRepeatClose")->setCheckable(true);

  QMenu* track = menu(nullptr, "mnuTrack");
  item(track, "mnuTrackAdd");
  item(track, "mnuTrackDelete");
  item(track, "mnuTrackProperties");
  track->addSeparator();
  item(track, "mnuTrackPrevious", [this] { moveCursorTrack(-1); },
       QKeySequence(Qt::CTRL | Qt::Key_PageUp));
  item(track, "mnuTrackNext", [this] { moveCursorTrack(+1); },
       QKeySequence(Qt::CTRL | Qt::Key_PageDown));

  QMenu* ops = menu(nullptr, "mnuOperations");
  item(ops, "mnuOperationsCheckBar");
  QMenu* fixer = menu(ops, "mnuOperationsBarFixer");
  item(fixer, "mnuFixThisBar");
  item(fixer, "mnuFixAllBars");
  item(ops, "mnuIncreaseLengths");
  item(ops, "MnuDecreaseLengths");
  item(ops, "mnuOperationsRemoveRests");
  item(ops, "mnuOperationsTranspose");
  item(ops, "mnuOperationsEditLines");

  // Playback arrives with its own engine; until then its items wait, greyed out.
  QMenu* sound = menu(nullptr, "mnuSound");
  item(sound, "mnuSoundPlayFromStart", nullptr, QKeySequence(Qt::Key_F5));
  item(sound, "mnuSoundPlayFromHere", nullptr, QKeySequence(Qt::Key_F6));
  item(sound, "mnuSoundPlayBar", nullptr, QKeySequence(Qt::Key_F7));
  item(sound, "mnuSoundStop", nullptr, QKeySequence(Qt::Key_F8));
  sound->addSeparator();
  item(sound, "mnuSoundSpeedTrainer");

  QMenu* go = menu(nullptr, "mnuGo");
  item(go, "mnuGoAddGotoPoint");
  item(go, "mnuGoShowPoints");
  QMenu* gotos = menu(go, "mnuGoGoTos");
  QAction* none = gotos->addAction(str("str_NoPoints"));
  none->setObjectName("mnuGoGoTos0");
  none->setEnabled(false);

  QMenu* tools = menu(nullptr, "mnuTools");
  // Only tools that exist or are being built stand here; the upload, the band manager, the
  // glossary, the websites, the lessons, random backing and music paper have no plan yet and
  // stay out of the menus until they do.
  for (const char* n :
       {"mnuToolsChordManager", "mnuToolsScaleManager", "mnuToolsTuner", "mnuToolsDrumMachine",
        "mnuToolsMetronome", "mnuToolsFretboardKnowledge", "mnuToolsPitchPerfector",
        "mnuToolsDrumBeatGenerator"})
    item(tools, n);
  tools->addSeparator();
  item(tools, "mnuToolsOptions", [this] { mnuToolsOptions_Click(); });

  QMenu* help = menu(nullptr, "mnuHelp");
  item(help, "mnuHelpGettingStarted", [this] {
    ShowGettingStarted(this, StripAmpersand(session_.messages().text("frmMain", "mnuHelpGettingStarted")));
  });
  item(help, "mnuHelpShortcuts", nullptr, QKeySequence(Qt::Key_F1));
  help->addSeparator();
  item(help, "mnuHelpAbout", [this] {
    ShowAbout(this, StripAmpersand(session_.messages().text("frmMain", "mnuHelpAbout")));
  });
}

void MainWindow::buildToolbars() {
  QMenu* toggles = findChild<QMenu*>("mnuViewToolbars");
  for (int i = 0; i < kToolbarCount; ++i) {
    auto* tb = new QToolBar(this);
    tb->setObjectName(QString("tb%1").arg(i));
    tb->setToolButtonStyle(Qt::ToolButtonIconOnly);
    for (const char* n : kToolbarItems[static_cast<size_t>(i)])
      if (QAction* a = action(n)) tb->addAction(a);
    addToolBar(Qt::TopToolBarArea, tb);
    toggles->addAction(tb->toggleViewAction());
    toolbars_[static_cast<size_t>(i)] = tb;
  }
  QStringList names;
  for (const auto& bar : kToolbarItems)
    for (const char* n : bar) names << n;
  new ToolbarIcons(this, names);
}

void MainWindow::buildStatusBar() {
  // The panels stand on the right for good; a passing message (no sound, a drawing error)
  // takes the room on their left instead of hiding them.
  auto panel = [this](const char* name, int width) {
    auto* l = new QLabel(this);
    l->setObjectName(name);
    l->setMinimumWidth(width);
    statusBar()->addPermanentWidget(l);
    return l;
  };
  sbTiming_ = panel("sbTimingPanel", 170);
  sbFill_ = panel("sbFillPanel", 90);
  sbPages_ = panel("sbPagesPanel", 70);
  sbTime_ = panel("sbTimePanel", 190);
}

void MainWindow::applyTexts() {
  LoadLanguage(this, session_.languageFile());
  const Messages& m = session_.messages();
  sbTiming_->setToolTip(q(m.text("frmMain", "sbTiming")));
  sbFill_->setToolTip(q(m.text("frmMain", "sbFill")));
  sbPages_->setToolTip(q(m.text("frmMain", "sbPages")));
  sbTime_->setToolTip(q(m.text("frmMain", "sbTime")));
  for (int i = 0; i < kToolbarCount; ++i) {
    QString title = str(kToolbarTitles[static_cast<size_t>(i)]);
    if (i == 6) title = str("str_Cut") + ", " + str("str_Copy") + ", " + str("str_Paste");
    if (i == 15) title += " 1";
    if (i == 16) title += " 2";
    toolbars_[static_cast<size_t>(i)]->setWindowTitle(title);
  }
}

void MainWindow::restoreToolbars() {
  SettingsStore& st = session_.settings();
  const std::string geometry = st.GetSetting("Window", "Geometry");
  if (!geometry.empty()) restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(geometry)));
  const IniSettings& ini = session_.ini();
  const std::string state = st.GetSetting("Window", "ToolbarState");
  for (int i = 0; i < kToolbarCount; ++i) {
    const Qt::ToolBarArea area = areaOf(ini.FloatBars[static_cast<size_t>(i)].Area);
    // First time round, the bars take two rows so that the everyday ones fit the window.
    if (i == 4 && state.empty()) addToolBarBreak(area);
    addToolBar(area, toolbars_[static_cast<size_t>(i)]);
  }
  // The window's own record puts the bars back exactly (order, rows, floating places); PL4.ini
  // then rules on what it describes, so a hand edit of the file takes effect.
  if (!state.empty()) restoreState(QByteArray::fromBase64(QByteArray::fromStdString(state)));
  for (int i = 0; i < kToolbarCount; ++i) {
    const auto k = static_cast<size_t>(i);
    QToolBar* tb = toolbars_[k];
    const FloatBarPlace& p = ini.FloatBars[k];
    if (ini.ToolbarDocked[k] && tb->isFloating()) {
      addToolBar(areaOf(p.Area), tb);
    } else if (!ini.ToolbarDocked[k] && !tb->isFloating()) {
      // A floating bar is a small tool window of its own at its stored screen place.
      tb->setWindowFlags(Qt::Tool | Qt::FramelessWindowHint);
      tb->move(p.Left, p.Top);
    }
    tb->setVisible(ini.ToolbarVisible[k]);
  }
}

void MainWindow::storeToolbars() {
  IniSettings& ini = session_.ini();
  for (int i = 0; i < kToolbarCount; ++i) {
    QToolBar* tb = toolbars_[static_cast<size_t>(i)];
    const auto k = static_cast<size_t>(i);
    ini.ToolbarVisible[k] = !tb->isHidden();
    ini.ToolbarDocked[k] = !tb->isFloating() && !tb->isWindow();
    FloatBarPlace& p = ini.FloatBars[k];
    p.Area = areaIndex(toolBarArea(tb));
    const QPoint at = ini.ToolbarDocked[k] ? tb->pos() : tb->mapToGlobal(QPoint(0, 0));
    p.Left = at.x();
    p.Top = at.y();
  }
}

void MainWindow::DrawDocument() {
  view_->drawDocument();
  SetWindowCaption();
}

void MainWindow::SetWindowCaption() {
  const FileCommands& files = session_.files();
  QString caption = StripAmpersand(session_.messages().text("frmMain", "Caption")) + " - " +
                    q(files.displayName());
  if (session_.doc().ScoreChanged && files.hasUnsavedWork()) caption += " *";
  setWindowTitle(caption);
}

void MainWindow::UpdateRecentFiles() {
  const auto& list = session_.ini().RecentFiles;
  for (int i = 0; i < kRecentFileCount; ++i) {
    QAction* a = recent_[static_cast<size_t>(i)];
    const std::string path = i < static_cast<int>(list.size()) ? list[static_cast<size_t>(i)] : "";
    a->setText(QString("- %1 %2").arg(i + 1).arg(q(path)));
    a->setVisible(!path.empty());
  }
  // An empty submenu looks broken; say there is nothing yet.
  recentNone_->setText(str("str_NoFiles"));
  recentNone_->setVisible(std::all_of(list.begin(), list.end(),
                                      [](const std::string& p) { return p.empty(); }));
}

void MainWindow::showStatus(const ViewStatus& s) {
  sbTiming_->setText(q(s.BeatCount));
  static const char* fillKeys[] = {"str_IncompleteBar", "str_CompleteBar", "str_ExceededBar"};
  const int state = std::clamp(s.FillState, 0, 2);
  sbFill_->setText("  " + str(fillKeys[state]));
  // A warning red that reads on a light and on a dark status bar alike.
  sbFill_->setStyleSheet(state == 1 ? "" : PaletteIsDark(palette()) ? "color: #ff7070;" : "color: #b00000;");
  sbPages_->setText(s.Pages.empty() ? str("str_PagesLabel") + " 1" : q(s.Pages));
  const Document& d = session_.doc();
  QString where = QString("%1 %2  %3 %4  %5 %6")
                      .arg(str("str_Short_Track")).arg(d.CursorTrack + 1)
                      .arg(str("str_Short_Bar")).arg(d.CursorBar + 1)
                      .arg(str("str_Short_Beat")).arg(d.CursorBeat + 1);
  if (auto seconds = CursorTimeSeconds(d)) where += "   " + q(FormatStatusTime(*seconds));
  sbTime_->setText(where);
  if (!s.Error.empty()) statusBar()->showMessage(q(s.Error), 5000);
  SetWindowCaption();
}

void MainWindow::moveCursorBar(int to) {
  Document& d = session_.doc();
  const int last = d.score.GetLastBar(d.CursorTrack);
  d.CursorBar = static_cast<int16_t>(std::clamp(to, 0, std::max(0, last)));
  d.CursorBeat = 0;
  DrawDocument();
}

void MainWindow::moveCursorTrack(int delta) {
  Document& d = session_.doc();
  const int t = std::clamp(d.CursorTrack + delta, 0, d.score.LastTrack());
  if (t == d.CursorTrack) return;
  d.CursorTrack = static_cast<int16_t>(t);
  d.clampCursor();
  d.FullRelayout = true;
  view_->resetScroll();
  DrawDocument();
}

void MainWindow::mnuFileProperties_Click() {
  FilePropertiesDialog dlg(session_, this);
  dlg.onApply = [this] { DrawDocument(); };
  dlg.exec();
  DrawDocument();
}

void MainWindow::mnuToolsOptions_Click() {
  OptionsDialog dlg(session_, this);
  dlg.onApply = [this] {
    session_.doc().FullRelayout = true;
    emit settingsApplied();
    DrawDocument();
  };
  dlg.exec();
}

void MainWindow::closeEvent(QCloseEvent* e) {
  if ((closeTools && !closeTools()) || !session_.files().AskToSave()) {
    e->ignore();
    return;
  }
  storeToolbars();
  session_.settings().SaveSetting("Window", "Geometry", saveGeometry().toBase64().toStdString());
  session_.settings().SaveSetting("Window", "ToolbarState", saveState().toBase64().toStdString());
  session_.shutdown();
  e->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* e) {
  if (e->mimeData()->hasUrls()) e->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* e) {
  const QList<QUrl> urls = e->mimeData()->urls();
  if (urls.isEmpty() || !urls.first().isLocalFile()) return;
  e->acceptProposedAction();
  if (urls.size() > 1) {
    session_.prompter().message(session_.messages().str("txt_DropOnlyOne"),
                                session_.messages().str("str_Error"), MessageIcon::Information);
    return;
  }
  const std::string path = urls.first().toLocalFile().toStdString();
  if (openToolFile && openToolFile(path)) return;
  session_.files().openAfterAsking(path);
}

}  // namespace plectaro
