// frmMetronome: the list of beat sets with an edit box for the chosen one, the sound settings,
// and play, which runs the whole list as one practice program.
#pragma once

#include <QMainWindow>
#include <memory>
#include <optional>

#include "tools/metronome.h"
#include "tools/ui/tool_env.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QTableWidget;

namespace plectaro {

class MetronomeWindow : public QMainWindow {
  Q_OBJECT
 public:
  explicit MetronomeWindow(ToolEnv& env, QWidget* parent = nullptr);
  ~MetronomeWindow() override;

  MetronomeFile& file() { return file_; }
  bool ForceOpenFile(const std::string& path);
  void play();
  void stopPlay();
  bool playing() const { return player_->playing(); }
  // Command7: puts the edit box into the chosen set.
  void applyEdit();
  void addSet();
  void removeSet();
  int currentSet() const;
  void selectSet(int index);

  QTableWidget* picFile = nullptr;
  QLineEdit* cUTS = nullptr;
  QComboBox* lUTS = nullptr;
  QSpinBox* vBPM = nullptr;
  QSpinBox* vBTP = nullptr;
  QSpinBox* vBeatVol = nullptr;
  QSpinBox* v1beatVol = nullptr;
  QSpinBox* vBeatPitch = nullptr;
  QComboBox* lstInstrument = nullptr;
  QCheckBox* chkLoop = nullptr;
  QPushButton* cmdPlay = nullptr;
  QLabel* lblPosition = nullptr;

 protected:
  void closeEvent(QCloseEvent* e) override;

 private:
  void buildMenus();
  void mDrawFile();
  void showSet();
  void settingsChanged();
  bool askSave();
  bool save(bool as);
  void touched();
  void message(const std::string& text);

  ToolEnv& env_;
  MetronomeFile file_;
  std::string fileName_;
  bool dirty_ = false;
  bool updating_ = false;
  std::optional<BeatSet> clipboard_;
  std::unique_ptr<MetronomePlayer> player_;
};

}  // namespace plectaro
