// The document picture's keys and clicks, handed to the editor. Install one EditorInput on the
// window's document view; it turns Qt key events into the editor's keys (the way Shift+digit,
// the keypad and the laptop's main-row + and - arrive differs by keyboard), clicks into
// picDocument_MouseDown, and after an edit keeps the cursor's row in sight.
//
// The whole wiring of the editor into the main window (tests/editing/main_window_editor.h does
// exactly this):
//   EditContext ctx(session.doc(), session.prompter());
//   ctx.setUndoLevels(ini.UndoLevels);  ctx.settings.PlayAsTyped = ini.PlayNotesAsTyped;
//   ctx.hooks.drawDocument    = [&] { window.DrawDocument(); };
//   ctx.hooks.passwordCorrect = [&] { return session.files().PasswordCorrect(); };
//   ctx.hooks.text            = [&](std::string_view k) { return session.messages().str(k); };
//   ctx.hooks.playChord       = [&](int t, int b, int k) { player.soundBeat(session.doc(), t, b, k); };
//   ctx.hooks.isPlaying / stopPlayback / playFromStart / playFromHere -> the Player
//   ctx.hooks.trackChanged, gotoPointsChanged, openDialog, openRightMenu -> the window
//   auto* input = new EditorInput(window.view(), ctx);
//   connect(view, &DocumentView::drawn, [&] { input->afterDraw(); UpdateEditingMenus(find, ctx); });
//   ConnectEditingMenus(find, &window, ctx);   // find = [&](QString n) { return window.action(n); }
//   files.documentReplaced -> also ctx.documentReplaced()
#pragma once

#include <QObject>
#include <array>
#include <optional>

#include "editing/edit_context.h"
#include "editing/keys.h"

class QAbstractScrollArea;
class QKeyEvent;
class QWheelEvent;

namespace plectaro {

// The editor's key for a Qt key event; nullopt for keys the editor has no use for.
// Keypad + and - are the length keys (with Shift: +1 / -1 semitone). On the main row, "=" and
// "-" are the length keys and "+" and "_" the semitone keys, for keyboards without a keypad.
std::optional<KeyPress> KeyPressFromQt(const QKeyEvent& e);

class EditorInput : public QObject {
  Q_OBJECT
 public:
  // Filters the view's key events and its viewport's mouse presses.
  EditorInput(QAbstractScrollArea* view, EditContext& ctx);

  // Call after every draw of the view (the view's drawn signal): when anything moved the
  // cursor, the vertical scroll bar is moved so that the cursor's row is in sight.
  void afterDraw();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QAbstractScrollArea* view_;
  QWidget* viewport_;
  EditContext& ctx_;
  bool follow_ = false;
  std::array<int, 3> lastCursor_{};  // track, bar, beat at the last draw
  double wheelRest_ = 0;             // part of a wheel notch not yet scrolled
  QWidget* band_ = nullptr;          // the selection band, a child of the viewport

  void wheel(const QWheelEvent& e);
};

}  // namespace plectaro
