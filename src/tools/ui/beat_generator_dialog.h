// frmDrumBeatGenerator: the instruments and repeat patterns to draw from, the number of steps
// and their length; Generate writes a random beat into the open Drum Machine.
#pragma once

#include <QDialog>
#include <array>

#include "tools/beat_generator.h"
#include "tools/ui/tool_env.h"

class QCheckBox;
class QComboBox;
class QListWidget;
class QRadioButton;

namespace plectaro {

class DrumMachineWindow;

class BeatGeneratorDialog : public QDialog {
  Q_OBJECT
 public:
  BeatGeneratorDialog(ToolEnv& env, DrumMachineWindow& machine, QWidget* parent = nullptr);
  // What the controls say now.
  BeatGeneratorChoice choice() const;
  // Generate: checks, asks, draws. True when the beat was replaced.
  bool Command7_Click();

  QListWidget* lstUse = nullptr;
  std::array<QCheckBox*, 9> chkBeat{};
  std::array<QRadioButton*, 5> optBeats{};
  QComboBox* Combo1 = nullptr;

 private:
  ToolEnv& env_;
  DrumMachineWindow& machine_;
  SystemRandom rng_;
};

}  // namespace plectaro
