#include "tools/ui/metronome_window.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QVBoxLayout>
#include <filesystem>

#include "shell/ui/language_ui.h"
#include "tools/record_text.h"

namespace plectaro {

namespace {

QSpinBox* spin(const char* name, int lo, int hi) {
  auto* s = new QSpinBox;
  s->setObjectName(name);
  s->setRange(lo, hi);
  return s;
}

}  // namespace

MetronomeWindow::MetronomeWindow(ToolEnv& env, QWidget* parent)
    : QMainWindow(parent), env_(env), player_(std::make_unique<MetronomePlayer>(env.midi, env.clock, env.outputBank)) {
  setObjectName("frmMetronome");
  auto* central = new QWidget(this);
  auto* box = new QVBoxLayout(central);

  picFile = new QTableWidget(0, 4);
  picFile->setObjectName("picFile");
  picFile->setHorizontalHeaderLabels({"Time Signature", env.str("str_BeatsPerMinute"), env.str("str_NumberofBars"), "Length"});
  picFile->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  picFile->setSelectionBehavior(QAbstractItemView::SelectRows);
  picFile->setSelectionMode(QAbstractItemView::SingleSelection);
  picFile->setEditTriggers(QAbstractItemView::NoEditTriggers);
  box->addWidget(picFile, 1);

  auto* rowButtons = new QHBoxLayout;
  auto* add = new QPushButton("+");
  add->setObjectName("cmdAdd");
  add->setToolTip("Add a beat set after the chosen one");
  auto* remove = new QPushButton("_");
  remove->setObjectName("cmdRemove");
  remove->setToolTip("Remove the chosen beat set");
  auto* copy = new QPushButton("Copy");
  copy->setObjectName("cmdCopy");
  auto* paste = new QPushButton(env.str("str_Paste"));
  paste->setObjectName("cmdPaste");
  for (auto* b : {add, remove, copy, paste}) rowButtons->addWidget(b);
  rowButtons->addStretch();
  box->addLayout(rowButtons);

  auto* edit = new QGroupBox(env.str("str_Edit"));
  auto* ef = new QHBoxLayout(edit);
  cUTS = new QLineEdit;
  cUTS->setObjectName("cUTS");
  cUTS->setMaximumWidth(40);
  lUTS = new QComboBox;
  lUTS->setObjectName("lUTS");
  for (int d : {1, 2, 4, 8, 16, 32}) lUTS->addItem(QString::number(d));
  vBPM = spin("vBPM", 1, 999);
  vBTP = spin("vBTP", 1, 999);
  auto* apply = new QPushButton("Apply");
  apply->setObjectName("Command7");
  ef->addWidget(cUTS);
  ef->addWidget(new QLabel("/"));
  ef->addWidget(lUTS);
  ef->addSpacing(10);
  ef->addWidget(new QLabel(env.str("str_BeatsPerMinute") + ":"));
  ef->addWidget(vBPM);
  ef->addWidget(new QLabel(env.str("str_NumberofBars") + ":"));
  ef->addWidget(vBTP);
  ef->addWidget(apply);
  box->addWidget(edit);

  auto* sound = new QGroupBox("Sound");
  auto* sf = new QFormLayout(sound);
  lstInstrument = new QComboBox;
  lstInstrument->setObjectName("lstInstrument");
  for (const char* n : kInstrumentNames) lstInstrument->addItem(n);
  vBeatPitch = spin("vBeatPitch", 0, 127);
  vBeatVol = spin("vBeatVol", 0, 127);
  v1beatVol = spin("v1beatVol", 0, 127);
  sf->addRow("Instrument:", lstInstrument);
  sf->addRow("Beat Pitch:", vBeatPitch);
  sf->addRow("Beat Volume:", vBeatVol);
  sf->addRow("First Beat Volume:", v1beatVol);
  box->addWidget(sound);

  auto* bottom = new QHBoxLayout;
  chkLoop = new QCheckBox("Loop Playback");
  chkLoop->setObjectName("chkLoop");
  cmdPlay = new QPushButton(env.str("str_Play"));
  cmdPlay->setObjectName("cmdPlay");
  lblPosition = new QLabel;
  lblPosition->setObjectName("lblPosition");
  bottom->addWidget(chkLoop);
  bottom->addWidget(lblPosition, 1);
  bottom->addWidget(cmdPlay);
  box->addLayout(bottom);
  setCentralWidget(central);
  buildMenus();

  connect(picFile, &QTableWidget::itemSelectionChanged, this, [this] { showSet(); });
  connect(apply, &QPushButton::clicked, this, [this] { applyEdit(); });
  connect(add, &QPushButton::clicked, this, [this] { addSet(); });
  connect(remove, &QPushButton::clicked, this, [this] { removeSet(); });
  connect(copy, &QPushButton::clicked, this, [this] { clipboard_ = file_.Sets[static_cast<size_t>(currentSet())]; });
  connect(paste, &QPushButton::clicked, this, [this] {
    if (!clipboard_) {
      message(env_.text("str_CantPaste"));
      return;
    }
    if (!env_.prompter.yesNo(env_.text("str_CurrBeatSetWillBeLost"), env_.text("str_Paste"))) return;
    file_.Sets[static_cast<size_t>(currentSet())] = *clipboard_;
    touched();
    mDrawFile();
  });
  for (QSpinBox* s : {vBeatPitch, vBeatVol, v1beatVol})
    connect(s, &QSpinBox::valueChanged, this, [this] { settingsChanged(); });
  connect(lstInstrument, &QComboBox::currentIndexChanged, this, [this] { settingsChanged(); });
  connect(chkLoop, &QCheckBox::toggled, this, [this] { settingsChanged(); });
  connect(cmdPlay, &QPushButton::clicked, this, [this] {
    if (player_->playing()) stopPlay();
    else play();
  });
  player_->hooks.beatSounded = [this](MetronomePlayer::Position p) {
    lblPosition->setText(QString("%1 %2   bar %3   beat %4").arg(env_.str("str_Set")).arg(p.set + 1).arg(p.bar + 1).arg(p.beat + 1));
    if (picFile->currentRow() != p.set) selectSet(p.set);
  };
  player_->hooks.stopped = [this] {
    cmdPlay->setText(env_.str("str_Play"));
    lblPosition->clear();
  };
  LoadLanguage(this, env_.languageFile);
  mDrawFile();
  selectSet(0);
  resize(560, 480);
}

MetronomeWindow::~MetronomeWindow() { player_->stop(); }

void MetronomeWindow::buildMenus() {
  QMenu* file = menuBar()->addMenu("&File");
  file->setObjectName("mnuFile");
  file->addAction("&New", this, [this] {
    if (!askSave()) return;
    stopPlay();
    file_ = MetronomeFile{};
    fileName_.clear();
    dirty_ = false;
    mDrawFile();
    selectSet(0);
  })->setObjectName("mnuNew");
  file->addAction("&Open...", this, [this] {
    if (!askSave()) return;
    if (auto path = env_.prompter.openFileName("Open Metronome File", "Metronome Files|*.p4m|", "")) ForceOpenFile(*path);
  })->setObjectName("mnuOpen");
  file->addAction("&Save", this, [this] { save(false); })->setObjectName("mnuSave");
  file->addAction("Save &As...", this, [this] { save(true); })->setObjectName("mnuSaveAs");
  file->addSeparator();
  file->addAction("&Close", this, [this] { close(); })->setObjectName("mnuClose");
}

void MetronomeWindow::message(const std::string& text) {
  env_.prompter.message(text, env_.text("str_Metronome"), MessageIcon::Information);
}

void MetronomeWindow::touched() {
  dirty_ = true;
  mDrawFile();
}

int MetronomeWindow::currentSet() const {
  return std::clamp(picFile->currentRow(), 0, static_cast<int>(file_.Sets.size()) - 1);
}

void MetronomeWindow::selectSet(int index) {
  picFile->selectRow(std::clamp(index, 0, static_cast<int>(file_.Sets.size()) - 1));
  showSet();
}

void MetronomeWindow::mDrawFile() {
  const int keep = picFile->currentRow();
  updating_ = true;
  picFile->setRowCount(static_cast<int>(file_.Sets.size()));
  for (size_t i = 0; i < file_.Sets.size(); ++i) {
    const BeatSet& s = file_.Sets[i];
    const double seconds = static_cast<double>(BeatIntervalMs(s)) * s.BeatsUpper * s.BeatSetBars / 1000.0;
    const QStringList cells = {QString("%1/%2").arg(s.BeatsUpper).arg(s.BeatsLower), QString::number(s.BeatSetBPM),
                               QString::number(s.BeatSetBars),
                               QString("%1:%2").arg(static_cast<int>(seconds) / 60).arg(static_cast<int>(seconds) % 60, 2, 10, QChar('0'))};
    for (int c = 0; c < 4; ++c) {
      auto* item = new QTableWidgetItem(cells[c]);
      item->setTextAlignment(Qt::AlignCenter);
      picFile->setItem(static_cast<int>(i), c, item);
    }
  }
  picFile->setVerticalHeaderLabels([this] {
    QStringList l;
    for (size_t i = 0; i < file_.Sets.size(); ++i) l << QString("%1 %2").arg(env_.str("str_Set")).arg(i + 1);
    return l;
  }());
  vBeatPitch->setValue(file_.BeatPitch);
  vBeatVol->setValue(file_.BeatVolume);
  v1beatVol->setValue(file_.FirstBeatVolume);
  lstInstrument->setCurrentIndex(std::clamp<int>(file_.Instrument, 0, 127));
  chkLoop->setChecked(file_.Loop);
  updating_ = false;
  if (keep >= 0 && keep < picFile->rowCount()) picFile->selectRow(keep);
  setWindowTitle(QString::fromStdString(env_.text("str_Metronome") + " - [" +
                                        (fileName_.empty() ? std::string("Untitled") : std::filesystem::path(fileName_).filename().string()) +
                                        "]") + (dirty_ ? " *" : ""));
}

void MetronomeWindow::showSet() {
  if (updating_ || file_.Sets.empty()) return;
  const BeatSet& s = file_.Sets[static_cast<size_t>(currentSet())];
  cUTS->setText(QString::number(s.BeatsUpper));
  lUTS->setCurrentText(QString::number(s.BeatsLower));
  vBPM->setValue(s.BeatSetBPM);
  vBTP->setValue(s.BeatSetBars);
}

void MetronomeWindow::applyEdit() {
  BeatSet& s = file_.Sets[static_cast<size_t>(currentSet())];
  s.BeatsUpper = ParseBeatsUpper(cUTS->text().toStdString());
  s.BeatsLower = static_cast<int16_t>(lUTS->currentText().toInt());
  s.BeatSetBPM = static_cast<int16_t>(vBPM->value());
  s.BeatSetBars = static_cast<int16_t>(vBTP->value());
  touched();
  showSet();
}

void MetronomeWindow::addSet() {
  if (static_cast<int>(file_.Sets.size()) >= kMaxBeatSets) {
    message(env_.text("str_NoMoreBeatSets"));
    return;
  }
  const int at = currentSet() + 1;
  // A new set starts as a copy of the chosen one: schedules mostly step the tempo.
  file_.Sets.insert(file_.Sets.begin() + at, file_.Sets[static_cast<size_t>(at - 1)]);
  touched();
  selectSet(at);
}

void MetronomeWindow::removeSet() {
  if (file_.Sets.size() <= 1) {
    message(env_.text("str_MustHaveAtLeastOneBeatSet"));
    return;
  }
  stopPlay();
  const int at = currentSet();
  file_.Sets.erase(file_.Sets.begin() + at);
  touched();
  selectSet(std::min(at, static_cast<int>(file_.Sets.size()) - 1));
}

void MetronomeWindow::settingsChanged() {
  if (updating_) return;
  file_.Instrument = static_cast<int16_t>(lstInstrument->currentIndex());
  file_.BeatPitch = static_cast<int16_t>(vBeatPitch->value());
  file_.BeatVolume = static_cast<int16_t>(vBeatVol->value());
  file_.FirstBeatVolume = static_cast<int16_t>(v1beatVol->value());
  file_.Loop = chkLoop->isChecked();
  dirty_ = true;
  setWindowTitle(windowTitle().endsWith(" *") ? windowTitle() : windowTitle() + " *");
}

void MetronomeWindow::play() {
  const std::string why = CheckPlayable(file_, [this](std::string_view k) { return env_.text(k); });
  if (!why.empty()) {
    message(why);
    return;
  }
  player_->play(file_);
  if (player_->playing()) cmdPlay->setText(env_.str("str_Stop"));
}

void MetronomeWindow::stopPlay() { player_->stop(); }

bool MetronomeWindow::askSave() {
  if (!dirty_) return true;
  const Answer a = env_.prompter.yesNoCancel(env_.text("str_saveFileQ"), env_.text("str_Metronome"));
  if (a == Answer::Cancel) return false;
  return a == Answer::No || save(false);
}

bool MetronomeWindow::save(bool as) {
  std::string path = fileName_;
  if (as || path.empty()) {
    auto chosen = env_.prompter.saveFileName("Save Metronome File", "Metronome Files|*.p4m|", path);
    if (!chosen) return false;
    path = *chosen;
    if (std::filesystem::path(path).extension().empty()) path += ".p4m";
  }
  try {
    SaveMetronomeFile(path, file_);
  } catch (const std::exception& e) {
    message(env_.text("str_FileError") + " " + e.what());
    return false;
  }
  fileName_ = path;
  dirty_ = false;
  mDrawFile();
  return true;
}

bool MetronomeWindow::ForceOpenFile(const std::string& path) {
  try {
    MetronomeFile f = LoadMetronomeFile(path);
    stopPlay();
    file_ = std::move(f);
    fileName_ = path;
    dirty_ = false;
    mDrawFile();
    selectSet(0);
    return true;
  } catch (const std::exception& e) {
    message(env_.text("str_FileError") + " " + e.what());
    return false;
  }
}

void MetronomeWindow::closeEvent(QCloseEvent* e) {
  if (!askSave()) {
    e->ignore();
    return;
  }
  stopPlay();
  e->accept();
}

}  // namespace plectaro
