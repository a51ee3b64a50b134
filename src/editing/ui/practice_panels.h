// The virtual fretboard and piano: two dockable panels of the main window (View > Virtual
// Fretboard, View > Virtual Piano) that show the notes of the cursor's beat, and while the
// song plays the notes of the beat that sounds, in the track's tuning and capo. A click on a
// fret or a key writes that note at the cursor as one undo step and sounds it.
//
// Wiring in the window's start-up:
//   auto* panels = new PracticePanels(window, edit, settings);
//   panels->connectMenus(find);
//   connect(view, &DocumentView::drawn, panels, &PracticePanels::refresh);
//   player.beatSounding -> panels->showSounding(player.playingScore(), track, bar, beat)
//   player.playingChanged(false) -> panels->stopSounding()
#pragma once

#include <QObject>
#include <QWidget>
#include <functional>
#include <vector>

#include "editing/edit_context.h"
#include "editing/fretboard.h"
#include "score/settings_store.h"

class QAction;
class QDockWidget;
class QMainWindow;

namespace plectaro {

// What a panel shows: the notes of the cursor's beat (blue) and of the sounding beat (red).
struct PanelNotes {
  std::vector<HandNote> cursor;
  std::vector<HandNote> sounding;
  int strings = 6;
  int capo = 0;
  std::array<int, kMaxStrings> openPitch{};
};

class FretboardWidget : public QWidget {
  Q_OBJECT
 public:
  explicit FretboardWidget(QWidget* parent = nullptr);
  void setNotes(const PanelNotes& notes);
  void setLeftHanded(bool on);
  FretboardGeometry geometry() const;
  QSize sizeHint() const override { return {900, 150}; }

 signals:
  void clicked(int string, int neckFret);

 protected:
  void paintEvent(QPaintEvent*) override;
  void mousePressEvent(QMouseEvent* e) override;

 private:
  PanelNotes notes_;
  bool leftHanded_ = false;
};

class PianoWidget : public QWidget {
  Q_OBJECT
 public:
  explicit PianoWidget(QWidget* parent = nullptr);
  void setNotes(const PanelNotes& notes);
  PianoGeometry geometry() const;
  QSize sizeHint() const override { return {900, 110}; }

 signals:
  void clicked(int key);

 protected:
  void paintEvent(QPaintEvent*) override;
  void mousePressEvent(QMouseEvent* e) override;

 private:
  PanelNotes notes_;
};

class PracticePanels : public QObject {
  Q_OBJECT
 public:
  PracticePanels(QMainWindow& window, EditContext& ctx, SettingsStore& settings);
  // View > Virtual Fretboard, Virtual Piano and Left-Handed Fretboard.
  void connectMenus(const std::function<QAction*(const QString&)>& find);

  // The document changed or the cursor moved: show the cursor's beat.
  void refresh();
  // A beat of the shown track sounds (during playback), from the score that plays.
  void showSounding(const Score& score, int track, int bar, int beat);
  void stopSounding();

  FretboardWidget* fretboard() const { return fretboard_; }
  PianoWidget* piano() const { return piano_; }
  QDockWidget* fretboardDock() const { return fretDock_; }
  QDockWidget* pianoDock() const { return pianoDock_; }

 private:
  void push();
  QMainWindow& window_;
  EditContext& ctx_;
  SettingsStore& settings_;
  FretboardWidget* fretboard_;
  PianoWidget* piano_;
  QDockWidget* fretDock_;
  QDockWidget* pianoDock_;
  std::vector<HandNote> sounding_;
};

}  // namespace plectaro
