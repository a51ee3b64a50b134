// File > Export: "PDF (pages)..." (the engraved pages, first in the menu), Bitmap (page
// pictures at a chosen resolution) and Wave (the wave page of ntne_frmExport).
#pragma once

#include <QDialog>
#include <functional>
#include <string>
#include <string_view>

#include "exchange/text_tab_export.h"
#include "exchange/wave_export.h"
#include "rendering/draw_document.h"
#include "score/document.h"
#include "score/settings_store.h"
#include "score/prompter.h"

class QAction;
class QCheckBox;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QSpinBox;

namespace plectaro {

struct ExportEnvironment {
  Document& doc;
  SettingsStore& settings;
  Prompter& prompter;
  std::function<LayoutSettings()> pageSettings;  // as the pages are drawn and printed
  std::function<std::string(std::string_view)> text;  // str_ keys
  std::function<PlaybackOptions()> playback;     // count-in and metronome as set
  std::string soundFont;
  std::function<TextExportOptions()> textOptions = {};  // the text tab that File > Export > PDF prints
};

// The engraved pages of the current track (or all tracks) as a PDF; asks for the file.
// Returns the pages written, 0 when cancelled or failed (the failure is reported).
int ExportPagesPDFCommand(const ExportEnvironment& env, bool allTracks);

// ntne_frmExport, wave page.
class WaveExportDialog : public QDialog {
  Q_OBJECT
 public:
  WaveExportDialog(ExportEnvironment env, QWidget* parent = nullptr);
  // Command2: checks the choices, renders with progress and Cancel, saves the settings.
  void Command2_Click();

  QLineEdit* target() const { return Text2_; }
  QSpinBox* fromBar() const { return wavFromBar_; }
  QSpinBox* toBar() const { return wavToBar_; }
  QRadioButton* rate(int32_t r) const;
  QRadioButton* mono() const { return optMono_; }
  QRadioButton* stereo() const { return optStereo_; }
  QRadioButton* bits8() const { return opt8bits_; }
  QRadioButton* bits16() const { return opt16bits_; }
  // The settings as the controls show them.
  WaveSettings chosen() const;

 private:
  ExportEnvironment env_;
  WaveSettings stored_;
  QLineEdit* Text2_;
  QSpinBox* wavFromBar_;
  QSpinBox* wavToBar_;
  std::vector<std::pair<int32_t, QRadioButton*>> rates_;
  QRadioButton* optMono_;
  QRadioButton* optStereo_;
  QRadioButton* opt8bits_;
  QRadioButton* opt16bits_;
  QProgressBar* picRecordingWav_;
  QPushButton* start_;
  QPushButton* cancel_;
  bool cancelled_ = false;
  bool running_ = false;
};

// Bitmap export: the current page or all pages, PNG or BMP by the file's extension.
class BitmapExportDialog : public QDialog {
  Q_OBJECT
 public:
  BitmapExportDialog(ExportEnvironment env, QWidget* parent = nullptr);
  void save();

 private:
  ExportEnvironment env_;
  QLineEdit* file_;
  QRadioButton* current_;
  QRadioButton* all_;
  QSpinBox* dpi_;
};

// Adds "PDF (pages)..." at the top of File > Export and connects it, mnuFileExportPDF (the
// text tab), mnuFileExportWAV and mnuFileExportBMP.
void ConnectExportMenus(const std::function<QAction*(const QString& name)>& find, QWidget* parent,
                        ExportEnvironment env);

}  // namespace plectaro
