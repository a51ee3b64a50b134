// The editor wired into the main window the way the window will do it itself: keys and clicks
// of the document view through EditorInput, redraws through the window, the password through
// the file commands. Shared by the GUI test and the playground.
#pragma once

#include <QTemporaryDir>
#include <memory>
#include <string>

#include "editing/ui/editor_input.h"
#include "editing/ui/menu_commands.h"
#include "shell/session.h"
#include "shell/ui/document_view.h"
#include "shell/ui/main_window.h"

namespace plectaro::test {

// A session in a fresh home folder, started with `file` (none for a new song).
struct TestSession {
  explicit TestSession(const std::string& file = {})
      : session(ResolveAppFolder(home.path().toStdString()), prompter) {
    CommandLine cmd;
    cmd.home = home.path().toStdString();
    cmd.file = file;
    session.start(cmd, {});
  }
  QTemporaryDir home;
  ScriptedPrompter prompter;
  Session session;
};

struct WiredWindow {
  explicit WiredWindow(Session& session)
      : window(session), ctx(session.doc(), session.prompter()) {
    ctx.setUndoLevels(static_cast<int16_t>(session.ini().UndoLevels));
    ctx.settings.PlayAsTyped = session.ini().PlayNotesAsTyped;
    ctx.hooks.drawDocument = [this] { window.DrawDocument(); };
    auto replaced = session.files().documentReplaced;
    session.files().documentReplaced = [this, replaced] {
      if (replaced) replaced();
      ctx.documentReplaced();
    };
    ctx.hooks.passwordCorrect = [&session] { return session.files().PasswordCorrect(); };
    ctx.hooks.text = [&session](std::string_view key) { return session.messages().str(key); };
    input = new EditorInput(window.view(), ctx);
    auto find = [this](const QString& name) { return window.action(name); };
    ConnectEditingMenus(find, &window, ctx);
    QObject::connect(window.view(), &DocumentView::drawn, input, [this, find] {
      input->afterDraw();
      UpdateEditingMenus(find, ctx);
    });
  }
  MainWindow window;
  EditContext ctx;
  EditorInput* input = nullptr;  // owned by the view
};

}  // namespace plectaro::test
