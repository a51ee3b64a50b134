#include "reference/library_filter.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace plectaro {

namespace {

std::string upper(std::string_view s) {
  std::string u(s);
  for (char& c : u) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c);
  return u;
}

std::string withoutBlanks(std::string s) {
  s.erase(std::remove(s.begin(), s.end(), ' '), s.end());
  return s;
}

// Runs `keep` over the library; a file that will not load is named in `broken` and the pass
// goes on, so one bad file never hides the rest of the library.
template <class Keep>
FilterResult filterLibrary(const std::vector<std::string>& library, Keep keep) {
  FilterResult r;
  for (const std::string& name : library) {
    try {
      if (keep(name)) r.names.push_back(name);
    } catch (const LibraryError&) {
      r.broken.push_back(name);
    }
  }
  return r;
}

}  // namespace

bool ChordNameMatches(std::string_view name, std::string_view search) {
  const std::string s = upper(search);
  const std::string n = upper(name);
  return n.find(s) != std::string::npos || withoutBlanks(n).find(s) != std::string::npos;
}

bool ChordMatchesTab(const ChordData& chord, const std::array<std::string, kChordStrings>& tab) {
  for (int i = 0; i < kChordStrings; ++i) {
    const std::string& box = tab[static_cast<size_t>(i)];
    if (box.empty()) continue;
    // Strings 5, 6 and 7 may be missing from a chord; their box then says nothing about it.
    const int string = i + 1;
    if (string >= 5 && chord.NumStrings < string) continue;
    if (box != chord.Frets[static_cast<size_t>(i)]) return false;
  }
  return true;
}

std::vector<std::string> ChordNamesInScore(const Score& score) {
  std::set<std::string> names;
  for (const Track& t : score.Tracks)
    for (const auto& bar : t.Bars)
      for (const Beat& b : bar->Beats)
        if (b.HasChord && !b.Chord->Name.empty()) names.insert(b.Chord->Name);
  return {names.begin(), names.end()};
}

FilterResult ApplyChordFilter(const std::vector<std::string>& library, const ChordFilter& f,
                              const ChordLoader& load, const Score* score) {
  switch (f.mode) {
    case ChordSearch::Name:
      return filterLibrary(library, [&](const std::string& n) { return ChordNameMatches(n, f.text); });
    case ChordSearch::Tab:
      return filterLibrary(library, [&](const std::string& n) { return ChordMatchesTab(load(n), f.tab); });
    case ChordSearch::Strings:
      return filterLibrary(library, [&](const std::string& n) { return load(n).NumStrings == f.numStrings; });
    case ChordSearch::InFile: {
      const std::vector<std::string> used = score ? ChordNamesInScore(*score) : std::vector<std::string>{};
      return filterLibrary(library, [&](const std::string& n) {
        return std::binary_search(used.begin(), used.end(), n);
      });
    }
  }
  return {};
}

std::string EmptyChordResultText(const ChordFilter& f, bool libraryEmpty, const TextLookup& text) {
  if (libraryEmpty) return text("str_NoChordsInstalled") + " " + text("str_ToCreateAChord");
  switch (f.mode) {
    case ChordSearch::Name:
      return text("str_NoChordsContaining1") + f.text + text("str_NoChordsContaining2");
    case ChordSearch::Tab: {
      // The boxes as a guitarist reads a chord: lowest string first, "-" for a free box.
      std::string tab;
      for (int i = kChordStrings - 1; i >= 0; --i) {
        const std::string& box = f.tab[static_cast<size_t>(i)];
        if (!tab.empty()) tab += ' ';
        tab += box.empty() ? "-" : box;
      }
      return text("str_NoChordsContainingTab1") + tab + text("str_NoChordsContainingTab2");
    }
    case ChordSearch::Strings:
      return text("str_No") + " " + std::to_string(f.numStrings) + text("str_StringChordsWereFound");
    case ChordSearch::InFile:
      return text("str_NoChordsInFile");
  }
  return {};
}

std::string ChordCountText(size_t count, const TextLookup& text) {
  return std::to_string(count) + " " + text(count == 1 ? "str_Chord" : "str_Chords");
}

FilterResult ApplyScaleFilter(const std::vector<std::string>& library, const ScaleFilter& f,
                              const ScaleLoader& load) {
  const std::string search = upper(f.text);
  switch (f.mode) {
    case ScaleSearch::Name:
      return filterLibrary(library, [&](const std::string& n) { return upper(n).find(search) != std::string::npos; });
    case ScaleSearch::Keywords:
      return filterLibrary(library, [&](const std::string& n) {
        return upper(load(n).Keywords).find(search) != std::string::npos;
      });
    case ScaleSearch::Strings:
      return filterLibrary(library, [&](const std::string& n) { return load(n).NumStrings == f.numStrings; });
  }
  return {};
}

