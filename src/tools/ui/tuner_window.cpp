#include "tools/ui/tuner_window.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include "reference/note_names.h"
#include "shell/ui/language_ui.h"

namespace plectaro {

namespace {

// A tuning's open notes from the lowest string up, as a row of the list shows them.
QString notesOf(const TuningData& t) {
  QStringList names;
  for (int n = std::min<int>(t.NumStrings, 7); n >= 1; --n) names << PitchClassName(t.pitch(n));
  return names.join(" ");
}

}  // namespace

TunerWindow::TunerWindow(ToolEnv& env, QWidget* parent)
    : QMainWindow(parent), env_(env), library_(env.dataFolder), player_(std::make_unique<TunerPlayer>(env.midi, env.clock)) {
  setObjectName("frmGuitarTuner");
  library_.createAll();
  auto* central = new QWidget(this);
  auto* top = new QHBoxLayout(central);

  auto* listBox = new QGroupBox(env.str("str_Tunings"));
  auto* lv = new QVBoxLayout(listBox);
  lstTunings = new QListWidget;
  lstTunings->setObjectName("picTunings");
  lstTunings->setContextMenuPolicy(Qt::CustomContextMenu);
  lv->addWidget(lstTunings);
  top->addWidget(listBox, 1);

  auto* edit = new QWidget;
  edit->setObjectName("picEdit");
  auto* ev = new QVBoxLayout(edit);
  auto* nameRow = new QFormLayout;
  txtName = new QLineEdit;
  txtName->setObjectName("txtName");
  nameRow->addRow(env.str("str_Name") + ":", txtName);
  valStrings = new QSpinBox;
  valStrings->setObjectName("valStrings");
  valStrings->setRange(1, 7);
  nameRow->addRow("Strings:", valStrings);
  ev->addLayout(nameRow);
  auto* strings = new QGridLayout;
  for (int i = 0; i < 7; ++i) {
    const int number = i + 1;
    chk[static_cast<size_t>(i)] = new QCheckBox(QString("String %1").arg(number));
    chk[static_cast<size_t>(i)]->setObjectName(QString("chk%1").arg(i));
    chk[static_cast<size_t>(i)]->setChecked(number <= 6);
    cmbTuning[static_cast<size_t>(i)] = new QComboBox;
    cmbTuning[static_cast<size_t>(i)]->setObjectName(QString("cmbTuning%1").arg(i));
    for (const std::string& n : NoteNamesOfString(number)) cmbTuning[static_cast<size_t>(i)]->addItem(QString::fromStdString(n));
    strings->addWidget(chk[static_cast<size_t>(i)], i, 0);
    strings->addWidget(cmbTuning[static_cast<size_t>(i)], i, 1);
  }
  ev->addLayout(strings);
  auto* playBox = new QFormLayout;
  txtRate = new QLineEdit("60");
  txtRate->setObjectName("txtRate");
  txtWait = new QLineEdit("1000");
  txtWait->setObjectName("txtWait");
  cmbPattern = new QComboBox;
  cmbPattern->setObjectName("cmbPattern");
  for (const char* n : kTunerStrokeNames) cmbPattern->addItem(n);
  chkReverb = new QCheckBox("Allow Reverb");
  chkReverb->setObjectName("chkReverb");
  playBox->addRow("Rate (npm):", txtRate);
  playBox->addRow("Wait (ms):", txtWait);
  playBox->addRow("Stroke:", cmbPattern);
  playBox->addRow("", chkReverb);
  ev->addLayout(playBox);
  auto* buttons = new QHBoxLayout;
  Command3 = new QPushButton(env.str("str_Play"));
  Command3->setObjectName("Command3");
  auto* saveButton = new QPushButton("Save");
  saveButton->setObjectName("Command4");
  buttons->addWidget(Command3);
  buttons->addWidget(saveButton);
  ev->addLayout(buttons);
  ev->addStretch();
  top->addWidget(edit);
  setCentralWidget(central);

  QMenu* file = menuBar()->addMenu("&File");
  file->setObjectName("mnuFile");
  file->addAction("&Restore Tunings", this, [this] { mnuRestoreTunings_Click(); })->setObjectName("mnuRestoreTunings");
  file->addAction("&Close", this, [this] { close(); })->setObjectName("mnuClose");

  connect(lstTunings, &QListWidget::currentRowChanged, this, [this] { selectionChanged(); });
  connect(lstTunings, &QListWidget::customContextMenuRequested, this, [this](const QPoint& at) {
    // picMenu
    if (!lstTunings->itemAt(at)) return;
    QMenu menu(this);
    menu.addAction("Edit / Hear Tuning", this, [this] {
      if (!player_->playing()) Command3_Click();
    });
    menu.addAction("Delete Tuning", this, [this] { deleteTuning(); });
    menu.exec(lstTunings->viewport()->mapToGlobal(at));
  });
  connect(Command3, &QPushButton::clicked, this, [this] { Command3_Click(); });
  connect(saveButton, &QPushButton::clicked, this, [this] { Command4_Click(); });
  connect(valStrings, &QSpinBox::valueChanged, this, [this](int n) {
    for (int i = 0; i < 7; ++i) {
      cmbTuning[static_cast<size_t>(i)]->setEnabled(i < n);
      chk[static_cast<size_t>(i)]->setEnabled(i < n);
    }
  });
  player_->stringSounded = [this](int n) {
    for (int i = 0; i < 7; ++i) chk[static_cast<size_t>(i)]->setStyleSheet(i + 1 == n ? "font-weight: bold; color: #1a5fb4" : "");
  };
  LoadLanguage(this, env_.languageFile);
  fillList();
  showTuning(TuningData{});
  resize(620, 460);
}

TunerWindow::~TunerWindow() { player_->stop(); }

void TunerWindow::message(const std::string& text, MessageIcon icon) {
  env_.prompter.message(text, windowTitle().toStdString(), icon);
}

void TunerWindow::fillList() {
  const QString keep = lstTunings->currentItem() ? lstTunings->currentItem()->data(Qt::UserRole).toString() : QString();
  lstTunings->blockSignals(true);
  lstTunings->clear();
  const auto names = library_.names();
  for (const std::string& n : names) {
    auto* item = new QListWidgetItem(QString::fromStdString(n));
    item->setData(Qt::UserRole, QString::fromStdString(n));
    lstTunings->addItem(item);
  }
  if (names.empty()) {
    // An empty library says so and offers the way to make a tuning.
    lstTunings->addItem(env_.str("str_NoneInstalled"));
    lstTunings->addItem(env_.str("str_NewTuning2"));
  }
  lstTunings->blockSignals(false);
  for (int i = 0; i < lstTunings->count(); ++i)
    if (!keep.isEmpty() && lstTunings->item(i)->data(Qt::UserRole).toString() == keep) lstTunings->setCurrentRow(i);
}

void TunerWindow::selectionChanged() {
  // The chosen row opens out into its notes; the others show only their names.
  for (int i = 0; i < lstTunings->count(); ++i) {
    QListWidgetItem* item = lstTunings->item(i);
    const QString name = item->data(Qt::UserRole).toString();
    if (name.isEmpty()) continue;
    item->setText(name);
  }
  QListWidgetItem* item = lstTunings->currentItem();
  if (!item || item->data(Qt::UserRole).toString().isEmpty()) return;
  loadTuning(item->data(Qt::UserRole).toString().toStdString());
}

void TunerWindow::loadTuning(const std::string& name) {
  try {
    const TuningData t = library_.load(name);
    showTuning(t);
    txtName->setText(QString::fromStdString(name));
    if (QListWidgetItem* item = lstTunings->currentItem())
      item->setText(QString::fromStdString(name) + "\n    " + notesOf(t));
  } catch (const TuningError&) {
    message(env_.text("str_BadData"), MessageIcon::Warning);
  }
}

void TunerWindow::showTuning(const TuningData& t) {
  valStrings->setValue(std::clamp<int>(t.NumStrings, 1, 7));
  for (size_t i = 0; i < 7; ++i) cmbTuning[i]->setCurrentIndex(std::clamp<int>(t.StringNote[i], 0, kNoteNamesPerString - 1));
}

TuningData TunerWindow::editedTuning() const {
  TuningData t;
  t.NumStrings = static_cast<int16_t>(valStrings->value());
  for (size_t i = 0; i < 7; ++i) t.StringNote[i] = static_cast<int16_t>(cmbTuning[i]->currentIndex());
  return t;
}

void TunerWindow::Command3_Click() {
  if (player_->playing()) {
    player_->stop();
    Command3->setText(env_.str("str_Play"));
    for (auto* c : chk) c->setStyleSheet("");
    return;
  }
  TunerSettings s;
  s.rate = txtRate->text().toStdString();
  s.wait = txtWait->text().toStdString();
  s.stroke = cmbPattern->currentIndex();
  s.reverb = chkReverb->isChecked();
  for (size_t i = 0; i < 7; ++i) s.strings[i] = chk[i]->isChecked();
  const TuningData t = editedTuning();
  if (const std::string why = CheckTunerSettings(s, t.NumStrings); !why.empty()) {
    message(env_.text(why));
    return;
  }
  player_->play(t, s);
  if (player_->playing()) Command3->setText(env_.str("str_Stop"));
}

void TunerWindow::Command4_Click() {
  const std::string name = txtName->text().trimmed().toStdString();
  if (!TuningLibrary::validName(name)) {
    message(env_.text("str_ErrorSaving"), MessageIcon::Warning);
    return;
  }
  if (library_.exists(name) &&
      !env_.prompter.yesNo(env_.text("str_TuningExists1") + name + env_.text("str_TuningExists2"), windowTitle().toStdString()))
    return;
  try {
    library_.save(name, editedTuning());
  } catch (const TuningError&) {
    message(env_.text("str_ErrorSaving"), MessageIcon::Critical);
    return;
  }
  fillList();
  for (int i = 0; i < lstTunings->count(); ++i)
    if (lstTunings->item(i)->data(Qt::UserRole).toString().toStdString() == name) lstTunings->setCurrentRow(i);
}

void TunerWindow::deleteTuning() {
  QListWidgetItem* item = lstTunings->currentItem();
  if (!item || item->data(Qt::UserRole).toString().isEmpty()) return;
  const std::string name = item->data(Qt::UserRole).toString().toStdString();
  if (!env_.prompter.yesNo(env_.text("str_ConfirmDelete1") + name + env_.text("str_ConfirmDelete2"), windowTitle().toStdString()))
    return;
  try {
    library_.remove(name);
  } catch (const TuningError&) {
    message(env_.text("str_ErrorSaving"), MessageIcon::Critical);
  }
  fillList();
}

void TunerWindow::mnuRestoreTunings_Click() {
  if (!env_.prompter.yesNo(env_.text("str_ConfirmRestore"), windowTitle().toStdString())) return;
  // str_WaitWhileIRestore shows while the files are written.
  setCursor(Qt::WaitCursor);
  setWindowTitle(env_.str("str_WaitWhileIRestore"));
  try {
    library_.restore();
  } catch (const TuningError&) {
    message(env_.text("str_ErrorSaving"), MessageIcon::Critical);
  }
  unsetCursor();
  LoadLanguage(this, env_.languageFile);
  fillList();
  message(env_.text("str_TuningReset"));
}

void TunerWindow::closeEvent(QCloseEvent* e) {
  player_->stop();
  Command3->setText(env_.str("str_Play"));
  e->accept();
}

}  // namespace plectaro
