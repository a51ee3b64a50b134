// frmFretboardKnowledge and frmPitchPerfector: one window, two games. The statistics page
// shows the record kept in the settings; Start opens the game page, where a round of ten notes
// is named with the twelve note buttons against a shrinking clock.
#pragma once

#include <QMainWindow>
#include <QTimer>
#include <array>
#include <memory>

#include "tools/trainer.h"
#include "tools/ui/tool_env.h"

class QLabel;
class QPushButton;
class QStackedWidget;
class QWidget;

namespace plectaro {

class FretboardPicture;

class TrainerWindow : public QMainWindow {
  Q_OBJECT
 public:
  enum class Kind { Fretboard, Pitch };
  TrainerWindow(ToolEnv& env, Kind kind, QWidget* parent = nullptr);
  ~TrainerWindow() override;

  const TrainerStats& stats() const { return stats_; }
  const TrainerRound& round() const { return *round_; }
  // The buttons and timers, as the user works them.
  void Command1_Click();  // Start on the statistics page
  void Command4_Click();  // Start on the ready panel
  void guess(int button);  // cmdGuess(index)
  void timeUp();           // tmr expired

  std::array<QPushButton*, 12> cmdGuess{};
  QLabel* lblTitle = nullptr;
  QLabel* lblRoundDone = nullptr;
  QWidget* picReady = nullptr;
  QWidget* picRoundOver = nullptr;
  QTimer tmr, tmrSecs, tmrFlash;

 protected:
  void closeEvent(QCloseEvent* e) override;

 private:
  void showStats();
  void showNote();
  void answered(TrainerRound::Result r);
  void endRound();
  void setTitle(const QString& text);
  void flash(const QColor& colour);
  void playNote();

  ToolEnv& env_;
  Kind kind_;
  std::string prefix_;
  TrainerStats stats_;
  SystemRandom rng_;
  std::unique_ptr<TrainerRound> round_;
  QStackedWidget* pages_ = nullptr;
  FretboardPicture* board_ = nullptr;
  QPushButton* Command2 = nullptr;  // hear the note again
  std::map<std::string, QLabel*> labels_;
  QString question_;
  int secondsLeft_ = 0;
  int flashSteps_ = 0;
  QColor flashColour_;
  int lastPitch_ = -1;
};

}  // namespace plectaro
