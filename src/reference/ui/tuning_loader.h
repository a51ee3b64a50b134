// frmTuningLoader: the small picker through which the Chord and Scale Editors take a tuning
// from the tunings library, so a chord or scale can be written for Drop D or Open G without
// setting every string by hand.
#pragma once

#include <QDialog>
#include <array>
#include <filesystem>
#include <optional>

#include "reference/tunings.h"

class QComboBox;
class QListWidget;

namespace plectaro {

class TuningLoader : public QDialog {
  Q_OBJECT
 public:
  TuningLoader(const TuningLibrary& library, const std::filesystem::path& languageFile, QWidget* parent = nullptr);
  // The chosen tuning after exec() returned Accepted.
  std::optional<TuningData> chosen;

 private:
  QListWidget* list_ = nullptr;
};

// An editor's string-count box (items "4" to "7") and its seven boxes of the 25 note names per
// string, string 1 first.
struct TuningBoxes {
  QComboBox* strings = nullptr;
  std::array<QComboBox*, kMaxStrings> notes{};
};

// Shows the tuning in the boxes. A tuning of fewer than four strings keeps four boxes open.
void ShowTuning(const TuningData& tuning, const TuningBoxes& boxes);

// Opens the picker over the library of `dataFolder` (writing the built-in tunings when the
// folder is missing, as the Tuner does) and shows the chosen tuning. False when cancelled.
bool PickTuning(QWidget* parent, const std::filesystem::path& dataFolder, const std::filesystem::path& languageFile,
                const TuningBoxes& boxes);

}  // namespace plectaro
