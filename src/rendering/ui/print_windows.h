// The File menu's Print, Print Preview and Page Setup windows. They draw the pages through
// the same walk as the screen, onto the printer at its own resolution (vector, not a picture
// of the screen), always black on white.
#pragma once

#include <QDialog>
#include <functional>
#include <string>
#include <string_view>

#include "rendering/print_job.h"
#include "score/document.h"
#include "score/settings_store.h"

class QAction;
class QComboBox;
class QLabel;
class QListWidget;
class QPrinter;
class QSpinBox;
class QToolButton;

namespace plectaro {

// What the windows need of the program: the document, the settings store (page setup), the
// window's layout values, texts, and how to ask for a fresh draw after the paper changed.
struct PrintEnvironment {
  Document& doc;
  SettingsStore& settings;
  std::function<LayoutSettings()> layout;  // the options' spacing values, paper not yet applied
  std::function<std::string(std::string_view)> text;  // str_ and txt_ keys
  std::function<std::string(std::string_view form, std::string_view key)> formText;  // window captions
  std::function<void(const PageSetup&)> paperChanged;

  LayoutSettings pageSettings() const { return WithPageSetup(layout(), LoadPageSetup(settings)); }
  DrawTexts drawTexts() const { return text ? DrawTextsFrom(text) : DrawTexts{}; }
};

// Prints on a QPrinter: its page is set to the layout's paper, full page, no margins.
PrintResult PrintOnPrinter(const PrintEnvironment& env, const std::vector<bool>& selected, int copies,
                           QPrinter& printer);

// ntne_frmPrint: the list of pages, copies, Select All / Select None, Page Setup..., Print.
class PrintDialog : public QDialog {
  Q_OBJECT
 public:
  PrintDialog(PrintEnvironment env, QWidget* parent = nullptr);
  QListWidget* pages() const { return lstPages_; }
  QSpinBox* copies() const { return vbCopies_; }
  // The pages chosen in the list, one entry per page.
  std::vector<bool> selection() const;
  // Command8: asks for the printer (or a PDF file) and prints; the window closes after.
  void print();
  // For tests: prints on this printer without asking.
  PrintResult printOn(QPrinter& printer);

 private:
  void fillPages();
  PrintEnvironment env_;
  QListWidget* lstPages_;
  QSpinBox* vbCopies_;
};

// ntne_frmPrintPreview: one page at a chosen zoom, with scroll bars, and a way on to printing.
class PrintPreviewDialog : public QDialog {
  Q_OBJECT
 public:
  PrintPreviewDialog(PrintEnvironment env, QWidget* parent = nullptr);
  // DrawPreviewPage: draws the chosen page at the zoom.
  void DrawPreviewPage();
  QSpinBox* zoom() const { return vbZoom_; }
  QSpinBox* page() const { return page_; }
  QLabel* picture() const { return picBMP_; }

 private:
  PrintEnvironment env_;
  QLabel* picBMP_;
  QSpinBox* vbZoom_;
  QSpinBox* page_;
  QLabel* pageCount_;
};

// ntne_frmPageSetup: paper size, orientation, and the unit the size is shown in.
class PageSetupDialog : public QDialog {
  Q_OBJECT
 public:
  PageSetupDialog(PrintEnvironment env, QWidget* parent = nullptr);
  // OK: stores the choice, asks for a full relayout and a redraw, closes.
  void apply();

 private:
  void showSize();
  PrintEnvironment env_;
  PageSetup setup_;
  QComboBox* cmbPaperSize_;
  QComboBox* cmbScale_;
  QToolButton* picPortrait_;
  QToolButton* picLandscape_;
  QLabel* size_;
};

// Enables and connects mnuFilePrint, mnuFilePrintPreview and mnuFilePageSetup.
void ConnectPrintMenus(const std::function<QAction*(const QString& name)>& find, QWidget* parent,
                       PrintEnvironment env);

}  // namespace plectaro
