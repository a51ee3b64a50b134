// The main window with the editor wired in, to try the editing by hand before the window does
// the wiring itself: plectaro's start-up with a QtPrompter, then EditorInput on the view.
//   editing_playground [--home DIR] [FILE.plm]
#include <QApplication>

#include <string>
#include <vector>

#include "main_window_editor.h"
#include "shell/ui/qt_prompter.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QApplication::setApplicationName("Plectaro");
  std::vector<std::string> args;
  for (const QString& a : QApplication::arguments().mid(1)) args.push_back(a.toStdString());
  const plectaro::CommandLine cmd = plectaro::ParseCommandLine(args);
  plectaro::QtPrompter prompter;
  plectaro::Session session(plectaro::ResolveAppFolder(cmd.home), prompter);
  prompter.setMessages(&session.messages());
  session.start(cmd, {PLECTARO_SOURCE_DIR "/data"});
  plectaro::test::WiredWindow w(session);
  prompter.setParent(&w.window);
  w.window.show();
  w.window.view()->setFocus();
  w.window.DrawDocument();
  return app.exec();
}
