#include "rendering/bar_drawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "rendering/notation.h"
#include "score/bar_timing.h"

namespace plectaro {

namespace {

// ---- small helpers ----

const char* const kArial = "Arial";
const char* const kSmallFonts = "Small Fonts";

Font makeFont(const FontInfo& info, double scale = 1.0) {
  Font f;
  f.family = info.Name.empty() ? kArial : info.Name;
  // Sizes come from files unchecked; keep them drawable.
  f.size = std::clamp<double>(info.Size, 4, 48) * scale;
  f.bold = info.Bold;
  f.italic = info.Italic;
  f.underline = info.Underline;
  f.strikeout = info.Strikethrough;
  return f;
}

Font plainFont(const char* family, double size, bool bold = false) {
  Font f;
  f.family = family;
  f.size = size;
  f.bold = bold;
  return f;
}

// Vertical geometry of one row of a track, from the row's top.
struct RowGeometry {
  bool treble, bass, tab;
  int strings;
  double top;        // row top
  double trebleTop;  // staff line tops
  double bassTop;
  double tabTop;
  double tabBottom;
  double bassBase;   // y handed to the bass notation (row top + BassStaffAnchor)
  double firstLine;  // top line of the highest staff
  double lastLine;   // bottom line of the lowest staff

  RowGeometry(const Track& t, double y) {
    treble = t.TrebleStaff;
    bass = t.BassStaff;
    tab = t.TabStaff;
    strings = StringCount(t);
    top = y;
    trebleTop = y + TrebleStaffTop(t);
    bassTop = y + BassStaffTop(t);
    tabTop = y + TabStaffTop(t);
    tabBottom = tabTop + (strings - 1) * 10.0;
    bassBase = y + BassStaffAnchor(t);
    firstLine = treble ? trebleTop : bass ? bassTop : tabTop;
    lastLine = tab ? tabBottom : bass ? bassTop + 28 : trebleTop + 28;
  }
  bool any() const { return treble || bass || tab; }
  double stringY(int s) const { return tabTop + s * 10.0; }
};

int beatCountOf(const TrackBar& bar) { return std::max<int>(1, static_cast<int>(bar.Beats.size())); }

bool showsSignature(const DrawContext& ctx, int bar) {
  if (bar >= 0 && bar < static_cast<int>(ctx.layout.size())) return ctx.layout[static_cast<size_t>(bar)].ShowsSignature;
  return bar == 0;
}

int beatSpacingOf(const DrawContext& ctx, int bar, double width) {
  const TrackBar& tb = *ctx.trackRef().Bars[static_cast<size_t>(bar)];
  const long long usable = static_cast<long long>(std::lround(width)) - (showsSignature(ctx, bar) ? 57 : 9);
  const long long n = beatCountOf(tb);
  long long sp = usable / n - (usable < 0 && usable % n ? 1 : 0) - 1;
  sp = std::min<long long>(sp, ctx.settings.MaxTabX);
  return static_cast<int>(std::clamp<long long>(sp, -32768, 32767));
}

// Centre of beat k: numbers, heads and stems line up on it.
double beatCentre(double barX, bool sig, int spacing, int k) {
  return barX + RowLayout::BeatOffset(sig, spacing, k) + 3;
}

// The staff heights step 3 and 4 units in turn, so a note far from the staff drifts off the
// half-line grid of its 7-unit staff and a ledger line would graze its head. Heads are drawn
// on the nearest line or space instead.
double onStaffGrid(double y, double staffTop) { return staffTop + 3.5 * std::round((y - staffTop) / 3.5); }

Color lineColor(const DrawContext& ctx) { return Color::FromStored(ctx.score.LineColor); }
Color noteColor(const DrawContext& ctx) { return Color::FromStored(ctx.score.NoteFont.Color); }

void centredText(Surface& s, double cx, double topY, std::string_view text, const Font& f, Color c) {
  const TextMetrics m = s.measureText(text, f);
  s.drawText({cx - m.width / 2, topY}, text, f, c);
}

// Text whose vertical middle sits at cy.
void middleText(Surface& s, double x, double cy, std::string_view text, const Font& f, Color c) {
  const TextMetrics m = s.measureText(text, f);
  s.drawText({x, cy - m.height() / 2}, text, f, c);
}

// ---- glyphs drawn as outlines (no font holds them reliably) ----

void drawSharp(Surface& s, double x, double cy, Color c) {
  s.drawLine({x + 1.5, cy - 6}, {x + 1.5, cy + 7}, c, 0.8);
  s.drawLine({x + 4, cy - 7}, {x + 4, cy + 6}, c, 0.8);
  s.drawLine({x, cy - 1.5}, {x + 5.5, cy - 3}, c, 1.6);
  s.drawLine({x, cy + 2.5}, {x + 5.5, cy + 1}, c, 1.6);
}

void drawFlat(Surface& s, double x, double cy, Color c) {
  s.drawLine({x + 0.5, cy - 9}, {x + 0.5, cy + 3}, c, 0.9);
  Path bowl;
  bowl.moveTo({x + 0.5, cy + 3}).cubicTo({x + 6, cy - 0.5}, {x + 5.5, cy - 4}, {x + 0.5, cy - 1});
  s.strokePath(bowl, c, 1.2);
}

void drawNatural(Surface& s, double x, double cy, Color c) {
  s.drawLine({x + 0.5, cy - 7}, {x + 0.5, cy + 3}, c, 0.8);
  s.drawLine({x + 4, cy - 3}, {x + 4, cy + 7}, c, 0.8);
  s.drawLine({x + 0.5, cy - 1}, {x + 4, cy - 2.5}, c, 1.5);
  s.drawLine({x + 0.5, cy + 3}, {x + 4, cy + 1.5}, c, 1.5);
}

void drawAccidental(Surface& s, Accidental a, double x, double cy, Color c) {
  switch (a) {
    case Accidental::Sharp: drawSharp(s, x, cy, c); break;
    case Accidental::Flat: drawFlat(s, x, cy, c); break;
    case Accidental::Natural: drawNatural(s, x, cy, c); break;
    case Accidental::None: break;
  }
}

void drawArrowHead(Surface& s, Point tip, bool up, Color c) {
  const double d = up ? 4 : -4;
  const Point pts[3] = {tip, {tip.x - 2.5, tip.y + d}, {tip.x + 2.5, tip.y + d}};
  s.fillPolygon(pts, c);
}

// A slur or tie between two x positions, bowing up (negative bow) or down.
void drawArc(Surface& s, double x1, double x2, double y, double bow, Color c) {
  Path p;
  const double dx = (x2 - x1) / 4;
  p.moveTo({x1, y}).cubicTo({x1 + dx, y + bow}, {x2 - dx, y + bow}, {x2, y});
  s.strokePath(p, c, 1);
}

void drawRest(Surface& s, int length, double cx, double cy, Color c) {
  switch (length) {
    case kWhole: s.fillRect({cx - 3.5, cy - 3.5, 7, 3}, c); break;
    case kHalf: s.fillRect({cx - 3.5, cy - 0.5, 7, 3}, c); break;
    case kQuarter: {
      const Point z[5] = {{cx - 1.5, cy - 8}, {cx + 2, cy - 3.5}, {cx - 1.5, cy + 0.5}, {cx + 2, cy + 4.5}, {cx - 1, cy + 7}};
      s.drawPolyline(z, c, 1.6);
      break;
    }
    default: {
      // Eighth and shorter: a slanted stem with one hook per flag.
      const int hooks = std::clamp(length - 2, 1, 4);
      const double topY = cy - 6;
      s.drawLine({cx + 2.5, topY}, {cx - 1, topY + 7 + 3.5 * hooks}, c, 1);
      for (int h = 0; h < hooks; ++h) {
        const double hy = topY + h * 3.5;
        const double hx = cx + 2.5 - h * 0.5;
        s.fillEllipse({hx - 5, hy - 1, 3, 3}, c);
        s.drawLine({hx - 3.5, hy + 1}, {hx, hy}, c, 1);
      }
      break;
    }
  }
}

// Clefs as outlines: no installed face carries the musical symbols. `x` is the clef's left
// edge; `size` scales the shape (1 for a full clef, less at the start of a row).
void drawTrebleClef(Surface& s, double x, double staffTop, Color c, double size = 1.0) {
  const double cx = x + 6 * size;
  const double gl = staffTop + 21;  // the G line the curl wraps
  auto P = [&](double dx, double dy) { return Point{cx + dx * size, gl + dy * size}; };
  Path p;
  p.moveTo(P(1.5, -1.5))
      .cubicTo(P(-2, -2), P(-2, 3), P(1.5, 3.5))
      .cubicTo(P(6, 4), P(7, -3), P(3, -6))
      .cubicTo(P(-4, -10), P(-6.5, 1), P(-3, 5))
      .cubicTo(P(0, 9), P(8, 8), P(8, 1))
      .cubicTo(P(8, -7), P(1, -13), P(1, -19))
      .cubicTo(P(1, -25), P(4, -30), P(5, -29))
      .cubicTo(P(6, -27), P(4, -21), P(0, -16))
      .lineTo(P(3, 12))
      .cubicTo(P(3.5, 16), P(-1, 17), P(-2, 14));
  s.strokePath(p, c, 1.5 * std::max(size, 0.7));
  s.fillEllipse({cx - 3.8 * size, gl + 12 * size, 3.6 * size, 3.6 * size}, c);
}

void drawBassClef(Surface& s, double x, double staffTop, Color c, double size = 1.0) {
  const double fl = staffTop + 7;  // the F line between the dots
  auto P = [&](double dx, double dy) { return Point{x + dx * size, fl + dy * size}; };
  Path p;
  p.moveTo(P(2, 1))
      .cubicTo(P(2, -6), P(13, -7), P(13, 2))
      .cubicTo(P(13, 11), P(6, 17), P(0, 20));
  s.strokePath(p, c, 1.8 * std::max(size, 0.7));
  s.fillEllipse({x + 0.5 * size, fl - 0.5 * size, 4 * size, 4 * size}, c);
  s.fillEllipse({x + 15 * size, fl - 4.5 * size, 2.4 * size, 2.4 * size}, c);
  s.fillEllipse({x + 15 * size, fl + 2.1 * size, 2.4 * size, 2.4 * size}, c);
}

// The percussion clef: two thick upright bars over the middle of the staff.
void drawPercussionClef(Surface& s, double x, double top, double height, Color c, double size = 1.0) {
  const double h = std::min(14.0, height * 0.6) * size;
  const double cy = top + height / 2;
  s.fillRect({x, cy - h / 2, 2.5 * size, h}, c);
  s.fillRect({x + 5 * size, cy - h / 2, 2.5 * size, h}, c);
}

// ---- what the tab shows of a note, shared by the drawing and by the room it needs ----

std::string fretLabel(const Track& t, const NoteSlot& n) {
  std::string text = n.Fret;
  if (!t.DrumTrack && (text == "x" || text == "X")) text = "X";  // a dead note
  if (n.GhostNote) text = "(" + text + ")";
  return text;
}

const char* leftFingerLabel(int32_t finger) {
  static constexpr std::array<const char*, 6> kLeft = {"", "T", "1", "2", "3", "4"};
  return finger > 0 && finger <= 5 ? kLeft[static_cast<size_t>(finger)] : "";
}

std::string graceLabel(const NoteSlot& n) { return n.Grace->Fret == "x" ? "X" : n.Grace->Fret; }

// The stroke arrow stands this far left of the chord; a slide into a note starts this far.
constexpr double kStrokeGap = 9;
constexpr double kSlideIntoReach = 12;

// ---- rhythm: stems, flags, beams, shared by the tab and notation layers ----

struct BeatRhythm {
  bool sounding = false;  // has notes on this layer
  double top = 0;         // highest and lowest head on this layer (notation) or stem base (tab)
  double bottom = 0;
  int group = -1;         // beam group index, -1 not beamed
};

struct BeamGroup {
  int first = 0;
  int last = 0;
  bool up = true;
  double tip = 0;  // y of the beam
};

int flagCount(int length) { return length >= kEighth && length <= kSixtyFourth ? length - 2 : 0; }

double beatDuration(const Beat& b) {
  try {
    return GetNumOf64ths(b);
  } catch (const ScoreError&) {
    return 16;  // a length the file made up: count it as a quarter for grouping
  }
}

double beamUnit(const BarInfo& info) {
  const int num = info.TimeSigNumerator;
  const int den = info.TimeSigDenominator;
  if (den <= 0 || den > 64) return 16;
  if (den >= 8 && num > 3 && num % 3 == 0) return 3 * 64.0 / den;  // compound time: dotted beats
  return 64.0 / den;
}

// Groups the beamable beats of a bar (eighths and shorter with notes) by beat unit.
std::vector<BeamGroup> groupBeams(const TrackBar& bar, const BarInfo* info, std::vector<BeatRhythm>& r) {
  std::vector<BeamGroup> groups;
  const double unit = info ? beamUnit(*info) : 16;
  double start = 0;
  long long openUnit = -1;
  for (size_t k = 0; k < bar.Beats.size(); ++k) {
    const Beat& b = bar.Beats[k];
    const long long u = static_cast<long long>(std::floor(start / unit + 1e-6));
    const bool beamable = r[k].sounding && flagCount(b.Length) > 0;
    if (beamable && !groups.empty() && openUnit == u && groups.back().last == static_cast<int>(k) - 1) {
      groups.back().last = static_cast<int>(k);
      r[k].group = static_cast<int>(groups.size()) - 1;
    } else if (beamable) {
      groups.push_back({static_cast<int>(k), static_cast<int>(k), true, 0});
      r[k].group = static_cast<int>(groups.size()) - 1;
      openUnit = u;
    } else {
      openUnit = -1;
    }
    start += beatDuration(b);
    if (start > 1e9) start = 1e9;
  }
  // A group of one beat takes flags instead of a beam.
  for (BeamGroup& g : groups)
    if (g.first == g.last) r[static_cast<size_t>(g.first)].group = -1;
  return groups;
}

struct TupletGroup {
  int first = 0;
  int last = 0;
  int notes = 3;
};

// Runs of tuplet beats of one kind, each closed when it holds a whole tuplet: n notes of the
// shortest value in the group (a quarter and an eighth make a triplet of eighths). Rests
// belong to a group like notes, so that a group of rests still shows its number.
std::vector<TupletGroup> groupTuplets(const TrackBar& bar) {
  std::vector<TupletGroup> groups;
  double nominal = 0, shortest = 0;
  bool open = false;
  for (size_t k = 0; k < bar.Beats.size(); ++k) {
    const Beat& b = bar.Beats[k];
    const bool tuplet = b.IsTuplet && b.Tuplet >= 0 && b.Tuplet < kTupletKinds;
    if (!tuplet) {
      open = false;
      continue;
    }
    const int notes = kTupletNotes[static_cast<size_t>(b.Tuplet)];
    if (open && (groups.back().notes != notes || groups.back().last != static_cast<int>(k) - 1)) open = false;
    const double v = 64.0 / std::pow(2.0, std::clamp<int>(b.Length, kWhole, kSixtyFourth)) * (b.Dotted ? 1.5 : 1);
    if (!open) {
      groups.push_back({static_cast<int>(k), static_cast<int>(k), notes});
      nominal = 0;
      shortest = v;
      open = true;
    }
    groups.back().last = static_cast<int>(k);
    nominal += v;
    shortest = std::min(shortest, v);
    if (nominal >= notes * shortest - 1e-9) open = false;
  }
  return groups;
}

// ---- the drawing of one bar ----

class BarPainter {
 public:
  BarPainter(DrawContext& ctx, double x, double y, int bar, double width)
      : ctx_(ctx),
        s_(ctx.surface),
        tr_(ctx.trackRef()),
        tb_(*tr_.Bars[static_cast<size_t>(bar)]),
        info_(bar < static_cast<int>(ctx.score.BarInfos.size()) ? &ctx.score.BarInfos[static_cast<size_t>(bar)] : nullptr),
        g_(tr_, y),
        x_(x),
        bar_(bar),
        width_(width),
        sig_(showsSignature(ctx, bar)),
        spacing_(beatSpacingOf(ctx, bar, width)),
        line_(lineColor(ctx)),
        note_(noteColor(ctx)),
        noteFont_(makeFont(ctx.score.NoteFont)),
        tuplets_(groupTuplets(tb_)) {
    planRowHead();
  }

