#include "tools/ui/trainer_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <map>

#include "shell/ui/language_ui.h"

namespace plectaro {

// The drawn fretboard with the marker of the note to name. Positions come in twips, as the
// game lays them out (x = fret x 245 + 60, y = string x 180); 1/8 of a twip-based pixel
// grid keeps the board readable at normal sizes.
class FretboardPicture : public QWidget {
 public:
  explicit FretboardPicture(QWidget* parent) : QWidget(parent) {
    setObjectName("picFretboard");
    setMinimumSize(px(19 * 245 + 120), px(6 * 180 + 120));
  }
  int string = -1, fret = -1;

 protected:
  static int px(int twips) { return twips / 8; }
  void paintEvent(QPaintEvent*) override {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const int top = px(90), left = px(60);
    const int right = px(18 * 245 + 60 + 120);
    p.fillRect(left, top - px(60), right - left, px(5 * 180 + 120), QColor(120, 80, 45));
    // Frets sit half way between marker places; the nut is thicker.
    for (int f = 0; f <= 18; ++f) {
      const int x = px(f * 245 + 60 + 122);
      p.setPen(QPen(f == 0 ? Qt::white : QColor(200, 200, 200), f == 0 ? 4 : 2));
      p.drawLine(x, top - px(60), x, top + px(5 * 180 + 60));
    }
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(235, 225, 200));
    for (int f : {3, 5, 7, 9, 15, 17}) p.drawEllipse(QPoint(px(f * 245 + 60), top + px(450)), px(50), px(50));
    for (int dy : {-180, 180}) p.drawEllipse(QPoint(px(12 * 245 + 60), top + px(450 + dy)), px(50), px(50));
    for (int s = 0; s < 6; ++s) {
      p.setPen(QPen(QColor(230, 230, 230), 1 + s / 2));
      p.drawLine(left, top + px(s * 180), right, top + px(s * 180));
    }
    if (string >= 0) {
      p.setPen(Qt::black);
      p.setBrush(QColor(220, 30, 30));
      p.drawEllipse(QPoint(px(fret * 245 + 60 + 90), top + px(string * 180)), px(70), px(70));
      p.setPen(Qt::white);
      p.drawText(QRect(px(fret * 245 + 60 + 20), top + px(string * 180 - 70), px(140), px(140)), Qt::AlignCenter, "?");
    }
  }
};

namespace {

const char* const kStatNames[] = {"TotalRounds", "CorrectAttempts", "TotalAttempts", "FailedAttempts",
                                  "RoundsWon", "RoundsLost", "SkillLevel", "SkillCategory",
                                  "AttemptAccuracy", "RoundSuccess", "TimeAllowed"};
const char* const kStatCaptions[] = {"Rounds played:", "Correct attempts:", "Total attempts:", "Failed attempts:",
                                     "Rounds won:", "Rounds lost:", "Skill level:", "Category:",
                                     "Attempt accuracy:", "Round success:", "Time per attempt:"};

}  // namespace

