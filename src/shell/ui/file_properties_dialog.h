// frmFileProperties: page one edits the open document's details, page two the details every
// new document starts with (the settings section "DefaultInfo").
#pragma once

#include <QDialog>
#include <functional>
#include <vector>

#include "score/score_records.h"
#include "shell/session.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QDoubleSpinBox;
class QTabWidget;

namespace plectaro {

class FilePropertiesDialog : public QDialog {
  Q_OBJECT
 public:
  FilePropertiesDialog(Session& session, QWidget* parent = nullptr);
  std::function<void()> onApply;

  // Stores both pages: the document's fields (after the password check) and the defaults.
  // false when the document is protected and the password was not given.
  bool apply();
  QTabWidget* tabs() const { return tabs_; }

 private:
  // One page's controls. The defaults page has no title, subtitle or password.
  struct Page {
    QWidget* widget = nullptr;
    std::vector<std::pair<QLineEdit*, std::string Score::*>> texts;
    QSpinBox* rowSpacing = nullptr;
    QCheckBox* alwaysCharts = nullptr;
    QCheckBox* header = nullptr;
    QCheckBox* shuffle = nullptr;
    QCheckBox* password = nullptr;
    QLineEdit* passwordText = nullptr;
    QDoubleSpinBox* tempo = nullptr;
    double tempoShown = 0;  // what the box showed when loaded (rounded)
    float tempoLoaded = 0;  // the exact value behind it
    QLabel* tempoName = nullptr;
    FontInfo headerFont, noteFont;
    int32_t lineColor = 0;
  };

  Session& session_;
  QTabWidget* tabs_ = nullptr;
  Page doc_, def_;

  void build(Page& p, bool defaults);
  void load(Page& p, const Score& s);
  void store(const Page& p, Score& s) const;
  Score defaultsScore() const;
  void storeDefaults(const Score& s);
};

}  // namespace plectaro
