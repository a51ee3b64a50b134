// The dialogs of the Bar menu. Each menu function shows its dialog modally over `parent` and,
// on OK, calls the matching command of bar_commands.h; Cancel changes nothing. The window wires
// a menu item straight to one of these.
#pragma once

#include <QDialog>
#include <optional>

#include "editing/bar_commands.h"
#include "editing/selection.h"

class QButtonGroup;
class QComboBox;
class QListWidget;
class QRadioButton;
class QSpinBox;
class QStackedWidget;
class QLabel;
class QPushButton;

namespace plectaro {

void mnuBarTimeSignature_Click(QWidget* parent, EditContext& ctx);  // ntne_frmBarTimeSig
void mnuBarKeySignature_Click(QWidget* parent, EditContext& ctx);   // ntne_frmBarKeySig
void mnuBarInsert_Click(QWidget* parent, EditContext& ctx);         // ntne_frmInsertBar
void mnuRemoveBar_Click(QWidget* parent, EditContext& ctx);         // ntne_frmRemoveBar
void mnuBarCut_Click(QWidget* parent, EditContext& ctx);            // ntne_frmCutCopyPaste
void mnuBarCopy_Click(QWidget* parent, EditContext& ctx);
void mnuBarPaste_Click(QWidget* parent, EditContext& ctx);
void mnuBarCoda_Click(QWidget* parent, EditContext& ctx);           // ntne_frmCoda
// ntne_frmEndRepeat: the repeat count (1 to 99, 2 offered); nullopt when cancelled. Set as
// EditHooks::askRepeatCount.
std::optional<int> AskRepeatCount(QWidget* parent);

// The three range options the signature dialogs share.
class RangeOptions;

class BarTimeSigDialog : public QDialog {
  Q_OBJECT
 public:
  // With a selection the dialog offers it as a fourth range, chosen at first.
  BarTimeSigDialog(const Document& doc, QWidget* parent, const std::optional<SelectedRange>& selection = std::nullopt);
  int numerator() const;
  int denominator() const;
  ApplyRange range() const;
  QComboBox* Combo1 = nullptr;
  QComboBox* Combo2 = nullptr;

 private:
  RangeOptions* range_ = nullptr;
};

class BarKeySigDialog : public QDialog {
  Q_OBJECT
 public:
  BarKeySigDialog(const Document& doc, QWidget* parent, const std::optional<SelectedRange>& selection = std::nullopt);
  int32_t key() const;
  bool minor() const;
  ApplyRange range() const;
  QRadioButton* optMajor = nullptr;
  QRadioButton* optMinor = nullptr;
  QComboBox* cmbMajor = nullptr;
  QComboBox* cmbMinor = nullptr;

 private:
  RangeOptions* range_ = nullptr;
  QWidget* Picture1 = nullptr;
};

// A checkable list with "Select All" under it; the lists of the bar dialogs.
class CheckList : public QWidget {
  Q_OBJECT
 public:
  CheckList(const QStringList& items, QWidget* parent);
  std::vector<int> checked() const;
  void check(int row, bool on);
  QListWidget* list = nullptr;
};

}  // namespace plectaro
