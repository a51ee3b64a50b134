// Drawing of one page's pieces: the title block, the staves of a row, and a bar with its
// beats (tab staff and notation) and marks. DrawDocument calls these; tests call them on a
// RecordingSurface.
#pragma once

#include <string>
#include <vector>

#include "rendering/notation.h"
#include "rendering/page_layout.h"
#include "rendering/surface.h"
#include "score/document.h"

namespace plectaro {

struct DrawContext {
  DrawContext(const Score& s, int t, const LayoutSettings& st, const std::vector<BarLayout>& l, Surface& out)
      : score(s), track(t), settings(st), layout(l), surface(out) {}

  const Score& score;
  int track;
  const LayoutSettings& settings;
  const std::vector<BarLayout>& layout;
  Surface& surface;
  // The cursor is drawn when the drawn beat is this one (track, bar, beat, string); -1 none.
  int cursorBar = -1;
  int cursorBeat = -1;
  int cursorString = 0;
  // Notation entry: the pitch whose staff line carries the cursor; -1 when the cursor is on
  // the tab.
  int cursorLine = -1;
  // Notes before each bar, for the lyric syllables; filled on first use in a pass.
  std::vector<int> notesBeforeBar;
  // What stands over the current row (texts, chord names and charts), so that a long text
  // does not run into the next one; cleared when a bar of another row is drawn.
  double overRowTop = -1e300;
  std::vector<Rect> overRow;

  const Track& trackRef() const { return score.Tracks[static_cast<size_t>(track)]; }
};

// Title block of a page (title, subtitle, album, artist, author, tempo, capo) and the footer
// (page number text, copyright, notice). `page` is 0-based; the title lines are drawn on the
// first page, and on later pages only when the Score asks for headers on every page.
void DrawPageTitle(DrawContext& ctx, Rect page, int pageIndex, const std::string& footer,
                   const std::string& capoWord);
// Staff lines of one row: notation staves and the tab strings, and the row's left line.
void DrawRowStaves(DrawContext& ctx, double x, double y, double rowWidth);
// All of one bar: head and bar line, the beats, then repeat and navigation marks.
void DrawBar(DrawContext& ctx, double x, double y, int bar, double width);
void DrawBarFrame(DrawContext& ctx, double x, double y, int bar, double width);
void DrawBarMarks(DrawContext& ctx, double x, double y, int bar, double width);

// Volume weight of the fret colour blend: how far the note colour is taken toward white.
int VolumeBlendWeight(int32_t volume);
// Colour between `from` and `to`: weight 255 is `from`, 0 is `to`.
Color BlendColor(Color from, Color to, int weight);

// Label of a harmonic code ("N.H.", "A.H.5"...); "" for none or an unknown code.
const char* HarmonicLabel(int32_t harmonic);
// Text of a bend height in quarter tones: "¼", "½", ..., "3"; "" outside 1..12.
std::string BendHeightText(int quarterTones);

// The treble clef and the accidental signs of the staff, for other drawings of small staves
// (the chord and scale cells). `staffTop` is the top line; lines are 7 units apart.
void DrawTrebleClef(Surface& s, double x, double staffTop, Color c, double size);
void DrawAccidental(Surface& s, Accidental a, double x, double cy, Color c);

}  // namespace plectaro
