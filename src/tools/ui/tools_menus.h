// The Tools menu's practice tools: Tuner, Drum Machine, Metronome, the two trainers and the
// beat generator. Each window is made on first use and kept, so reopening it finds it as the
// user left it (a pattern playing on keeps playing).
#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <string>

#include "tools/ui/tool_env.h"

class QAction;
class QWidget;

namespace plectaro {

class DrumMachineWindow;
class MetronomeWindow;
class TrainerWindow;
class TunerWindow;

class ToolWindows : public QObject {
  Q_OBJECT
 public:
  ToolWindows(std::unique_ptr<ToolEnv> env, QWidget* parent);
  ~ToolWindows() override;

  // Connects and enables the Tools menu items that `find` returns.
  void connectMenus(const std::function<QAction*(const QString& name)>& find);
  // A drumbeat or metronome file given on the command line or dropped on the window opens
  // its tool. False for any other kind of file.
  bool openFile(const std::string& path);
  static bool isToolFile(const std::string& path);
  // Closes every open tool window, each asking about its unsaved file; false if one stays.
  bool closeAll();

  DrumMachineWindow& drumMachine();
  MetronomeWindow& metronome();
  TrainerWindow& fretboardTrainer();
  TrainerWindow& pitchPerfector();
  TunerWindow& tuner();
  void showBeatGenerator();

 private:
  std::unique_ptr<ToolEnv> env_;
  QWidget* parent_;
  std::unique_ptr<DrumMachineWindow> drums_;
  std::unique_ptr<MetronomeWindow> metronome_;
  std::unique_ptr<TrainerWindow> fretboard_;
  std::unique_ptr<TrainerWindow> pitch_;
  std::unique_ptr<TunerWindow> tuner_;
};

}  // namespace plectaro
