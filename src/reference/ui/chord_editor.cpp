#include "reference/ui/chord_editor.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include "reference/cell_drawing.h"
#include "reference/note_names.h"
#include "reference/place_commands.h"
#include "reference/ui/tuning_loader.h"
#include "reference/ui/view_menu.h"
#include "shell/ui/language_ui.h"
#include "score/value_text.h"

namespace plectaro {

namespace {

bool isFret(const QString& t) {
  bool ok = false;
  const int v = t.trimmed().toInt(&ok);
  return ok && v >= 0 && v <= 99;
}

}  // namespace

ChordEditor::ChordEditor(ReferenceEnv& env, QWidget* parent) : QDialog(parent), env_(env) {
  setObjectName("frmChordEditor");
  // The title comes from the window's section of the language file (English when none).
  LoadLanguage(this, env_.languageFile);
  auto* top = new QFormLayout;
  txtName_ = new QLineEdit(this);
  txtName_->setObjectName("txtName");
  cmbStrings_ = new QComboBox(this);
  cmbStrings_->setObjectName("cmbStrings");
  for (int n = 4; n <= 7; ++n) cmbStrings_->addItem(QString::number(n));
  cmbStrings_->setCurrentIndex(2);
  txtStartFret_ = new QSpinBox(this);
  txtStartFret_->setObjectName("txtStartFret");
  txtStartFret_->setRange(0, 24);
  chkBarre_ = new QCheckBox(env_.caption("chkBarre", "Barre"), this);
  chkBarre_->setObjectName("chkBarre");
  top->addRow(env_.caption("lblName", "Name:"), txtName_);
  top->addRow(env_.caption("lblStrings", "Strings:"), cmbStrings_);
  top->addRow(env_.caption("lblStartFret", "Chart starts at fret:"), txtStartFret_);
  top->addRow(QString(), chkBarre_);

  auto* grid = new QGridLayout;
  grid->addWidget(new QLabel(env_.caption("lblString", "String"), this), 0, 0);
  grid->addWidget(new QLabel(env_.caption("lblTuning", "Tuning"), this), 0, 1);
  grid->addWidget(new QLabel(env_.caption("lblFret", "Fret"), this), 0, 2);
  grid->addWidget(new QLabel(env_.caption("lblFinger", "Finger"), this), 0, 3);
  for (int i = 0; i < kChordStrings; ++i) {
    const auto idx = static_cast<size_t>(i);
    grid->addWidget(new QLabel(QString::number(i + 1), this), i + 1, 0);
    cmbTuning_[idx] = new QComboBox(this);
    cmbTuning_[idx]->setObjectName(QString("cmbTuning%1").arg(i));
    for (const std::string& n : NoteNamesOfString(i + 1)) cmbTuning_[idx]->addItem(QString::fromStdString(n));
    cmbTuning_[idx]->setCurrentIndex(kStandardNoteIndex);
    txtFret_[idx] = new QLineEdit(this);
    txtFret_[idx]->setObjectName(QString("txtFret%1").arg(i));
    txtFret_[idx]->setMaxLength(2);
    txtFret_[idx]->setFixedWidth(40);
    cmbFinger_[idx] = new QComboBox(this);
    cmbFinger_[idx]->setObjectName(QString("cmbFinger%1").arg(i));
    cmbFinger_[idx]->addItems({"-", "1", "2", "3", "4", "T"});
    grid->addWidget(cmbTuning_[idx], i + 1, 1);
    grid->addWidget(txtFret_[idx], i + 1, 2);
    grid->addWidget(cmbFinger_[idx], i + 1, 3);
    connect(txtFret_[idx], &QLineEdit::textChanged, this, [this] { refreshPreview(); });
    connect(cmbTuning_[idx], &QComboBox::currentIndexChanged, this, [this] { refreshPreview(); });
    connect(cmbFinger_[idx], &QComboBox::currentIndexChanged, this, [this] { refreshPreview(); });
  }
  picChord_ = new SurfacePicture(
      "picChord", QSize(130, 90),
      [this](Surface& s) {
        ChordData c;
        std::string error;
        if (chord(c, error)) DrawChordChart(s, {28, 10}, c, false);
      },
      this);
  grid->addWidget(picChord_, 1, 4, 6, 1, Qt::AlignTop);

  auto* buttons = new QDialogButtonBox(this);
  auto* play = buttons->addButton(env_.caption("cmdPlay", "&Play"), QDialogButtonBox::ActionRole);
  play->setObjectName("cmdPlay");
  auto* save = buttons->addButton(env_.caption("cmdSave", "&Save"), QDialogButtonBox::ActionRole);
  save->setObjectName("cmdSave");
  auto* loadTuning = buttons->addButton(env_.caption("cmdLoadTuning", "Load &Tuning..."), QDialogButtonBox::ActionRole);
  loadTuning->setObjectName("cmdLoadTuning");
  buttons->addButton(QDialogButtonBox::Close);
  connect(loadTuning, &QPushButton::clicked, this, [this] { PickTuning(this, env_.data, env_.languageFile, tuningBoxes()); });
  connect(play, &QPushButton::clicked, this, [this] { PlayChordOnce(); });
  connect(save, &QPushButton::clicked, this, [this] { saveChord(); });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::hide);
  connect(cmbStrings_, &QComboBox::currentIndexChanged, this, [this] { refreshPreview(); });
  connect(txtStartFret_, &QSpinBox::valueChanged, this, [this] { refreshPreview(); });
  connect(chkBarre_, &QCheckBox::toggled, this, [this] { refreshPreview(); });

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top);
  layout->addLayout(grid);
  layout->addWidget(buttons);
  refreshPreview();
}