  void frame();
  void beats();
  void marks();

 private:
  double cx(int k) const { return beatCentre(x_, sig_, spacing_, k); }
  void planRowHead();
  void drawRowHead();
  double tabLeftOfBeat(int k);
  bool strokeOnRight(int k) const { return k == 0 && head_.repeat; }
  void drawTupletNumbers(const std::vector<double>& inkTop, const std::vector<bool>& shown, double limit);
  void drawTabHead();
  void drawTabLetters(double centre, const Font& f);
  void drawNotationHead(bool bassClef, double staffTop);
  void drawTimeSignature(double top, double height, double size, double centreX = 66);
  void beatOnTab(int k);
  void tabRhythm(int k, const std::vector<BeatRhythm>& r);
  void notationLayer(bool bassStaff);
  void staffCursor(bool bassStaff, double base, double staffTop, bool flats, bool split);
  void drumLayer(double staffTop);
  void aboveSigns(int k);
  void linkSign(int k, int s, double numberRight);
  bool nextNote(int k, int s, double& nextX, int& nextFret) const;
  void chordChart(const BeatChord& chord, double cx, double bottom);
  void lyrics(int k);
  void stemAndFlags(double x, double from, double to, int length, bool up, bool beamed);
  void beams(const std::vector<BeatRhythm>& r, const std::vector<BeamGroup>& groups, double stemX0);