TrainerWindow::TrainerWindow(ToolEnv& env, Kind kind, QWidget* parent)
    : QMainWindow(parent), env_(env), kind_(kind), prefix_(kind == Kind::Fretboard ? kFretboardPrefix : kPitchPrefix) {
  setObjectName(kind == Kind::Fretboard ? "frmFretboardKnowledge" : "frmPitchPerfector");
  setWindowTitle(kind == Kind::Fretboard ? "Fretboard Knowledge Trainer" : "Pitch Perfector");
  round_ = std::make_unique<TrainerRound>(rng_);

  pages_ = new QStackedWidget(this);
  // frmStats
  auto* statsPage = new QWidget;
  statsPage->setObjectName("frmStats");
  auto* sf = new QFormLayout;
  for (size_t i = 0; i < std::size(kStatNames); ++i) {
    auto* l = new QLabel;
    l->setObjectName(QString("lbl") + kStatNames[i]);
    labels_[kStatNames[i]] = l;
    sf->addRow(kStatCaptions[i], l);
  }
  sf->addRow("Win mark:", new QLabel(QString::number(kWinMark)));
  auto* start = new QPushButton("Start");
  start->setObjectName("Command1");
  auto* sv = new QVBoxLayout(statsPage);
  sv->addLayout(sf);
  sv->addWidget(start);
  pages_->addWidget(statsPage);

  // frmTrainer
  auto* game = new QWidget;
  game->setObjectName("frmTrainer");
  auto* gv = new QVBoxLayout(game);
  lblTitle = new QLabel;
  lblTitle->setObjectName("lblTitle");
  lblTitle->setAlignment(Qt::AlignCenter);
  QFont big = lblTitle->font();
  big.setPointSizeF(big.pointSizeF() * 1.4);
  lblTitle->setFont(big);
  gv->addWidget(lblTitle);
  if (kind == Kind::Fretboard) {
    board_ = new FretboardPicture(game);
    gv->addWidget(board_, 0, Qt::AlignCenter);
  } else {
    Command2 = new QPushButton("Hear the Note Again");
    Command2->setObjectName("Command2");
    gv->addWidget(Command2, 0, Qt::AlignCenter);
    connect(Command2, &QPushButton::clicked, this, [this] { playNote(); });
  }
  auto* buttons = new QGridLayout;
  for (size_t i = 0; i < cmdGuess.size(); ++i) {
    cmdGuess[i] = new QPushButton(QString(kTrainerNoteNames[i]).toUpper());
    cmdGuess[i]->setObjectName(QString("cmdGuess%1").arg(i));
    cmdGuess[i]->setMinimumHeight(36);
    buttons->addWidget(cmdGuess[i], 0, static_cast<int>(i));
    connect(cmdGuess[i], &QPushButton::clicked, this, [this, i] { guess(static_cast<int>(i)); });
  }
  gv->addLayout(buttons);
  picReady = new QWidget;
  picReady->setObjectName("picReady");
  auto* rv = new QHBoxLayout(picReady);
  rv->addWidget(new QLabel("When you are ready, click Start."));
  auto* go = new QPushButton("Start");
  go->setObjectName("Command4");
  rv->addWidget(go);
  gv->addWidget(picReady);
  picRoundOver = new QWidget;
  picRoundOver->setObjectName("picRoundOver");
  auto* ov = new QHBoxLayout(picRoundOver);
  lblRoundDone = new QLabel;
  lblRoundDone->setObjectName("lblRoundDone");
  ov->addWidget(lblRoundDone, 1);
  auto* done = new QPushButton("OK");
  done->setObjectName("Command5");
  ov->addWidget(done);
  gv->addWidget(picRoundOver);
  pages_->addWidget(game);
  setCentralWidget(pages_);

  connect(start, &QPushButton::clicked, this, [this] { Command1_Click(); });
  connect(go, &QPushButton::clicked, this, [this] { Command4_Click(); });
  connect(done, &QPushButton::clicked, this, [this] {
    picRoundOver->hide();
    showStats();
  });
  tmr.setObjectName("tmr");
  tmrSecs.setInterval(1000);
  tmrFlash.setInterval(90);
  connect(&tmr, &QTimer::timeout, this, [this] { timeUp(); });
  connect(&tmrSecs, &QTimer::timeout, this, [this] {
    if (secondsLeft_ > 0) --secondsLeft_;
    setTitle(question_);
  });
  connect(&tmrFlash, &QTimer::timeout, this, [this] {
    // 11 steps of alternating bold and colour, then plain black again.
    if (++flashSteps_ >= 11) {
      tmrFlash.stop();
      lblTitle->setStyleSheet("");
      return;
    }
    lblTitle->setStyleSheet(flashSteps_ % 2 ? QString("color: %1; font-weight: bold").arg(flashColour_.name()) : "");
  });
  LoadLanguage(this, env_.languageFile);
  showStats();
}

TrainerWindow::~TrainerWindow() { SaveTrainerStats(env_.settings, prefix_, stats_); }

void TrainerWindow::showStats() {
  // The store holds the record after every round, and the Options dialog may have reset it.
  stats_ = LoadTrainerStats(env_.settings, prefix_);
  if (stats_.Category.empty()) stats_.Category = env_.text(SkillCategoryKey(stats_.SkillLevel));
  pages_->setCurrentIndex(0);
  auto set = [this](const char* name, const QString& text) { labels_[name]->setText(text); };
  set("TotalRounds", QString::number(stats_.TotalRounds));
  set("CorrectAttempts", QString::number(stats_.CorrectAttempts));
  set("TotalAttempts", QString::number(stats_.TotalAttempts));
  set("FailedAttempts", QString::number(stats_.FailedAttempts));
  set("RoundsWon", QString::number(stats_.RoundsWon));
  set("RoundsLost", QString::number(stats_.RoundsLost));
  set("SkillLevel", QString::number(stats_.SkillLevel));
  set("SkillCategory", QString::fromStdString(stats_.Category));
  set("AttemptAccuracy", QString::fromStdString(PercentText(stats_.CorrectAttempts, stats_.TotalAttempts)));
  set("RoundSuccess", QString::fromStdString(PercentText(stats_.RoundsWon, stats_.TotalRounds)));
  set("TimeAllowed", QString("%1 s").arg(TimeAllowedMs(stats_.SkillLevel) / 1000.0));
}

