#include "tools/ui/drum_machine_window.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QSpinBox>
#include <QToolBar>
#include <QVBoxLayout>
#include <filesystem>

#include "playback/midi_out.h"
#include "score/file_io.h"
#include "shell/ui/language_ui.h"
#include "tools/drum_midi.h"
#include "tools/drum_score.h"
#include "tools/record_text.h"

namespace plectaro {

namespace {

const char* const kLengthNames[] = {"Whole", "Half", "Quarter", "Eighth", "Sixteenth", "32nd", "64th"};
const char* const kLengthMarks[] = {"1", "2", "4", "8", "16", "32", "64"};
const char* const kTupletNames[] = {"(none)", "Triplet", "5", "6", "7", "9", "10", "11", "12", "13"};

}  // namespace

// ---- the grid ----

DrumGrid::DrumGrid(DrumMachine& machine, QWidget* parent) : QWidget(parent), m_(machine) {
  setObjectName("picDocument");
  setMouseTracking(false);
  setAutoFillBackground(true);
  QPalette pal = palette();
  pal.setColor(QPalette::Window, Qt::white);
  setPalette(pal);
}

QSize DrumGrid::sizeHint() const {
  return {kDrumNameWidth + 48 * kDrumStepWidth + 25, kDrumHeaderHeight + m_.pattern.instruments() * kDrumRowHeight + 2};
}

int DrumGrid::pageSteps() const { return std::max(1, (width() - kDrumNameWidth - 25) / kDrumStepWidth); }

int DrumGrid::stepAt(int x) const {
  if (x < kDrumNameWidth) return -1;
  const int s = scroll + (x - kDrumNameWidth) / kDrumStepWidth;
  return s < m_.pattern.steps() ? s : -1;
}

int DrumGrid::rowAt(int y) const {
  if (y < kDrumHeaderHeight) return -1;
  const int r = (y - kDrumHeaderHeight) / kDrumRowHeight;
  return r < m_.pattern.instruments() ? r : -1;
}

void DrumGrid::paintEvent(QPaintEvent*) {
  QPainter p(this);
  const DrumPattern& pat = m_.pattern;
  const int rows = pat.instruments();
  const int bottom = kDrumHeaderHeight + rows * kDrumRowHeight;
  const auto sel = m_.selection();
  QFont small = font();
  small.setPointSizeF(small.pointSizeF() * 0.8);
  // The current row and the rows' names.
  p.fillRect(0, kDrumHeaderHeight + currentRow * kDrumRowHeight, kDrumNameWidth, kDrumRowHeight, QColor(220, 232, 250));
  for (int r = 0; r < rows; ++r) {
    const int y = kDrumHeaderHeight + r * kDrumRowHeight;
    p.setPen(Qt::black);
    p.drawText(QRect(4, y, kDrumNameWidth - 40, kDrumRowHeight), Qt::AlignVCenter | Qt::AlignLeft,
               QString::fromStdString(pat.Instruments[static_cast<size_t>(r)]));
    p.setPen(Qt::darkGray);
    p.setFont(small);
    p.drawText(QRect(kDrumNameWidth - 36, y, 32, kDrumRowHeight), Qt::AlignVCenter | Qt::AlignRight,
               QString::number(pat.Volumes[static_cast<size_t>(r)]));
    p.setFont(font());
  }
  for (int s = scroll; s < pat.steps(); ++s) {
    const int x = kDrumNameWidth + (s - scroll) * kDrumStepWidth;
    if (x + kDrumStepWidth > width()) break;
    const auto i = static_cast<size_t>(s);
    const bool selected = sel && s >= sel->first && s <= sel->second;
    // Beats of four sixteenths are shaded alternately so a bar reads at a glance.
    QColor header = selected ? QColor(255, 214, 150) : (s == currentStep ? QColor(220, 232, 250) : QColor(240, 240, 240));
    p.fillRect(x, 0, kDrumStepWidth, kDrumHeaderHeight, header);
    if (selected) p.fillRect(x, kDrumHeaderHeight, kDrumStepWidth, rows * kDrumRowHeight, QColor(255, 240, 210));
    else if ((s / pat.BeatsPerGroup) % 2 == 1 && pat.BeatsPerGroup > 0)
      p.fillRect(x, kDrumHeaderHeight, kDrumStepWidth, rows * kDrumRowHeight, QColor(246, 246, 246));
    p.setPen(Qt::black);
    p.setFont(small);
    const int code = std::clamp<int32_t>(pat.BeatLength[i], 0, 6);
    p.drawText(QRect(x, 2, kDrumStepWidth, 14), Qt::AlignCenter, kLengthMarks[code]);
    QString marks;
    if (pat.Dotted[i]) marks += QChar(0x2022);  // a bullet: a plain full stop is lost at this size
    if (pat.Tupleted[i]) marks += QString::number(TupletNumber(pat.TupletCode[i]));
    p.drawText(QRect(x, 16, kDrumStepWidth, 14), Qt::AlignCenter, marks);
    p.setFont(font());
    for (int r = 0; r < rows; ++r) {
      if (!pat.cell(s, r)) continue;
      const int y = kDrumHeaderHeight + r * kDrumRowHeight;
      p.fillRect(x + 2, y + 3, kDrumStepWidth - 4, kDrumRowHeight - 6, QColor(40, 90, 170));
    }
  }
  // Grid lines: thin per step, strong per group.
  const int lastX = kDrumNameWidth + std::min(pat.steps() - scroll, (width() - kDrumNameWidth) / kDrumStepWidth) * kDrumStepWidth;
  p.setPen(QColor(200, 200, 200));
  for (int r = 0; r <= rows; ++r) p.drawLine(0, kDrumHeaderHeight + r * kDrumRowHeight, lastX, kDrumHeaderHeight + r * kDrumRowHeight);
  for (int s = scroll; s <= pat.steps(); ++s) {
    const int x = kDrumNameWidth + (s - scroll) * kDrumStepWidth;
    if (x > lastX) break;
    p.setPen(pat.BeatsPerGroup > 0 && s % pat.BeatsPerGroup == 0 ? QColor(120, 120, 120) : QColor(200, 200, 200));
    p.drawLine(x, 0, x, bottom);
  }
  p.setPen(Qt::black);
  p.drawLine(kDrumNameWidth, 0, kDrumNameWidth, bottom);
  // The play cursor.
  if (playStep >= scroll) {
    const int x = kDrumNameWidth + (playStep - scroll) * kDrumStepWidth;
    p.setPen(QPen(QColor(210, 30, 30), 2));
    p.drawLine(x + kDrumStepWidth / 2, 0, x + kDrumStepWidth / 2, bottom);
  }
}

void DrumGrid::ProcessMouseClickData(int x, int y, bool extend) {
  const int step = stepAt(x);
  const int row = rowAt(y);
  if (y < kDrumHeaderHeight && step >= 0) {
    // The header: a click chooses the step whose length the controls show and starts a
    // selection; shift extends it.
    if (extend && selectAnchor_ >= 0) {
      m_.select(selectAnchor_, step);
    } else {
      selectAnchor_ = step;
      m_.clearSelection();
    }
    currentStep = step;
    emit stepChosen(step);
  } else if (x < kDrumNameWidth && row >= 0) {
    currentRow = row;
    emit rowChosen(row);
  } else if (step >= 0 && row >= 0) {
    m_.toggle(step, row);
    paintValue_ = m_.pattern.cell(step, row) ? 1 : 0;
    currentRow = row;
    emit cellToggled(step, row);
  }
  update();
}

void DrumGrid::ProcessMouseMoveData(int x, int y) {
  const int step = stepAt(x);
  const int row = rowAt(y);
  if (paintValue_ >= 0 && step >= 0 && row >= 0) {
    if (m_.pattern.cell(step, row) != (paintValue_ == 1)) {
      m_.SetTrackNameTo(step, row, paintValue_ == 1);
      if (paintValue_ == 1) emit cellToggled(step, row);
      update();
    }
  } else if (selectAnchor_ >= 0 && step >= 0 && y < kDrumHeaderHeight + 4) {
    m_.select(selectAnchor_, step);
    update();
  }
}

void DrumGrid::mousePressEvent(QMouseEvent* e) {
  if (e->button() == Qt::LeftButton)
    ProcessMouseClickData(e->position().toPoint().x(), e->position().toPoint().y(), e->modifiers() & Qt::ShiftModifier);
}

void DrumGrid::mouseMoveEvent(QMouseEvent* e) {
  if (e->buttons() & Qt::LeftButton) ProcessMouseMoveData(e->position().toPoint().x(), e->position().toPoint().y());
}

void DrumGrid::mouseReleaseEvent(QMouseEvent*) { paintValue_ = -1; }

// ---- the window ----

DrumMachineWindow::DrumMachineWindow(ToolEnv& env, QWidget* parent)
    : QMainWindow(parent), env_(env), seq_(std::make_unique<DrumSequencer>(env.midi, env.clock)) {
  setObjectName("frmDrumMachine");
  setAttribute(Qt::WA_DeleteOnClose, false);
  auto* central = new QWidget(this);
  auto* box = new QVBoxLayout(central);

  auto* controls = new QHBoxLayout;
  controls->addWidget(new QLabel("Tempo:"));
  valBox3 = new QSpinBox;
  valBox3->setObjectName("valBox3");
  valBox3->setRange(1, 999);
  controls->addWidget(valBox3);
  controls->addSpacing(12);
  controls->addWidget(new QLabel(env.str("str_BeatLength") + ":"));
  cmbLength = new QComboBox;
  cmbLength->setObjectName("cmbLength");
  for (const char* n : kLengthNames) cmbLength->addItem(n);
  controls->addWidget(cmbLength);
  cmbTriplet = new QComboBox;
  cmbTriplet->setObjectName("cmbTriplet");
  for (const char* n : kTupletNames) cmbTriplet->addItem(n);
  controls->addWidget(cmbTriplet);
  chkDotted = new QCheckBox(env.str("str_Dotted"));
  chkDotted->setObjectName("chkDotted");
  controls->addWidget(chkDotted);
  controls->addSpacing(12);
  controls->addWidget(new QLabel("Instrument:"));
  cmbInstrument = new QComboBox;
  cmbInstrument->setObjectName("cmbInstrument");
  for (int n = 1; !GetDrumString(n).empty(); ++n) cmbInstrument->addItem(QString::fromStdString(GetDrumString(n)));
  controls->addWidget(cmbInstrument);
  controls->addWidget(new QLabel("Volume:"));
  valVolume = new QSpinBox;
  valVolume->setObjectName("valVolume");
  valVolume->setRange(0, 127);
  controls->addWidget(valVolume);
  controls->addStretch();
  box->addLayout(controls);

  grid_ = new DrumGrid(machine_, central);
  grid_->setMinimumSize(kDrumNameWidth + 16 * kDrumStepWidth + 25, kDrumHeaderHeight + 4 * kDrumRowHeight);
  box->addWidget(grid_, 1);
  HScroller = new QScrollBar(Qt::Horizontal);
  HScroller->setObjectName("HScroller");
  box->addWidget(HScroller);

  auto* bottom = new QHBoxLayout;
  Check1 = new QCheckBox("Loop");
  Check1->setObjectName("Check1");
  Check1->setChecked(true);
  Check2 = new QCheckBox("Follow");
  Check2->setObjectName("Check2");
  Check2->setChecked(true);
  bottom->addWidget(Check1);
  bottom->addWidget(Check2);
  bottom->addStretch();
  box->addLayout(bottom);
  setCentralWidget(central);
  buildMenus();

  connect(grid_, &DrumGrid::cellToggled, this, [this](int, int row) {
    if (!seq_->playing()) SoundDrum(env_.midi, machine_.pattern, row);
    refresh();
  });
  connect(grid_, &DrumGrid::stepChosen, this, [this](int) { showStep(); });
  connect(grid_, &DrumGrid::rowChosen, this, [this](int row) {
    SoundDrum(env_.midi, machine_.pattern, row);
    showStep();
  });
  connect(HScroller, &QScrollBar::valueChanged, this, [this](int v) {
    grid_->scroll = v;
    grid_->update();
  });
  connect(valBox3, &QSpinBox::valueChanged, this, [this](int v) {
    if (updating_) return;
    machine_.setTempo(v);
    refresh();
  });
  connect(cmbLength, &QComboBox::currentIndexChanged, this, [this](int i) {
    if (updating_) return;
    machine_.setStepLength(grid_->currentStep, i);
    refresh();
  });
  connect(cmbTriplet, &QComboBox::currentIndexChanged, this, [this](int i) {
    if (updating_) return;
    machine_.setStepTuplet(grid_->currentStep, i);
    refresh();
  });
  connect(chkDotted, &QCheckBox::toggled, this, [this](bool on) {
    if (updating_) return;
    machine_.setStepDotted(grid_->currentStep, on);
    refresh();
  });
  connect(cmbInstrument, &QComboBox::currentTextChanged, this, [this](const QString& name) {
    if (updating_) return;
    machine_.setInstrument(grid_->currentRow, name.toStdString());
    refresh();
  });
  connect(valVolume, &QSpinBox::valueChanged, this, [this](int v) {
    if (updating_) return;
    machine_.setVolume(grid_->currentRow, v);
    refresh();
  });

  seq_->hooks.stepSounded = [this](int step) {
    grid_->playStep = step;
    // Follow: when the cursor runs off the right, the view moves on by a page.
    if (Check2->isChecked() && (step >= grid_->scroll + grid_->pageSteps() || step < grid_->scroll))
      HScroller->setValue(std::min(step, HScroller->maximum()));
    grid_->update();
  };
  seq_->hooks.wrapped = [this] {
    if (Check2->isChecked()) HScroller->setValue(0);
  };
  seq_->hooks.stopped = [this] {
    grid_->playStep = -1;
    playAction_->setText(env_.str("str_Play"));
    grid_->update();
  };
  LoadLanguage(this, env_.languageFile);
  refresh();
  showStep();
  resize(kDrumNameWidth + 40 * kDrumStepWidth + 60, kDrumHeaderHeight + 16 * kDrumRowHeight + 150);
}

DrumMachineWindow::~DrumMachineWindow() { seq_->stop(); }

void DrumMachineWindow::buildMenus() {
  QMenu* file = menuBar()->addMenu("&File");
  file->setObjectName("mnuFile");
  file->addAction("&New", this, [this] {
    if (askSave()) NewFile();
  })->setObjectName("mnuNew");
  file->addAction("&Open...", this, [this] { openFile(); })->setObjectName("mnuOpen");
  file->addAction("&Save", this, [this] { save(false); })->setObjectName("mnuSave");
  file->addAction("Save &As...", this, [this] { save(true); })->setObjectName("mnuSaveAs");
  file->addSeparator();
  file->addAction("&Import Old Drumbeat...", this, [this] { importOld(); })->setObjectName("mnuImport");
  file->addAction("&Batch Import Old Drumbeats...", this, [this] { batchImport(); })->setObjectName("mnuBatchImport");
  file->addAction("&Export to MIDI File...", this, [this] { exportMidi(); })->setObjectName("mnuFileExport2");
  file->addSeparator();
  // The open score: a drum track into the grid, the grid into a new track or over this one.
  QAction* load = file->addAction("&Load from the Current Drum Track", this, [this] { loadFromScore(); });
  load->setObjectName("mnuLoad");
  QAction* add = file->addAction(env_.str("str_AddtoMusicFile"), this, [this] { addToScore(false); });
  add->setObjectName("mnuAdd");
  QAction* over = file->addAction(env_.str("str_AddtoMusicFile") + " (Overwrite This Track)", this,
                                  [this] { addToScore(true); });
  over->setObjectName("mnuOver");
  for (QAction* a : {load, add, over}) a->setEnabled(env_.editor != nullptr);
  file->addSeparator();
  file->addAction("&Close", this, [this] { close(); })->setObjectName("mnuClose");

  QMenu* edit = menuBar()->addMenu("&Edit");
  edit->setObjectName("mnuEdit");
  auto act = [&](QMenu* menu, const char* name, const char* text, auto fn, QKeySequence key = {}) {
    QAction* a = menu->addAction(text, this, fn);
    a->setObjectName(name);
    if (!key.isEmpty()) a->setShortcut(key);
    return a;
  };
  act(edit, "mnuCut", "Cu&t Steps", [this] { report(machine_.cut()); refresh(); }, QKeySequence::Cut);
  act(edit, "mnuCopy", "&Copy Steps", [this] { report(machine_.copy()); }, QKeySequence::Copy);
  act(edit, "mnuPaste", "&Paste Steps", [this] {
    const auto sel = machine_.selection();
    report(machine_.paste(sel ? sel->first : grid_->currentStep));
    refresh();
  }, QKeySequence::Paste);
  edit->addSeparator();
  act(edit, "mnuAddStep", "&Add a Step", [this] { report(machine_.addStep()); refresh(); });
  act(edit, "mnuRemoveStep", "&Remove the Last Step", [this] { report(machine_.removeStep()); refresh(); });
  act(edit, "mnuAddInstrument", "Add an &Instrument", [this] { report(machine_.addInstrument()); refresh(); });
  act(edit, "mnuRemoveInstrument", "Remove the &Current Instrument", [this] {
    report(machine_.removeInstrument(grid_->currentRow));
    grid_->currentRow = std::min(grid_->currentRow, machine_.pattern.instruments() - 1);
    refresh();
    showStep();
  });
  act(edit, "mnuClearPattern", "C&lear the Pattern", [this] { machine_.ClearFile(); refresh(); });

  QMenu* play = menuBar()->addMenu("&Play");
  play->setObjectName("mnuPlay");
  playAction_ = act(play, "mnuPlayStop", "&Play", [this] {
    if (seq_->playing()) stopPlay();
    else method132();
  }, QKeySequence(Qt::Key_Space));
  auto* bar = addToolBar("Play");
  bar->setObjectName("tbPlay");
  bar->addAction(playAction_);
}

void DrumMachineWindow::report(const std::string& key) {
  if (!key.empty()) env_.prompter.message(env_.text(key), env_.text("str_DrumMachine"), MessageIcon::Information);
}

void DrumMachineWindow::refresh() {
  const auto& p = machine_.pattern;
  updating_ = true;
  valBox3->setValue(p.Tempo);
  updating_ = false;
  HScroller->setRange(0, std::max(0, p.steps() - 1));
  HScroller->setPageStep(grid_->pageSteps());
  grid_->currentStep = std::clamp(grid_->currentStep, 0, std::max(0, p.steps() - 1));
  grid_->updateGeometry();
  grid_->update();
  setWindowTitle(QString::fromStdString(env_.text("str_DrumMachine") + machine_.titleSuffix()) +
                 (machine_.dirty ? " *" : ""));
}

void DrumMachineWindow::showStep() {
  const auto& p = machine_.pattern;
  const auto s = static_cast<size_t>(std::clamp(grid_->currentStep, 0, p.steps() - 1));
  const auto r = static_cast<size_t>(std::clamp(grid_->currentRow, 0, p.instruments() - 1));
  updating_ = true;
  cmbLength->setCurrentIndex(std::clamp<int32_t>(p.BeatLength[s], 0, 6));
  cmbTriplet->setCurrentIndex(p.Tupleted[s] ? std::clamp<int32_t>(p.TupletCode[s], 0, 8) + 1 : 0);
  chkDotted->setChecked(p.Dotted[s]);
  cmbInstrument->setCurrentText(QString::fromStdString(p.Instruments[r]));
  valVolume->setValue(p.Volumes[r]);
  updating_ = false;
  grid_->update();
}

void DrumMachineWindow::patternReplaced() {
  grid_->currentStep = 0;
  grid_->currentRow = 0;
  HScroller->setValue(0);
  refresh();
  showStep();
}

void DrumMachineWindow::NewFile() {
  stopPlay();
  machine_.NewFile();
  patternReplaced();
}

void DrumMachineWindow::method132() {
  seq_->loop = Check1->isChecked();
  seq_->play(machine_.pattern);
  if (seq_->playing()) playAction_->setText(env_.str("str_Stop"));
}

void DrumMachineWindow::stopPlay() { seq_->stop(); }

bool DrumMachineWindow::askSave() {
  if (!machine_.dirty) return true;
  const Answer a = env_.prompter.yesNoCancel(env_.text("str_saveFileQ"), env_.text("str_DrumMachine"));
  if (a == Answer::Cancel) return false;
  if (a == Answer::Yes) return save(false);
  return true;
}

bool DrumMachineWindow::save(bool as) {
  std::string path = machine_.fileName;
  if (as || path.empty()) {
    auto chosen = env_.prompter.saveFileName("Save Drumbeat", "Drumbeat Files|*.p4d|", path);
    if (!chosen) return false;
    path = *chosen;
    if (std::filesystem::path(path).extension().empty()) path += ".p4d";
  }
  try {
    SaveDrumbeatFile(path, machine_.pattern);
  } catch (const std::exception& e) {
    env_.prompter.message(env_.text("str_FileError") + " " + e.what(), env_.text("str_DrumMachine"), MessageIcon::Critical);
    return false;
  }
  machine_.fileName = path;
  machine_.dirty = false;
  refresh();
  return true;
}

bool DrumMachineWindow::ForceOpenFile(const std::string& path) {
  try {
    DrumPattern p = LoadDrumbeatFile(path);
    stopPlay();
    machine_.pattern = std::move(p);
    // An old file opens as a new, untitled drumbeat so saving never writes the old format.
    const bool old = std::filesystem::path(path).extension() == ".pld";
    machine_.fileName = old ? "" : path;
    machine_.dirty = old;
    machine_.clearSelection();
    patternReplaced();
    return true;
  } catch (const ToolFileError&) {
    env_.prompter.message(env_.text("str_TheFile") + path + "' -- " + env_.text("str_FileError"),
                          env_.text("str_DrumMachine"), MessageIcon::Warning);
  } catch (const std::exception& e) {
    env_.prompter.message(env_.text("str_FileError") + " " + e.what(), env_.text("str_DrumMachine"), MessageIcon::Warning);
  }
  return false;
}

void DrumMachineWindow::openFile() {
  if (!askSave()) return;
  auto path = env_.prompter.openFileName("Open Drumbeat", "Drumbeat Files|*.p4d|", "");
  if (path) ForceOpenFile(*path);
}

void DrumMachineWindow::importOld() {
  if (!askSave()) return;
  auto path = env_.prompter.openFileName("Import Old Drumbeat", "Old Drumbeat Files|*.pld|", "");
  if (path) ForceOpenFile(*path);
}

void DrumMachineWindow::batchImport() {
  // frm_BatchDrumImport: every old file of a folder becomes a .p4d beside it.
  std::string caption = env_.messages.text("frm_BatchDrumImport", "Caption");
  if (caption.empty()) caption = "Batch Drum Import";
  const QString dir = QFileDialog::getExistingDirectory(this, QString::fromStdString(caption));
  if (dir.isEmpty()) return;
  int done = 0, failed = 0;
  for (const QString& name : QDir(dir).entryList({"*.pld", "*.PLD"}, QDir::Files)) {
    try {
      ConvertFile((QDir(dir).filePath(name)).toStdString());
      ++done;
    } catch (const std::exception&) {
      ++failed;
    }
  }
  env_.prompter.message(std::to_string(done) + " converted, " + std::to_string(failed) + " could not be read.",
                        caption, MessageIcon::Information);
}

void DrumMachineWindow::exportMidi() {
  auto path = env_.prompter.saveFileName("Export to MIDI File", "MIDI Files|*.mid|", "");
  if (!path) return;
  std::string p = *path;
  if (std::filesystem::path(p).extension().empty()) p += ".mid";
  try {
    ExportDrumPatternMidi(p, machine_.pattern);
  } catch (const std::exception& e) {
    env_.prompter.message(env_.text("str_FileError") + " " + e.what(), env_.text("str_DrumMachine"), MessageIcon::Critical);
  }
}

void DrumMachineWindow::loadFromScore() {
  if (!env_.editor || !askSave()) return;
  auto p = LoadPatternFromScore(*env_.editor);
  if (!p) return;
  stopPlay();
  machine_.pattern = std::move(*p);
  // The track is the pattern's home: an untitled pattern, clean until it is edited.
  machine_.fileName.clear();
  machine_.dirty = false;
  machine_.clearSelection();
  patternReplaced();
}

void DrumMachineWindow::addToScore(bool overwrite) {
  if (!env_.editor) return;
  // A new track is named after the pattern's file, or plainly "Drums" while it has none.
  const std::string stem = std::filesystem::path(machine_.fileName).stem().string();
  const DrumScoreResult r = overwrite ? OverwriteTrackWithPattern(*env_.editor, machine_.pattern)
                                      : AddPatternAsTrack(*env_.editor, machine_.pattern, stem.empty() ? "Drums" : stem);
  if (r.done && r.lostHits > 0)
    env_.prompter.message(std::to_string(r.lostHits) +
                              " hits were left out: a drum track strikes one drum per line at a time, and this "
                              "pattern strikes more drums at once than the track has lines.",
                          env_.text("str_DrumMachine"), MessageIcon::Warning);
}

void DrumMachineWindow::closeEvent(QCloseEvent* e) {
  if (!askSave()) {
    e->ignore();
    return;
  }
  stopPlay();
  e->accept();
}

}  // namespace plectaro
