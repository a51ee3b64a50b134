#include "reference/ui/reference_menus.h"

#include <QAction>
#include <QCoreApplication>
#include <QDockWidget>
#include <QMenu>

#include "reference/ui/chord_manager.h"
#include "reference/ui/scale_list.h"
#include "reference/ui/scale_manager.h"
#include "score/value_text.h"
#include "shell/session.h"
#include "shell/ui/document_view.h"
#include "shell/ui/main_window.h"

namespace plectaro {

ReferenceWindows::ReferenceWindows(MainWindow& window, Session& session, EditContext* edit)
    : QObject(&window), window_(window), session_(session), edit_(edit) {
  env_.data = session.folder().data();
  env_.languageFile = session.languageFile();
  env_.prompter = &session.prompter();
  env_.settings = &session.settings();
  env_.text = [&session](std::string_view key) { return session.messages().str(key); };
  env_.playChords = [&session] { return session.ini().PlayChords; };
  env_.hideChordManager = [&session] { return session.ini().HideChordManager; };
  env_.scaleReverb = [&session] { return session.ini().ScaleReverb; };

  const std::pair<const char*, std::function<void()>> items[] = {
      {"mnuToolsChordManager", [this] { showChordManager(); }},
      {"mnuChordChord", [this] { showChordManager(); }},
      {"mnuFileChords", [this] { showChordbook(); }},
      {"mnuToolsScaleManager", [this] { showScaleManager(); }},
  };
  // The windows' places are kept while the settings are still there to take them.
  connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, [this] {
    if (chordDock_) saveDock(chordDock_, "ChordWindowDetails");
    if (scaleDock_) saveDock(scaleDock_, "ScaleWindowDetails");
    session_.settings().sync();
  });
  for (const auto& [name, run] : items) {
    QAction* a = window.action(name);
    if (!a) continue;
    a->setEnabled(true);
    connect(a, &QAction::triggered, this, run);
  }
  makeScaleList();
}

void ReferenceWindows::makeScaleList() {
  // The open strings of the track being edited; a drum track has none to show, so the neck
  // then shows a guitar in standard tuning.
  auto openPitches = [this] {
    const Document& d = session_.doc();
    std::vector<int> pitches;
    const Track* t = d.CursorTrack >= 0 && d.CursorTrack <= d.score.LastTrack()
                         ? &d.score.Tracks[static_cast<size_t>(d.CursorTrack)] : nullptr;
    const int n = t && !t->DrumTrack ? std::clamp<int>(t->Tuning.NumStrings, 1, kMaxStrings) : 6;
    for (int s = 0; s < n; ++s)
      pitches.push_back(GetStringPitch(s) + (t && !t->DrumTrack ? t->Tuning.Offset[static_cast<size_t>(s)] : 0));
    return pitches;
  };
  scaleList_ = new ScaleListPanel(env_, openPitches);
  env_.populateScaleList = [this] { scaleList_->PopulateScaleList(); };
  scaleListDock_ = new QDockWidget(env_.caption("str_ScaleList", "Scale List"), &window_);
  scaleListDock_->setObjectName("dockScaleList");
  scaleListDock_->setWidget(scaleList_);
  window_.addDockWidget(Qt::BottomDockWidgetArea, scaleListDock_);
  SettingsStore& s = session_.settings();
  scaleListDock_->setVisible(s.GetSetting("ScaleListDetails", "Visible", "0") == "1");
  QAction* toggle = scaleListDock_->toggleViewAction();
  toggle->setObjectName("mnuViewScaleList");
  toggle->setText("&Scale List");
  if (auto* view = window_.findChild<QMenu*>("mnuView")) view->addAction(toggle);
  connect(toggle, &QAction::toggled, this, [this](bool on) {
    session_.settings().SaveSetting("ScaleListDetails", "Visible", on ? "1" : "0");
    if (on) scaleList_->refresh();
  });
  connect(window_.view(), &DocumentView::drawn, scaleList_, [this] {
    if (scaleListDock_->isVisible()) scaleList_->refresh();
  });
}

