// The print and export windows driven through their widgets.
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPrinter>
#include <QRadioButton>
#include <QSpinBox>
#include <QLineEdit>

#include <filesystem>
#include <regex>

#include "../rendering/test_scores.h"
#include "exchange/ui/export_windows.h"
#include "rendering/ui/print_windows.h"
#include "score/file_io.h"

// Fontconfig keeps its caches until the process ends; not ours to report.
extern "C" const char* __asan_default_options() { return "detect_leaks=0"; }

namespace plectaro {
namespace {

namespace fs = std::filesystem;

class Windows : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    static int argc = 1;
    static char name[] = "export_windows_test";
    static char* argv[] = {name, nullptr};
    if (!QApplication::instance()) new QApplication(argc, argv);
  }
  Windows() : doc(test::MakeDoc(40, 16, true)) {}
  PrintEnvironment printEnv() {
    return {doc, store, [] { return LayoutSettings{}; }, {}, {}, [this](const PageSetup&) { ++paperChanges; }};
  }
  ExportEnvironment exportEnv() {
    return {doc, store, prompter, [] { return LayoutSettings{}; }, [](std::string_view k) { return std::string(k); },
            {}, "/nonexistent/gm.sf2"};
  }
  fs::path temp(const std::string& name) { return fs::temp_directory_path() / ("plectaro-windows-" + name); }

  Document doc;
  MemorySettingsStore store;
  ScriptedPrompter prompter;
  int paperChanges = 0;
};

TEST_F(Windows, PrintDialogPrintsTheChosenPagesToPdf) {
  PrintDialog dialog(printEnv());
  const int pages = LayoutTrack(doc, 0, LayoutSettings{}, DrawTexts{}).LastPage + 1;
  ASSERT_EQ(dialog.pages()->count(), pages);
  EXPECT_EQ(dialog.pages()->item(2)->text(), "Page 3");
  EXPECT_EQ(dialog.pages()->selectedItems().size(), pages);  // Select All on opening
  dialog.pages()->clearSelection();
  dialog.pages()->item(2)->setSelected(true);
  dialog.copies()->setValue(2);

  const fs::path out = temp("print.pdf");
  QPrinter printer(QPrinter::HighResolution);
  printer.setOutputFormat(QPrinter::PdfFormat);
  printer.setOutputFileName(QString::fromStdString(out.string()));
  const PrintResult r = dialog.printOn(printer);
  EXPECT_EQ(r.Sheets, 2);
  const std::string pdf = ReadWholeFile(out);
  const std::regex page("/Type\\s*/Page[^s]");
  EXPECT_EQ(std::distance(std::sregex_iterator(pdf.begin(), pdf.end(), page), std::sregex_iterator()), 2);
  fs::remove(out);

  dialog.pages()->clearSelection();
  QPrinter unused(QPrinter::HighResolution);
  unused.setOutputFormat(QPrinter::PdfFormat);
  unused.setOutputFileName(QString::fromStdString(out.string()));
  EXPECT_EQ(dialog.printOn(unused).Sheets, 0);
  EXPECT_FALSE(fs::exists(out));  // nothing reached the printer
}

TEST_F(Windows, PageSetupAndPreviewFollowThePaper) {
  PageSetupDialog setup(printEnv());
  setup.findChild<QComboBox*>("cmbPaperSize")->setCurrentIndex(2);  // A5
  setup.apply();
  EXPECT_EQ(LoadPageSetup(store).PaperSizeIndex, 2);
  EXPECT_EQ(paperChanges, 1);
  EXPECT_TRUE(doc.FullRelayout);

  PrintPreviewDialog preview(printEnv());
  preview.zoom()->setValue(50);
  const QPixmap shown = preview.picture()->pixmap();
  EXPECT_EQ(shown.width(), 280);  // A5 is 560 units wide
  const int a5Pages = LayoutTrack(doc, 0, WithPageSetup({}, LoadPageSetup(store)), DrawTexts{}).LastPage + 1;
  EXPECT_EQ(preview.page()->maximum(), a5Pages);
}

TEST_F(Windows, WaveDialogRefusesBeforeAnyWork) {
  WaveExportDialog dialog(exportEnv());
  for (int32_t r : kWaveRates) EXPECT_FALSE(dialog.rate(r)->isChecked()) << r;  // 110025 has no button
  EXPECT_TRUE(dialog.mono()->isChecked());
  EXPECT_TRUE(dialog.bits16()->isChecked());

  struct Case {
    const char* name;
    std::string file;
    int from, to;
    int32_t rate;
    const char* message;
  };
  const fs::path out = temp("never.wav");
  for (const Case& c : {Case{"the stored default rate", out.string(), 1, 40, 0, "str_ErrorInWavExport"},
                        Case{"no target", "", 1, 40, 44100, "str_PleaseSelectDestFile"},
                        Case{"bars the wrong way", out.string(), 5, 4, 44100, "str_ToBarMustBeLess"}}) {
    SCOPED_TRACE(c.name);
    dialog.target()->setText(QString::fromStdString(c.file));
    dialog.fromBar()->setValue(c.from);
    dialog.toBar()->setValue(c.to);
    if (c.rate) dialog.rate(c.rate)->setChecked(true);
    prompter.clear();
    dialog.Command2_Click();
    ASSERT_EQ(prompter.asked().size(), 1u);
    EXPECT_EQ(prompter.asked()[0].text, c.message);
  }
  EXPECT_FALSE(fs::exists(out));
  // The choices of the last complete check are kept.
  EXPECT_EQ(LoadWaveSettings(store).FileName, out.string());
}

}  // namespace
}  // namespace plectaro
