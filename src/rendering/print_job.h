// Printing: the selected pages of a Track, as many times as copies are asked for, one run
// after the other (no collation). The printer is behind PrintTarget, so the job is the same
// for paper, a PDF chosen in the print dialog, and the recording surface of the tests.
#pragma once

#include <vector>

#include "rendering/draw_document.h"
#include "score/settings_store.h"

namespace plectaro {

class PrintTarget {
 public:
  virtual ~PrintTarget() = default;
  // A new sheet, black on white, the size of the layout page; the surface draws in page
  // units with the page's top-left corner at (0, 0). Valid until the next call or finish().
  virtual Surface* beginSheet() = 0;
  // The last sheet is done: the job goes to the printer.
  virtual void finish() = 0;
};

struct PrintResult {
  DrawResult Layout;  // of the last run
  int Sheets = 0;     // sheets handed to the target
};

// Prints the pages whose entry of `selected` is true (0-based pages; entries beyond the
// list count as not selected), `copies` times. Every page is walked in every run, since a
// page's bars follow from those before it. With no page selected, or no copy, nothing
// reaches the target, not even finish().
PrintResult PrintPages(Document& doc, int track, const LayoutSettings& settings, const DrawTexts& texts,
                       const std::vector<bool>& selected, int copies, PrintTarget& target);

// The page setup's choices, kept in the settings store (section "PageSetup") between runs.
struct PageSetup {
  int16_t PaperSizeIndex = 0;
  bool Landscape = false;
  int32_t PageScaleMode = 7;  // unit of the dialog: 7 centimetres, 5 inches
  bool operator==(const PageSetup&) const = default;
};
inline constexpr const char* kPageSetupSection = "PageSetup";
// Values that are not numbers, or a paper index outside the list, give the defaults.
PageSetup LoadPageSetup(const SettingsStore& store);
void SavePageSetup(SettingsStore& store, const PageSetup& setup);
// The settings with the page setup's paper applied (PageWidth and PageHeight follow).
LayoutSettings WithPageSetup(LayoutSettings settings, const PageSetup& setup);

}  // namespace plectaro
