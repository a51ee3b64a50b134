// The main window and its dialogs driven through their widgets, on the offscreen platform, with
// scripted answers to every question.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollBar>
#include <QSet>
#include <QTabWidget>
#include <QTest>
#include <QMimeData>
#include <QTimer>
#include <QWheelEvent>
#include <QDropEvent>
#include <functional>
#include <QToolBar>
#include <memory>
#include <QImage>
#include <QPalette>
#include <algorithm>
#include <utility>
#include <vector>

#include "../shell/test_folder.h"
#include "score/file_io.h"
#include "score/new_score.h"
#include "shell/session.h"
#include "shell/ui/desktop_palette.h"
#include "shell/ui/document_view.h"
#include "shell/ui/file_properties_dialog.h"
#include "shell/ui/main_window.h"
#include "shell/ui/options_dialog.h"
#include "shell/ui/window_fit.h"

// Fontconfig keeps a cache for the life of the process that the leak checker would report;
// leaks of our own code are still caught.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }

namespace plectaro {
namespace {

class MainWindowTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    static int argc = 1;
    static char name[] = "gui_tests";
    static char* argv[] = {name, nullptr};
    if (!QApplication::instance()) new QApplication(argc, argv);
  }

  testing::TempFolder home;
  ScriptedPrompter prompter;
  std::unique_ptr<Session> session;
  std::unique_ptr<MainWindow> window;

  void start(const std::string& file = "") {
    window.reset();
    session = std::make_unique<Session>(ResolveAppFolder(home.path().string()), prompter);
    CommandLine cmd;
    cmd.file = file;
    session->start(cmd, {testing::SourceData()});
    window = std::make_unique<MainWindow>(*session);
    window->restoreToolbars();
    window->show();
    window->DrawDocument();
    QCoreApplication::processEvents();
  }
  std::string demo() const { return (testing::SourceData() / "examples" / "riff.plm").string(); }
  std::string path(const char* n) const { return (home / n).string(); }
  QAction* act(const char* name) const {
    QAction* a = window->action(name);
    EXPECT_NE(a, nullptr) << name;
    return a;
  }
  // Runs `fn` on the next modal dialog that opens, then lets it close.
  template <class Dialog>
  static void whenModal(std::function<void(Dialog*)> fn) {
    QTimer::singleShot(0, [fn] {
      auto* dlg = qobject_cast<Dialog*>(QApplication::activeModalWidget());
      ASSERT_NE(dlg, nullptr);
      fn(dlg);
      if (dlg->isVisible()) dlg->reject();
    });
  }
  template <class T>
  static T* child(QObject* parent, const char* name) {
    T* w = parent->findChild<T*>(name);
    EXPECT_NE(w, nullptr) << name;
    return w;
  }
};

TEST_F(MainWindowTest, MenusCarryTheirCaptionsStateAndStandardShortcuts) {
  start();
  QStringList titles;
  for (QAction* a : window->menuBar()->actions()) titles << a->text();
  EXPECT_EQ(titles, (QStringList{"&File", "&Edit", "&View", "&Note", "&Beat", "B&ar", "&Track",
                                 "&Operations", "&Sound", "&Go", "Too&ls", "&Help"}));
  // Alt and a letter opens exactly one menu.
  QSet<QChar> mnemonics;
  for (const QString& t : titles) {
    const QChar m = t.at(t.indexOf('&') + 1).toLower();
    EXPECT_FALSE(mnemonics.contains(m)) << t.toStdString();
    mnemonics.insert(m);
  }
  struct Item {
    const char* name;
    QKeySequence keys;
    bool enabled;
  };
  const Item items[] = {
      {"mnuFileNew", QKeySequence(Qt::CTRL | Qt::Key_N), true},
      {"mnuFileOpen", QKeySequence(Qt::CTRL | Qt::Key_O), true},
      {"mnuFileSave", QKeySequence(Qt::CTRL | Qt::Key_S), true},
      {"mnuFileSaveAs", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S), true},
      {"mnuFileProperties", QKeySequence(Qt::ALT | Qt::Key_Return), true},
      {"mnuFilePrint", QKeySequence(Qt::CTRL | Qt::Key_P), false},
      {"mnuFileExit", QKeySequence(Qt::CTRL | Qt::Key_Q), true},
      {"mnuEditUndo", QKeySequence(Qt::CTRL | Qt::Key_Z), false},
      {"mnuEditFindReplace", QKeySequence(Qt::CTRL | Qt::Key_F), false},
      {"mnuSoundPlayFromStart", QKeySequence(Qt::Key_F5), false},
      {"mnuSoundPlayFromHere", QKeySequence(Qt::Key_F6), false},
      {"mnuSoundPlayBar", QKeySequence(Qt::Key_F7), false},
      {"mnuBarNext", QKeySequence(Qt::CTRL | Qt::Key_Right), true},
      {"mnuToolsOptions", QKeySequence(), true},
      {"mnuNoteEffectsTechniques7", QKeySequence(), false},
      {"mnuChordXTuplets8", QKeySequence(), false},
  };
  for (const Item& i : items) {
    QAction* a = act(i.name);
    if (!a) continue;
    if (!i.keys.isEmpty()) {
      EXPECT_EQ(a->shortcut(), i.keys) << i.name;
    }
    EXPECT_EQ(a->isEnabled(), i.enabled) << i.name;
  }
  EXPECT_EQ(act("mnuNoteEffectsTechniques7")->text(), "Slide Into Down");
  EXPECT_EQ(act("mnuChordXTuplets0")->text(), "3 (Triplet)");
  // No key may stand for two commands.
  QSet<QString> seen;
  for (QAction* a : window->findChildren<QAction*>()) {
    if (a->shortcut().isEmpty()) continue;
    const QString k = a->shortcut().toString();
    EXPECT_FALSE(seen.contains(k)) << k.toStdString() << " twice";
    seen.insert(k);
  }
}

