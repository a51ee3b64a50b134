// frmChordEditor: edits one chord of the library (frets, fingers, barre, start fret, string
// count and tuning), saves it under a name and plays it. The Chord Manager hands it the chord
// the user clicked.
#pragma once

#include <QDialog>
#include <array>

#include "reference/chords.h"
#include "reference/ui/reference_env.h"
#include "reference/ui/tuning_loader.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QSpinBox;

namespace plectaro {

class ChordEditor : public QDialog {
  Q_OBJECT
 public:
  ChordEditor(ReferenceEnv& env, QWidget* parent = nullptr);

  // Fills the fields; the fret fields get the absolute frets.
  void setChord(const std::string& name, const ChordData& chord);
  // The chord the fields describe; false (and the reason in `error`, a str_ key) when a fret
  // is not a fret or the frets do not fit the chart.
  bool chord(ChordData& out, std::string& error) const;
  std::string name() const;
  // Sounds the chord once.
  void PlayChordOnce();
  // Saves under the name in the field, asking before it replaces a chord. True when saved.
  bool saveChord();
  // The string-count and tuning boxes, for the tuning picker.
  TuningBoxes tuningBoxes() const { return {cmbStrings_, cmbTuning_}; }

 signals:
  void saved(const QString& name);

 private:
  void refreshPreview();

  ReferenceEnv& env_;
  QLineEdit* txtName_;
  QComboBox* cmbStrings_;
  QSpinBox* txtStartFret_;
  QCheckBox* chkBarre_;
  std::array<QComboBox*, kChordStrings> cmbTuning_{};
  std::array<QLineEdit*, kChordStrings> txtFret_{};
  std::array<QComboBox*, kChordStrings> cmbFinger_{};
  QWidget* picChord_;
};

}  // namespace plectaro