  DrawContext& ctx_;
  Surface& s_;
  const Track& tr_;
  const TrackBar& tb_;
  const BarInfo* info_;
  RowGeometry g_;
  double x_;
  int bar_;
  double width_;
  bool sig_;
  int spacing_;
  Color line_, note_;
  Font noteFont_;
  std::vector<TupletGroup> tuplets_;
  // The head of a row that opens without a signature: small clefs and the TAB letters, and
  // after them the repeat sign when the bar opens a repeat. The layout gives a plain bar only
  // 17 units before its first beat, so the head is fitted into that room.
  struct RowHead {
    bool present = false;
    bool repeat = false;
    double clefRight = 0;  // clefs stay left of this
    double tabRight = 0;   // the TAB letters (or the percussion clef) stay left of this
    double repeatX = 0;    // thick line of the repeat sign
  } head_;
};

void BarPainter::planRowHead() {
  if (sig_ || bar_ <= 0 || bar_ >= static_cast<int>(ctx_.layout.size()) ||
      ctx_.layout[static_cast<size_t>(bar_)].RowFirstBar != bar_)
    return;
  head_.present = true;
  head_.repeat = info_ && info_->RepeatOpen;
  // Clefs first, then the repeat sign (6.6 units from its thick line to its dots) just clear
  // of the first beat's numbers.
  const double free = g_.tab && !tb_.Beats.empty() ? tabLeftOfBeat(0) - 1 : x_ + 18;
  head_.repeatX = std::min(x_ + 10, free - 6.6);
  head_.clefRight = head_.repeat ? head_.repeatX - 2 : x_ + 11;
  head_.tabRight = std::min(head_.clefRight, free - 1.5);
}

double BarPainter::tabLeftOfBeat(int k) {
  // The leftmost ink of a beat on the tab: numbers with their white boxes, fingerings, grace
  // notes, slides into the note and the stroke arrow.
  const Beat& b = tb_.Beats[static_cast<size_t>(k)];
  const double c = cx(k);
  double left = c - 3;
  bool any = false;
  for (int s = 0; s < g_.strings; ++s) {
    const NoteSlot& n = b.Notes[static_cast<size_t>(s)];
    if (!n.hasNote()) continue;
    any = true;
    const double half = s_.measureText(fretLabel(tr_, n), noteFont_).width / 2;
    left = std::min(left, c - half - 1);
    const Font small = plainFont(kSmallFonts, 5.5);
    left = std::min(left, c - half - 1 - s_.measureText(leftFingerLabel(n.LeftFinger), small).width);
    if (n.HasGrace && !n.Grace->Fret.empty())
      left = std::min(left, c - half - 3.5 - s_.measureText(graceLabel(n), small).width);
    if (n.Technique == kSlideIntoUp || n.Technique == kSlideIntoDown) left = std::min(left, c - kSlideIntoReach);
  }
  if (any && (b.Stroke == kUpStroke || b.Stroke == kDownStroke) && !strokeOnRight(k)) left = std::min(left, c - kStrokeGap - 2.5);
  return left;
}

void BarPainter::drawRowHead() {
  const double left = x_ + 1.5;
  const double clefRoom = head_.clefRight - left;
  if (!tr_.DrumTrack) {
    if (g_.treble) {
      // The outline clef is 14.5 units wide at full size.
      const double size = std::clamp(clefRoom / 14.5, 0.35, 0.62);
      drawTrebleClef(s_, left + 0.5 * size, g_.trebleTop, line_, size);
    }
    if (g_.bass) drawBassClef(s_, left, g_.bassTop, line_, std::clamp(clefRoom / 17.4, 0.35, 0.7));
  } else if (g_.treble || g_.bass) {
    drawPercussionClef(s_, left + 1, g_.treble ? g_.trebleTop : g_.bassTop, 28, line_, std::min(1.0, clefRoom / 8.5));
  }
  if (!g_.tab) return;
  const double h = g_.tabBottom - g_.tabTop;
  const double room = std::max(head_.tabRight - left, 2.0);
  if (tr_.DrumTrack) {
    drawPercussionClef(s_, left + 1, g_.tabTop, h, line_, std::min(1.0, room / 8.5));
    return;
  }
  // The letters shrink until the widest fits the room left of the first beat.
  Font f = plainFont(kArial, std::clamp(h / 7.5, 4.0, 6.5), true);
  const char* letters[3] = {"T", "A", "B"};
  double widest = 0;
  for (const char* l : letters) widest = std::max(widest, s_.measureText(l, f).width);
  if (widest > room) f.size = std::max(3.0, f.size * room / widest);
  drawTabLetters(left + std::min(room, 7.0) / 2, f);
}

void BarPainter::drawTabLetters(double centre, const Font& f) {
  const double h = g_.tabBottom - g_.tabTop;
  const char* letters[3] = {"T", "A", "B"};
  for (int i = 0; i < 3; ++i) {
    const TextMetrics m = s_.measureText(letters[i], f);
    s_.drawText({centre - m.width / 2, g_.tabTop + h * (i + 0.5) / 3 - m.height() / 2}, letters[i], f, line_);
  }
}

void BarPainter::frame() {
  if (!g_.any()) return;
  // The bar line joins every staff of the track.
  const double right = x_ + width_;
  s_.drawLine({right, g_.firstLine}, {right, g_.lastLine}, line_);
  if (info_ && !info_->RepeatClose && bar_ == static_cast<int>(tr_.Bars.size()) - 1) {
    // The end of the piece: a thin and a thick line.
    s_.fillRect({right - 2.5, g_.firstLine, 2.5, g_.lastLine - g_.firstLine}, line_);
    s_.drawLine({right - 5, g_.firstLine}, {right - 5, g_.lastLine}, line_);
  }
  if (!sig_) {
    if (head_.present) drawRowHead();
    return;
  }
  if (g_.treble && !tr_.DrumTrack) drawNotationHead(false, g_.trebleTop);
  if (g_.bass && !tr_.DrumTrack) drawNotationHead(true, g_.bassTop);
  if (tr_.DrumTrack && (g_.treble || g_.bass)) {
    const double top = g_.treble ? g_.trebleTop : g_.bassTop;
    drawPercussionClef(s_, x_ + 8, top, 28, line_);
    drawTimeSignature(top, 28, 10.5);
  }
  if (g_.tab) drawTabHead();
}

void BarPainter::drawTimeSignature(double top, double height, double size, double centreX) {
  if (!info_) return;
  const Font f = plainFont(kSmallFonts, size, true);
  const std::string num = std::to_string(info_->TimeSigNumerator);
  const std::string den = std::to_string(info_->TimeSigDenominator);
  const double cxs = x_ + centreX;
  middleText(s_, cxs - s_.measureText(num, f).width / 2, top + height * 0.25, num, f, note_);
  middleText(s_, cxs - s_.measureText(den, f).width / 2, top + height * 0.75, den, f, note_);
}

void BarPainter::drawTabHead() {
  // T, A, B stacked down the strings, sized to the staff; a drum staff has its own clef.
  const double h = g_.tabBottom - g_.tabTop;
  if (tr_.DrumTrack) {
    drawPercussionClef(s_, x_ + 8, g_.tabTop, h, line_);
    drawTimeSignature(g_.tabTop, std::max(h, 20.0), std::clamp(h / 3.2, 6.0, 14.0), 58);
    return;
  }
  const double size = std::clamp(h / 4.2, 5.0, 11.0);
  drawTabLetters(x_ + 12, plainFont(kArial, size, true));
  // The tab has no key signature, so its larger figures stand further left, clear of a repeat.
  drawTimeSignature(g_.tabTop, std::max(h, 20.0), std::clamp(h / 3.2, 6.0, 14.0), 58);
}

void BarPainter::drawNotationHead(bool bassClef, double staffTop) {
  if (bassClef) drawBassClef(s_, x_ + 4, staffTop, line_);
  else drawTrebleClef(s_, x_ + 5, staffTop, line_);
  // Key signature: sharps and flats at the heights of their letters, circle-of-fifths order.
  const int count = std::abs(KeyAccidentalCount(tb_.KeySignature));
  const bool flats = KeyUsesFlats(tb_.KeySignature);
  static constexpr std::array<int, 7> kSharpPitches = {65, 60, 67, 62, 57, 64, 59};
  static constexpr std::array<int, 7> kFlatPitches = {59, 64, 57, 62, 55, 60, 53};
  const double base = bassClef ? staffTop - 42 : staffTop;
  for (int i = 0; i < count && i < 7; ++i) {
    int pitch = (flats ? kFlatPitches : kSharpPitches)[static_cast<size_t>(i)];
    if (bassClef) pitch -= 24;
    const double cy = base + StaffPosition(pitch, false) + 6.5;
    drawAccidental(s_, flats ? Accidental::Flat : Accidental::Sharp, x_ + 26 + i * 5, cy, note_);
  }
  drawTimeSignature(staffTop, 28, 10.5);
}

void BarPainter::beats() {
  if (g_.tab) {
    std::vector<BeatRhythm> r(tb_.Beats.size());
    for (size_t k = 0; k < r.size(); ++k) r[k].sounding = !tb_.Beats[k].isRest();
    std::vector<BeamGroup> groups = groupBeams(tb_, info_, r);
    for (size_t k = 0; k < tb_.Beats.size(); ++k) {
      beatOnTab(static_cast<int>(k));
      tabRhythm(static_cast<int>(k), r);
    }
    beams(r, groups, 0);
  }
  for (size_t k = 0; k < tb_.Beats.size(); ++k) aboveSigns(static_cast<int>(k));
  if (tr_.DrumTrack) {
    if (g_.treble) drumLayer(g_.trebleTop);
    else if (g_.bass) drumLayer(g_.bassTop);
  } else {
    if (g_.treble) notationLayer(false);
    if (g_.bass) notationLayer(true);
  }
  for (size_t k = 0; k < tb_.Beats.size(); ++k) lyrics(static_cast<int>(k));
}

void BarPainter::beatOnTab(int k) {
  const Beat& b = tb_.Beats[static_cast<size_t>(k)];
  const double c = cx(k);
  const Font small = plainFont(kSmallFonts, 5.5);
  double lowestNote = -1, highestNote = -1;
  for (int s = 0; s < g_.strings; ++s) {
    const NoteSlot& n = b.Notes[static_cast<size_t>(s)];
    if (!n.hasNote()) continue;
    if (highestNote < 0) highestNote = s;
    lowestNote = s;
    const std::string text = fretLabel(tr_, n);
    const double ly = g_.stringY(s);
    const TextMetrics m = s_.measureText(text, noteFont_);
    // Clear the string line behind the number so that it reads.
    s_.fillRect({c - m.width / 2 - 1, ly - 4, m.width + 2, 8}, kWhite);
    const Color col = BlendColor(note_, kWhite, VolumeBlendWeight(n.Volume));
    s_.drawText({c - m.width / 2, ly - m.height() / 2}, text, noteFont_, col);
    if (n.LeftFinger > 0 && n.LeftFinger <= 5) {
      const char* t = leftFingerLabel(n.LeftFinger);
      middleText(s_, c - m.width / 2 - 1 - s_.measureText(t, small).width, ly, t, small, note_);
    }
    if (n.RightFinger > 0 && n.RightFinger <= 5) {
      static constexpr std::array<const char*, 6> kRight = {"", "T)", "I)", "M)", "A)", "O)"};
      middleText(s_, c + m.width / 2 + 1, ly, kRight[static_cast<size_t>(n.RightFinger)], small, note_);
    }
    if (n.HasGrace && !n.Grace->Fret.empty()) {
      // The grace note: a small number before the main one, with its way into it.
      const Font gf = plainFont(kSmallFonts, 5.5);
      const std::string gt = graceLabel(n);
      const TextMetrics gm = s_.measureText(gt, gf);
      const double gx = c - m.width / 2 - 3 - gm.width;
      s_.fillRect({gx - 0.5, ly - 3, gm.width + 1, 6}, kWhite);
      s_.drawText({gx, ly - gm.height() / 2}, gt, gf, col);
      if (n.Grace->Transition == kGraceSlide) s_.drawLine({gx + gm.width, ly + 2}, {c - m.width / 2 - 0.5, ly - 2}, col);
      if (n.Grace->Transition == kGraceHammer || n.Grace->Transition == kGraceBend)
        drawArc(s_, gx + gm.width / 2, c, ly - 4, -3, col);
    }
    if (n.HasTrill) {
      const std::string t = "tr(" + std::to_string(n.Trill.TrillFret) + ")";
      middleText(s_, c + m.width / 2 + 2, ly - 6, t, small, col);
    }
    if (n.Tied && k >= 0) {
      // A tie into the first beat of a row starts after the row's head.
      const double from = k > 0 ? cx(k - 1) + 4 : head_.present ? head_.tabRight + 1 : x_ + 2;
      drawArc(s_, from, c - m.width / 2 - 1, ly + 3, 4, line_);
    }
    if (n.HasBend) {
      double top = 0;
      for (double p : n.Bend->Points)
        if (std::isfinite(p)) top = std::max(top, p);
      const int quarters = static_cast<int>(std::lround(std::min(top, 12.0)));
      const Point from{c + m.width / 2 + 1, ly};
      const Point tip{c + m.width / 2 + 8, g_.tabTop - 12};
      Path curve;
      curve.moveTo(from).cubicTo({tip.x, from.y}, {tip.x, from.y}, {tip.x, tip.y + 4});
      s_.strokePath(curve, col, 1);
      drawArrowHead(s_, tip, true, col);
      const std::string label = BendHeightText(quarters);
      if (!label.empty()) centredText(s_, tip.x, tip.y - 10, label, plainFont(kArial, 6), col);
    }
    linkSign(k, s, c + m.width / 2);
  }
  if (highestNote >= 0 && (b.Stroke == kUpStroke || b.Stroke == kDownStroke)) {
    // Beside the chord, along the strings it covers; right of it where a repeat sign opens
    // the row and leaves no room on the left.
    const double top = g_.stringY(static_cast<int>(highestNote)) - 3;
    const double bottom = g_.stringY(static_cast<int>(lowestNote)) + 3;
    const double ax = strokeOnRight(k) ? c + kStrokeGap : c - kStrokeGap;
    s_.drawLine({ax, top}, {ax, bottom}, line_);
    if (b.Stroke == kUpStroke) drawArrowHead(s_, {ax, top - 2}, true, line_);
    else drawArrowHead(s_, {ax, bottom + 2}, false, line_);
  }
  if (ctx_.cursorBar == bar_ && ctx_.cursorBeat == k) {
    const int s = std::clamp(ctx_.cursorString, 0, g_.strings - 1);
    s_.drawRect({c - 7, g_.stringY(s) - 5.5, 14, 11}, Color{0, 90, 220, 255}, 1.5);
  }
}

bool BarPainter::nextNote(int k, int s, double& nextX, int& nextFret) const {
  // The next note on the string, stepping over rests and into the next bars of the row.
  const auto& bars = tr_.Bars;
  int rowLast = bar_;
  if (bar_ < static_cast<int>(ctx_.layout.size())) rowLast = ctx_.layout[static_cast<size_t>(bar_)].RowLastBar;
  rowLast = std::min<int>(rowLast, static_cast<int>(bars.size()) - 1);
  for (int b = bar_; b <= std::max(bar_, rowLast); ++b) {
    const TrackBar& tb = *bars[static_cast<size_t>(b)];
    const int from = b == bar_ ? k + 1 : 0;
    for (int j = from; j < static_cast<int>(tb.Beats.size()); ++j) {
      const NoteSlot& n = tb.Beats[static_cast<size_t>(j)].Notes[static_cast<size_t>(s)];
      if (!n.hasNote()) continue;
      if (b == bar_) {
        nextX = cx(j);
      } else {
        const BarLayout& l = ctx_.layout[static_cast<size_t>(b)];
        nextX = beatCentre(l.DrawX - (ctx_.layout[static_cast<size_t>(bar_)].DrawX - x_), l.ShowsSignature, l.BeatSpacing, j);
      }
      if (!FretNumber(n.Fret, nextFret)) nextFret = -1;
      return true;
    }
  }
  return false;
}

void BarPainter::linkSign(int k, int s, double numberRight) {
  const NoteSlot& n = tb_.Beats[static_cast<size_t>(k)].Notes[static_cast<size_t>(s)];
  const int tech = n.Technique;
  const double ly = g_.stringY(s);
  const double c = cx(k);
  const Color col = note_;
  if (tech == kSlideIntoUp || tech == kSlideIntoDown) {
    // A short slide into the note from below or from above.
    const double l = c - kSlideIntoReach;
    if (tech == kSlideIntoUp) s_.drawLine({l, ly + 3}, {c - 5, ly - 2}, col);
    else s_.drawLine({l, ly - 3}, {c - 5, ly + 2}, col);
    return;
  }
  if (tech != kSlideUp && tech != kSlideDown && tech != kLegatoSlide && tech != kHammerOnPullOff) return;
  double nx = 0;
  int nf = -1;
  const bool found = nextNote(k, s, nx, nf);
  if (!found) nx = std::min(c + std::max(spacing_, 12), x_ + width_ - 2);  // to the bar end
  const double left = numberRight + 1;
  const double right = found ? nx - 5 : nx;
  if (right <= left) return;
  int fret = 0;
  const bool numeric = FretNumber(n.Fret, fret);
  if (tech == kHammerOnPullOff) {
    drawArc(s_, c, nx, ly - 5, -5, col);
    const char* hp = (numeric && nf >= 0 && nf < fret) ? "P" : "H";
    centredText(s_, (c + nx) / 2, ly - 17, hp, plainFont(kSmallFonts, 5.5), col);
    return;
  }
  bool up = tech == kSlideUp;
  if (tech == kLegatoSlide || (numeric && nf >= 0 && found)) up = nf >= 0 ? nf > fret : up;
  if (up) s_.drawLine({left, ly + 3}, {right, ly - 3}, col);
  else s_.drawLine({left, ly - 3}, {right, ly + 3}, col);
  if (tech == kLegatoSlide) drawArc(s_, c, nx, ly - 5, -5, col);
}

void BarPainter::stemAndFlags(double x, double from, double to, int length, bool up, bool beamed) {
  s_.drawLine({x, from}, {x, to}, note_);
  if (beamed) return;
  const int flags = flagCount(length);
  for (int f = 0; f < flags; ++f) {
    const double fy = up ? to + f * 4 : to - f * 4;
    Path p;
    p.moveTo({x, fy}).cubicTo({x + 1, up ? fy + 4 : fy - 4}, {x + 6, up ? fy + 5 : fy - 5}, {x + 4, up ? fy + 10 : fy - 10});
    s_.strokePath(p, note_, 1.1);
  }
}

void BarPainter::tabRhythm(int k, const std::vector<BeatRhythm>& r) {
  const Beat& b = tb_.Beats[static_cast<size_t>(k)];
  const double c = cx(k);
  const double top = g_.tabBottom + 5;
  const double bottom = top + 20;
  if (b.isRest()) {
    if (b.Text.empty() || true) drawRest(s_, b.Length, c, top + 11, note_);
  } else if (b.Length >= kHalf) {
    // Half notes get a short stem, quarters and shorter the full one.
    const double from = b.Length == kHalf ? top + 10 : top;
    stemAndFlags(c, from, bottom, b.Length, false, r[static_cast<size_t>(k)].group >= 0);
  }
  const Font small = plainFont(kSmallFonts, 5.5);
  if (b.Dotted) s_.fillEllipse({c + 3, bottom - 3, 2.2, 2.2}, note_);
  // The tuplet number once under each group, rests included.
  for (const TupletGroup& t : tuplets_)
    if (t.first == k) centredText(s_, (c + cx(t.last)) / 2, bottom + 2, std::to_string(t.notes), small, note_);
}

void BarPainter::drawTupletNumbers(const std::vector<double>& inkTop, const std::vector<bool>& shown, double limit) {
  // Over each group on a staff: above its highest ink (beam, stem or head) and the staff.
  const Font small = plainFont(kSmallFonts, 5.5);
  for (const TupletGroup& t : tuplets_) {
    bool show = false;
    double top = limit;
    for (int k = t.first; k <= t.last; ++k) {
      show = show || shown[static_cast<size_t>(k)];
      top = std::min(top, inkTop[static_cast<size_t>(k)]);
    }
    if (show) centredText(s_, (cx(t.first) + cx(t.last)) / 2, top - 9, std::to_string(t.notes), small, note_);
  }
}

void BarPainter::beams(const std::vector<BeatRhythm>& r, const std::vector<BeamGroup>& groups, double) {
  // Tab layer: beams at the stem ends under the tab; secondary beams where neighbours share them.
  const double bottom = g_.tabBottom + 25;
  for (const BeamGroup& g : groups) {
    if (g.first == g.last) continue;
    s_.fillRect({cx(g.first), bottom - 2, cx(g.last) - cx(g.first) + 0.5, 2.5}, note_);
    for (int k = g.first; k <= g.last; ++k) {
      const int mine = flagCount(tb_.Beats[static_cast<size_t>(k)].Length);
      for (int level = 1; level < mine; ++level) {
        const double by = bottom - 2 - level * 4;
        const bool nextShares = k < g.last && flagCount(tb_.Beats[static_cast<size_t>(k + 1)].Length) > level;
        const bool prevShares = k > g.first && flagCount(tb_.Beats[static_cast<size_t>(k - 1)].Length) > level;
        if (nextShares) s_.fillRect({cx(k), by, cx(k + 1) - cx(k) + 0.5, 2.5}, note_);
        else if (!prevShares) s_.fillRect({k < g.last ? cx(k) : cx(k) - 5, by, 5, 2.5}, note_);
      }
    }
  }
  (void)r;
}

void BarPainter::notationLayer(bool bassStaff) {
  const double base = bassStaff ? g_.bassBase : g_.trebleTop;
  const double staffTop = bassStaff ? g_.bassTop : g_.trebleTop;
  const double middle = staffTop + 14;
  const bool split = g_.treble && g_.bass;  // with both staves, low notes go to the bass
  const bool flats = KeyUsesFlats(tb_.KeySignature);
  const size_t n = tb_.Beats.size();
  struct Head {
    double cy;
    int pitch;
  };
  std::vector<std::vector<Head>> heads(n);
  std::vector<BeatRhythm> r(n);
  for (size_t k = 0; k < n; ++k) {
    const Beat& b = tb_.Beats[k];
    for (int s = 0; s < g_.strings; ++s) {
      int pitch = 0;
      if (!SlotPitch(tr_, b.Notes[static_cast<size_t>(s)], s, pitch)) continue;
      if (split && (bassStaff ? pitch >= 48 : pitch < 48)) continue;
      heads[k].push_back({onStaffGrid(base + StaffPosition(pitch, flats) + 6.5, staffTop), pitch});
    }
    if (!heads[k].empty()) {
      r[k].sounding = true;
      r[k].top = heads[k][0].cy;
      r[k].bottom = heads[k][0].cy;
      for (const Head& h : heads[k]) {
        r[k].top = std::min(r[k].top, h.cy);
        r[k].bottom = std::max(r[k].bottom, h.cy);
      }
    }
  }
  std::vector<BeamGroup> groups = groupBeams(tb_, info_, r);
  for (BeamGroup& gr : groups) {
    double sum = 0;
    int count = 0;
    double top = 1e9, bottom = -1e9;
    for (int k = gr.first; k <= gr.last; ++k) {
      sum += (r[static_cast<size_t>(k)].top + r[static_cast<size_t>(k)].bottom) / 2;
      ++count;
      top = std::min(top, r[static_cast<size_t>(k)].top);
      bottom = std::max(bottom, r[static_cast<size_t>(k)].bottom);
    }
    gr.up = sum / count > middle;
    gr.tip = gr.up ? std::min(top - 22, middle) : std::max(bottom + 22, middle);
  }
  std::vector<double> inkTop(n, staffTop);
  std::vector<bool> shown(n, false);
  for (size_t k = 0; k < n; ++k) {
    const Beat& b = tb_.Beats[k];
    const double c = cx(static_cast<int>(k));
    if (heads[k].empty()) {
      // Only a true rest shows a rest sign; with two staves the other staff holds the notes.
      if (b.isRest()) {
        drawRest(s_, b.Length, c, middle, note_);
        shown[k] = true;
        inkTop[k] = middle - 8;
      }
      continue;
    }
    shown[k] = true;
    const bool open = b.Length <= kHalf;
    const int gi = r[k].group;
    bool up = (r[k].top + r[k].bottom) / 2 > middle;
    double tip = up ? r[k].top - 24 : r[k].bottom + 24;
    if (gi >= 0) {
      up = groups[static_cast<size_t>(gi)].up;
      tip = groups[static_cast<size_t>(gi)].tip;
    }
    // Heads a second apart cannot share a place: every other one goes to the far side of
    // the stem, walking away from the stem's foot.
    std::vector<Head>& hs = heads[k];
    std::sort(hs.begin(), hs.end(), [up](const Head& a, const Head& b2) { return up ? a.cy > b2.cy : a.cy < b2.cy; });
    std::vector<double> shift(hs.size(), 0);
    // Accidentals closer than a sixth step to the left, column by column, so none covers another.
    std::vector<std::pair<double, int>> accidentalColumns;  // cy and column of each sign drawn
    for (size_t i = 1; i < hs.size(); ++i)
      if (std::fabs(hs[i].cy - hs[i - 1].cy) < 4.5 && shift[i - 1] == 0) shift[i] = up ? 6.6 : -6.6;
    for (size_t i = 0; i < hs.size(); ++i) {
      const Head& h = hs[i];
      const double hx = c + shift[i];
      // Ledger lines from the staff out to the note.
      for (double ly = staffTop - 7; ly >= h.cy - 1; ly -= 7) s_.drawLine({hx - 5.5, ly}, {hx + 5.5, ly}, line_);
      for (double ly = staffTop + 35; ly <= h.cy + 1; ly += 7) s_.drawLine({hx - 5.5, ly}, {hx + 5.5, ly}, line_);
      const Rect head{hx - 3.5, h.cy - 2.8, 7, 5.6};
      if (open) s_.drawEllipse(head, note_, 1.2);
      else s_.fillEllipse(head, note_);
      const Accidental a = AccidentalFor(h.pitch, tb_.KeySignature);
      if (a != Accidental::None) {
        int column = 0;
        for (bool clash = true; clash && column < 4;) {
          clash = false;
          for (const auto& [y, col] : accidentalColumns)
            if (col == column && std::fabs(y - h.cy) < 11) clash = true;
          if (clash) ++column;
        }
        accidentalColumns.push_back({h.cy, column});
        drawAccidental(s_, a, c - 11 - (shift[i] < 0 ? 6.6 : 0) - 6.5 * column, h.cy, note_);
      }
      if (b.Dotted) {
        const double offLine = std::fmod(std::fabs(h.cy - staffTop), 7.0);
        const double dy = (offLine < 1.0 || offLine > 6.0) ? -3.5 : 0;
        s_.fillEllipse({c + 5 + std::max(shift[i], 0.0) + (up ? 0 : 0), h.cy + dy - 1.1, 2.2, 2.2}, note_);
      }
    }
    // Grace notes: a small head with a slashed stem just before the beat, ledger lines as for
    // any note.
    for (int st = 0; st < g_.strings; ++st) {
      const NoteSlot& n = b.Notes[static_cast<size_t>(st)];
      if (!n.HasGrace) continue;
      NoteSlot grace;
      grace.Fret = n.Grace->Fret;
      int gp = 0;
      if (!SlotPitch(tr_, grace, st, gp) || (split && (bassStaff ? gp >= 48 : gp < 48))) continue;
      const double gy = onStaffGrid(base + StaffPosition(gp, flats) + 6.5, staffTop);
      const double gx = c - 14;
      for (double ly = staffTop - 7; ly >= gy - 1; ly -= 7) s_.drawLine({gx - 4, ly}, {gx + 4, ly}, line_);
      for (double ly = staffTop + 35; ly <= gy + 1; ly += 7) s_.drawLine({gx - 4, ly}, {gx + 4, ly}, line_);
      s_.fillEllipse({gx - 2.5, gy - 2, 5, 4}, note_);
      s_.drawLine({gx + 2.3, gy}, {gx + 2.3, gy - 14}, note_, 0.8);
      s_.drawLine({gx - 1, gy - 6}, {gx + 5, gy - 11}, note_, 0.8);
    }
    inkTop[k] = r[k].top - 4;
    if (b.Length >= kHalf) {
      const double sx = up ? c + 3.3 : c - 3.3;
      const double from = up ? r[k].bottom : r[k].top;
      stemAndFlags(sx, from, tip, b.Length, up, gi >= 0);
      if (up) inkTop[k] = std::min(inkTop[k], tip);
    }
  }
  drawTupletNumbers(inkTop, shown, staffTop);
  for (const BeamGroup& gr : groups) {
    if (gr.first == gr.last) continue;
    const double x1 = cx(gr.first) + (gr.up ? 3.3 : -3.3);
    const double x2 = cx(gr.last) + (gr.up ? 3.3 : -3.3);
    const double thick = 2.5;
    const double by = gr.up ? gr.tip : gr.tip - thick;
    s_.fillRect({x1, by, x2 - x1 + 0.5, thick}, note_);
    for (int k = gr.first; k <= gr.last; ++k) {
      const int mine = flagCount(tb_.Beats[static_cast<size_t>(k)].Length);
      const double kx = cx(k) + (gr.up ? 3.3 : -3.3);
      for (int level = 1; level < mine; ++level) {
        const double ly = gr.up ? by + level * 4 : by - level * 4;
        const bool nextShares = k < gr.last && flagCount(tb_.Beats[static_cast<size_t>(k + 1)].Length) > level;
        const bool prevShares = k > gr.first && flagCount(tb_.Beats[static_cast<size_t>(k - 1)].Length) > level;
        if (nextShares) s_.fillRect({kx, ly, cx(k + 1) - cx(k) + 0.5, thick}, note_);
        else if (!prevShares) s_.fillRect({k < gr.last ? kx : kx - 5, ly, 5, thick}, note_);
      }
    }
  }
  staffCursor(bassStaff, base, staffTop, flats, split);
}

// The cursor of notation entry: a box round the head's place on the line the pitch takes,
// with the ledger lines that the note would get, so the eye reads the pitch before it is set.
void BarPainter::staffCursor(bool bassStaff, double base, double staffTop, bool flats, bool split) {
  const int pitch = ctx_.cursorLine;
  if (pitch < 0 || ctx_.cursorBar != bar_ || ctx_.cursorBeat < 0 ||
      ctx_.cursorBeat >= static_cast<int>(tb_.Beats.size()))
    return;
  if (split && (bassStaff ? pitch >= 48 : pitch < 48)) return;
  const Color blue{0, 90, 220, 255};
  const double c = cx(ctx_.cursorBeat);
  const double cy = onStaffGrid(base + StaffPosition(pitch, flats) + 6.5, staffTop);
  for (double ly = staffTop - 7; ly >= cy - 1; ly -= 7) s_.drawLine({c - 5.5, ly}, {c + 5.5, ly}, blue);
  for (double ly = staffTop + 35; ly <= cy + 1; ly += 7) s_.drawLine({c - 5.5, ly}, {c + 5.5, ly}, blue);
  s_.drawRect({c - 7, cy - 4.5, 14, 9}, blue, 1.5);
}

void BarPainter::drumLayer(double staffTop) {
  // Each line of the drum tab has its own height on the staff; cymbals get cross heads.
  const size_t n = tb_.Beats.size();
  std::vector<double> inkTop(n, staffTop);
  const std::vector<bool> shown(n, true);
  for (size_t k = 0; k < n; ++k) {
    const Beat& b = tb_.Beats[k];
    const double c = cx(static_cast<int>(k));
    if (b.isRest()) {
      drawRest(s_, b.Length, c, staffTop + 14, note_);
      continue;
    }
    double top = 1e9;
    for (int s = 0; s < g_.strings; ++s) {
      const std::string& f = b.Notes[static_cast<size_t>(s)].Fret;
      if (f.empty()) continue;
      const double cy = staffTop - 3.5 + s * 5.25;
      top = std::min(top, cy);
      const bool cymbal = f == "x" || f == "X" || f == "c" || f == "~" || f == "r";
      if (cymbal) {
        s_.drawLine({c - 3, cy - 3}, {c + 3, cy + 3}, note_, 1.2);
        s_.drawLine({c - 3, cy + 3}, {c + 3, cy - 3}, note_, 1.2);
      } else {
        s_.fillEllipse({c - 3.5, cy - 2.8, 7, 5.6}, note_);
      }
    }
    if (b.Length >= kHalf && top < 1e9) stemAndFlags(c + 3.3, top, top - 22, b.Length, true, false);
    inkTop[k] = std::min(top - (b.Length >= kHalf ? 22 : 3), staffTop);
  }
  drawTupletNumbers(inkTop, shown, staffTop);
}

void BarPainter::aboveSigns(int k) {
  const Beat& b = tb_.Beats[static_cast<size_t>(k)];
  const double c = cx(k);
  const Font small = plainFont(kSmallFonts, 5.5);
  // Signs of the notes sit just above the tab staff (or the lowest notation staff), stacked.
  double y = (g_.tab ? g_.tabTop : g_.lastLine - 28) - 5;
  auto stackText = [&](const std::string& text, const Font& f, Color col) {
    const TextMetrics m = s_.measureText(text, f);
    y -= m.height();
    s_.drawText({c - m.width / 2, y}, text, f, col);
  };
  int harmonic = 0;
  bool accent = false, staccato = false, letRing = false;
  int tremolo = 0;
  for (int s = 0; s < g_.strings; ++s) {
    const NoteSlot& n = b.Notes[static_cast<size_t>(s)];
    if (!n.hasNote()) continue;
    if (!harmonic && HarmonicLabel(n.Harmonic)[0] != '\0') harmonic = n.Harmonic;
    accent = accent || n.Accentuate;
    staccato = staccato || n.Technique == kStaccato;
    letRing = letRing || n.LetRing;
    if (n.Technique >= kTremoloPicking8 && n.Technique <= kTremoloPicking32) tremolo = n.Technique - 1;
  }
  if (g_.tab) {
    if (harmonic) stackText(HarmonicLabel(harmonic), small, note_);
    if (accent) stackText(">", plainFont(kArial, 7, true), note_);
    if (staccato) {
      y -= 4;
      s_.fillEllipse({c - 1.2, y, 2.4, 2.4}, note_);
    }
    if (letRing) stackText("L.R.", small, note_);
    if (tremolo) {
      // Tremolo picking: one slash per step (8ths one, 16ths two, 32nds three).
      for (int i = 0; i < tremolo; ++i) {
        y -= 3;
        s_.drawLine({c - 3, y + 1.5}, {c + 3, y - 1.5}, note_, 1.3);
      }
      y -= 2;
    }
    switch (b.ChordTechnique) {
      case kVibrato:
      case kWideVibrato: {
        const double amp = b.ChordTechnique == kWideVibrato ? 2.5 : 1.3;
        const double wy = y - 4;
        std::vector<Point> wave;
        for (int i = 0; i <= 12; ++i) wave.push_back({c - 3 + i * 1.3, wy + (i % 2 ? -amp : amp)});
        s_.drawPolyline(wave, note_, 1);
        y -= 4 + 2 * amp;
        break;
      }
      case kPalmMute: stackText("P.M.", small, note_); break;
      case kTapping: stackText("T", small, note_); break;
      case kSlapping: stackText("S", small, note_); break;
      case kPopping: stackText("P", small, note_); break;
      case kFadeIn: {
        const double fy = y - 4;
        s_.drawLine({c - 4, fy}, {c + 6, fy - 3}, note_);
        s_.drawLine({c - 4, fy}, {c + 6, fy + 3}, note_);
        y -= 9;
        break;
      }
      default: break;
    }
  }
  if (b.HasTremoloBar) {
    // The whammy bar curve over the beat, with its depth.
    const auto& pts = b.TremoloBar->Points;
    std::vector<Point> curve;
    const double w = std::max(12, spacing_ - 4);
    const double base = y - 8;
    for (size_t i = 0; i < pts.size(); ++i) {
      const double v = std::isfinite(pts[i]) ? std::clamp(pts[i], -12.0, 12.0) : 0;
      curve.push_back({c + w * static_cast<double>(i) / (pts.size() - 1), base - v * 0.5});
    }
    s_.drawPolyline(curve, note_, 1);
    if (!b.TremoloBar->Label.empty()) stackText(b.TremoloBar->Label, small, note_);
    y -= 14;
  }
  // Texts, chords and go-to names stand over the whole row.
  // Clear of the stems that rise above a notation staff.
  const double over = (g_.treble || g_.bass) && !tr_.DrumTrack ? 26 : 6;
  double top = g_.firstLine - over;
  if (ctx_.overRowTop != g_.firstLine) {
    ctx_.overRowTop = g_.firstLine;
    ctx_.overRow.clear();
  }
  // Takes a place of this size left-aligned at x, as low as it fits over the row: a text
  // that would run into one before it in the row climbs above it.
  auto place = [&](double x, double w, double h) {
    for (bool moved = true; moved;) {
      moved = false;
      for (const Rect& r : ctx_.overRow) {
        if (x < r.right() + 3 && r.x < x + w + 3 && top - h < r.bottom() && r.y < top) {
          top = r.y;
          moved = true;
        }
      }
    }
    top -= h;
    ctx_.overRow.push_back({x, top, w, h});
    return top;
  };
  auto topText = [&](const std::string& text, const Font& f, Color col) {
    const TextMetrics m = s_.measureText(text, f);
    s_.drawText({c - 3, place(c - 3, m.width, m.height())}, text, f, col);
  };
  if (!b.Text.empty()) topText(b.Text, noteFont_, note_);
  if (b.HasChord) {
    const BeatChord& ch = *b.Chord;
    // A chord placed by name alone carries blank frets (the editor pads them with a blank).
    bool hasFrets = false;
    int fret = 0;
    for (const std::string& f : ch.Frets) hasFrets = hasFrets || FretNumber(f, fret) || f == "x" || f == "X";
    if (ctx_.score.AlwaysDrawChordCharts && hasFrets) {
      chordChart(ch, c, place(c - 16, 32, 52) + 50);
    } else if (!ch.Name.empty()) {
      topText(ch.Name, plainFont(kArial, 8, true), note_);
    }
  }
  if (!b.GotoName.empty()) topText(b.GotoName, plainFont(kArial, 7, true), Color{0, 0, 160, 255});
}

void BarPainter::chordChart(const BeatChord& ch, double c, double bottom) {
  // The chart as the chord library draws it: the stored frets count from StartFret (0 is the
  // nut), so a stored 1 is the first fret row of the chart whatever fret that is on the neck,
  // and a chart above the nut is labelled with the fret of its first row.
  const int strings = std::clamp<int>(ch.NumStrings > 0 ? ch.NumStrings : g_.strings, 1, kMaxStrings);
  const double step = 5;
  const double gridW = (strings - 1) * step;
  const double left = c - gridW / 2;
  const int frets = 5;
  const double row = 5;
  const double gridTop = bottom - frets * row;
  for (int i = 0; i < strings; ++i) s_.drawLine({left + i * step, gridTop}, {left + i * step, bottom}, line_, 0.7);
  for (int f = 0; f <= frets; ++f)
    s_.drawLine({left, gridTop + f * row}, {left + gridW, gridTop + f * row}, line_, f == 0 && ch.StartFret == 0 ? 2 : 0.7);
  const Font small = plainFont(kSmallFonts, 5);
  if (ch.StartFret > 0) middleText(s_, left + gridW + 2, gridTop + row / 2, std::to_string(ch.StartFret + 1), small, note_);
  // Chord strings run low to high left to right; string 0 of the record is the highest.
  int lowest = 0;
  bool muted = false;
  for (int i = 0; i < strings; ++i) {
    const std::string& fret = ch.Frets[static_cast<size_t>(i)];
    const double sx = left + (strings - 1 - i) * step;
    int f = 0;
    if (fret == "x" || fret == "X") {
      muted = true;
      centredText(s_, sx, gridTop - 8, "x", small, note_);
    } else if (FretNumber(fret, f) && f == 0) {
      s_.drawEllipse({sx - 1.5, gridTop - 5, 3, 3}, note_, 0.8);
    } else if (f > 0 && f <= frets) {
      s_.fillEllipse({sx - 2, gridTop + (f - 0.5) * row - 2, 4, 4}, note_);
      lowest = lowest == 0 ? f : std::min(lowest, f);
    }
  }
  // A barre lies across the strings at the lowest fret row; a chart with muted strings leaves
  // the barre to the dots.
  if (ch.Barre && lowest > 0 && !muted)
    s_.fillRect({left, gridTop + (lowest - 0.5) * row - 1.2, gridW, 2.4}, note_);
  if (!ch.Name.empty()) centredText(s_, c, gridTop - 19, ch.Name, plainFont(kArial, 8, true), note_);
}

void BarPainter::lyrics(int k) {
  // Each lyric line is sung one syllable per note from the start of the song; the lines stand
  // one under the other below the lowest staff.
  bool any = false;
  for (const std::string& l : tr_.Lyrics) any = any || !l.empty();
  if (!any) return;
  const Beat& b = tb_.Beats[static_cast<size_t>(k)];
  if (b.isRest()) return;
  std::vector<int>& before = ctx_.notesBeforeBar;
  if (before.size() != tr_.Bars.size()) {
    before.assign(tr_.Bars.size(), 0);
    int count = 0;
    for (size_t bb = 0; bb < tr_.Bars.size(); ++bb) {
      before[bb] = count;
      for (const Beat& x : tr_.Bars[bb]->Beats) count += !x.isRest();
    }
  }
  int index = before[static_cast<size_t>(bar_)];
  for (int j = 0; j < k; ++j) index += !tb_.Beats[static_cast<size_t>(j)].isRest();
  const Font f = plainFont(kArial, 7);
  for (size_t li = 0; li < tr_.Lyrics.size(); ++li) {
    const std::string& line = tr_.Lyrics[li];
    // Syllable `index`: words split at blanks and hyphens.
    size_t pos = 0;
    int current = 0;
    while (pos < line.size()) {
      while (pos < line.size() && (line[pos] == ' ' || line[pos] == '-')) ++pos;
      size_t end = pos;
      while (end < line.size() && line[end] != ' ' && line[end] != '-') ++end;
      if (end == pos) break;
      if (current == index) {
        centredText(s_, cx(k), g_.lastLine + 32 + 10.0 * static_cast<double>(li), line.substr(pos, end - pos), f, note_);
        break;
      }
      ++current;
      pos = end;
    }
  }
}

void BarPainter::marks() {
  if (!g_.any() || !info_) return;
  const BarInfo& bi = *info_;
  struct Staff {
    double top, bottom, dotA, dotB;
  };
  std::vector<Staff> staves;
  if (g_.treble) staves.push_back({g_.trebleTop, g_.trebleTop + 28, g_.trebleTop + 10.5, g_.trebleTop + 17.5});
  if (g_.bass) staves.push_back({g_.bassTop, g_.bassTop + 28, g_.bassTop + 10.5, g_.bassTop + 17.5});
  if (g_.tab) {
    // The dots sit in the two spaces round the middle of the tab.
    const double mid = (g_.tabTop + g_.tabBottom) / 2;
    const double d = g_.strings % 2 ? 5 : 10;
    staves.push_back({g_.tabTop, g_.tabBottom, mid - d, mid + d});
  }
  auto repeatSign = [&](double thickX, double thinX, double dotX, double scale = 1.0) {
    const double thick = 3 * scale, dot = 3 * scale;
    s_.fillRect({thickX - thick / 2, g_.firstLine, thick, g_.lastLine - g_.firstLine}, line_);
    s_.drawLine({thinX, g_.firstLine}, {thinX, g_.lastLine}, line_);
    for (const Staff& st : staves) {
      s_.fillEllipse({dotX - dot / 2, st.dotA - dot / 2, dot, dot}, line_);
      s_.fillEllipse({dotX - dot / 2, st.dotB - dot / 2, dot, dot}, line_);
    }
  };
  if (bi.RepeatOpen) {
    // After the signature, with the dots still clear of the first beat's numbers; at the head
    // of a row, a smaller sign after the clefs.
    const double lx = head_.repeat ? head_.repeatX : x_ + (sig_ ? 72 : 2);
    if (head_.repeat) repeatSign(lx, lx + 3, lx + 5.5, 0.75);
    else repeatSign(lx, lx + 3.5, lx + 7);
  }
  const double right = x_ + width_;
  // Above the stems and heads that rise over a notation staff.
  const double over = g_.treble || g_.bass ? 22 : 0;
  if (bi.RepeatClose > 0) {
    repeatSign(right - 1.5, right - 5, right - 9);
    const std::string count = "x" + std::to_string(bi.RepeatClose);
    const Font f = plainFont(kSmallFonts, 6, true);
    const TextMetrics m = s_.measureText(count, f);
    s_.drawText({right - m.width - 2, g_.firstLine - over - m.height() - 2}, count, f, note_);
  }
  const Font arial = plainFont(kArial, 7, true);
  double ry = g_.firstLine - over - (bi.RepeatClose > 0 ? 16 : 4);
  auto rightText = [&](const char* text) {
    const TextMetrics m = s_.measureText(text, arial);
    ry -= m.height();
    s_.drawText({right - m.width - 2, ry}, text, arial, note_);
  };
  if (bi.DSAlCoda) rightText("D.S. Al Coda");
  if (bi.ToCoda) rightText("To Coda");
  double lx = x_ + 4;
  const double signY = g_.firstLine - over - 12;
  if (bi.Sign) {
    // Segno: a slanted S with a stroke through it and a dot on each side.
    const Font f = plainFont("Times New Roman", 13, true);
    const TextMetrics m = s_.measureText("S", f);
    s_.drawText({lx, signY - m.height() / 2}, "S", f, note_);
    s_.drawLine({lx + m.width + 1, signY - 6}, {lx - 1, signY + 6}, note_, 1.1);
    s_.fillEllipse({lx - 2, signY - 3, 2.4, 2.4}, note_);
    s_.fillEllipse({lx + m.width - 0.4, signY + 1, 2.4, 2.4}, note_);
    lx += m.width + 8;
  }
  if (bi.Coda) {
    // Coda: an oval crossed by a longer upright and a longer level line.
    s_.drawEllipse({lx, signY - 5, 8, 10}, note_, 1.4);
    s_.drawLine({lx + 4, signY - 8}, {lx + 4, signY + 8}, note_);
    s_.drawLine({lx - 3, signY}, {lx + 11, signY}, note_);
  }
}

}  // namespace

int VolumeBlendWeight(int32_t volume) {
  switch (volume) {
    case kVolFFF: return 255;
    case kVolFF: return 230;
    case kVolF: return 210;
    case kVolMF: return 190;
    case kVolMP: return 170;
    case kVolP: return 150;
    case kVolPP: return 130;
    case kVolPPP: return 110;
    default: return 190;  // an unknown code reads as the default, MF
  }
}

Color BlendColor(Color from, Color to, int weight) {
  weight = std::clamp(weight, 0, 255);
  auto mix = [weight](uint8_t a, uint8_t b) {
    return static_cast<uint8_t>((a * weight + b * (255 - weight) + 127) / 255);
  };
  return Color{mix(from.r, to.r), mix(from.g, to.g), mix(from.b, to.b), 255};
}

const char* HarmonicLabel(int32_t harmonic) {
  static constexpr std::array<const char*, 8> kLabels = {"", "N.H.", "A.H.5", "A.H.7", "A.H.12", "T.H.", "P.H.", "S.H."};
  if (harmonic < 0 || harmonic >= static_cast<int32_t>(kLabels.size())) return "";
  return kLabels[static_cast<size_t>(harmonic)];
}

std::string BendHeightText(int q) {
  static constexpr std::array<const char*, 12> kTexts = {"\xC2\xBC", "\xC2\xBD", "\xC2\xBE", "1",
                                                         "1\xC2\xBC", "1\xC2\xBD", "1\xC2\xBE", "2",
                                                         "2\xC2\xBC", "2\xC2\xBD", "2\xC2\xBE", "3"};
  if (q < 1 || q > 12) return "";
  return kTexts[static_cast<size_t>(q - 1)];
}

void DrawPageTitle(DrawContext& ctx, Rect page, int pageIndex, const std::string& footer,
                   const std::string& capoWord) {
  Surface& s = ctx.surface;
  const Score& sc = ctx.score;
  const Color headerColor = Color::FromStored(sc.HeaderFont.Color);
  const double maxWidth = page.w - 2.0 * ctx.settings.PageLeftMargin;
  // Texts wider than the page lose their end to "...".
  auto fitted = [&](std::string text, const Font& f) {
    if (s.measureText(text, f).width <= maxWidth) return text;
    while (!text.empty() && s.measureText(text + "...", f).width > maxWidth) {
      text.pop_back();
      while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80) text.pop_back();
      if (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0xC0) text.pop_back();
    }
    return text + "...";
  };
  double y = page.y + 30;
  auto line = [&](const std::string& raw, const Font& f, double gap) {
    if (raw.empty()) return;
    const std::string text = fitted(raw, f);
    const TextMetrics m = s.measureText(text, f);
    s.drawText({page.x + (page.w - m.width) / 2, y}, text, f, headerColor);
    y += m.height() + gap;
  };
  if (pageIndex == 0 || sc.AlwaysDrawFileHeaders) {
    Font title = makeFont(sc.HeaderFont);
    title.bold = true;
    line(sc.Title, title, 4);
    line(sc.SubTitle, makeFont(sc.HeaderFont, 0.7), 6);
    const Font info = makeFont(sc.HeaderFont, 0.55);
    if (!sc.Album.empty()) line("Album: " + sc.Album, info, 2);
    if (!sc.Artist.empty()) line("Artist: " + sc.Artist, info, 2);
    if (!sc.Author.empty()) line("Author: " + sc.Author, info, 2);
    char tempo[32];
    std::snprintf(tempo, sizeof tempo, "%g", static_cast<double>(sc.Tempo));
    line(std::string("Tempo: ") + tempo, info, 2);
    const Track& t = ctx.trackRef();
    if (t.Capo > 0) line(capoWord + " " + std::to_string(t.Capo), info, 2);
  }
  const Font foot = plainFont(kArial, 7);
  double fy = page.bottom() - 28;
  auto footLine = [&](const std::string& text) {
    if (text.empty()) return;
    const std::string t = fitted(text, foot);
    const TextMetrics m = s.measureText(t, foot);
    s.drawText({page.x + (page.w - m.width) / 2, fy}, t, foot, Color{80, 80, 80, 255});
    fy -= m.height() + 1;
  };
  footLine(footer);
  footLine(sc.Notice);
  footLine(sc.Copyright);
}