TEST_F(MainWindowTest, PropertiesTitleSurvivesSaveAsAndReopen) {
  start(demo());
  EXPECT_TRUE(window->windowTitle().contains("riff.plm"));
  whenModal<FilePropertiesDialog>([this](FilePropertiesDialog* dlg) {
    QLineEdit* title = child<QLineEdit>(dlg->tabs()->widget(0), "txtTitle");
    EXPECT_EQ(title->text().toStdString(), session->doc().score.Title);
    title->setText("Gravel Road, take two");
    child<QPushButton>(dlg, "cmdOK")->click();
  });
  act("mnuFileProperties")->trigger();
  EXPECT_TRUE(session->doc().ScoreChanged);
  EXPECT_TRUE(window->windowTitle().endsWith(" *"));

  prompter.pushText(path("take2.plm"));
  act("mnuFileSaveAs")->trigger();
  EXPECT_TRUE(window->windowTitle().contains("take2.plm"));
  EXPECT_FALSE(window->windowTitle().endsWith(" *"));

  act("mnuFileNew")->trigger();  // nothing to lose: no question
  EXPECT_EQ(session->doc().score.Title, "Untitled");
  prompter.pushText(path("take2.plm"));
  act("mnuFileOpen")->trigger();
  EXPECT_EQ(session->doc().score.Title, "Gravel Road, take two");
  // The recent-file menu shows the file at the top.
  EXPECT_EQ(act("mnuFileOpenRecentItem0")->text().toStdString(), "- 1 " + path("take2.plm"));
  EXPECT_TRUE(act("mnuFileOpenRecentItem0")->isVisible());
  EXPECT_EQ(prompter.pending(), 0u);
}

TEST_F(MainWindowTest, ClosingAsksAndCancelKeepsTheDocument) {
  start(demo());
  session->doc().score.Title = "Unsaved edit";
  session->doc().touched();
  prompter.push(Answer::Cancel);
  EXPECT_FALSE(window->close());
  EXPECT_EQ(session->doc().score.Title, "Unsaved edit");
  EXPECT_EQ(prompter.asked().back().text, "Would you like to save the changes to 'riff.plm' ?");

  // No lets the window go; the settings file is written on the way out.
  std::filesystem::remove(session->folder().iniFile());
  prompter.push(Answer::No);
  EXPECT_TRUE(window->close());
  EXPECT_TRUE(std::filesystem::exists(session->folder().iniFile()));
}

