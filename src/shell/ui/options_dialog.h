// frmOptions: the program settings of PL4.ini on tab pages, in the order users know them.
#pragma once

#include <QDialog>
#include <functional>

#include "shell/ini_settings.h"
#include "shell/session.h"

class QCheckBox;
class QListWidget;
class QSpinBox;
class QDoubleSpinBox;
class QTabWidget;

namespace plectaro {

class OptionsDialog : public QDialog {
  Q_OBJECT
 public:
  OptionsDialog(Session& session, QWidget* parent = nullptr);
  std::function<void()> onApply;

  QTabWidget* tabs() const { return tabs_; }
  // Stores the controls' values in the settings (the Apply button).
  // False, with a message, when a value is refused; nothing is applied then.
  bool apply();
  // Puts every control back to the first-run values, after asking (the Default button).
  void defaults();
  void loadLanguage();

 private:
  Session& session_;
  IniSettings edit_;
  QTabWidget* tabs_ = nullptr;
  QListWidget* languages_ = nullptr;
  QListWidget* devices_ = nullptr;
  std::vector<std::pair<QCheckBox*, bool IniSettings::*>> checks_;
  std::vector<std::pair<QSpinBox*, int IniSettings::*>> spins_;
  QDoubleSpinBox* bend_ = nullptr;
  QSpinBox* autosave_ = nullptr;

  QWidget* page(const char* name);
  QCheckBox* check(QWidget* page, const char* name, bool IniSettings::*field);
  QSpinBox* spin(QWidget* page, const char* label, int IniSettings::*field, int lo, int hi);
  void fromSettings(const IniSettings& s);
  void resetStatistics(const char* prefix);
};

}  // namespace plectaro
