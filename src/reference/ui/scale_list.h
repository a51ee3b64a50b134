// The main window's scale list: a panel beside the document with the scales of the library
// and the twelve keys, and a neck showing where the chosen scale lies, from the nut to fret
// 24, in the tuning of the track being edited. It is filled at start-up and again when the
// Scale Manager restores the library (PopulateScaleList).
#pragma once

#include <QWidget>
#include <functional>
#include <vector>

#include "reference/scales.h"
#include "reference/ui/reference_env.h"

class QComboBox;
class QLabel;

namespace plectaro {

class ScaleListPanel : public QWidget {
  Q_OBJECT
 public:
  static constexpr int kNeckFrets = 24;
  // `openPitches` gives the open pitch of each string of the current track, string 1 first.
  ScaleListPanel(ReferenceEnv& env, std::function<std::vector<int>()> openPitches, QWidget* parent = nullptr);

  // Reads the library's names again (writing the built-in scales when the folder is missing),
  // keeping the chosen scale when it is still there.
  void PopulateScaleList();
  QStringList scales() const;
  // Chooses a scale by name and a key by its item of the key list (A = 0 ... G# = 11).
  void choose(const QString& name, int keyItem);
  // The dots the neck shows now; empty while no scale could be read.
  const std::vector<NeckDot>& dots() const { return dots_; }
  // The track or its tuning may have changed: the neck is worked out again.
  void refresh();

 private:
  void loadChosen();

  ReferenceEnv& env_;
  std::function<std::vector<int>()> openPitches_;
  QComboBox* cmbScaleList_;
  QComboBox* cmbKey_;
  QLabel* lblStatus_;
  QWidget* picNeck_;
  ScaleData scale_;
  bool loaded_ = false;
  std::vector<int> strings_;
  std::vector<NeckDot> dots_;
};

}  // namespace plectaro