std::pair<std::string, std::string> EmptyScaleResultText(const ScaleFilter& f, bool libraryEmpty,
                                                         const TextLookup& text) {
  const std::string title = text("str_SearchUnsuccessful");
  if (libraryEmpty) return {title, text("str_NoScalesInstalled") + " " + text("str_toInstall")};
  switch (f.mode) {
    case ScaleSearch::Name:
      return {title, text("str_NoScalesWithName1") + f.text + text("str_NoScalesWithName2")};
    case ScaleSearch::Keywords:
      return {title, text("str_NoKeywords1") + f.text + text("str_NoKeywords2")};
    case ScaleSearch::Strings:
      return {title, text("str_NoString1") + std::to_string(f.numStrings) + text("str_NoString2")};
  }
  return {};
}

std::string ScaleCountText(size_t count, const TextLookup& text) {
  return std::to_string(count) + " " + text(count == 1 ? "str_Scale" : "str_Scales");
}

namespace {

struct GeometryRow {
  double frameHeight, frameWidth;
  double nx, ny, cx, cy, tx, ty;  // -1: the element is not shown
  double cellWidth, cellHeight;
};

CellGeometry fromRow(const GeometryRow& g) {
  CellGeometry c;
  c.frameWidth = g.frameWidth;
  c.frameHeight = g.frameHeight;
  c.notation = {g.nx >= 0, g.nx, g.ny};
  c.chart = {g.cx >= 0, g.cx, g.cy};
  c.tab = {g.tx >= 0, g.tx, g.ty};
  c.cellWidth = g.cellWidth;
  c.cellHeight = g.cellHeight;
  return c;
}

// The cells were sized for the fonts and bitmaps of the charts; keep them.
constexpr GeometryRow kChordCells[kViewTypes] = {
    {110, 60, 15, 43, -1, -1, -1, -1, 70, 130},
    {110, 90, -1, -1, 25, 26, -1, -1, 100, 130},
    {110, 70, -1, -1, -1, -1, 22, 15, 80, 130},
    {110, 100, 15, 43, -1, -1, 65, 13, 110, 130},
    {110, 140, 15, 43, 78, 23, -1, -1, 150, 130},
    {110, 110, -1, -1, 22, 23, 76, 13, 120, 130},
    {110, 170, 15, 43, 77, 23, 138, 13, 190, 130},
};
constexpr GeometryRow kScaleCells[kViewTypes] = {
    {125, 238, 22, 50, -1, -1, -1, -1, 250, 140},
    {95, 158, -1, -1, 32, 25, -1, -1, 170, 105},
    {78, 238, -1, -1, -1, -1, 22, 15, 250, 90},
    {170, 238, 22, 35, -1, -1, 22, 105, 250, 190},
    {200, 238, 22, 125, 72, 18, -1, -1, 250, 220},
    {154, 238, -1, -1, 72, 18, 22, 88, 250, 170},
    {260, 238, 22, 115, 72, 18, 22, 188, 250, 275},
};

}  // namespace

CellGeometry ChordCellGeometry(int viewType) {
  return fromRow(kChordCells[std::clamp(viewType, 0, kViewTypes - 1)]);
}

CellGeometry ScaleCellGeometry(int viewType) {
  return fromRow(kScaleCells[std::clamp(viewType, 0, kViewTypes - 1)]);
}

GridLayout LayoutGrid(double viewWidth, double viewHeight, const CellGeometry& cell, size_t count) {
  GridLayout g;
  g.columns = std::max(1, static_cast<int>(viewWidth / cell.cellWidth));
  g.rows = std::max(1, static_cast<int>(std::lround(viewHeight / cell.cellHeight)));
  const int needed = static_cast<int>((count + static_cast<size_t>(g.columns) - 1) / static_cast<size_t>(g.columns));
  g.scrollMax = needed > g.rows ? needed - g.rows + 1 : 0;
  return g;
}

int CellAt(double x, double y, const GridLayout& grid, const CellGeometry& cell, int scroll, size_t count) {
  if (x < 0 || y < 0) return -1;
  const int col = static_cast<int>(x / cell.cellWidth);
  const int row = static_cast<int>(y / cell.cellHeight);
  if (col >= grid.columns) return -1;
  const long index = static_cast<long>(scroll + row) * grid.columns + col;
  return index < static_cast<long>(count) ? static_cast<int>(index) : -1;
}

}  // namespace plectaro
