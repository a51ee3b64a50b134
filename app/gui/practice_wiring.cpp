#include "practice_wiring.h"

#include <QAction>
#include <QMenu>
#include <QMessageBox>
#include <QStatusBar>
#include <cmath>

#include "editing/edit_context.h"
#include "editing/selection.h"
#include "editing/ui/find_dialog.h"
#include "editing/ui/practice_panels.h"
#include "playback/qt/player.h"
#include "playback/ui/speed_trainer_dialog.h"
#include "score/value_text.h"
#include "shell/session.h"
#include "shell/ui/document_view.h"
#include "shell/ui/main_window.h"

namespace plectaro {

namespace {

// View > Zoom In, Zoom Out, Actual Size; the zoom is kept for the next start.
void wireZoom(MainWindow& window, Session& session) {
  DocumentView* view = window.view();
  SettingsStore& store = session.settings();
  const double kept = ParseI32(store.GetSetting("View", "ZoomPercent", "100")) / 100.0;
  view->setZoom(kept > 0 ? kept : 1.0);
  QObject::connect(view, &DocumentView::zoomChanged, &window, [&window, &store](double z) {
    store.SaveSetting("View", "ZoomPercent", std::to_string(static_cast<int>(std::lround(z * 100))));
    window.statusBar()->showMessage(QString("Zoom %1%").arg(std::lround(z * 100)), 2000);
  });
  QMenu* viewMenu = window.findChild<QMenu*>("mnuView");
  if (!viewMenu) return;
  viewMenu->addSeparator();
  // Steps that land on the round sizes: 50, 67, 80, 100, 125, 150, 200, 300, 400.
  static const double steps[] = {0.5, 0.67, 0.8, 1.0, 1.25, 1.5, 2.0, 3.0, 4.0};
  const auto add = [&](const char* name, const char* text, QList<QKeySequence> keys, auto fn) {
    QAction* a = viewMenu->addAction(text);
    a->setObjectName(name);
    a->setShortcuts(keys);
    a->setShortcutContext(Qt::WindowShortcut);
    QObject::connect(a, &QAction::triggered, view, fn);
  };
  add("mnuViewZoomIn", "Zoom &In", {QKeySequence(Qt::CTRL | Qt::Key_Plus), QKeySequence(Qt::CTRL | Qt::Key_Equal)}, [view] {
    for (double s : steps)
      if (s > view->zoom() + 0.001) return view->setZoom(s);
  });
  add("mnuViewZoomOut", "Zoom &Out", {QKeySequence(Qt::CTRL | Qt::Key_Minus)}, [view] {
    for (auto it = std::rbegin(steps); it != std::rend(steps); ++it)
      if (*it < view->zoom() - 0.001) return view->setZoom(*it);
  });
  add("mnuViewZoomReset", "&Actual Size", {QKeySequence(Qt::CTRL | Qt::Key_0)}, [view] { view->setZoom(1.0); });
}

void wireTrainer(MainWindow& window, Session& session, EditContext& edit, Player& player) {
  QAction* a = window.action("mnuSoundSpeedTrainer");
  if (!a) return;
  a->setEnabled(true);
  QObject::connect(a, &QAction::triggered, &window, [&window, &session, &edit, &player] {
    Document& doc = session.doc();
    const auto sel = SelectionOf(edit);
    const SpeedTrainerForm form =
        DefaultSpeedTrainerForm(doc.score, doc.CursorBar, sel ? sel->firstBar : -1, sel ? sel->lastBar : -1);
    const auto text = [&session](std::string_view key) {
      return key == "Caption" ? session.messages().text("ntne_frmSpeedTrainer", "Caption") : session.messages().str(key);
    };
    SpeedTrainerDialog dialog(form, static_cast<int>(doc.score.BarInfos.size()), session.ini().CountIn, text, &window);
    if (dialog.exec() != QDialog::Accepted) return;
    PlaybackOptions& o = player.options();
    o.CountIn = dialog.countIn();
    o.Metronome = session.ini().Metronome;
    o.FollowPlayback = session.ini().AutoScroll;
    o.CurrentTrack = doc.CursorTrack;
    player.playTrainer(doc, dialog.trainer());
  });
  // The tempo of each pass stands in the status bar while it plays.
  QObject::connect(&player, &Player::trainerPass, &window, [&window](int pass, int tempo) {
    window.statusBar()->showMessage(QString("Speed Trainer: pass %1 at %2 bpm").arg(pass).arg(tempo));
  });
  QObject::connect(&player, &Player::playingChanged, &window, [&window](bool playing) {
    if (!playing && window.statusBar()->currentMessage().startsWith("Speed Trainer")) window.statusBar()->clearMessage();
  });
}

}  // namespace

void WirePractice(MainWindow& window, Session& session, EditContext& edit, Player* player) {
  const auto find = [&window](const QString& name) { return window.action(name); };
  ConnectFindMenu(find, &window, edit);
  wireZoom(window, session);
  auto* panels = new PracticePanels(window, edit, session.settings());
  panels->connectMenus(find);
  QObject::connect(window.view(), &DocumentView::drawn, panels, &PracticePanels::refresh);
  if (!player) return;
  wireTrainer(window, session, edit, *player);
  QObject::connect(player, &Player::beatSounding, panels, [panels, player](int track, int bar, int beat) {
    panels->showSounding(player->playingScore(), track, bar, beat);
  });
  QObject::connect(player, &Player::playingChanged, panels, [panels](bool playing) {
    if (!playing) panels->stopSounding();
  });
}

}  // namespace plectaro
