// frmGuitarTuner: the tuning library on the left, the chosen tuning's strings and the play
// settings on the right. Play sounds the checked open strings stroke after stroke so the
// player can tune by ear.
#pragma once

#include <QDialog>
#include <QMainWindow>
#include <array>
#include <memory>
#include <optional>

#include "reference/tunings.h"
#include "tools/tuner.h"
#include "tools/ui/tool_env.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QSpinBox;

namespace plectaro {

class TunerWindow : public QMainWindow {
  Q_OBJECT
 public:
  explicit TunerWindow(ToolEnv& env, QWidget* parent = nullptr);
  ~TunerWindow() override;

  TuningLibrary& library() { return library_; }
  // The tuning the string boxes show.
  TuningData editedTuning() const;
  void loadTuning(const std::string& name);
  void Command3_Click();  // Play / Stop
  void Command4_Click();  // Save
  void deleteTuning();
  void mnuRestoreTunings_Click();
  void fillList();
  bool playing() const { return player_->playing(); }

  QListWidget* lstTunings = nullptr;
  QLineEdit* txtName = nullptr;
  QSpinBox* valStrings = nullptr;
  std::array<QComboBox*, 7> cmbTuning{};
  std::array<QCheckBox*, 7> chk{};
  QLineEdit* txtRate = nullptr;
  QLineEdit* txtWait = nullptr;
  QComboBox* cmbPattern = nullptr;
  QCheckBox* chkReverb = nullptr;
  QPushButton* Command3 = nullptr;

 protected:
  void closeEvent(QCloseEvent* e) override;

 private:
  void showTuning(const TuningData& t);
  void selectionChanged();
  void message(const std::string& text, MessageIcon icon = MessageIcon::Information);

  ToolEnv& env_;
  TuningLibrary library_;
  std::unique_ptr<TunerPlayer> player_;
};

}  // namespace plectaro
