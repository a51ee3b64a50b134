#include "tools/ui/beat_generator_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "shell/ui/language_ui.h"
#include "tools/ui/drum_machine_window.h"

namespace plectaro {

namespace {

const char* const kPatternNames[9] = {"Every Beat", "Every 2 Beats", "Every 3 Beats", "Every 4 Beats", "Every 5 Beats",
                                      "Every 6 Beats", "Every 7 Beats", "Every 8 Beats", "Improvisation (Totally Random)"};
// Default: a plain rock kit on the even patterns a drummer reaches for first.
const char* const kDefaultKit[] = {"Closed High-Hat", "Acoustic Snare", "Acoustic Bass Drum"};
constexpr int kDefaultPatterns[] = {1, 2, 4, 8};

}  // namespace

BeatGeneratorDialog::BeatGeneratorDialog(ToolEnv& env, DrumMachineWindow& machine, QWidget* parent)
    : QDialog(parent), env_(env), machine_(machine) {
  setObjectName("frmDrumBeatGenerator");
  setWindowTitle("Generate Drumbeat");
  auto* top = new QHBoxLayout;

  auto* instruments = new QGroupBox("Select Instrument(s) to use");
  auto* ib = new QVBoxLayout(instruments);
  lstUse = new QListWidget;
  lstUse->setObjectName("lstUse");
  lstUse->setSelectionMode(QAbstractItemView::MultiSelection);
  for (const std::string& name : DefaultDrumInstruments()) lstUse->addItem(QString::fromStdString(name));
  ib->addWidget(lstUse);
  auto* ibuttons = new QHBoxLayout;
  auto* randomInst = new QPushButton("Random");
  randomInst->setObjectName("Command2");
  auto* defaultInst = new QPushButton("Default");
  defaultInst->setObjectName("Command3");
  auto* noInst = new QPushButton("None");
  noInst->setObjectName("Command4");
  ibuttons->addWidget(randomInst);
  ibuttons->addWidget(defaultInst);
  ibuttons->addWidget(noInst);
  ib->addLayout(ibuttons);
  top->addWidget(instruments);

  auto* right = new QVBoxLayout;
  auto* patterns = new QGroupBox("Select Patterns to use");
  auto* pb = new QVBoxLayout(patterns);
  for (size_t i = 0; i < chkBeat.size(); ++i) {
    chkBeat[i] = new QCheckBox(kPatternNames[i]);
    chkBeat[i]->setObjectName(QString("chkBeat%1").arg(i));
    pb->addWidget(chkBeat[i]);
  }
  auto* pbuttons = new QHBoxLayout;
  auto* randomPat = new QPushButton("Random");
  randomPat->setObjectName("Command5");
  auto* defaultPat = new QPushButton("Default");
  defaultPat->setObjectName("Command6");
  pbuttons->addWidget(randomPat);
  pbuttons->addWidget(defaultPat);
  pb->addLayout(pbuttons);
  right->addWidget(patterns);

  auto* beats = new QGroupBox("Select Number of Beats");
  auto* bb = new QHBoxLayout(beats);
  for (size_t i = 0; i < optBeats.size(); ++i) {
    optBeats[i] = new QRadioButton(QString::number(8 << i));
    optBeats[i]->setObjectName(QString("optBeats%1").arg(i));
    bb->addWidget(optBeats[i]);
  }
  optBeats[2]->setChecked(true);
  right->addWidget(beats);
  Combo1 = new QComboBox;
  Combo1->setObjectName("Combo1");
  for (const char* n : {"Whole", "Half", "Quarter", "Eighth", "Sixteenth", "32nd", "64th"}) Combo1->addItem(n);
  Combo1->setCurrentIndex(kSixteenthNote);
  right->addWidget(Combo1);
  top->addLayout(right);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  auto* generate = new QPushButton("Generate");
  generate->setObjectName("Command7");
  generate->setDefault(true);
  auto* cancel = new QPushButton("Cancel");
  cancel->setObjectName("Command8");
  buttons->addWidget(generate);
  buttons->addWidget(cancel);
  auto* box = new QVBoxLayout(this);
  box->addLayout(top);
  box->addLayout(buttons);

  auto defaultKit = [this] {
    lstUse->clearSelection();
    for (const char* n : kDefaultKit)
      for (auto* item : lstUse->findItems(n, Qt::MatchExactly)) item->setSelected(true);
  };
  auto defaultPatterns = [this] {
    for (auto* c : chkBeat) c->setChecked(false);
    for (int v : kDefaultPatterns) chkBeat[static_cast<size_t>(v - 1)]->setChecked(true);
  };
  connect(defaultInst, &QPushButton::clicked, this, defaultKit);
  connect(noInst, &QPushButton::clicked, lstUse, &QListWidget::clearSelection);
  connect(randomInst, &QPushButton::clicked, this, [this] {
    // Random: each instrument with an even chance, and never none.
    lstUse->clearSelection();
    for (int i = 0; i < lstUse->count(); ++i) lstUse->item(i)->setSelected(rng_.next() < 0.5);
    if (lstUse->selectedItems().isEmpty()) lstUse->item(static_cast<int>(rng_.next() * lstUse->count()))->setSelected(true);
  });
  connect(defaultPat, &QPushButton::clicked, this, defaultPatterns);
  connect(randomPat, &QPushButton::clicked, this, [this] {
    bool any = false;
    for (auto* c : chkBeat) {
      c->setChecked(rng_.next() < 0.5);
      any |= c->isChecked();
    }
    if (!any) chkBeat[static_cast<size_t>(rng_.next() * 9)]->setChecked(true);
  });
  connect(generate, &QPushButton::clicked, this, [this] {
    if (Command7_Click()) accept();
  });
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  defaultKit();
  defaultPatterns();
  LoadLanguage(this, env_.languageFile);
}

BeatGeneratorChoice BeatGeneratorDialog::choice() const {
  BeatGeneratorChoice c;
  for (int i = 0; i < lstUse->count(); ++i)
    if (lstUse->item(i)->isSelected()) c.instruments.push_back(lstUse->item(i)->text().toStdString());
  for (size_t i = 0; i < chkBeat.size(); ++i)
    if (chkBeat[i]->isChecked()) c.patterns.push_back(static_cast<int>(i) + 1);
  for (size_t i = 0; i < optBeats.size(); ++i)
    if (optBeats[i]->isChecked()) c.beatsOption = static_cast<int>(i);
  c.lengthCode = Combo1->currentIndex();
  return c;
}

bool BeatGeneratorDialog::Command7_Click() {
  const BeatGeneratorChoice c = choice();
  if (const std::string why = CheckGeneratorChoice(c); !why.empty()) {
    env_.prompter.message(env_.text(why), windowTitle().toStdString(), MessageIcon::Information);
    return false;
  }
  if (!env_.prompter.yesNo(env_.text("str_currBeatWillBeLost"), windowTitle().toStdString())) return false;
  machine_.stopPlay();
  GenerateDrumbeat(machine_.machine(), c, rng_);
  machine_.patternReplaced();
  return true;
}

}  // namespace plectaro
