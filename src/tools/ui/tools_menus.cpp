#include "tools/ui/tools_menus.h"

#include <QAction>
#include <QWidget>
#include <algorithm>
#include <filesystem>

#include "tools/ui/beat_generator_dialog.h"
#include "tools/ui/drum_machine_window.h"
#include "tools/ui/metronome_window.h"
#include "tools/ui/trainer_window.h"
#include "tools/ui/tuner_window.h"

namespace plectaro {

namespace {

std::string lowerExtension(const std::string& path) {
  std::string ext = std::filesystem::path(path).extension().string();
  std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return ext;
}

void raise(QWidget& w) {
  w.show();
  w.raise();
  w.activateWindow();
}

}  // namespace

ToolWindows::ToolWindows(std::unique_ptr<ToolEnv> env, QWidget* parent)
    : QObject(parent), env_(std::move(env)), parent_(parent) {}

ToolWindows::~ToolWindows() = default;

// Tool windows stand on their own (no parent): each has its own place on the desktop and its
// own entry in the task bar, as the practice tools are often used without the editor in view.
DrumMachineWindow& ToolWindows::drumMachine() {
  if (!drums_) drums_ = std::make_unique<DrumMachineWindow>(*env_);
  return *drums_;
}

MetronomeWindow& ToolWindows::metronome() {
  if (!metronome_) metronome_ = std::make_unique<MetronomeWindow>(*env_);
  return *metronome_;
}

TrainerWindow& ToolWindows::fretboardTrainer() {
  if (!fretboard_) fretboard_ = std::make_unique<TrainerWindow>(*env_, TrainerWindow::Kind::Fretboard);
  return *fretboard_;
}

TrainerWindow& ToolWindows::pitchPerfector() {
  if (!pitch_) pitch_ = std::make_unique<TrainerWindow>(*env_, TrainerWindow::Kind::Pitch);
  return *pitch_;
}

TunerWindow& ToolWindows::tuner() {
  if (!tuner_) tuner_ = std::make_unique<TunerWindow>(*env_);
  return *tuner_;
}

void ToolWindows::showBeatGenerator() {
  DrumMachineWindow& drums = drumMachine();
  raise(drums);
  BeatGeneratorDialog dialog(*env_, drums, &drums);
  dialog.exec();
}

void ToolWindows::connectMenus(const std::function<QAction*(const QString& name)>& find) {
  auto hook = [&](const char* name, std::function<void()> fn) {
    if (QAction* a = find(name)) {
      connect(a, &QAction::triggered, this, fn);
      a->setEnabled(true);
    }
  };
  hook("mnuToolsTuner", [this] { raise(tuner()); });
  hook("mnuToolsDrumMachine", [this] { raise(drumMachine()); });
  hook("mnuToolsMetronome", [this] { raise(metronome()); });
  hook("mnuToolsFretboardKnowledge", [this] { raise(fretboardTrainer()); });
  hook("mnuToolsPitchPerfector", [this] { raise(pitchPerfector()); });
  hook("mnuToolsDrumBeatGenerator", [this] { showBeatGenerator(); });
}

bool ToolWindows::closeAll() {
  for (QWidget* w : std::initializer_list<QWidget*>{drums_.get(), metronome_.get(), fretboard_.get(), pitch_.get(), tuner_.get()})
    if (w && w->isVisible() && !w->close()) return false;
  return true;
}

bool ToolWindows::isToolFile(const std::string& path) {
  const std::string ext = lowerExtension(path);
  return ext == ".p4d" || ext == ".p4m";
}

bool ToolWindows::openFile(const std::string& path) {
  const std::string ext = lowerExtension(path);
  if (ext == ".p4d") {
    raise(drumMachine());
    drumMachine().ForceOpenFile(path);
    return true;
  }
  if (ext == ".p4m") {
    raise(metronome());
    metronome().ForceOpenFile(path);
    return true;
  }
  return false;
}

}  // namespace plectaro
