// One cell of the Chord Manager's and the Scale Manager's grids, drawn on a Surface: the
// frame with its title strip, and the notation, chart and tab elements the view type shows.
// Coordinates are those of the view; the cell's origin is given.
#pragma once

#include <string>

#include "reference/library_filter.h"
#include "rendering/surface.h"

namespace plectaro {

struct CellStyle {
  bool leftHanded = false;
};

void DrawChordCell(Surface& s, Point origin, const CellGeometry& cell, const std::string& title,
                   const ChordData& chord, const CellStyle& style);

// The scale in a key: `keyOffset` semitones above E, `high` an octave up the neck.
struct ScaleView {
  int keyOffset = 0;
  bool high = false;
  bool ascending = true;
};
void DrawScaleCell(Surface& s, Point origin, const CellGeometry& cell, const std::string& title,
                   const ScaleData& scale, const ScaleView& view, const CellStyle& style);

// The chord chart alone, 65 by 55 units from its top-left corner (also used by the editors).
void DrawChordChart(Surface& s, Point at, const ChordData& chord, bool leftHanded);
// The scale's fretboard chart: seven fret columns of 17 by 55 units.
void DrawScaleChart(Surface& s, Point at, const ScaleData& scale, const ScaleView& view, bool leftHanded);

}  // namespace plectaro
