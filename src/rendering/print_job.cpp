#include "rendering/print_job.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace plectaro {

PrintResult PrintPages(Document& doc, int track, const LayoutSettings& settings, const DrawTexts& texts,
                       const std::vector<bool>& selected, int copies, PrintTarget& target) {
  PrintResult result;
  if (copies < 1 || std::none_of(selected.begin(), selected.end(), [](bool b) { return b; })) return result;
  for (int copy = 0; copy < copies; ++copy) {
    result.Layout = RenderPages(doc, track, settings, texts, [&](int page, int) -> Surface* {
      if (static_cast<size_t>(page) >= selected.size() || !selected[static_cast<size_t>(page)]) return nullptr;
      ++result.Sheets;
      return target.beginSheet();
    });
    if (!result.Layout.Ok) break;
  }
  if (result.Sheets > 0) target.finish();
  return result;
}

PageSetup LoadPageSetup(const SettingsStore& store) {
  PageSetup s;
  auto number = [&](const char* key, long fallback) {
    const std::string text = store.GetSetting(kPageSetupSection, key, "");
    char* end = nullptr;
    const long v = std::strtol(text.c_str(), &end, 10);
    return text.empty() || *end != '\0' ? fallback : v;
  };
  const long paper = number("PaperSizeIndex", 0);
  s.PaperSizeIndex = static_cast<int16_t>(paper >= 0 && paper < static_cast<long>(kPaperSizeNames.size()) ? paper : 0);
  s.Landscape = number("Landscape", 0) != 0;
  s.PageScaleMode = number("PageScaleMode", 7) == 5 ? 5 : 7;
  return s;
}

void SavePageSetup(SettingsStore& store, const PageSetup& setup) {
  store.SaveSetting(kPageSetupSection, "PaperSizeIndex", std::to_string(setup.PaperSizeIndex));
  store.SaveSetting(kPageSetupSection, "Landscape", setup.Landscape ? "1" : "0");
  store.SaveSetting(kPageSetupSection, "PageScaleMode", std::to_string(setup.PageScaleMode));
}

LayoutSettings WithPageSetup(LayoutSettings settings, const PageSetup& setup) {
  settings.PaperSizeIndex = setup.PaperSizeIndex;
  settings.Landscape = setup.Landscape;
  settings.PageScaleMode = setup.PageScaleMode;
  ApplyPaperSize(settings);
  return settings;
}

}  // namespace plectaro