ReferenceWindows::~ReferenceWindows() = default;

QDockWidget* ReferenceWindows::makeDock(QWidget* content, const char* name, const char* section) {
  auto* d = new QDockWidget(content->windowTitle(), &window_);
  d->setObjectName(name);
  d->setWidget(content);
  d->setAllowedAreas(Qt::AllDockWidgetAreas);
  window_.addDockWidget(Qt::RightDockWidgetArea, d);
  // Where the window stood when the program last closed: floating at its place, or docked.
  SettingsStore& s = session_.settings();
  const int side = std::clamp<int>(ParseI16(s.GetSetting(section, "Dock", "0")), 0, 4);
  dock(d, side);
  if (side == 0) {
    const int left = ParseI32(s.GetSetting(section, "Left", "-1"));
    const int top = ParseI32(s.GetSetting(section, "Top", "-1"));
    const int width = ParseI32(s.GetSetting(section, "Width", "0"));
    const int height = ParseI32(s.GetSetting(section, "Height", "0"));
    d->resize(width > 200 ? width : content->width(), height > 150 ? height : content->height());
    if (left >= 0 && top >= 0) d->move(left, top);
    else d->move(window_.geometry().center() - QPoint(d->width() / 2, d->height() / 2));
  }
  return d;
}

void ReferenceWindows::saveDock(QDockWidget* d, const char* section) const {
  SettingsStore& s = session_.settings();
  int side = 0;
  if (!d->isFloating()) {
    switch (window_.dockWidgetArea(d)) {
      case Qt::TopDockWidgetArea: side = 1; break;
      case Qt::BottomDockWidgetArea: side = 2; break;
      case Qt::LeftDockWidgetArea: side = 3; break;
      default: side = 4; break;
    }
  }
  s.SaveSetting(section, "Dock", std::to_string(side));
  s.SaveSetting(section, "Left", std::to_string(d->x()));
  s.SaveSetting(section, "Top", std::to_string(d->y()));
  s.SaveSetting(section, "Width", std::to_string(d->width()));
  s.SaveSetting(section, "Height", std::to_string(d->height()));
}

void ReferenceWindows::dock(QDockWidget* d, int side) {
  if (side == 0) {
    d->setFloating(true);
    return;
  }
  const Qt::DockWidgetArea areas[] = {Qt::TopDockWidgetArea, Qt::BottomDockWidgetArea, Qt::LeftDockWidgetArea,
                                      Qt::RightDockWidgetArea};
  d->setFloating(false);
  window_.addDockWidget(areas[std::clamp(side, 1, 4) - 1], d);
}

ChordManager* ReferenceWindows::chordManager() {
  if (!chords_) {
    chords_ = new ChordManager(env_, edit_);
    chordDock_ = makeDock(chords_, "dockChordManager", "ChordWindowDetails");
    connect(chords_, &ChordManager::dockRequested, this, [this](int side) { dock(chordDock_, side); });
    connect(chords_, &ChordManager::chordAdded, this, [this] {
      if (env_.option(env_.hideChordManager, false)) chordDock_->hide();
      window_.view()->setFocus();
    });
  }
  return chords_;
}

ScaleManager* ReferenceWindows::scaleManager() {
  if (!scales_) {
    scales_ = new ScaleManager(env_, edit_);
    scaleDock_ = makeDock(scales_, "dockScaleManager", "ScaleWindowDetails");
  }
  return scales_;
}

void ReferenceWindows::showChordManager() {
  ChordManager* m = chordManager();
  chordDock_->show();
  chordDock_->raise();
  m->setSearch(ChordSearch::Name);
}

void ReferenceWindows::showChordbook() {
  ChordManager* m = chordManager();
  chordDock_->show();
  chordDock_->raise();
  m->setSearch(ChordSearch::InFile);
}

void ReferenceWindows::showScaleManager() {
  scaleManager();
  scaleDock_->show();
  scaleDock_->raise();
}

}  // namespace plectaro