TEST_F(MainWindowTest, ProtectedFileAsksForThePasswordBeforeTheFirstEdit) {
  start();
  session->doc().score.PasswordProtected = true;
  session->doc().score.Password = "open sesame";
  ASSERT_TRUE(session->files().ForceSaveFile(path("locked.plm")));
  prompter.pushText(path("locked.plm"));
  act("mnuFileOpen")->trigger();
  ASSERT_EQ(session->doc().score.Password, "open sesame");

  auto editTitle = [&](const char* t) {
    FilePropertiesDialog dlg(*session, window.get());
    // The password is not shown before it has been given.
    EXPECT_EQ(child<QLineEdit>(dlg.tabs()->widget(0), "txtPassword")->text().isEmpty(),
              !session->doc().PasswordEntered);
    child<QLineEdit>(dlg.tabs()->widget(0), "txtTitle")->setText(t);
    return dlg.apply();
  };
  prompter.pushText(std::optional<std::string>("wrong"));
  EXPECT_FALSE(editTitle("Changed"));
  EXPECT_EQ(session->doc().score.Title, "Untitled");
  EXPECT_EQ(prompter.asked().back().text, "Wrong password: this document may not be edited.");
  prompter.pushText(std::optional<std::string>("open sesame"));
  EXPECT_TRUE(editTitle("Changed"));
  EXPECT_EQ(session->doc().score.Title, "Changed");
  EXPECT_EQ(session->doc().score.Password, "open sesame");
  EXPECT_TRUE(editTitle("Changed again"));  // asked once per opening
  EXPECT_EQ(prompter.pending(), 0u);
}

TEST_F(MainWindowTest, PropertiesLeaveValuesTheyCannotShowAlone) {
  start();
  Score& s = session->doc().score;
  s.Tempo = 90.5f;
  s.RowSpacing = 2000;
  s.HeaderFont.Name = "Some Font Not Installed";
  const Score before = s;
  FilePropertiesDialog dlg(*session, window.get());
  EXPECT_TRUE(dlg.apply());
  EXPECT_TRUE(session->doc().score == before);
  EXPECT_FALSE(session->doc().ScoreChanged);
}

TEST_F(MainWindowTest, RenamedPictureGivesTheWrongFileMessageAndANewScore) {
  start(demo());
  const std::string png("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\x10", 20);
  WriteFileAtomically(home / "holiday.plm", png);
  prompter.pushText(path("holiday.plm"));
  act("mnuFileOpen")->trigger();
  ASSERT_FALSE(prompter.asked().empty());
  EXPECT_EQ(prompter.asked().back().kind, "message");
  EXPECT_EQ(prompter.asked().back().text.rfind("This is not a Plectaro music file", 0), 0u);
  EXPECT_EQ(session->doc().score.Title, "Untitled");
  EXPECT_TRUE(window->windowTitle().contains("Unsaved.plm"));
}

TEST_F(MainWindowTest, OptionsPagesInOrderAndSettingsSurviveARestart) {
  start();
  whenModal<OptionsDialog>([](OptionsDialog* dlgp) {
    OptionsDialog& dlg = *dlgp;
    QStringList pages;
    for (int i = 0; i < dlg.tabs()->count(); ++i) pages << dlg.tabs()->tabText(i);
    EXPECT_EQ(pages, (QStringList{"Drawing Options", "Miscellaneous", "Editing", "File Handling",
                                  "Languages", "Effects Settings", "Device Options",
                                  "Playback Options", "Scale Manager", "Chord Manager",
                                  "Fretboard Knowledge Trainer", "Pitch Perfector",
                                  "Guitar Lessons", "Band Manager"}));
    auto* langs = child<QListWidget>(&dlg, "lstLanguages");
    EXPECT_EQ(langs->currentItem() ? langs->currentItem()->text() : QString(), "English");
    QCheckBox* stretch = child<QCheckBox>(&dlg, "chkAutoStretch");
    EXPECT_EQ(stretch->text(), "Automatically Stretch Page to fit Window");
    stretch->setChecked(!stretch->isChecked());
    child<QCheckBox>(&dlg, "chkCountIn")->setChecked(false);
    child<QPushButton>(&dlg, "cmdOK")->click();
  });
  act("mnuToolsOptions")->trigger();
  EXPECT_TRUE(session->ini().AutoPageStretch);
  window->toolbar(5)->hide();
  ASSERT_TRUE(window->close());

  start();
  EXPECT_TRUE(session->ini().AutoPageStretch);
  EXPECT_FALSE(session->ini().CountIn);
  EXPECT_FALSE(session->ini().ToolbarVisible[5]);
  EXPECT_TRUE(window->toolbar(5)->isHidden());
  EXPECT_FALSE(window->toolbar(0)->isHidden());
}

