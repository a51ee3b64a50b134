#include "editing/ui/track_dialogs.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>
#include <optional>

#include "editing/cursor_access.h"
#include "editing/ui/dialog_parts.h"
#include "playback/midi_out.h"
#include "reference/note_names.h"
#include "reference/tunings.h"

namespace plectaro {

namespace {

QString q(const std::string& s) { return QString::fromStdString(s); }

QSpinBox* spin(QWidget* parent, const char* name, int low, int high, int value) {
  auto* s = new QSpinBox(parent);
  s->setObjectName(name);
  s->setRange(low, high);
  s->setValue(value);
  return s;
}

QCheckBox* check(QWidget* parent, const char* name, const char* text, bool on) {
  auto* c = new QCheckBox(text, parent);
  c->setObjectName(name);
  c->setChecked(on);
  return c;
}

void fillInstruments(QComboBox* box) {
  for (size_t i = 0; i < kInstrumentNames.size(); ++i)
    box->addItem(QString("%1 %2").arg(i).arg(kInstrumentNames[i]));
}

}  // namespace

// ---- tuning editor ----

TuningEditor::TuningEditor(const std::filesystem::path& dataFolder, QWidget* parent)
    : QWidget(parent), dataFolder_(dataFolder) {
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->addWidget(new QLabel("Strings:", this), 0, 0);
  txtStrings = spin(this, "txtStrings", 1, kMaxStrings, 6);
  grid->addWidget(txtStrings, 0, 1);
  grid->addWidget(new QLabel("Tuning:", this), 1, 0);
  cmbPresets = new QComboBox(this);
  cmbPresets->setObjectName("cmbPresets");
  cmbPresets->addItem("(choose a tuning)");
  TuningLibrary lib(dataFolder_);
  lib.createAll();  // the library is written the first time anything needs it
  for (const std::string& name : lib.names()) cmbPresets->addItem(q(name));
  grid->addWidget(cmbPresets, 1, 1);
  // String 1 (the highest) at the top, as the strings lie on the tab staff. Each item carries
  // its offset from the string's standard pitch, so that an offset beyond the 25 names (a bass)
  // can stand in the box as an item of its own and is kept when the box is left alone.
  for (int s = 0; s < kMaxStrings; ++s) {
    auto* box = new QComboBox(this);
    box->setObjectName(QString("cmbTuning%1").arg(s));
    for (int offset = -kStandardNoteIndex; offset <= kStandardNoteIndex; ++offset)
      box->addItem(q(OffsetName(s + 1, offset)), offset);
    box->setCurrentIndex(kStandardNoteIndex);
    cmbTuning[static_cast<size_t>(s)] = box;
    grid->addWidget(new QLabel(QString("String %1").arg(s + 1), this), 2 + s, 0);
    grid->addWidget(box, 2 + s, 1);
  }
  connect(txtStrings, &QSpinBox::valueChanged, this, [this] { showStrings(); });
  connect(cmbPresets, &QComboBox::activated, this, [this](int row) { loadPreset(row); });
  showStrings();
}

void TuningEditor::showStrings() {
  for (int s = 0; s < kMaxStrings; ++s) cmbTuning[static_cast<size_t>(s)]->setEnabled(s < txtStrings->value());
}

void TuningEditor::selectOffset(int string, int offset) {
  QComboBox* box = cmbTuning[static_cast<size_t>(string)];
  int row = box->findData(offset);
  if (row < 0) {
    // Lower pitches go above the 25 names, higher ones below them, as the list runs upwards.
    row = offset < 0 ? 0 : box->count();
    box->insertItem(row, q(OffsetName(string + 1, offset)), offset);
  }
  box->setCurrentIndex(row);
}

void TuningEditor::loadPreset(int row) {
  if (row <= 0) return;
  try {
    const TuningData preset = TuningLibrary(dataFolder_).load(cmbPresets->itemText(row).toStdString());
    // A preset sets the pitches; the string count stays as chosen (a six-string preset on a
    // seven-string guitar keeps the low string's own tuning).
    for (int s = 0; s < preset.NumStrings && s < kMaxStrings; ++s)
      selectOffset(s, preset.StringNote[static_cast<size_t>(s)] - kStandardNoteIndex);
  } catch (const TuningError& e) {
    cmbPresets->setToolTip(QString::fromUtf8(e.what()));
  }
}

void TuningEditor::setTuning(const TuningInfo& tuning) {
  txtStrings->setValue(std::clamp<int>(tuning.NumStrings, 1, kMaxStrings));
  for (int s = 0; s < kMaxStrings; ++s) selectOffset(s, tuning.Offset[static_cast<size_t>(s)]);
}

TuningInfo TuningEditor::tuning() const {
  TuningInfo info;
  info.NumStrings = static_cast<int16_t>(txtStrings->value());
  for (size_t s = 0; s < kMaxStrings; ++s) info.Offset[s] = static_cast<int16_t>(cmbTuning[s]->currentData().toInt());
  return info;
}

// ---- add a track ----

AddTrackDialog::AddTrackDialog(const Score& score, const std::filesystem::path& dataFolder, QWidget* parent)
    : QDialog(parent) {
  setObjectName("ntne_frmAddTrack");
  setWindowTitle("Add a Track");
  auto* form = new QFormLayout;
  txtName = new QLineEdit(QString("Track %1").arg(score.Tracks.size() + 1), this);
  txtName->setObjectName("txtName");
  // The proposed name is selected, so typing a name replaces it instead of appending to it.
  txtName->selectAll();
  txtName->setFocus();
  form->addRow("Name:", txtName);
  cmbInstrument = new QComboBox(this);
  cmbInstrument->setObjectName("cmbInstrument");
  fillInstruments(cmbInstrument);
  cmbInstrument->setCurrentIndex(24);
  form->addRow("Instrument:", cmbInstrument);
  chkDrum = check(this, "chkDrum", "Percussion Track", false);
  form->addRow("", chkDrum);
  tuning = new TuningEditor(dataFolder, this);
  // Picking a bass proposes a bass's strings and tuning; going back to another instrument
  // takes a proposed bass tuning back. A tuning the user set by hand is left alone.
  connect(cmbInstrument, &QComboBox::currentIndexChanged, this, [this](int program) {
    const int strings = tuning->txtStrings->value();
    if (IsBassInstrument(program) && tuning->tuning() == TuningInfo{.NumStrings = static_cast<int16_t>(strings)})
      tuning->setTuning(BassTuning(strings >= 4 && strings <= 6 ? strings : 4));
    else if (!IsBassInstrument(program) && tuning->tuning() == BassTuning(strings))
      tuning->setTuning(TuningInfo{});
  });
  connect(tuning->txtStrings, &QSpinBox::valueChanged, this, [this](int strings) {
    if (IsBassInstrument(cmbInstrument->currentIndex()) && strings >= 4 && strings <= 6)
      tuning->setTuning(BassTuning(strings));
  });
  connect(chkDrum, &QCheckBox::toggled, this, [this](bool drums) {
    cmbInstrument->setEnabled(!drums);
    tuning->cmbPresets->setEnabled(!drums);
    for (QComboBox* b : tuning->cmbTuning) b->setVisible(!drums);
  });
  auto* l = new QVBoxLayout(this);
  l->addLayout(form);
  l->addWidget(tuning);
  l->addWidget(okCancel(this));
}

Track AddTrackDialog::setup() const {
  const int k = cmbInstrument->currentIndex();
  return NewTrackSetup(txtName->text().toStdString(), chkDrum->isChecked(), k,
                       kInstrumentNames[static_cast<size_t>(std::clamp(k, 0, 127))], tuning->tuning());
}

void mnuTrackAdd_Click(QWidget* parent, EditContext& ctx, const std::filesystem::path& dataFolder) {
  if (!PasswordCorrect(ctx)) return;
  AddTrackDialog d(ctx.doc.score, dataFolder, parent);
  if (d.exec() == QDialog::Accepted) AddTrack(ctx, d.setup());
}

// ---- track properties ----

TrackPropertiesDialog::TrackPropertiesDialog(const Track& track, const std::filesystem::path& dataFolder,
                                             QWidget* parent)
    : QDialog(parent), track_(track) {
  setObjectName("frmTrackProperties");
  setWindowTitle("Track Properties");
  auto* left = new QVBoxLayout;
  auto* form = new QFormLayout;
  txtName = new QLineEdit(q(track.Name), this);
  txtName->setObjectName("txtName");
  form->addRow("Name:", txtName);
  left->addLayout(form);
  lstInstrument = new QListWidget(this);
  lstInstrument->setObjectName("lstInstrument");
  for (size_t i = 0; i < kInstrumentNames.size(); ++i)
    lstInstrument->addItem(QString("%1 %2").arg(i).arg(kInstrumentNames[i]));
  lstInstrument->setCurrentRow(std::clamp<int>(track.Instrument, 0, 127));
  left->addWidget(new QLabel("Instrument:", this));
  left->addWidget(lstInstrument, 1);

  auto* sound = new QGroupBox("Sound", this);
  auto* sf = new QFormLayout(sound);
  // Channels are shown 1 to 16, as on instruments and sequencers; the record keeps 0 to 15.
  txtChannel = spin(sound, "txtChannel", 1, 16, track.Channel + 1);
  txtEffectChannel = spin(sound, "txtEffectChannel", 1, 16, track.EffectChannel + 1);
  txtVolume = spin(sound, "txtVolume", 0, 100, track.Volume);
  txtChordVolume = spin(sound, "txtChordVolume", 0, 100, track.ChordVolume);
  txtCapo = spin(sound, "txtCapo", 0, 24, track.Capo);
  sf->addRow("Channel:", txtChannel);
  sf->addRow("Effect Channel:", txtEffectChannel);
  sf->addRow("Volume:", txtVolume);
  sf->addRow("Chord Volume:", txtChordVolume);
  sf->addRow("Capo:", txtCapo);
  chkOctaveUp = check(sound, "chkOctaveUp", "Shift Octave Up", track.OctaveUp);
  chkOctaveDown = check(sound, "chkOctaveDown", "Shift Octave Down", track.OctaveDown);
  chkReverb = check(sound, "chkReverb", "Reverb", track.Reverb);
  sf->addRow(chkOctaveUp);
  sf->addRow(chkOctaveDown);
  sf->addRow(chkReverb);
  left->addWidget(sound);

  auto* right = new QVBoxLayout;
  auto* strings = new QGroupBox("Strings and Tuning", this);
  auto* sl = new QVBoxLayout(strings);
  tuning = new TuningEditor(dataFolder, strings);
  tuning->setTuning(track.Tuning);
  sl->addWidget(tuning);
  right->addWidget(strings);

  auto* staves = new QGroupBox("Staves", this);
  auto* st = new QHBoxLayout(staves);
  chkTreble = check(staves, "chkTreble", "Treble", track.TrebleStaff);
  chkBass = check(staves, "chkBass", "Bass", track.BassStaff);
  chkTab = check(staves, "chkTab", "Tab", track.TabStaff);
  st->addWidget(chkTreble);
  st->addWidget(chkBass);
  st->addWidget(chkTab);
  right->addWidget(staves);

  chkDrum = check(this, "chkDrum", "Percussion Track", track.DrumTrack);
  right->addWidget(chkDrum);
  auto* drums = new QGroupBox("Drum Map", this);
  drums->setObjectName("fraDrumMap");
  auto* dg = new QGridLayout(drums);
  cmbDrumLine = new QComboBox(drums);
  cmbDrumLine->setObjectName("cmbDrumLine");
  for (int line = 1; line <= kMaxStrings; ++line) cmbDrumLine->addItem(QString("Line %1").arg(line));
  dg->addWidget(new QLabel("Line:", drums), 0, 0);
  dg->addWidget(cmbDrumLine, 0, 1, 1, 3);
  for (size_t i = 0; i < cmbDrums.size(); ++i) {
    auto* box = new QComboBox(drums);
    box->setObjectName(QString("cmbDrums%1").arg(i));
    box->addItem("(none)");
    for (int n = 1; n <= 46; ++n) box->addItem(q(GetDrumString(n)));
    cmbDrums[i] = box;
    const int row = 1 + static_cast<int>(i) / 2, col = (static_cast<int>(i) % 2) * 2;
    dg->addWidget(new QLabel(QString(QChar::fromLatin1(kDrumSymbols[i])), drums), row, col);
    dg->addWidget(box, row, col + 1);
  }
  right->addWidget(drums);
  right->addStretch(1);
  showDrumLine();
  connect(cmbDrumLine, &QComboBox::currentIndexChanged, this, [this] {
    storeDrumLine();
    shownLine_ = cmbDrumLine->currentIndex();
    showDrumLine();
  });
  auto drumMode = [this, drums](bool on) {
    drums->setEnabled(on);
    lstInstrument->setEnabled(!on);
    txtChannel->setEnabled(!on);
    // Drums have no frets to clamp and no octave to move.
    txtCapo->setEnabled(!on);
    chkOctaveUp->setEnabled(!on);
    chkOctaveDown->setEnabled(!on);
  };
  connect(chkDrum, &QCheckBox::toggled, this, drumMode);
  drumMode(track.DrumTrack);

  auto* columns = new QHBoxLayout;
  columns->addLayout(left, 1);
  columns->addLayout(right, 1);
  auto* l = new QVBoxLayout(this);
  l->addLayout(columns);
  l->addWidget(okCancel(this));
}

void TrackPropertiesDialog::showDrumLine() {
  const DrumMap& m = track_.DrumMaps[static_cast<size_t>(shownLine_)];
  for (size_t i = 0; i < cmbDrums.size(); ++i) cmbDrums[i]->setCurrentIndex(std::clamp<int>(m.Drum[i], 0, 46));
}

void TrackPropertiesDialog::storeDrumLine() {
  DrumMap& m = track_.DrumMaps[static_cast<size_t>(shownLine_)];
  for (size_t i = 0; i < cmbDrums.size(); ++i) m.Drum[i] = static_cast<int16_t>(cmbDrums[i]->currentIndex());
}

Track TrackPropertiesDialog::properties() {
  storeDrumLine();
  Track t = track_;
  t.Name = txtName->text().toStdString();
  t.Instrument = static_cast<int16_t>(std::max(lstInstrument->currentRow(), 0));
  t.InstrumentName = kInstrumentNames[static_cast<size_t>(t.Instrument)];
  t.Tuning = tuning->tuning();
  t.Capo = static_cast<int16_t>(txtCapo->value());
  t.Channel = static_cast<int16_t>(txtChannel->value() - 1);
  t.EffectChannel = static_cast<int16_t>(txtEffectChannel->value() - 1);
  t.Volume = static_cast<int16_t>(txtVolume->value());
  t.ChordVolume = static_cast<int16_t>(txtChordVolume->value());
  t.OctaveUp = chkOctaveUp->isChecked();
  t.OctaveDown = chkOctaveDown->isChecked();
  t.Reverb = chkReverb->isChecked();
  t.TrebleStaff = chkTreble->isChecked();
  t.BassStaff = chkBass->isChecked();
  t.TabStaff = chkTab->isChecked();
  t.DrumTrack = chkDrum->isChecked();
  return t;
}

void mnuTrackProperties_Click(QWidget* parent, EditContext& ctx, const std::filesystem::path& dataFolder) {
  if (!PasswordCorrect(ctx)) return;
  const int track = ctx.doc.CursorTrack;
  TrackPropertiesDialog d(ctx.doc.score.track(track), dataFolder, parent);
  if (d.exec() == QDialog::Accepted) ApplyTrackProperties(ctx, track, d.properties());
}

// ---- transpose ----

void mnuOperationsTranspose_Click(QWidget* parent, EditContext& ctx) {
  if (!PasswordCorrect(ctx)) return;
  QDialog d(parent);
  d.setObjectName("ntne_frmTranspose");
  d.setWindowTitle("Transpose");
  auto* l = new QVBoxLayout(&d);
  l->addWidget(new QLabel("Which tracks would you like to tranpose?", &d));
  auto* list = new QListWidget(&d);
  list->setObjectName("lstTracks");
  // With a selection the dialog offers its tracks and its bars; otherwise the cursor's track,
  // whole. Drum tracks have no pitches to move.
  const std::optional<SelectedRange> selected = SelectionOf(ctx);
  const std::vector<int> offered = selected ? selected->tracks : std::vector<int>{ctx.doc.CursorTrack};
  const QStringList names = trackNames(ctx.doc.score);
  for (int t = 0; t < names.size(); ++t) {
    auto* item = new QListWidgetItem(names[t], list);
    item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
    const bool drums = ctx.doc.score.Tracks[static_cast<size_t>(t)].DrumTrack;
    const bool on = std::find(offered.begin(), offered.end(), t) != offered.end();
    item->setCheckState(on && !drums ? Qt::Checked : Qt::Unchecked);
    if (drums) item->setFlags(item->flags() & ~Qt::ItemIsEnabled);
  }
  l->addWidget(list);
  QCheckBox* onlySelected = nullptr;
  if (selected) {
    onlySelected = new QCheckBox("Only the selection (" + selectionText(*selected) + ")", &d);
    onlySelected->setObjectName("chkSelection");
    onlySelected->setChecked(true);
    l->addWidget(onlySelected);
  }
  auto* row = new QHBoxLayout;
  row->addWidget(new QLabel("Number of Semitones:", &d));
  auto* semis = spin(&d, "txtSemitones", -24, 24, 0);
  row->addWidget(semis);
  l->addLayout(row);
  l->addWidget(okCancel(&d));
  if (d.exec() != QDialog::Accepted) return;
  std::vector<int> tracks;
  for (int t = 0; t < list->count(); ++t)
    if (list->item(t)->checkState() == Qt::Checked) tracks.push_back(t);
  const bool ranged = onlySelected && onlySelected->isChecked();
  Transpose(ctx, tracks, semis->value(), ranged ? &*selected : nullptr);
}

// ---- lyric lines ----

void mnuOperationsEditLines_Click(QWidget* parent, EditContext& ctx) {
  if (!PasswordCorrect(ctx)) return;
  const int track = ctx.doc.CursorTrack;
  QDialog d(parent);
  d.setObjectName("ntne_frmEditLines");
  d.setWindowTitle("Edit Lines");
  auto* form = new QFormLayout(&d);
  std::array<QLineEdit*, 5> lines{};
  for (size_t i = 0; i < lines.size(); ++i) {
    lines[i] = new QLineEdit(q(ctx.doc.score.track(track).Lyrics[i]), &d);
    lines[i]->setObjectName(QString("txtLine%1").arg(i));
    lines[i]->setMinimumWidth(420);
    form->addRow(QString("Line %1:").arg(i + 1), lines[i]);
  }
  form->addRow(okCancel(&d));
  if (d.exec() != QDialog::Accepted) return;
  std::array<std::string, 5> text;
  for (size_t i = 0; i < lines.size(); ++i) text[i] = lines[i]->text().toStdString();
  SetTrackLyrics(ctx, track, text);
}

// ---- go-to points ----

void mnuGoAddGotoPoint_Click(QWidget* parent, EditContext& ctx) {
  if (!PasswordCorrect(ctx)) return;
  bool ok = false;
  std::string current;
  try {
    current = CursorBeat(ctx.doc).GotoName;
  } catch (const ScoreError&) {
  }
  const QString name = QInputDialog::getText(parent, "Add a Go-To Point", "Name of the point:",
                                             QLineEdit::Normal, q(current), &ok);
  if (ok) AddGotoPoint(ctx, name.toStdString());
}

void mnuGoShowPoints_Click(QWidget* parent, EditContext& ctx) {
  QDialog d(parent);
  d.setObjectName("ntne_frmGotoPoints");
  d.setWindowTitle("Go-To Points");
  auto* l = new QVBoxLayout(&d);
  auto* list = new QListWidget(&d);
  list->setObjectName("lstPoints");
  l->addWidget(list);
  auto fill = [&] {
    list->clear();
    for (const GotoPoint& p : GotoPoints(ctx.doc.score)) {
      auto* item = new QListWidgetItem(QString("%1   (%2 %3, %4 %5, %6 %7)")
                                           .arg(q(p.name), q(ctx.text("str_AtTrack")))
                                           .arg(p.track + 1)
                                           .arg(q(ctx.text("str_Bar")))
                                           .arg(p.bar + 1)
                                           .arg(q(ctx.text("str_Beat")))
                                           .arg(p.beat + 1),
                                       list);
      item->setData(Qt::UserRole, q(p.name));
    }
    if (list->count() > 0) list->setCurrentRow(0);
  };
  fill();
  auto* buttons = new QHBoxLayout;
  auto* go = new QPushButton("Go", &d);
  go->setObjectName("cmdGo");
  auto* del = new QPushButton("Delete", &d);
  del->setObjectName("cmdDelete");
  auto* close = new QPushButton("Close", &d);
  close->setObjectName("cmdClose");
  buttons->addWidget(go);
  buttons->addWidget(del);
  buttons->addStretch(1);
  buttons->addWidget(close);
  l->addLayout(buttons);
  auto chosen = [&]() -> std::string {
    QListWidgetItem* item = list->currentItem();
    return item ? item->data(Qt::UserRole).toString().toStdString() : std::string();
  };
  QObject::connect(go, &QPushButton::clicked, &d, [&] {
    if (GoToPoint(ctx, chosen())) d.accept();
  });
  QObject::connect(list, &QListWidget::itemDoubleClicked, &d, [&] {
    if (GoToPoint(ctx, chosen())) d.accept();
  });
  QObject::connect(del, &QPushButton::clicked, &d, [&] {
    if (DeleteGotoPoint(ctx, chosen())) fill();
  });
  QObject::connect(close, &QPushButton::clicked, &d, &QDialog::reject);
  d.resize(420, 300);
  d.exec();
}

}  // namespace plectaro