void DrawRowStaves(DrawContext& ctx, double x, double y, double rowWidth) {
  const Track& t = ctx.trackRef();
  const RowGeometry g(t, y);
  if (!g.any()) return;
  Surface& s = ctx.surface;
  const Color c = lineColor(ctx);
  const double right = x + rowWidth;
  auto five = [&](double top) {
    for (int i = 0; i < 5; ++i) s.drawLine({x, top + i * 7.0}, {right, top + i * 7.0}, c, 0.8);
  };
  if (g.treble) five(g.trebleTop);
  if (g.bass) five(g.bassTop);
  if (g.tab)
    for (int i = 0; i < g.strings; ++i) s.drawLine({x, g.stringY(i)}, {right, g.stringY(i)}, c, 0.8);
  // The row opens with one line across all its staves.
  s.drawLine({x, g.firstLine}, {x, g.lastLine}, c);
}

void DrawBarFrame(DrawContext& ctx, double x, double y, int bar, double width) {
  if (bar < 0 || bar >= static_cast<int>(ctx.trackRef().Bars.size())) return;
  BarPainter(ctx, x, y, bar, width).frame();
}

void DrawBarMarks(DrawContext& ctx, double x, double y, int bar, double width) {
  if (bar < 0 || bar >= static_cast<int>(ctx.trackRef().Bars.size())) return;
  BarPainter(ctx, x, y, bar, width).marks();
}

void DrawBar(DrawContext& ctx, double x, double y, int bar, double width) {
  if (bar < 0 || bar >= static_cast<int>(ctx.trackRef().Bars.size())) return;
  BarPainter p(ctx, x, y, bar, width);
  p.frame();
  p.beats();
  p.marks();
}

void DrawTrebleClef(Surface& s, double x, double staffTop, Color c, double size) {
  drawTrebleClef(s, x, staffTop, c, size);
}

void DrawAccidental(Surface& s, Accidental a, double x, double cy, Color c) { drawAccidental(s, a, x, cy, c); }

}  // namespace plectaro
