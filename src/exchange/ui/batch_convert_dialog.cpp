#include "exchange/ui/batch_convert_dialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/language.h"

namespace plectaro {

namespace {

QString text(const Messages& m, const char* key) {
  return QString::fromStdString(m.text("ntne_frmBatchConvert", key));
}

QWidget* folderRow(QLineEdit* edit, QWidget* parent) {
  auto* row = new QWidget(parent);
  auto* h = new QHBoxLayout(row);
  h->setContentsMargins(0, 0, 0, 0);
  h->addWidget(edit, 1);
  auto* browse = new QPushButton("...", row);
  browse->setFixedWidth(32);
  QObject::connect(browse, &QPushButton::clicked, row, [edit, row] {
    const QString dir = QFileDialog::getExistingDirectory(row, QString(), edit->text());
    if (!dir.isEmpty()) edit->setText(dir);
  });
  h->addWidget(browse);
  return row;
}

}  // namespace

BatchConvertDialog::BatchConvertDialog(const SettingsStore& settings, const Messages& messages, QWidget* parent)
    : QDialog(parent), settings_(settings), msg_(messages) {
  setObjectName("ntne_frmBatchConvert");
  setWindowTitle(text(messages, "Caption"));
  auto* layout = new QVBoxLayout(this);
  auto* form = new QFormLayout;
  in_ = new QLineEdit(this);
  in_->setObjectName("txtFolder");
  out_ = new QLineEdit(this);
  out_->setObjectName("txtOutFolder");
  out_->setPlaceholderText("the same folder");
  from_ = new QComboBox(this);
  from_->setObjectName("cmbFrom");
  to_ = new QComboBox(this);
  to_->setObjectName("cmbTo");
  for (const BatchFormat& f : BatchFormats()) {
    const QString label = QString::fromStdString(f.Name + " (*" + f.Extension + ")");
    if (f.Read) from_->addItem(label, QString::fromStdString(f.Extension));
    if (f.Write) to_->addItem(label, QString::fromStdString(f.Extension));
  }
  // MIDI to music files is what most people come for.
  from_->setCurrentIndex(std::max(0, from_->findData(".mid")));
  to_->setCurrentIndex(std::max(0, to_->findData(".plm")));
  form->addRow("Folder:", folderRow(in_, this));
  form->addRow("Convert:", from_);
  form->addRow("Into:", to_);
  form->addRow("Write to:", folderRow(out_, this));
  layout->addLayout(form);
  ties_ = new QCheckBox("Add ties", this);
  ties_->setChecked(true);
  quantize_ = new QCheckBox("Quantize", this);
  auto* boxes = new QHBoxLayout;
  boxes->addWidget(ties_);
  boxes->addWidget(quantize_);
  boxes->addStretch();
  layout->addLayout(boxes);
  bar_ = new QProgressBar(this);
  bar_->setObjectName("ProgressBar1");
  bar_->setValue(0);
  layout->addWidget(bar_);
  report_ = new QPlainTextEdit(this);
  report_->setObjectName("txtReport");
  report_->setReadOnly(true);
  layout->addWidget(report_, 1);
  auto* buttons = new QDialogButtonBox(this);
  convertButton_ = buttons->addButton("Convert", QDialogButtonBox::AcceptRole);
  convertButton_->setObjectName("cmdConvert");
  cancelButton_ = buttons->addButton(QDialogButtonBox::Close);
  cancelButton_->setObjectName("cmdCancel");
  connect(convertButton_, &QPushButton::clicked, this, &BatchConvertDialog::convert);
  connect(cancelButton_, &QPushButton::clicked, this, [this] {
    if (running_)
      cancel_ = true;
    else
      reject();
  });
  layout->addWidget(buttons);
  resize(520, 420);
}

void BatchConvertDialog::convert() {
  if (running_) return;
  BatchJob job;
  job.InFolder = in_->text().toStdString();
  job.OutFolder = out_->text().trimmed().toStdString();
  job.From = from_->currentData().toString().toStdString();
  job.To = to_->currentData().toString().toStdString();
  job.Settings.Settings = &settings_;
  job.Settings.Midi.AddTies = ties_->isChecked();
  job.Settings.Midi.Quantize = quantize_->isChecked();
  job.Settings.Text = text_;
  report_->clear();
  if (job.From == job.To) {
    report_->setPlainText("Choose two different kinds of file.");
    return;
  }
  running_ = true;
  cancel_ = false;
  convertButton_->setEnabled(false);
  cancelButton_->setText("Cancel");
  BatchResult r;
  try {
    r = BatchConvert(job, [this](int done, int total, const std::filesystem::path& file) {
      bar_->setMaximum(std::max(total, 1));
      bar_->setValue(done);
      if (!file.empty())
        bar_->setFormat(QString::fromStdString(msg_.str("str_Converting")) + " " + QString::fromStdString(file.filename().string()));
      QApplication::processEvents();
      return !cancel_;
    });
  } catch (const std::exception& e) {
    report_->setPlainText(QString::fromStdString(msg_.str("str_UnableToAccessDrive") + " " + e.what()));
  }
  QString lines;
  if (r.Total > 0 || r.Cancelled) {
    lines = QString::fromStdString(r.Failures.empty() && !r.Cancelled ? msg_.str("str_ConversionCompletedSuccessfully")
                                                                     : msg_.str("str_ConversionNotCompletedSuccessfully"));
    lines += QString("\n%1 of %2 files converted%3.\n").arg(r.Converted).arg(r.Total).arg(r.Cancelled ? ", cancelled" : "");
    for (const BatchFailure& f : r.Failures)
      lines += QString::fromStdString(f.File.filename().string() + ": " + f.Reason + "\n");
    report_->setPlainText(lines);
  } else if (report_->toPlainText().isEmpty()) {
    report_->setPlainText("There are no files of that kind in the folder.");
  }
  bar_->setFormat("%p%");
  running_ = false;
  convertButton_->setEnabled(true);
  cancelButton_->setText("Close");
}

}  // namespace plectaro
