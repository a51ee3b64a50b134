// The dialogs of the Track, Operations and Go menus. Each menu function shows its dialog over
// `parent` and, on OK, calls the matching command of track_commands.h or operations.h; Cancel
// changes nothing. `dataFolder` is <app>/Data, where the tunings library lives.
#pragma once

#include <QDialog>
#include <array>
#include <filesystem>

#include "editing/operations.h"
#include "editing/track_commands.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;
class QSpinBox;

namespace plectaro {

void mnuTrackAdd_Click(QWidget* parent, EditContext& ctx, const std::filesystem::path& dataFolder);
void mnuTrackProperties_Click(QWidget* parent, EditContext& ctx, const std::filesystem::path& dataFolder);
void mnuOperationsTranspose_Click(QWidget* parent, EditContext& ctx);
void mnuOperationsEditLines_Click(QWidget* parent, EditContext& ctx);
void mnuGoAddGotoPoint_Click(QWidget* parent, EditContext& ctx);
void mnuGoShowPoints_Click(QWidget* parent, EditContext& ctx);

// A string count with one tuning box per string holding that string's 25 note names, and the
// presets of the tunings library.
class TuningEditor : public QWidget {
  Q_OBJECT
 public:
  TuningEditor(const std::filesystem::path& dataFolder, QWidget* parent);
  void setTuning(const TuningInfo& tuning);
  TuningInfo tuning() const;
  QSpinBox* txtStrings = nullptr;
  std::array<QComboBox*, kMaxStrings> cmbTuning{};
  QComboBox* cmbPresets = nullptr;

 private:
  void showStrings();
  void loadPreset(int row);
  // Selects the offset in the box of string index `string`, adding an item when it lies beyond
  // the string's 25 names.
  void selectOffset(int string, int offset);
  std::filesystem::path dataFolder_;
};

// ntne_frmAddTrack.
class AddTrackDialog : public QDialog {
  Q_OBJECT
 public:
  AddTrackDialog(const Score& score, const std::filesystem::path& dataFolder, QWidget* parent);
  Track setup() const;
  QLineEdit* txtName = nullptr;
  QCheckBox* chkDrum = nullptr;
  QComboBox* cmbInstrument = nullptr;
  TuningEditor* tuning = nullptr;
};

// frmTrackProperties.
class TrackPropertiesDialog : public QDialog {
  Q_OBJECT
 public:
  TrackPropertiesDialog(const Track& track, const std::filesystem::path& dataFolder, QWidget* parent);
  Track properties();  // takes in the drum line on show

  QLineEdit* txtName = nullptr;
  QListWidget* lstInstrument = nullptr;
  TuningEditor* tuning = nullptr;
  QSpinBox* txtCapo = nullptr;
  QSpinBox* txtChannel = nullptr;        // shown 1..16
  QSpinBox* txtEffectChannel = nullptr;  // shown 1..16
  QSpinBox* txtVolume = nullptr;
  QSpinBox* txtChordVolume = nullptr;
  QCheckBox* chkOctaveUp = nullptr;
  QCheckBox* chkOctaveDown = nullptr;
  QCheckBox* chkReverb = nullptr;
  QCheckBox* chkTreble = nullptr;
  QCheckBox* chkBass = nullptr;
  QCheckBox* chkTab = nullptr;
  QCheckBox* chkDrum = nullptr;
  QComboBox* cmbDrumLine = nullptr;
  std::array<QComboBox*, 12> cmbDrums{};

 private:
  void showDrumLine();
  void storeDrumLine();
  Track track_;
  int shownLine_ = 0;
};

}  // namespace plectaro
