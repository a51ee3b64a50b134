// frmDrumMachine: the step sequencer's window. The grid shows the instruments down the left
// (190 units) and the steps across (15 units each) under a header that shows each step's
// length; a click toggles a cell and sounds it, a drag paints, and a drag in the header marks
// a range of steps for cut, copy and paste.
#pragma once

#include <QMainWindow>
#include <QWidget>
#include <memory>

#include "tools/drum_machine.h"
#include "tools/drum_sequencer.h"
#include "tools/ui/tool_env.h"

class QCheckBox;
class QComboBox;
class QScrollBar;
class QSpinBox;

namespace plectaro {

inline constexpr int kDrumStepWidth = 15;
inline constexpr int kDrumNameWidth = 190;
inline constexpr int kDrumRowHeight = 18;
inline constexpr int kDrumHeaderHeight = 34;

// picDocument: draws the pattern and turns mouse input into edits.
class DrumGrid : public QWidget {
  Q_OBJECT
 public:
  DrumGrid(DrumMachine& machine, QWidget* parent);
  int scroll = 0;       // the first step shown
  int playStep = -1;    // the play cursor; -1 while stopped
  int currentStep = 0;  // the step whose length the controls show
  int currentRow = 0;   // the instrument the controls show
  // Steps that fit across the view.
  int pageSteps() const;
  QSize sizeHint() const override;

 signals:
  void cellToggled(int step, int row);
  void stepChosen(int step);
  void rowChosen(int row);

 protected:
  void paintEvent(QPaintEvent*) override;
  void mousePressEvent(QMouseEvent* e) override;
  void mouseMoveEvent(QMouseEvent* e) override;
  void mouseReleaseEvent(QMouseEvent* e) override;

 private:
  int stepAt(int x) const;
  int rowAt(int y) const;
  void ProcessMouseClickData(int x, int y, bool extend);
  void ProcessMouseMoveData(int x, int y);

  DrumMachine& m_;
  int paintValue_ = -1;  // while dragging over cells: the value being painted
  int selectAnchor_ = -1;
};

class DrumMachineWindow : public QMainWindow {
  Q_OBJECT
 public:
  explicit DrumMachineWindow(ToolEnv& env, QWidget* parent = nullptr);
  ~DrumMachineWindow() override;

  DrumMachine& machine() { return machine_; }
  // Shows the pattern after a change made from outside (the beat generator).
  void patternReplaced();
  bool ForceOpenFile(const std::string& path);
  void NewFile();
  bool playing() const { return seq_->playing(); }
  void method132();  // play
  void stopPlay();

 protected:
  void closeEvent(QCloseEvent* e) override;

 private:
  void buildMenus();
  void refresh();
  void showStep();
  void updateScroll();
  bool askSave();  // false when the user cancels
  bool save(bool as);
  void openFile();
  void importOld();
  void batchImport();
  void exportMidi();
  void loadFromScore();  // mnuLoad_Click
  void addToScore(bool overwrite);  // mnuAdd_Click, mnuOver_Click
  void report(const std::string& key);

  ToolEnv& env_;
  DrumMachine machine_;
  std::unique_ptr<DrumSequencer> seq_;
  DrumGrid* grid_ = nullptr;
  QScrollBar* HScroller = nullptr;
  QSpinBox* valBox3 = nullptr;  // tempo
  QComboBox* cmbLength = nullptr;
  QComboBox* cmbTriplet = nullptr;
  QCheckBox* chkDotted = nullptr;
  QComboBox* cmbInstrument = nullptr;
  QSpinBox* valVolume = nullptr;
  QCheckBox* Check1 = nullptr;  // loop
  QCheckBox* Check2 = nullptr;  // follow
  QAction* playAction_ = nullptr;
  bool updating_ = false;
};

}  // namespace plectaro