void TrainerWindow::setTitle(const QString& text) { lblTitle->setText(text + QString(" (%1)").arg(secondsLeft_)); }

void TrainerWindow::Command1_Click() {
  tmr.setInterval(TimeAllowedMs(stats_.SkillLevel));
  pages_->setCurrentIndex(1);
  picRoundOver->hide();
  picReady->show();
  for (auto* b : cmdGuess) b->setEnabled(false);
  secondsLeft_ = TimeAllowedMs(stats_.SkillLevel) / 1000;
  question_ = env_.str("str_WhatIsThisNote");
  if (board_) {
    board_->string = -1;
    board_->update();
  }
  setTitle(question_);
}

void TrainerWindow::Command4_Click() {
  picReady->hide();
  for (auto* b : cmdGuess) b->setEnabled(true);
  round_->start();
  secondsLeft_ = TimeAllowedMs(stats_.SkillLevel) / 1000;
  tmr.start();
  tmrSecs.start();
  showNote();
}

void TrainerWindow::playNote() {
  if (lastPitch_ >= 0) MIDINoteOff(env_.midi, 0, lastPitch_);
  lastPitch_ = round_->note().pitch;
  MIDINoteOn(env_.midi, 0, lastPitch_, 127);
}

void TrainerWindow::showNote() {
  if (board_) {
    board_->string = round_->note().string;
    board_->fret = round_->note().fret;
    board_->update();
  } else {
    playNote();
  }
  setTitle(question_);
}

void TrainerWindow::flash(const QColor& colour) {
  flashColour_ = colour;
  flashSteps_ = 0;
  tmrFlash.start();
}

void TrainerWindow::guess(int button) {
  if (round_->over() || button < 0 || button >= 12) return;
  answered(round_->guess(kTrainerNoteNames[button]));
}

void TrainerWindow::timeUp() {
  if (round_->over()) return;
  answered(round_->timeUp());
}

void TrainerWindow::answered(TrainerRound::Result r) {
  secondsLeft_ = TimeAllowedMs(stats_.SkillLevel) / 1000;
  if (r == TrainerRound::Result::Correct) {
    question_ = env_.str("str_CorrectWhatIsThis");
    flash(QColor(0, 255, 0));  // colour value 65280
  } else {
    question_ = env_.str(r == TrainerRound::Result::Late ? "str_TimeUpTryAgain" : "str_WrongTryAgain");
    flash(QColor(255, 0, 0));  // colour value 255
    QApplication::beep();
  }
  tmr.start();  // restarts the attempt's time
  tmrSecs.start();
  if (round_->over()) {
    endRound();
    return;
  }
  // After a miss the same note stays; the Pitch Perfector does not repeat it by itself.
  if (r == TrainerRound::Result::Correct) showNote();
  else setTitle(question_);
}

void TrainerWindow::endRound() {
  tmr.stop();
  tmrSecs.stop();
  for (auto* b : cmdGuess) b->setEnabled(false);
  const int c = round_->correct();
  stats_.Category = env_.text(UpdateTrainerStats(stats_, c));
  SaveTrainerStats(env_.settings, prefix_, stats_);
  lblRoundDone->setText(QString("%1 %2/%3. %4%5%6").arg(env_.str("str_YouScored")).arg(c).arg(round_->attempts())
                            .arg(env_.str("str_CorrectGuesses1")).arg(c).arg(env_.str("str_CorrectGuesses2")));
  picRoundOver->show();
}

void TrainerWindow::closeEvent(QCloseEvent* e) {
  tmr.stop();
  tmrSecs.stop();
  if (lastPitch_ >= 0) MIDINoteOff(env_.midi, 0, lastPitch_);
  lastPitch_ = -1;
  SaveTrainerStats(env_.settings, prefix_, stats_);
  e->accept();
}

}  // namespace plectaro
