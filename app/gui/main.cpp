// plectaro: the editor. The session brings the program up in its fixed order (language,
// folders, settings, a new document, the command line's file, first-run defaults); then the
// window shows. --print-startup-time reports the time to the first painted page, then the time
// the sounds are ready and the memory in use, and quits.
#include <QApplication>
#include <QIcon>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "score/memory_pages.h"
#include "shell/session.h"
#include "shell/ui/autosave_timer.h"
#include "shell/ui/desktop_palette.h"
#include "shell/ui/document_view.h"
#include "shell/ui/main_window.h"
#include "shell/ui/qt_prompter.h"

#ifdef PLECTARO_HAVE_PLAYBACK
#include "playback/qt/player.h"
#include "playback_wiring.h"
#include "practice_wiring.h"
#endif
#ifdef PLECTARO_HAVE_REFERENCE
#include "reference/ui/reference_menus.h"
#include "reference/ui/reference_sound.h"
#endif
#ifdef PLECTARO_HAVE_EXCHANGE
#include "exchange/ui/exchange_menus.h"
#endif
#ifdef PLECTARO_HAVE_EXPORT
#include "export_wiring.h"
#endif
#ifdef PLECTARO_HAVE_TOOLS
#include "tools/ui/tools_menus.h"
#endif
#ifdef PLECTARO_HAVE_EDITING
#include "editing/edit_context.h"
#include "editing/ui/editor_input.h"
#include "editing/ui/effect_menus.h"
#include "editing/ui/menu_commands.h"
#include "editing/ui/right_menu.h"
#include "editing/ui/track_menus.h"
#include "editing/ui/track_selector.h"
#endif
#ifdef PLECTARO_HAVE_EXCHANGE
#include "exchange/ui/text_tab_menus.h"
#endif

namespace {

const auto kProcessStart = std::chrono::steady_clock::now();

std::filesystem::path executableFolder() {
  std::error_code ec;
  auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  return ec ? std::filesystem::path() : exe.parent_path();
}

// Where the language files come from when an app folder is new: beside the program (portable
// use and the build tree), the installed share folder, then the source tree of a development
// build.
std::vector<std::filesystem::path> seedFolders() {
  const auto exe = executableFolder();
  std::vector<std::filesystem::path> seeds = {exe / "Data", exe / ".." / "share" / "plectaro"};
#ifdef PLECTARO_DATA_DIR
  seeds.emplace_back(PLECTARO_DATA_DIR);
#endif
  return seeds;
}

// A size line of /proc/self/status ("VmRSS:", "VmHWM:") in megabytes; 0 when there is none.
double statusMegabytes(const char* key) {
  std::FILE* f = std::fopen("/proc/self/status", "r");
  if (!f) return 0;
  char line[256];
  double kb = 0;
  const size_t n = std::strlen(key);
  while (std::fgets(line, sizeof line, f))
    if (std::strncmp(line, key, n) == 0) kb = std::atof(line + n);
  std::fclose(f);
  return kb / 1024.0;
}

}  // namespace

