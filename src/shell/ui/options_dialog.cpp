#include "shell/ui/options_dialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTabBar>
#include <QTabWidget>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "score/file_io.h"
#include "shell/ui/language_ui.h"

namespace plectaro {

namespace {

QString q(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

OptionsDialog::OptionsDialog(Session& session, QWidget* parent)
    : QDialog(parent), session_(session), edit_(session.ini()) {
  setObjectName("frmOptions");
  auto* layout = new QVBoxLayout(this);
  // Fourteen pages do not fit side by side as tabs; they are listed down the left instead, and
  // the tab widget (whose order is the pages' order) only shows the chosen one.
  auto* body = new QHBoxLayout();
  auto* pageList = new QListWidget(this);
  pageList->setObjectName("lstPages");
  tabs_ = new QTabWidget(this);
  tabs_->setObjectName("TabStrip1");
  tabs_->tabBar()->hide();
  body->addWidget(pageList);
  body->addWidget(tabs_, 1);
  layout->addLayout(body);

  QWidget* drawing = page("tabDrawing");
  check(drawing, "chkAutoStretch", &IniSettings::AutoPageStretch);
  spin(drawing, "lblMinTabX", &IniSettings::MinTabX, 1, 500);
  spin(drawing, "lblMaxTabX", &IniSettings::MaxTabX, 1, 500);

  QWidget* misc = page("tabMisc");
  check(misc, "chkShowTips", &IniSettings::ShowTips);
  check(misc, "chkRecommend", &IniSettings::Recommend);
  check(misc, "chkPercussionAssistant", &IniSettings::AlwaysShowPercussionAssistant);

  QWidget* editing = page("tabEditing");
  check(editing, "chkPlayNotes", &IniSettings::PlayNotesAsTyped);
  spin(editing, "lblUndo", &IniSettings::UndoLevels, 0, 100);

  QWidget* files = page("tabFileHandling");
  check(files, "chkCopyright", &IniSettings::CopyrightWarning);
  spin(files, "lblMaxLineLength", &IniSettings::MaxLineLength, 20, 1000);
  // The autosave interval lives in the settings store: PL4.ini has a fixed line for everything.
  auto* autosaveLabel = new QLabel(files);
  autosaveLabel->setObjectName("lblAutosave");
  autosave_ = new QSpinBox(files);
  autosave_->setObjectName("vbAutosave");
  autosave_->setRange(0, 600);
  static_cast<QFormLayout*>(files->layout())->addRow(autosaveLabel, autosave_);
  autosave_->setValue(AutosaveMinutes(session_.settings()));

  QWidget* langs = page("tabLanguages");
  auto* ll = new QLabel(langs);
  ll->setObjectName("lblLanguages");
  langs->layout()->addWidget(ll);
  languages_ = new QListWidget(langs);
  languages_->setObjectName("lstLanguages");
  // The language in force is the one whose file CurrentLanguage.txt is a copy of.
  std::string current;
  try {
    current = ReadWholeFile(session_.languageFile(), 4 << 20);
  } catch (const FileError&) {
  }
  for (const std::string& n : session_.languages()) {
    languages_->addItem(q(n));
    try {
      if (!current.empty() &&
          ReadWholeFile(session_.folder().data() / "Languages" / (n + ".txt"), 4 << 20) == current)
        languages_->setCurrentRow(languages_->count() - 1);
    } catch (const FileError&) {
    }
  }
  langs->layout()->addWidget(languages_);
  auto* load = new QPushButton(langs);
  load->setObjectName("cmdLoadLanguage");
  connect(load, &QPushButton::clicked, this, &OptionsDialog::loadLanguage);
  langs->layout()->addWidget(load);

  QWidget* fx = page("tabEffects");
  auto* fxForm = static_cast<QFormLayout*>(fx->layout());
  auto* bendLabel = new QLabel(fx);
  bendLabel->setObjectName("lblBend");
  bend_ = new QDoubleSpinBox(fx);
  bend_->setObjectName("txtBend");
  bend_->setRange(0.1, 100);
  bend_->setDecimals(2);
  fxForm->addRow(bendLabel, bend_);
  // The boxes take more than a vibrato may swing, so that a wrong value is refused with a
  // word of why instead of being quietly cut.
  spin(fx, "lblVibratoBend", &IniSettings::VibratoBend, 0, 127);
  spin(fx, "lblWideVibratoBend", &IniSettings::WideVibratoBend, 0, 127);
  spin(fx, "lblVibratoCount", &IniSettings::VibratoCount, 1, 100);

  QWidget* device = page("tabDevice");
  auto* dl = new QLabel(device);
  dl->setObjectName("lblDevice");
  device->layout()->addWidget(dl);
  devices_ = new QListWidget(device);
  devices_->setObjectName("lstDevices");
  // The device list comes from the MIDI output layer; until it is in, the built-in
  // synthesizer is the one device.
  devices_->addItem("Built-in synthesizer (General MIDI)");
  device->layout()->addWidget(devices_);

  QWidget* playback = page("tabPlayback");
  check(playback, "chkFollow", &IniSettings::FollowPlayback);
  check(playback, "chkAutoScroll", &IniSettings::AutoScroll);
  check(playback, "chkAlternate", &IniSettings::AlternatePlayback);
  check(playback, "chkHiPrecision", &IniSettings::HiPrecisionPlayback);
  check(playback, "chkMetronome", &IniSettings::Metronome);
  check(playback, "chkCountIn", &IniSettings::CountIn);

  QWidget* scales = page("tabScaleManager");
  check(scales, "chkScaleReverb", &IniSettings::ScaleReverb);
  QWidget* chords = page("tabChordManager");
  check(chords, "chkPlayChords", &IniSettings::PlayChords);
  check(chords, "chkChordReverb", &IniSettings::ChordReverb);
  check(chords, "chkHideChordManager", &IniSettings::HideChordManager);
  QWidget* fb = page("tabFretboard");
  auto* resetFB = new QPushButton(fb);
  resetFB->setObjectName("cmdResetFB");
  connect(resetFB, &QPushButton::clicked, this, [this] { resetStatistics("FB"); });
  fb->layout()->addWidget(resetFB);
  QWidget* pp = page("tabPitch");
  auto* resetPP = new QPushButton(pp);
  resetPP->setObjectName("cmdResetPP");
  connect(resetPP, &QPushButton::clicked, this, [this] { resetStatistics("PP"); });
  pp->layout()->addWidget(resetPP);
  QWidget* lessons = page("tabLessons");
  check(lessons, "chkLoadLesson", &IniSettings::LoadLesson);
  QWidget* band = page("tabBandManager");
  check(band, "chkCheckDiary", &IniSettings::CheckDiary);

  auto* buttons = new QDialogButtonBox(this);
  auto button = [&](const char* name, QDialogButtonBox::ButtonRole role) {
    auto* b = buttons->addButton(QString(), role);
    b->setObjectName(name);
    return b;
  };
  QPushButton* def = button("cmdDefault", QDialogButtonBox::ResetRole);
  QPushButton* applyButton = button("cmdApply", QDialogButtonBox::ApplyRole);
  QPushButton* ok = button("cmdOK", QDialogButtonBox::AcceptRole);
  button("cmdCancel", QDialogButtonBox::RejectRole);
  ok->setDefault(true);
  connect(def, &QPushButton::clicked, this, &OptionsDialog::defaults);
  connect(applyButton, &QPushButton::clicked, this, &OptionsDialog::apply);
  connect(buttons, &QDialogButtonBox::accepted, this, [this] {
    if (apply()) accept();
  });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);

  for (int i = 0; i < tabs_->count(); ++i) {
    auto* form = static_cast<QFormLayout*>(tabs_->widget(i)->layout());
    if (form->rowCount() == 0) {
      auto* l = new QLabel(tabs_->widget(i));
      l->setObjectName("lblNotYet");
      form->addRow(l);
    }
  }
  fromSettings(edit_);
  LoadLanguage(this, session_.languageFile());
  for (int i = 0; i < tabs_->count(); ++i) pageList->addItem(tabs_->tabText(i));
  pageList->setFixedWidth(pageList->sizeHintForColumn(0) + 24);
  connect(pageList, &QListWidget::currentRowChanged, tabs_, &QTabWidget::setCurrentIndex);
  pageList->setCurrentRow(0);
  resize(720, 440);
}

QWidget* OptionsDialog::page(const char* name) {
  auto* w = new QWidget(tabs_);
  w->setObjectName(name);
  auto* form = new QFormLayout(w);
  form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
  tabs_->addTab(w, QString());
  return w;
}

QCheckBox* OptionsDialog::check(QWidget* page, const char* name, bool IniSettings::*field) {
  auto* c = new QCheckBox(page);
  c->setObjectName(name);
  static_cast<QFormLayout*>(page->layout())->addRow(c);
  checks_.emplace_back(c, field);
  return c;
}

QSpinBox* OptionsDialog::spin(QWidget* page, const char* label, int IniSettings::*field, int lo,
                              int hi) {
  auto* l = new QLabel(page);
  l->setObjectName(label);
  auto* s = new QSpinBox(page);
  s->setObjectName(QString(label).replace(0, 3, "vb"));
  s->setRange(lo, hi);
  static_cast<QFormLayout*>(page->layout())->addRow(l, s);
  spins_.emplace_back(s, field);
  return s;
}

void OptionsDialog::fromSettings(const IniSettings& s) {
  for (auto& [c, f] : checks_) c->setChecked(s.*f);
  for (auto& [sp, f] : spins_) sp->setValue(s.*f);
  bend_->setValue(s.BendCoefficient);
  devices_->setCurrentRow(std::clamp(s.OutputDeviceID, 0, devices_->count() - 1));
}

bool OptionsDialog::apply() {
  IniSettings next = edit_;
  for (auto& [c, f] : checks_) next.*f = c->isChecked();
  for (auto& [sp, f] : spins_) next.*f = sp->value();
  // A vibrato swings round 66 of the wheel's 0..127: more than 61 either way would leave it.
  for (const char* name : {"lblVibratoBend", "lblWideVibratoBend"}) {
    const auto* label = findChild<QLabel*>(name);
    const auto* box = findChild<QSpinBox*>(QString(name).replace(0, 3, "vb"));
    if (!box || box->value() <= kMaxVibratoBend) continue;
    const Messages& m = session_.messages();
    const std::string what = label ? label->text().toStdString() : std::string();
    session_.prompter().message(m.str("str_InvalidData") + "\n\n" + what + " 0 - " + std::to_string(kMaxVibratoBend),
                                m.str("str_Warning"), MessageIcon::Warning);
    return false;
  }
  edit_ = next;
  // The most space between notes can never be less than the least.
  if (edit_.MaxTabX < edit_.MinTabX) edit_.MaxTabX = edit_.MinTabX;
  edit_.BendCoefficient = bend_->value();
  edit_.OutputDeviceID = std::max(0, devices_->currentRow());
  session_.settings().SaveSetting(kAutosaveSection, kAutosaveKey, std::to_string(autosave_->value()));
  IniSettings& live = session_.ini();
  // Toolbars, their places and the recent files are not options; keep what the window has.
  edit_.ToolbarVisible = live.ToolbarVisible;
  edit_.ToolbarDocked = live.ToolbarDocked;
  edit_.FloatBars = live.FloatBars;
  edit_.RecentFiles = live.RecentFiles;
  live = edit_;
  if (onApply) onApply();
  return true;
}

void OptionsDialog::defaults() {
  const Messages& m = session_.messages();
  if (!session_.prompter().yesNo(m.str("str_AllOptionsWillReset"), m.str("str_ConfirmationRequired")))
    return;
  fromSettings(IniSettings());
  autosave_->setValue(kDefaultAutosaveMinutes);
}

void OptionsDialog::resetStatistics(const char* prefix) {
  const Messages& m = session_.messages();
  if (!session_.prompter().yesNo(m.str("str_WillResetAllTraining"), m.str("str_ConfirmationRequired")))
    return;
  for (const char* key : {"TotalRounds", "CorrectAttempts", "TotalAttempts", "FailedAttempts", "RoundsWon",
                          "RoundsLost", "SkillLevel"})
    session_.settings().SaveSetting("Tools", std::string(prefix) + key, "0");
  session_.settings().SaveSetting("Tools", std::string(prefix) + "Category", m.str("str_AbsoluteNovice"));
  session_.settings().sync();
  session_.prompter().message(m.str("str_ResetDone"), m.str("str_Done"), MessageIcon::Information);
}

void OptionsDialog::loadLanguage() {
  QListWidgetItem* it = languages_->currentItem();
  if (!it) return;
  const Messages& m = session_.messages();
  if (session_.chooseLanguage(it->text().toStdString()))
    session_.prompter().message(m.str("str_LangAppliedMustReset"), m.str("str_Done"),
                                MessageIcon::Information);
}

}  // namespace plectaro
