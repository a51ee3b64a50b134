// Printing: which pages reach the printer, how often, and that a printed page is the page
// the screen shows.
#include <gtest/gtest.h>

#include <memory>

#include "rendering/print_job.h"
#include "rendering/recording_surface.h"
#include "test_scores.h"

namespace plectaro {
namespace {

struct SheetRecorder : PrintTarget {
  std::vector<std::unique_ptr<RecordingSurface>> sheets;
  int finished = 0;
  Surface* beginSheet() override {
    sheets.push_back(std::make_unique<RecordingSurface>());
    return sheets.back().get();
  }
  void finish() override { ++finished; }
};

TEST(Print, SelectedPagesAndCopies) {
  Document doc = test::MakeDoc(40, 16, true);
  const LayoutSettings settings;
  const int pages = LayoutTrack(doc, 0, settings, DrawTexts{}).LastPage + 1;
  ASSERT_GE(pages, 4);
  auto pageAlone = [&](int page) {
    RecordingSurface s;
    EXPECT_TRUE(RenderPage(doc, 0, page, settings, DrawTexts{}, s).Ok);
    return s.calls();
  };
  struct Case {
    const char* name;
    std::vector<bool> selected;
    int copies;
    std::vector<int> sheets;  // the pages the printer gets, in order
  };
  std::vector<int> everyPage;
  for (int p = 0; p < pages; ++p) everyPage.push_back(p);
  const Case cases[] = {
      {"page 3 alone", {false, false, true}, 1, {2}},
      {"two copies run one after the other", {true, false, true}, 2, {0, 2, 0, 2}},
      {"nothing selected", {false, false, false, false}, 3, {}},
      {"no copy", {true}, 0, {}},
      {"entries beyond the pages are ignored", std::vector<bool>(static_cast<size_t>(pages) + 3, true), 1, everyPage},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::vector<int>& expected = c.sheets;
    SheetRecorder printer;
    Document copy = doc;
    const PrintResult r = PrintPages(copy, 0, settings, DrawTexts{}, c.selected, c.copies, printer);
    ASSERT_TRUE(r.Layout.Ok || expected.empty()) << r.Layout.Error;
    ASSERT_EQ(printer.sheets.size(), expected.size());
    EXPECT_EQ(r.Sheets, static_cast<int>(expected.size()));
    EXPECT_EQ(printer.finished, expected.empty() ? 0 : 1);
    for (size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(printer.sheets[i]->calls(), pageAlone(expected[i])) << i;
  }
}

// The printed page 3 holds the bars that page 3 of the screen layout holds.
TEST(Print, PageThreeHasTheScreensBars) {
  Document screen = test::MakeDoc(40, 16, true);
  const LayoutSettings settings;
  ASSERT_TRUE(LayoutTrack(screen, 0, settings, DrawTexts{}).Ok);
  const long long pageStep = settings.PageHeight + 35;
  std::vector<int> onScreen;
  for (size_t b = 0; b < screen.Layout[0].size(); ++b)
    if (screen.Layout[0][b].DrawY / pageStep == 2) onScreen.push_back(static_cast<int>(b));
  ASSERT_FALSE(onScreen.empty());

  Document printed = test::MakeDoc(40, 16, true);
  SheetRecorder printer;
  const PrintResult r = PrintPages(printed, 0, settings, DrawTexts{}, {false, false, true}, 1, printer);
  ASSERT_TRUE(r.Layout.Ok);
  const int perPage = RowLayout(printed, 0, settings).RowsPerPage();
  std::vector<int> onSheet;
  for (size_t row = 2 * static_cast<size_t>(perPage); row < 3 * static_cast<size_t>(perPage) && row < r.Layout.Rows.size(); ++row)
    for (int b = r.Layout.Rows[row].first; b <= r.Layout.Rows[row].last; ++b) onSheet.push_back(b);
  EXPECT_EQ(onSheet, onScreen);
}

TEST(Print, PageSetupStored) {
  MemorySettingsStore store;
  EXPECT_EQ(LoadPageSetup(store), PageSetup{});
  const PageSetup letterLandscape{3, true, 5};
  SavePageSetup(store, letterLandscape);
  EXPECT_EQ(LoadPageSetup(store), letterLandscape);
  const LayoutSettings s = WithPageSetup(LayoutSettings{}, letterLandscape);
  EXPECT_EQ(s.PageWidth, 1058);
  EXPECT_EQ(s.PageHeight, 817);
  store.SaveSetting("PageSetup", "PaperSizeIndex", "14");  // beyond the list
  store.SaveSetting("PageSetup", "PageScaleMode", "x");
  EXPECT_EQ(LoadPageSetup(store).PaperSizeIndex, 0);
  EXPECT_EQ(LoadPageSetup(store).PageScaleMode, 7);
}

}  // namespace
}  // namespace plectaro
