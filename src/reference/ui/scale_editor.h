// frmScaleEditor: edits one scale of the library (the notes in the seven-fret window of each
// string, string count, tuning, keywords), saves it under a name, and plays it in a key. The
// Scale Manager hands it the scale the user clicked and plays through its timer.
#pragma once

#include <QDialog>
#include <array>
#include <vector>

#include "reference/cell_drawing.h"
#include "reference/ui/reference_env.h"
#include "reference/ui/tuning_loader.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QTimer;

namespace plectaro {

class ScaleEditor : public QDialog {
  Q_OBJECT
 public:
  ScaleEditor(ReferenceEnv& env, QWidget* parent = nullptr);

  void setScale(const std::string& name, const ScaleData& scale, const ScaleView& view);
  ScaleData scale() const;
  ScaleView view() const { return view_; }
  std::string name() const;
  // Prepares the notes to play in the editor's key and direction, and redraws.
  void DrawTheScale();
  void play();
  void stop();
  bool playing() const;
  bool saveScale();
  // The string-count and tuning boxes, for the tuning picker.
  TuningBoxes tuningBoxes() const { return {cmbStrings_, cmbTuning_}; }
  // Time between two notes of the play, in milliseconds.
  static constexpr int kNoteInterval = 280;

 signals:
  void saved(const QString& name);

 private:
  void tick();

  ReferenceEnv& env_;
  ScaleView view_;
  QLineEdit* txtName_;
  QLineEdit* txtKeywords_;
  QComboBox* cmbStrings_;
  QComboBox* cmbKey_;
  QCheckBox* chkDescending_;
  std::array<QComboBox*, kScaleRows> cmbTuning_{};
  std::array<std::array<QCheckBox*, kScaleOffsets>, kScaleRows> chkPosition_{};
  QWidget* picScale_;
  QTimer* tmrPlay_;
  std::vector<ScaleNote> notes_;
  size_t next_ = 0;
  int sounding_ = -1;
};

}  // namespace plectaro
