#include "playback/ui/speed_trainer_dialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace plectaro {

namespace {

// Wide ranges on purpose: a value out of bounds gets its message on OK instead of being
// silently clamped while the user types.
QSpinBox* numberBox(QWidget* parent, const char* name, int value, const char* suffix = "") {
  auto* box = new QSpinBox(parent);
  box->setObjectName(name);
  box->setRange(0, 9999);
  box->setValue(value);
  box->setSuffix(suffix);
  return box;
}

}  // namespace

SpeedTrainerDialog::SpeedTrainerDialog(const SpeedTrainerForm& f, int barCount, bool countIn,
                                       std::function<std::string(std::string_view)> text, QWidget* parent)
    : QDialog(parent), barCount_(barCount), text_(std::move(text)) {
  setObjectName("ntne_frmSpeedTrainer");
  const std::string caption = text_ ? text_("Caption") : std::string();
  setWindowTitle(caption.empty() ? "Speed Trainer" : QString::fromStdString(caption));
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(new QLabel("Loop these bars, a little faster each time through:", this));
  auto* form = new QFormLayout;
  from_ = numberBox(this, "txtFromBar", f.FromBar);
  to_ = numberBox(this, "txtToBar", f.ToBar);
  start_ = numberBox(this, "txtStartTempo", f.StartTempo, " bpm");
  step_ = numberBox(this, "txtIncrease", f.Step, " bpm");
  top_ = numberBox(this, "txtFinalTempo", f.TopTempo, " bpm");
  passes_ = numberBox(this, "txtPasses", f.Passes);
  form->addRow("From bar:", from_);
  form->addRow("To bar:", to_);
  form->addRow("Starting speed:", start_);
  form->addRow("Faster each pass by:", step_);
  form->addRow("Final speed:", top_);
  form->addRow("Number of passes:", passes_);
  layout->addLayout(form);
  countIn_ = new QCheckBox("Count in before each pass", this);
  countIn_->setObjectName("chkCountIn");
  countIn_->setChecked(countIn);
  layout->addWidget(countIn_);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setObjectName("cmdOK");
  buttons->button(QDialogButtonBox::Ok)->setText("Play");
  buttons->button(QDialogButtonBox::Cancel)->setObjectName("cmdCancel");
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
}

SpeedTrainerForm SpeedTrainerDialog::form() const {
  SpeedTrainerForm f;
  f.FromBar = from_->value();
  f.ToBar = to_->value();
  f.StartTempo = start_->value();
  f.Step = step_->value();
  f.TopTempo = top_->value();
  f.Passes = passes_->value();
  return f;
}

bool SpeedTrainerDialog::countIn() const { return countIn_->isChecked(); }

void SpeedTrainerDialog::accept() {
  const auto text = [this](std::string_view key) {
    std::string t = text_ ? text_(key) : std::string();
    return t.empty() ? std::string(key) : t;
  };
  const std::string problem = CheckSpeedTrainer(form(), barCount_, trainer_, text);
  if (!problem.empty()) {
    QMessageBox::warning(this, windowTitle(), QString::fromStdString(problem));
    return;
  }
  QDialog::accept();
}

}  // namespace plectaro
