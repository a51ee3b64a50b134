// ntne_frmSpeedTrainer: loop a few bars, a little faster each pass. The dialog only collects
// and checks the values; the window starts the player with them.
#pragma once

#include <QDialog>
#include <functional>
#include <string>
#include <string_view>

#include "playback/speed_trainer.h"

class QCheckBox;
class QSpinBox;

namespace plectaro {

class SpeedTrainerDialog : public QDialog {
  Q_OBJECT
 public:
  // `barCount` bounds the bar fields; `text` gives the interface language's messages.
  SpeedTrainerDialog(const SpeedTrainerForm& form, int barCount, bool countIn,
                     std::function<std::string(std::string_view)> text, QWidget* parent = nullptr);

  SpeedTrainerForm form() const;
  bool countIn() const;
  // The trainer state of the accepted form.
  const SpeedTrainer& trainer() const { return trainer_; }

  void accept() override;

 private:
  int barCount_;
  std::function<std::string(std::string_view)> text_;
  SpeedTrainer trainer_;
  QSpinBox* from_;
  QSpinBox* to_;
  QSpinBox* start_;
  QSpinBox* step_;
  QSpinBox* top_;
  QSpinBox* passes_;
  QCheckBox* countIn_;
};

}  // namespace plectaro