TEST_F(MainWindowTest, NewDocumentDefaultsComeFromTheSecondPage) {
  start();
  {
    FilePropertiesDialog dlg(*session, window.get());
    QWidget* defaults = dlg.tabs()->widget(1);
    EXPECT_EQ(dlg.tabs()->tabText(1), "New Documents");
    EXPECT_EQ(defaults->findChild<QLineEdit*>("dtxtTitle"), nullptr);
    child<QLineEdit>(defaults, "dtxtAuthor")->setText("J. Picker");
    child<QPushButton>(&dlg, "cmdOK")->click();
  }
  EXPECT_EQ(session->settings().GetSetting(kDefaultInfoSection, "3"), "J. Picker");
  EXPECT_EQ(session->doc().score.Author, "");  // the open document is not the defaults
  act("mnuFileNew")->trigger();
  EXPECT_EQ(session->doc().score.Author, "J. Picker");
}

TEST_F(MainWindowTest, TheLanguageFileInForceNamesTheMenus) {
  start();
  ASSERT_TRUE(window->close());
  std::string text = ReadWholeFile(session->languageFile());
  text.replace(text.find("\r\n&File\r\n"), 9, "\r\n&Datei\r\n");
  WriteFileAtomically(session->languageFile(), text);
  start();
  EXPECT_EQ(window->menuBar()->actions().first()->text(), "&Datei");
}

TEST_F(MainWindowTest, AFileDroppedOnTheWindowOpensAfterAsking) {
  start();
  EXPECT_TRUE(act("mnuFileOpenRecentNone")->isVisible());
  session->doc().score.Title = "Draft";
  session->doc().touched();
  auto drop = [&](const QList<QUrl>& urls) {
    QMimeData mime;
    mime.setUrls(urls);
    // Straight to the window's handler: the application's drag bookkeeping wants a real drag.
    QDropEvent e(QPointF(100, 100), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    static_cast<QObject*>(window.get())->event(&e);
  };
  prompter.push(Answer::Cancel);
  drop({QUrl::fromLocalFile(QString::fromStdString(demo()))});
  EXPECT_EQ(session->doc().score.Title, "Draft");
  prompter.push(Answer::No);
  drop({QUrl::fromLocalFile(QString::fromStdString(demo()))});
  EXPECT_NE(session->doc().score.Title, "Draft");
  EXPECT_EQ(session->doc().score.CurrentFileName, demo());
  EXPECT_FALSE(act("mnuFileOpenRecentNone")->isVisible());
  // Several files at once: one message, nothing opened.
  const size_t asked = prompter.asked().size();
  drop({QUrl::fromLocalFile("/a.plm"), QUrl::fromLocalFile("/b.plm")});
  EXPECT_EQ(prompter.asked().size(), asked + 1);
  EXPECT_EQ(session->doc().score.CurrentFileName, demo());
  EXPECT_EQ(prompter.pending(), 0u);
}

TEST_F(MainWindowTest, TheViewPaintsTheSongWithScrollRangesAndStatus) {
  start(demo());
  window->resize(900, 600);
  QCoreApplication::processEvents();
  window->view()->viewport()->repaint();
  QLabel* pages = child<QLabel>(window.get(), "sbPagesPanel");
  QLabel* timing = child<QLabel>(window.get(), "sbTimingPanel");
  EXPECT_TRUE(pages->text().startsWith("Pages:"));
  EXPECT_TRUE(timing->text().contains("64ths"));
  // A page is higher than the window: there is somewhere to scroll to.
  EXPECT_GT(window->view()->verticalScrollBar()->maximum(), 0);
  // The mouse wheel scrolls down the page.
  QScrollBar* v = window->view()->verticalScrollBar();
  const int top = v->value();
  QWheelEvent wheel(QPointF(200, 200), window->view()->viewport()->mapToGlobal(QPointF(200, 200)),
                    QPoint(), QPoint(0, -120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                    false);
  QCoreApplication::sendEvent(window->view()->viewport(), &wheel);
  EXPECT_GT(v->value(), top);
  // What a scroll shows is what a fresh layout at that place shows.
  const QImage scrolled = window->view()->viewport()->grab().toImage();
  session->doc().FullRelayout = true;
  const QImage fresh = window->view()->viewport()->grab().toImage();
  EXPECT_TRUE(scrolled == fresh);
  const int before = session->doc().CursorBar;
  act("mnuBarNext")->trigger();
  EXPECT_EQ(session->doc().CursorBar, before + 1);
}

}  // namespace
}  // namespace plectaro

