#include "reference/cell_drawing.h"

#include <algorithm>

#include "reference/note_names.h"
#include "rendering/bar_drawing.h"
#include "rendering/notation.h"

namespace plectaro {

namespace {

constexpr Color kFrame{120, 120, 120, 255};
constexpr Color kGrid{60, 60, 60, 255};
constexpr Color kStrip{255, 255, 255, 255};
constexpr Color kCellBack{246, 244, 236, 255};

Font smallFont(double size) { return Font{"Small Fonts", size}; }

void centred(Surface& s, double cx, double cy, const std::string& text, const Font& f, Color c) {
  const TextMetrics m = s.measureText(text, f);
  s.drawText({cx - m.width / 2, cy - m.height() / 2}, text, f, c);
}

constexpr double kChartWidth = 65;   // five fret columns: a chord lies within five frets
constexpr double kChordColumn = 13;
constexpr double kChartHeight = 55;
constexpr double kScaleColumn = 17;

// The y of string i (0 = string 1) on a chart of n strings: string 1 at the bottom for a
// right-handed player looking down at the neck, at the top for a left-handed one.
double stringY(double top, int i, int n, bool leftHanded) {
  if (n <= 1) return top + kChartHeight / 2;
  const double step = kChartHeight / (n - 1);
  return leftHanded ? top + i * step : top + (n - 1 - i) * step;
}

void frame(Surface& s, Point o, const CellGeometry& cell, const std::string& title) {
  const Rect r{o.x + (cell.cellWidth - cell.frameWidth) / 2, o.y + (cell.cellHeight - cell.frameHeight) / 2,
               cell.frameWidth, cell.frameHeight};
  s.fillRect(r, kCellBack);
  s.fillRect({r.x, r.y, r.w, 13}, kStrip);
  s.drawRect(r, kFrame, 1);
  s.drawLine({r.x, r.y + 13}, {r.right(), r.y + 13}, kFrame, 0.5);
  const Font f{"Arial", 7, true};
  // Long titles are cut to the strip, like a label of fixed width.
  s.setClip({r.x + 1, r.y, r.w - 2, 13});
  const TextMetrics m = s.measureText(title, f);
  s.drawText({r.x + std::max(2.0, (r.w - m.width) / 2), r.y + (13 - m.height()) / 2}, title, f, kBlack);
  s.clearClip();
}

// A five-line staff with the treble clef; the notes at `xs` (one per pitch).
void smallStaff(Surface& s, double x, double top, double width, const std::vector<int>& pitches,
                const std::vector<double>& xs) {
  for (int l = 0; l < 5; ++l) s.drawLine({x, top + l * 7}, {x + width, top + l * 7}, kGrid, 0.6);
  DrawTrebleClef(s, x + 1, top, kBlack, 0.8);
  for (size_t i = 0; i < pitches.size(); ++i) {
    const int pitch = std::clamp(pitches[i], 23, 105);
    const double cy = top + StaffPosition(pitch, false) + 6.5;
    const double cx = xs[i];
    // Ledger lines between the staff and a note above or below it.
    for (double ly = top + 35; ly <= cy + 1; ly += 7) s.drawLine({cx - 5, ly}, {cx + 5, ly}, kGrid, 0.6);
    for (double ly = top - 7; ly >= cy - 1; ly -= 7) s.drawLine({cx - 5, ly}, {cx + 5, ly}, kGrid, 0.6);
    s.fillEllipse({cx - 3.2, cy - 2.4, 6.4, 4.8}, kBlack);
    if (IsBlackKey(pitch)) DrawAccidental(s, Accidental::Sharp, cx - 8, cy, kBlack);
  }
}

}  // namespace

void DrawChordChart(Surface& s, Point at, const ChordData& c, bool leftHanded) {
  const int n = std::clamp<int>(c.NumStrings, 1, kChordStrings);
  const double left = at.x, top = at.y;
  for (int col = 0; col <= 5; ++col)
    s.drawLine({left + col * kChordColumn, top}, {left + col * kChordColumn, top + kChartHeight}, kGrid, 0.6);
  for (int i = 0; i < n; ++i) {
    const double y = stringY(top, i, n, leftHanded);
    s.drawLine({left, y}, {left + kChartWidth, y}, kGrid, 0.8);
  }
  if (c.StartFret == 0) s.drawLine({left, top}, {left, top + kChartHeight}, kBlack, 2.5);
  else centred(s, left + kChordColumn / 2, top + kChartHeight + 7, std::to_string(c.StartFret + 1), smallFont(7), kBlack);

  const Font names = smallFont(6);
  int muted = -1;  // the muted string nearest string 1
  int lowest = 0;  // lowest fretted position, for the barre
  for (int i = 0; i < n; ++i) {
    const double y = stringY(top, i, n, leftHanded);
    const std::string name = PitchToNoteName(i + 1, c.Tuning[static_cast<size_t>(i)]);
    if (!name.empty()) centred(s, left - 19, y, name, names, kGrid);
    const std::string& f = c.Frets[static_cast<size_t>(i)];
    int fret = 0;
    bool numeric = !f.empty() && f.size() <= 3 && std::all_of(f.begin(), f.end(), [](char ch) { return ch >= '0' && ch <= '9'; });
    if (numeric) fret = std::stoi(f);
    if (f == "x" || f == "X") {
      if (muted < 0) muted = i;
      centred(s, left - 7, y, "X", smallFont(7), kBlack);
    } else if (numeric && fret == 0) {
      s.fillEllipse({left - 9, y - 3, 6, 6}, kWhite);
      s.drawEllipse({left - 9, y - 3, 6, 6}, kBlack, 0.8);
    } else if (numeric && fret <= 5) {
      const double cx = left + (fret - 0.5) * kChordColumn;
      s.fillEllipse({cx - 4, y - 4, 8, 8}, kBlack);
      if (lowest == 0 || fret < lowest) lowest = fret;
    }
    const int finger = c.Fingers[static_cast<size_t>(i)];
    if (finger >= 1 && finger <= 5)
      centred(s, left + kChartWidth + 4, y, finger == 5 ? "T" : std::to_string(finger), names, kBlack);
  }
  if (c.Barre && lowest > 0) {
    // The barre lies across the strings on the treble side of any muted string.
    const int last = muted < 0 ? n - 1 : muted - 1;
    if (last >= 0) {
      const double y1 = stringY(top, 0, n, leftHanded), y2 = stringY(top, last, n, leftHanded);
      const double cx = left + (lowest - 0.5) * kChordColumn;
      s.fillRect({cx - 2.5, std::min(y1, y2) - 3, 5, std::abs(y2 - y1) + 6}, kBlack);
    }
  }
}

void DrawScaleChart(Surface& s, Point at, const ScaleData& scale, const ScaleView& view, bool leftHanded) {
  const int n = std::clamp<int>(scale.NumStrings, 1, kScaleRows);
  const double left = at.x, top = at.y;
  const int shift = view.keyOffset + (view.high ? 12 : 0);
  for (int col = 0; col <= kScaleOffsets; ++col)
    s.drawLine({left + col * kScaleColumn, top}, {left + col * kScaleColumn, top + kChartHeight}, kGrid, 0.6);
  for (int i = 0; i < n; ++i) {
    const double y = stringY(top, i, n, leftHanded);
    s.drawLine({left, y}, {left + kScaleOffsets * kScaleColumn, y}, kGrid, 0.8);
    const std::string name = PitchToNoteName(i + 1, scale.Tuning[static_cast<size_t>(i)]);
    if (!name.empty()) centred(s, left - 14, y, name, smallFont(6), kGrid);
  }
  // The first column is the fret the window starts at; at the nut it is the open string.
  if (shift == 0) s.drawLine({left, top}, {left, top + kChartHeight}, kBlack, 2.5);
  for (int d = 0; d < kScaleOffsets; d += 2)
    centred(s, left + (d + 0.5) * kScaleColumn, top + kChartHeight + 7, std::to_string(d + shift), smallFont(6), kGrid);
  for (const ScaleNote& note : ScaleNotes(scale, view.keyOffset, view.high, true)) {
    const double cx = left + (note.fret - shift + 0.5) * kScaleColumn;
    const double y = stringY(top, note.row, n, leftHanded);
    const bool root = (note.pitch - view.keyOffset - 4) % 12 == 0;  // E shifted to the key
    s.fillEllipse({cx - 4.5, y - 4.5, 9, 9}, root ? Color{170, 30, 30, 255} : kBlack);
  }
}

void DrawChordCell(Surface& s, Point o, const CellGeometry& cell, const std::string& title, const ChordData& c,
                   const CellStyle& style) {
  frame(s, o, cell, title);
  const int n = std::clamp<int>(c.NumStrings, 1, kChordStrings);
  if (cell.chart.shown) DrawChordChart(s, {o.x + cell.chart.x, o.y + cell.chart.y + 8}, c, style.leftHanded);
  if (cell.notation.shown) {
    std::vector<int> pitches;
    for (int i = n - 1; i >= 0; --i) {
      int fret = 0;
      if (c.absoluteFret(i, fret)) pitches.push_back(c.Tuning[static_cast<size_t>(i)] + fret);
    }
    const double x = o.x + cell.notation.x - 5;
    smallStaff(s, x, o.y + cell.notation.y, 48, pitches, std::vector<double>(pitches.size(), x + 32));
  }
  if (cell.tab.shown) {
    // Clear of the title strip, the strings share the height below it.
    const double x = o.x + cell.tab.x, top = o.y + cell.tab.y + 14;
    const double step = 84.0 / n;
    const Font f = smallFont(6);
    for (int i = 0; i < n; ++i) {
      const double y = top + i * step;
      s.drawLine({x, y}, {x + 40, y}, kGrid, 0.6);
      int fret = 0;
      const std::string& raw = c.Frets[static_cast<size_t>(i)];
      const std::string text = c.absoluteFret(i, fret) ? std::to_string(fret) : (raw == "x" || raw == "X") ? "x" : "";
      if (text.empty()) continue;
      const TextMetrics m = s.measureText(text, f);
      s.fillRect({x + 20 - m.width / 2 - 1, y - m.height() / 2, m.width + 2, m.height()}, kCellBack);
      centred(s, x + 20, y, text, f, kBlack);
    }
  }
}

void DrawScaleCell(Surface& s, Point o, const CellGeometry& cell, const std::string& title, const ScaleData& scale,
                   const ScaleView& view, const CellStyle& style) {
  frame(s, o, cell, title);
  const int n = std::clamp<int>(scale.NumStrings, 1, kScaleRows);
  const std::vector<ScaleNote> notes = ScaleNotes(scale, view.keyOffset, view.high, view.ascending);
  const double width = cell.frameWidth - 30;
  if (cell.chart.shown) DrawScaleChart(s, {o.x + cell.chart.x, o.y + cell.chart.y + 8}, scale, view, style.leftHanded);
  auto noteX = [&](double x0, size_t i) {
    const double step = notes.empty() ? 0 : std::min(14.0, (width - 28) / static_cast<double>(notes.size()));
    return x0 + 28 + step * static_cast<double>(i);
  };
  if (cell.notation.shown) {
    std::vector<int> pitches;
    std::vector<double> xs;
    for (size_t i = 0; i < notes.size(); ++i) {
      pitches.push_back(notes[i].pitch);
      xs.push_back(noteX(o.x + cell.notation.x, i));
    }
    smallStaff(s, o.x + cell.notation.x, o.y + cell.notation.y, width, pitches, xs);
  }
  if (cell.tab.shown) {
    const double x = o.x + cell.tab.x, top = o.y + cell.tab.y + 2;
    const double step = 50.0 / std::max(1, n - 1);
    const Font f = smallFont(6);
    for (int i = 0; i < n; ++i) s.drawLine({x, top + i * step}, {x + width, top + i * step}, kGrid, 0.6);
    for (size_t i = 0; i < notes.size(); ++i) {
      const std::string text = std::to_string(notes[i].fret);
      const double cx = noteX(x, i), y = top + notes[i].row * step;
      const TextMetrics m = s.measureText(text, f);
      s.fillRect({cx - m.width / 2 - 1, y - m.height() / 2, m.width + 2, m.height()}, kCellBack);
      centred(s, cx, y, text, f, kBlack);
    }
  }
}

}  // namespace plectaro
