#include "reference/ui/scale_editor.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "reference/note_names.h"
#include "reference/ui/tuning_loader.h"
#include "reference/ui/view_menu.h"
#include "shell/ui/language_ui.h"

namespace plectaro {

ScaleEditor::ScaleEditor(ReferenceEnv& env, QWidget* parent) : QDialog(parent), env_(env) {
  setObjectName("frmScaleEditor");
  // The title comes from the window's section of the language file (English when none).
  LoadLanguage(this, env_.languageFile);
  auto* form = new QFormLayout;
  txtName_ = new QLineEdit(this);
  txtName_->setObjectName("txtName");
  txtKeywords_ = new QLineEdit(this);
  txtKeywords_->setObjectName("txtKeywords");
  cmbStrings_ = new QComboBox(this);
  cmbStrings_->setObjectName("cmbStrings");
  for (int n = 4; n <= 7; ++n) cmbStrings_->addItem(QString::number(n));
  cmbStrings_->setCurrentIndex(2);
  cmbKey_ = new QComboBox(this);
  cmbKey_->setObjectName("cmbKey");
  for (const char* k : kScaleKeys) cmbKey_->addItem(k);
  cmbKey_->setCurrentIndex(ScaleKeyItem(0));
  chkDescending_ = new QCheckBox(env_.caption("chkDescending", "Descending"), this);
  chkDescending_->setObjectName("chkDescending");
  form->addRow(env_.caption("lblName", "Name:"), txtName_);
  form->addRow(env_.caption("lblKeywords", "Keywords:"), txtKeywords_);
  form->addRow(env_.caption("lblStrings", "Strings:"), cmbStrings_);
  form->addRow(env_.caption("lblKey", "Key:"), cmbKey_);
  form->addRow(QString(), chkDescending_);

  // One row per string, one box per fret of the window.
  auto* grid = new QGridLayout;
  for (int d = 0; d < kScaleOffsets; ++d) grid->addWidget(new QLabel(QString::number(d), this), 0, d + 2, Qt::AlignCenter);
  for (int r = 0; r < kScaleRows; ++r) {
    const auto ri = static_cast<size_t>(r);
    grid->addWidget(new QLabel(QString::number(r + 1), this), r + 1, 0);
    cmbTuning_[ri] = new QComboBox(this);
    cmbTuning_[ri]->setObjectName(QString("cmbTuning%1").arg(r));
    for (const std::string& n : NoteNamesOfString(r + 1)) cmbTuning_[ri]->addItem(QString::fromStdString(n));
    cmbTuning_[ri]->setCurrentIndex(kStandardNoteIndex);
    grid->addWidget(cmbTuning_[ri], r + 1, 1);
    connect(cmbTuning_[ri], &QComboBox::currentIndexChanged, this, [this] { DrawTheScale(); });
    for (int d = 0; d < kScaleOffsets; ++d) {
      auto* box = new QCheckBox(this);
      box->setObjectName(QString("chkPosition%1_%2").arg(d).arg(r));
      chkPosition_[ri][static_cast<size_t>(d)] = box;
      grid->addWidget(box, r + 1, d + 2, Qt::AlignCenter);
      connect(box, &QCheckBox::toggled, this, [this] { DrawTheScale(); });
    }
  }
  picScale_ = new SurfacePicture("picScale", QSize(180, 90),
                                 [this](Surface& s) { DrawScaleChart(s, {24, 12}, scale(), view_, false); }, this);

  tmrPlay_ = new QTimer(this);
  tmrPlay_->setObjectName("tmrPlay");
  tmrPlay_->setInterval(kNoteInterval);
  connect(tmrPlay_, &QTimer::timeout, this, [this] { tick(); });

  auto* buttons = new QDialogButtonBox(this);
  auto* playButton = buttons->addButton(env_.caption("cmdPlay", "&Play"), QDialogButtonBox::ActionRole);
  playButton->setObjectName("cmdPlay");
  auto* stopButton = buttons->addButton(env_.caption("cmdStop", "S&top"), QDialogButtonBox::ActionRole);
  stopButton->setObjectName("cmdStop");
  auto* saveButton = buttons->addButton(env_.caption("cmdSave", "&Save"), QDialogButtonBox::ActionRole);
  saveButton->setObjectName("cmdSave");
  auto* loadTuning = buttons->addButton(env_.caption("cmdLoadTuning", "Load &Tuning..."), QDialogButtonBox::ActionRole);
  loadTuning->setObjectName("cmdLoadTuning");
  connect(loadTuning, &QPushButton::clicked, this, [this] { PickTuning(this, env_.data, env_.languageFile, tuningBoxes()); });
  buttons->addButton(QDialogButtonBox::Close);
  connect(playButton, &QPushButton::clicked, this, [this] { play(); });
  connect(stopButton, &QPushButton::clicked, this, [this] { stop(); });
  connect(saveButton, &QPushButton::clicked, this, [this] { saveScale(); });
  connect(buttons, &QDialogButtonBox::rejected, this, [this] {
    stop();
    hide();
  });
  connect(cmbStrings_, &QComboBox::currentIndexChanged, this, [this] { DrawTheScale(); });
  connect(cmbKey_, &QComboBox::currentIndexChanged, this, [this] { DrawTheScale(); });
  connect(chkDescending_, &QCheckBox::toggled, this, [this] { DrawTheScale(); });

  auto* layout = new QVBoxLayout(this);
  auto* upper = new QHBoxLayout;
  upper->addLayout(form);
  upper->addWidget(picScale_, 0, Qt::AlignTop);
  layout->addLayout(upper);
  layout->addLayout(grid);
  layout->addWidget(buttons);
  DrawTheScale();
}

void ScaleEditor::setScale(const std::string& name, const ScaleData& s, const ScaleView& view) {
  stop();
  txtName_->setText(QString::fromStdString(name));
  txtKeywords_->setText(QString::fromStdString(s.Keywords));
  cmbStrings_->setCurrentIndex(std::clamp<int>(s.NumStrings, 4, 7) - 4);
  cmbKey_->setCurrentIndex(ScaleKeyItem(std::clamp(view.keyOffset, 0, 11)));
  chkDescending_->setChecked(!view.ascending);
  for (int r = 0; r < kScaleRows; ++r) {
    const auto ri = static_cast<size_t>(r);
    const int at = cmbTuning_[ri]->findText(QString::fromStdString(PitchToNoteName(r + 1, s.Tuning[ri])));
    cmbTuning_[ri]->setCurrentIndex(at >= 0 ? at : kStandardNoteIndex);
    for (int d = 0; d < kScaleOffsets; ++d)
      chkPosition_[ri][static_cast<size_t>(d)]->setChecked(s.Positions[static_cast<size_t>(d)][ri]);
  }
  view_ = view;
  DrawTheScale();
}

ScaleData ScaleEditor::scale() const {
  ScaleData s;
  s.Keywords = txtKeywords_->text().toStdString();
  s.NumStrings = static_cast<int16_t>(cmbStrings_->currentIndex() < 0 ? 6 : cmbStrings_->currentIndex() + 4);
  for (int r = 0; r < kScaleRows; ++r) {
    const auto ri = static_cast<size_t>(r);
    s.Tuning[ri] = static_cast<int16_t>(NoteNameToPitch(r + 1, cmbTuning_[ri]->currentText().toStdString()));
    for (int d = 0; d < kScaleOffsets; ++d)
      s.Positions[static_cast<size_t>(d)][ri] = chkPosition_[ri][static_cast<size_t>(d)]->isChecked();
  }
  return s;
}

std::string ScaleEditor::name() const { return txtName_->text().trimmed().toStdString(); }

void ScaleEditor::DrawTheScale() {
  view_.keyOffset = ScaleKeyOffset(std::max(0, cmbKey_->currentIndex()));
  view_.ascending = !chkDescending_->isChecked();
  const int n = cmbStrings_->currentIndex() < 0 ? 6 : cmbStrings_->currentIndex() + 4;
  for (int r = 0; r < kScaleRows; ++r) {
    cmbTuning_[static_cast<size_t>(r)]->setEnabled(r < n);
    for (QCheckBox* box : chkPosition_[static_cast<size_t>(r)]) box->setEnabled(r < n);
  }
  notes_ = ScaleNotes(scale(), view_.keyOffset, view_.high, view_.ascending);
  picScale_->update();
}

void ScaleEditor::play() {
  stop();
  DrawTheScale();
  next_ = 0;
  if (notes_.empty()) return;
  tick();
  tmrPlay_->start();
}

bool ScaleEditor::playing() const { return tmrPlay_->isActive(); }

void ScaleEditor::stop() {
  tmrPlay_->stop();
  if (sounding_ >= 0 || next_ > 0) {
    if (env_.allNotesOff) env_.allNotesOff();
  }
  sounding_ = -1;
  next_ = 0;
}

void ScaleEditor::tick() {
  // With the reverb option the notes ring on; without it each note ends the one before.
  const bool ring = env_.option(env_.scaleReverb, false);
  if (next_ >= notes_.size()) {
    tmrPlay_->stop();
    if (sounding_ >= 0 && env_.noteOff && !ring) env_.noteOff(sounding_);
    sounding_ = -1;
    next_ = 0;
    return;
  }
  if (sounding_ >= 0 && env_.noteOff && !ring) env_.noteOff(sounding_);
  sounding_ = notes_[next_++].pitch;
  if (env_.noteOn) env_.noteOn(sounding_);
}

bool ScaleEditor::saveScale() {
  const std::string n = name();
  if (!ValidLibraryName(n)) {
    if (env_.prompter) env_.prompter->message(env_.str("str_CantSave"), "", MessageIcon::Warning);
    return false;
  }
  if (ScaleExists(env_.data, n) && env_.prompter &&
      !env_.prompter->yesNo(env_.str("str_ScaleExists1") + n + env_.str("str_ScaleExists2"), ""))
    return false;
  try {
    SaveScale(env_.data, n, scale());
  } catch (const LibraryError&) {
    if (env_.prompter) env_.prompter->message(env_.str("str_CantSave"), "", MessageIcon::Critical);
    return false;
  }
  emit saved(QString::fromStdString(n));
  return true;
}

}  // namespace plectaro