namespace plectaro {
namespace {

TEST(WindowFit, FirstPlaceFitsTheScreenAndRowsWrap) {
  struct Place {
    QRect available, expected;
  };
  const Place places[] = {
      {{0, 0, 1024, 740}, {51, 37, 921, 666}},        // a small laptop, under its panel
      {{0, 0, 1920, 1050}, {260, 52, 1400, 945}},     // full HD: as large as a page wants
      {{1920, 0, 2560, 1440}, {2500, 220, 1400, 1000}},  // a second screen to the right
      {{0, 0, 1280, 683}, {64, 34, 1152, 614}},       // 1920 x 1024 at a scale of 1.5
  };
  for (const Place& p : places) {
    const QRect r = FirstWindowPlace(p.available);
    EXPECT_EQ(r, p.expected) << p.available.width() << "x" << p.available.height();
    EXPECT_TRUE(p.available.contains(r));
  }
  struct Rows {
    std::vector<int> widths;
    int row;
    std::vector<int> breaks;
  };
  const Rows rows[] = {
      {{100, 100, 100}, 300, {}},
      {{100, 100, 100}, 299, {2}},
      {{250, 100, 100, 100}, 300, {1}},
      {{400, 100}, 300, {1}},  // too wide for any row: alone on the first
      {{100, 400, 100}, 300, {1, 2}},
      {{}, 300, {}},
  };
  for (const Rows& r : rows) EXPECT_EQ(RowBreaks(r.widths, r.row), r.breaks);
  for (const auto& [theme, dark] : std::vector<std::pair<const char*, bool>>{
           {"Adwaita:dark", true}, {"Adwaita-dark", true}, {"Yaru-Dark", true}, {"Adwaita", false},
           {"Darkly", false}, {"", false}})
    EXPECT_EQ(ThemeNameIsDark(theme), dark) << theme;
  EXPECT_TRUE(PaletteIsDark(DarkPalette()));
}

TEST_F(MainWindowTest, ToolbarsWrapWithinTheWindowAndEveryButtonHasAnIconAndATip) {
  start();
  for (int i = 0; i < kToolbarCount; ++i) window->toolbar(i)->setVisible(true);
  window->resize(700, 600);
  for (int k = 0; k < 5; ++k) QCoreApplication::processEvents();
  for (int i = 0; i < kToolbarCount; ++i) {
    QToolBar* tb = window->toolbar(i);
    if (window->toolBarArea(tb) != Qt::TopToolBarArea) continue;
    EXPECT_LE(tb->geometry().right(), window->width()) << tb->objectName().toStdString();
  }
  EXPECT_LE(window->width(), 700);

  // Light and dark: the program's own drawings take the palette's text colour.
  auto inkOf = [&](const char* name) {
    const QImage img = act(name)->icon().pixmap(24, 24).toImage();
    int darkest = 255, lightest = 0;
    for (int y = 0; y < img.height(); ++y)
      for (int x = 0; x < img.width(); ++x) {
        const QColor c = img.pixelColor(x, y);
        if (c.alpha() < 200) continue;
        darkest = std::min(darkest, c.lightness());
        lightest = std::max(lightest, c.lightness());
      }
    return std::pair{darkest, lightest};
  };
  for (int i = 0; i < kToolbarCount; ++i)
    for (QAction* a : window->toolbar(i)->actions()) {
      if (a->objectName().isEmpty()) continue;  // a widget of the bar, not a command
      EXPECT_FALSE(a->icon().isNull()) << a->objectName().toStdString();
      EXPECT_FALSE(a->toolTip().isEmpty()) << a->objectName().toStdString();
      EXPECT_FALSE(a->toolTip().contains('&') || a->toolTip().contains('\t')) << a->objectName().toStdString();
    }
  QPalette dark = window->palette();
  dark.setColor(QPalette::Window, QColor(40, 40, 40));
  dark.setColor(QPalette::ButtonText, QColor(230, 230, 230));
  dark.setColor(QPalette::WindowText, QColor(230, 230, 230));
  const QPalette light = window->palette();
  EXPECT_LT(inkOf("mnuBarNext").first, 80);
  window->setPalette(dark);
  EXPECT_GT(inkOf("mnuBarNext").second, 180);
  EXPECT_GT(inkOf("mnuBarNext").first, 150);
  window->setPalette(light);
  EXPECT_LT(inkOf("mnuBarNext").first, 80);
}

}  // namespace
}  // namespace plectaro
