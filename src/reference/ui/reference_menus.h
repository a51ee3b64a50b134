// The chord and scale windows in the main window: Tools > Chord Manager and Scale Manager,
// Chord > Chord Manager..., File > Chordbook... The managers are made on first use and live
// in dock widgets of the main window, floating until the user docks them.
#pragma once

#include <QObject>

#include "editing/edit_context.h"
#include "reference/ui/reference_env.h"

class QDockWidget;

namespace plectaro {

class ChordManager;
class MainWindow;
class ScaleListPanel;
class ScaleManager;
class Session;

class ReferenceWindows : public QObject {
  Q_OBJECT
 public:
  // `edit` may be null (no editor: the chords cannot be added to the score).
  ReferenceWindows(MainWindow& window, Session& session, EditContext* edit);
  ~ReferenceWindows() override;

  ReferenceEnv& env() { return env_; }
  ChordManager* chordManager();
  ScaleManager* scaleManager();
  void showChordManager();
  void showChordbook();
  void showScaleManager();
  QDockWidget* chordDock() const { return chordDock_; }
  QDockWidget* scaleDock() const { return scaleDock_; }
  // The main window's scale list (View > Scale List).
  ScaleListPanel* scaleList() const { return scaleList_; }
  // Dock side of a manager: 0 floating, 1 above, 2 below, 3 left, 4 right.
  void dock(QDockWidget* dock, int side);

 private:
  QDockWidget* makeDock(QWidget* content, const char* name, const char* settingsSection);
  void saveDock(QDockWidget* dock, const char* settingsSection) const;
  void makeScaleList();

  MainWindow& window_;
  Session& session_;
  EditContext* edit_;
  ReferenceEnv env_;
  ChordManager* chords_ = nullptr;
  ScaleManager* scales_ = nullptr;
  QDockWidget* chordDock_ = nullptr;
  QDockWidget* scaleDock_ = nullptr;
  ScaleListPanel* scaleList_ = nullptr;
  QDockWidget* scaleListDock_ = nullptr;
};

}  // namespace plectaro