int main(int argc, char** argv) {
  plectaro::UseLargeMemoryPages();
  QApplication app(argc, argv);
  QApplication::setApplicationName("Plectaro");
  QApplication::setDesktopFileName("plectaro");
  QApplication::setWindowIcon(QIcon::fromTheme("plectaro", QIcon(":/plectaro.svg")));
  plectaro::FollowDesktopPalette(app);

  std::vector<std::string> args;
  for (const QString& a : QApplication::arguments().mid(1)) args.push_back(a.toStdString());
  const plectaro::CommandLine cmd = plectaro::ParseCommandLine(args);
  if (!cmd.error.empty()) {
    std::fprintf(stderr,
                 "plectaro: %s\nusage: plectaro [--home DIR] [--print-startup-time] [FILE.plm]\n",
                 cmd.error.c_str());
    return 2;
  }

  plectaro::QtPrompter prompter;
  plectaro::Session session(plectaro::ResolveAppFolder(cmd.home), prompter);
  prompter.setMessages(&session.messages());
  session.start(cmd, seedFolders());

  plectaro::MainWindow window(session);
  prompter.setParent(&window);
  window.restoreToolbars();

  [[maybe_unused]] plectaro::EditContext* editor = nullptr;
#ifdef PLECTARO_HAVE_EDITING
  // The editor: keys and clicks of the document view, the editing menu items, the undo ring.
  plectaro::EditContext edit(session.doc(), session.prompter());
  editor = &edit;
  auto applySettings = [&] {
    edit.setUndoLevels(static_cast<int16_t>(std::clamp(session.ini().UndoLevels, 0, 100)));
    edit.settings.PlayAsTyped = session.ini().PlayNotesAsTyped;
  };
  applySettings();
  QObject::connect(&window, &plectaro::MainWindow::settingsApplied, &window, applySettings);
  edit.hooks.drawDocument = [&] { window.DrawDocument(); };
  edit.hooks.passwordCorrect = [&] { return session.files().PasswordCorrect(); };
  edit.hooks.text = [&](std::string_view key) { return session.messages().str(key); };
  edit.hooks.trackChanged = [&] { window.view()->resetScroll(); };
  edit.hooks.status = [&](const std::string& t) { window.statusBar()->showMessage(QString::fromStdString(t), 6000); };
  window.view()->notationLine = [&edit] { return edit.NotationEntry ? int{edit.doc.CursorLine} : -1; };
  auto replaced = session.files().documentReplaced;
  session.files().documentReplaced = [&edit, replaced] {
    if (replaced) replaced();
    edit.documentReplaced();
  };
  auto* input = new plectaro::EditorInput(window.view(), edit);
  auto find = [&window](const QString& name) { return window.action(name); };
  plectaro::ConnectEditingMenus(find, &window, edit);
  plectaro::ConnectEffectMenus(find, &window, edit);
  plectaro::ConnectRightMenu(find, window.view(), edit);
#ifdef PLECTARO_HAVE_EXCHANGE
  plectaro::ConnectTextTabMenus(find, &window, edit, [&session] {
    return plectaro::TextExportOptions{session.ini().CopyrightWarning, session.ini().MaxLineLength};
  });
#endif
  QObject::connect(window.view(), &plectaro::DocumentView::drawn, input, [input, find, &edit] {
    input->afterDraw();
    plectaro::UpdateEditingMenus(find, edit);
  });
  // The Track, Operations and Go menus and the mix table.
  auto* tracks = plectaro::ConnectTrackMenus(find, &window, edit, session.folder().data());
  QObject::connect(window.view(), &plectaro::DocumentView::drawn, tracks, &plectaro::TrackMenus::refresh);
  auto* trackList = new plectaro::TrackSelector(edit, &window);
  window.toolbar(7)->addWidget(trackList);
  QObject::connect(window.view(), &plectaro::DocumentView::drawn, trackList, &plectaro::TrackSelector::refresh);
#endif
#ifdef PLECTARO_HAVE_PLAYBACK
  // Playback: the Sound menu, the play marker, notes sounded as they are typed. The output
  // device opens once the first page is on screen, so loading the sounds never delays it.
  plectaro::Player player(&session.settings(), &window);
  auto* sound = new plectaro::PlaybackWiring(window, session, player, editor);
#ifdef PLECTARO_HAVE_EDITING
  tracks->onMixChanged = [&](const std::vector<bool>& silenced) { player.setMix(session.doc().score, silenced); };
  // Fretboard and piano panels, Find and Replace, zoom, and the speed trainer.
  plectaro::WirePractice(window, session, edit, &player);
#endif
  QObject::connect(window.view(), &plectaro::DocumentView::firstPainted, sound,
                   [sound] { QTimer::singleShot(0, sound, [sound] { sound->loadDevice(); }); });
#ifdef PLECTARO_HAVE_TOOLS
  // The practice tools of the Tools menu share the player's output device.
  // They end before the player, whose output they use.
  auto toolWindows = std::make_unique<plectaro::ToolWindows>(
      std::unique_ptr<plectaro::ToolEnv>(new plectaro::ToolEnv{
          player.midi(), session.settings(), session.messages(), session.prompter(), session.folder().data(),
          session.languageFile(), session.ini().OutputProgramID, {}, editor}),
      nullptr);
  auto* tools = toolWindows.get();
  tools->connectMenus([&window](const QString& name) { return window.action(name); });
  window.openToolFile = [tools](const std::string& path) { return tools->openFile(path); };
  window.closeTools = [tools] { return tools->closeAll(); };
  if (plectaro::ToolWindows::isToolFile(cmd.file)) QTimer::singleShot(0, tools, [tools, cmd] { tools->openFile(cmd.file); });
#endif
#endif
#ifdef PLECTARO_HAVE_REFERENCE
  // The chord and scale libraries: Tools > Chord Manager and Scale Manager, File > Chordbook.
  [[maybe_unused]] auto* reference = new plectaro::ReferenceWindows(window, session, editor);
#ifdef PLECTARO_HAVE_PLAYBACK
  plectaro::AttachPlayer(reference->env(), player, session.doc());
#endif
#endif
#ifdef PLECTARO_HAVE_EXCHANGE
  plectaro::ConnectExchangeMenus([&window](const QString& name) { return window.action(name); }, &window, session,
                                 {[&window] { window.DrawDocument(); }});
#endif
#ifdef PLECTARO_HAVE_EXPORT
  plectaro::WireExports(window, session);
#endif
  if (cmd.printStartupTime) {
    // The time to the first page; then, once the sounds have loaded in the background (or
    // could not), that time and the memory of the editor as it runs, synthesizer included.
    auto report = [&app](const char* key, bool last) {
      const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - kProcessStart)
                            .count();
      std::printf("%s %.1f\n", key, ms);
      if (last) std::printf("memory_mb %.1f\npeak_memory_mb %.1f\n", statusMegabytes("VmRSS:"), statusMegabytes("VmHWM:"));
      std::fflush(stdout);
      // Leave without the shutdown's settings write: a timing run changes nothing.
      if (last) QTimer::singleShot(0, &app, [] { std::_Exit(0); });
    };
    bool withSound = false;
#ifdef PLECTARO_HAVE_PLAYBACK
    withSound = true;
    QObject::connect(&player, &plectaro::Player::soundReady, &app, [report] { report("sound_ready_ms", true); });
#endif
    QObject::connect(window.view(), &plectaro::DocumentView::firstPainted, &app,
                     [report, withSound] { report("startup_ms", !withSound); });
  }
  plectaro::StartAutosave(&window, session);
  window.show();
  window.DrawDocument();
#ifdef PLECTARO_HAVE_EXCHANGE
  // A web address on the command line starts the import of tab from that page.
  if (editor && !session.StartAddress().empty())
    plectaro::ShowTabImport(&window, *editor, plectaro::TabSource::Web,
                            QString::fromStdString(session.StartAddress()));
#endif
  return app.exec();
}
