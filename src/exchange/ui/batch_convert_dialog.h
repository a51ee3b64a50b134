// ntne_frmBatchConvert: a folder of files of one kind converted into another, with a progress
// bar, a Cancel that stops between files, and a report of what failed and why.
#pragma once

#include <QDialog>

#include "exchange/batch_convert.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;

namespace plectaro {

class Messages;

class BatchConvertDialog : public QDialog {
  Q_OBJECT
 public:
  BatchConvertDialog(const SettingsStore& settings, const Messages& messages, QWidget* parent = nullptr);

  // Runs the conversion of what the controls say; the report shows in the window.
  void convert();
  // How text tab is written: the export settings of Options.
  void setTextOptions(const TextExportOptions& options) { text_ = options; }
  QLineEdit* folder() const { return in_; }
  QLineEdit* outFolder() const { return out_; }
  QComboBox* fromKind() const { return from_; }
  QComboBox* toKind() const { return to_; }
  QPlainTextEdit* report() const { return report_; }

 private:
  const SettingsStore& settings_;
  const Messages& msg_;
  QLineEdit* in_;
  QLineEdit* out_;
  QComboBox* from_;
  QComboBox* to_;
  QCheckBox* ties_;
  QCheckBox* quantize_;
  QProgressBar* bar_;
  QPushButton* convertButton_;
  QPushButton* cancelButton_;
  QPlainTextEdit* report_;
  TextExportOptions text_;
  bool running_ = false;
  bool cancel_ = false;
};

}  // namespace plectaro
