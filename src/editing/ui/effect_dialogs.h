// The effect editors: bend, tremolo bar, trill, grace note and beat text. Each only collects
// values; the window runs the command of effect_commands.h with what the dialog answers.
#pragma once

#include <QDialog>

#include <functional>
#include <vector>

#include "editing/effect_commands.h"

class QButtonGroup;
class QCheckBox;
class QLineEdit;
class QListWidget;
class QSpinBox;

namespace plectaro {

// What an editor was closed with: OK writes the effect, Clear removes it from the slot.
enum EffectDialogResult { kEffectCancelled = QDialog::Rejected, kEffectApply = QDialog::Accepted, kEffectClear = 2 };

// Sounds the cursor's beat of a score as the editor would leave it (Play).
using PlayEdited = std::function<void(const Score&)>;

// picBend and its kin: the curve as a line over a grid of quarter tones. A click sets the
// point under the pointer; dragging draws the curve along.
class CurveEditor : public QWidget {
 public:
  using Setter = std::function<void(std::vector<double>& points, double x, double y, double w, double h)>;
  CurveEditor(double lo, double hi, Setter setter, QWidget* parent);
  void setPoints(std::vector<double> points);
  const std::vector<double>& points() const { return points_; }
  std::function<void()> changed;

 protected:
  void paintEvent(QPaintEvent*) override;
  void mousePressEvent(QMouseEvent* e) override;
  void mouseMoveEvent(QMouseEvent* e) override;

 private:
  QRectF plotArea() const;
  void setAt(QPointF p);
  double lo_, hi_;
  Setter setter_;
  std::vector<double> points_;
};

class BendDialog : public QDialog {
 public:
  BendDialog(const Document& doc, PlayEdited play, QWidget* parent);
  BendInfo bend() const;
  CurveEditor* picBend;
  QListWidget* List2;

 private:
  const Document& doc_;
};

class TremoloDialog : public QDialog {
 public:
  TremoloDialog(const Document& doc, PlayEdited play, QWidget* parent);
  TremoloBarInfo tremoloBar() const;
  CurveEditor* picBend;
  QListWidget* List2;

 private:
  const Document& doc_;
};

class TrillDialog : public QDialog {
 public:
  TrillDialog(const Document& doc, PlayEdited play, QWidget* parent);
  TrillInfo trill() const;
  QSpinBox* valBox1;
  QButtonGroup* optTrillPeriod;
};

class GraceNoteDialog : public QDialog {
 public:
  GraceNoteDialog(const Document& doc, PlayEdited play, QWidget* parent);
  GraceInfo grace() const;
  QSpinBox* valBox1;
  QCheckBox* chkDeadNote;
  QButtonGroup* optDuration;
  QButtonGroup* optTransition;
  QButtonGroup* optDynamic;
};

class TextDialog : public QDialog {
 public:
  TextDialog(const Document& doc, QWidget* parent);
  std::string text() const;
  QLineEdit* Text1;
};

// Opens the editor on the cursor's slot or beat and runs the command it answers. A bend,
// trill or grace note needs a fret under the cursor, the tremolo bar a beat that is no rest;
// otherwise nothing opens.
void mnuNoteEffectsBend_Click(QWidget* parent, EditContext& ctx);
void mnuChordTechniqueTremBar_Click(QWidget* parent, EditContext& ctx);
void mnuNoteEffectsTrill_Click(QWidget* parent, EditContext& ctx);
void mnuNoteEffectsGrace_Click(QWidget* parent, EditContext& ctx);
void mnuChordText_Click(QWidget* parent, EditContext& ctx);

}  // namespace plectaro
