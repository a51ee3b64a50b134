// The searches of the Chord Manager and the Scale Manager over their libraries, and the
// geometry of the grid of cells both windows show. Qt-free, so the windows, the command line
// and the tests share them.
#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "reference/chords.h"
#include "reference/scales.h"
#include "score/score_records.h"

namespace plectaro {

// A message text of the interface language by its key.
using TextLookup = std::function<std::string(std::string_view key)>;

// What a search pass left, and the files it had to pass over because they would not load.
struct FilterResult {
  std::vector<std::string> names;
  std::vector<std::string> broken;
};

// The upper-cased text occurs in the upper-cased name, or in it with every blank removed:
// "am" finds "A m7".
bool ChordNameMatches(std::string_view name, std::string_view search);

enum class ChordSearch { Name, Tab, Strings, InFile };

struct ChordFilter {
  ChordSearch mode = ChordSearch::Name;
  std::string text;                              // name search
  std::array<std::string, kChordStrings> tab;    // tab search, index 0 = string 1; "" any
  int numStrings = 6;                            // string-count search
};

// Loads what a search needs through `load` (the library file by default), so a window can
// keep the records it already read.
using ChordLoader = std::function<ChordData(const std::string& name)>;

FilterResult ApplyChordFilter(const std::vector<std::string>& library, const ChordFilter& filter,
                              const ChordLoader& load, const Score* score);
// Whether a chord passes the tab boxes: a box of a string the chord may lack (5, 6, 7) only
// counts when the chord has that string.
bool ChordMatchesTab(const ChordData& chord, const std::array<std::string, kChordStrings>& tab);
// The names of the chord diagrams placed anywhere in the Score.
std::vector<std::string> ChordNamesInScore(const Score& score);

// The notice for an empty result ("" when the result is not empty).
std::string EmptyChordResultText(const ChordFilter& filter, bool libraryEmpty, const TextLookup& text);
// "396 chords", "1 chord"; the same with scales.
std::string ChordCountText(size_t count, const TextLookup& text);

enum class ScaleSearch { Name, Keywords, Strings };

struct ScaleFilter {
  ScaleSearch mode = ScaleSearch::Name;
  std::string text;
  int numStrings = 6;
};
using ScaleLoader = std::function<ScaleData(const std::string& name)>;
FilterResult ApplyScaleFilter(const std::vector<std::string>& library, const ScaleFilter& filter,
                              const ScaleLoader& load);
// Title and text of the notice for an empty result (both "" when it is not empty).
std::pair<std::string, std::string> EmptyScaleResultText(const ScaleFilter& filter, bool libraryEmpty,
                                                         const TextLookup& text);
std::string ScaleCountText(size_t count, const TextLookup& text);

// ---- the grid of cells ----

struct ElementAt {
  bool shown = false;
  double x = 0, y = 0;
};

struct CellGeometry {
  double frameWidth = 0, frameHeight = 0;
  ElementAt notation, chart, tab;
  double cellWidth = 0, cellHeight = 0;
};

constexpr int kViewTypes = 7;
// ViewType 0 notation, 1 chart, 2 tab, 3 notation and tab, 4 notation and chart, 5 chart and
// tab, 6 all.
CellGeometry ChordCellGeometry(int viewType);
CellGeometry ScaleCellGeometry(int viewType);

struct GridLayout {
  int columns = 1;
  int rows = 1;
  int scrollMax = 0;  // in rows
};
GridLayout LayoutGrid(double viewWidth, double viewHeight, const CellGeometry& cell, size_t count);
// The list index in the cell at (x, y) of the view, or -1 for none.
int CellAt(double x, double y, const GridLayout& grid, const CellGeometry& cell, int scroll, size_t count);

}  // namespace plectaro