void ChordEditor::refreshPreview() {
  const int n = cmbStrings_->currentIndex() < 0 ? 6 : cmbStrings_->currentIndex() + 4;
  for (int i = 0; i < kChordStrings; ++i) {
    const auto idx = static_cast<size_t>(i);
    cmbTuning_[idx]->setEnabled(i < n);
    txtFret_[idx]->setEnabled(i < n);
    cmbFinger_[idx]->setEnabled(i < n);
  }
  picChord_->update();
}

void ChordEditor::setChord(const std::string& name, const ChordData& c) {
  txtName_->setText(QString::fromStdString(name));
  cmbStrings_->setCurrentIndex(std::clamp<int>(c.NumStrings, 4, 7) - 4);
  txtStartFret_->setValue(c.StartFret);
  chkBarre_->setChecked(c.Barre);
  for (int i = 0; i < kChordStrings; ++i) {
    const auto idx = static_cast<size_t>(i);
    int fret = 0;
    const std::string raw(Trim(c.Frets[idx]));
    txtFret_[idx]->setText(c.absoluteFret(i, fret) ? QString::number(fret) : QString::fromStdString(raw));
    // A tuning outside the string's names shows the standard pitch.
    const std::string note = PitchToNoteName(i + 1, c.Tuning[idx]);
    const int at = cmbTuning_[idx]->findText(QString::fromStdString(note));
    cmbTuning_[idx]->setCurrentIndex(at >= 0 ? at : kStandardNoteIndex);
    cmbFinger_[idx]->setCurrentIndex(std::clamp<int>(c.Fingers[idx], 0, 5));
  }
  refreshPreview();
}

std::string ChordEditor::name() const { return txtName_->text().trimmed().toStdString(); }

bool ChordEditor::chord(ChordData& c, std::string& error) const {
  c = ChordData{};
  c.NumStrings = static_cast<int16_t>(cmbStrings_->currentIndex() < 0 ? 6 : cmbStrings_->currentIndex() + 4);
  c.StartFret = static_cast<int16_t>(txtStartFret_->value());
  c.Barre = chkBarre_->isChecked();
  for (int i = 0; i < kChordStrings; ++i) {
    const auto idx = static_cast<size_t>(i);
    c.Tuning[idx] = static_cast<int16_t>(NoteNameToPitch(i + 1, cmbTuning_[idx]->currentText().toStdString()));
    c.Fingers[idx] = static_cast<int16_t>(std::max(0, cmbFinger_[idx]->currentIndex()));
    if (i >= c.NumStrings) continue;
    const QString t = txtFret_[idx]->text().trimmed();
    if (t.isEmpty()) {
      // An empty box is a string the chord leaves alone: the file keeps it blank, and the chart
      // draws nothing there. Typing "x" marks it muted, with an X on the chart.
      c.Frets[idx] = "";
    } else if (t.compare("x", Qt::CaseInsensitive) == 0) {
      c.Frets[idx] = "x";
    } else if (isFret(t)) {
      // The file keeps frets relative to the chart's first fret; a chart shows five frets.
      const int rel = t.toInt() - c.StartFret;
      if (rel < 0 || rel > 5) {
        error = "str_InvalidChordRange";
        return false;
      }
      c.Frets[idx] = std::to_string(rel);
    } else {
      error = "str_InvalidTab";
      return false;
    }
  }
  return true;
}

void ChordEditor::PlayChordOnce() {
  ChordData c;
  std::string error;
  if (!chord(c, error) || !env_.soundChord) return;
  env_.soundChord(ToBeatChord(name(), c));
}

bool ChordEditor::saveChord() {
  ChordData c;
  std::string error;
  if (!chord(c, error)) {
    if (env_.prompter) env_.prompter->message(env_.str(error), "", MessageIcon::Warning);
    return false;
  }
  const std::string n = name();
  if (!ValidLibraryName(n)) {
    if (env_.prompter) env_.prompter->message(env_.str("str_CantSaveChord"), "", MessageIcon::Warning);
    return false;
  }
  if (ChordExists(env_.data, n) && env_.prompter &&
      !env_.prompter->yesNo(env_.str("str_ChordExists1") + n + env_.str("str_ChordExists2"), ""))
    return false;
  try {
    SaveChordFile(env_.data, n, c);
  } catch (const LibraryError&) {
    if (env_.prompter) env_.prompter->message(env_.str("str_CantSaveChord"), "", MessageIcon::Critical);
    return false;
  }
  emit saved(QString::fromStdString(n));
  return true;
}

}  // namespace plectaro
