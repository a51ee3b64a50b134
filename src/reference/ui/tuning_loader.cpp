#include "reference/ui/tuning_loader.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QListWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/ui/language_ui.h"

namespace plectaro {

TuningLoader::TuningLoader(const TuningLibrary& library, const std::filesystem::path& languageFile, QWidget* parent)
    : QDialog(parent) {
  setObjectName("frmTuningLoader");
  LoadLanguage(this, languageFile);
  auto* box = new QVBoxLayout(this);
  list_ = new QListWidget;
  list_->setObjectName("lstTunings");
  for (const std::string& n : library.names()) list_->addItem(QString::fromStdString(n));
  if (list_->count() > 0) list_->setCurrentRow(0);
  box->addWidget(list_);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  box->addWidget(buttons);
  const TuningLibrary* lib = &library;
  auto take = [this, lib] {
    if (!list_->currentItem()) return;
    try {
      chosen = lib->load(list_->currentItem()->text().toStdString());
      accept();
    } catch (const TuningError&) {
      chosen.reset();
    }
  };
  connect(buttons, &QDialogButtonBox::accepted, this, take);
  connect(list_, &QListWidget::itemDoubleClicked, this, take);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void ShowTuning(const TuningData& tuning, const TuningBoxes& boxes) {
  if (boxes.strings) boxes.strings->setCurrentIndex(std::clamp<int>(tuning.NumStrings, 4, kMaxStrings) - 4);
  for (size_t s = 0; s < boxes.notes.size(); ++s)
    if (boxes.notes[s]) boxes.notes[s]->setCurrentIndex(std::clamp<int>(tuning.StringNote[s], 0, boxes.notes[s]->count() - 1));
}

bool PickTuning(QWidget* parent, const std::filesystem::path& dataFolder, const std::filesystem::path& languageFile,
                const TuningBoxes& boxes) {
  TuningLibrary library(dataFolder);
  library.createAll();
  TuningLoader picker(library, languageFile, parent);
  if (picker.exec() != QDialog::Accepted || !picker.chosen) return false;
  ShowTuning(*picker.chosen, boxes);
  return true;
}

}  // namespace plectaro
