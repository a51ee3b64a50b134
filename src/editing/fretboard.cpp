#include "editing/fretboard.h"

#include <algorithm>
#include <cmath>

#include "editing/cursor_access.h"
#include "rendering/notation.h"

namespace plectaro {

std::vector<HandNote> HandNotesOf(const Track& track, const Beat& beat) {
  std::vector<HandNote> notes;
  if (track.DrumTrack) return notes;
  const int strings = std::clamp<int>(track.Tuning.NumStrings, 1, kMaxStrings);
  const int capo = track.Capo > 0 && track.Capo < 40 ? track.Capo : 0;
  for (int s = 0; s < strings; ++s) {
    const NoteSlot& n = beat.Notes[static_cast<size_t>(s)];
    int fret = 0, pitch = 0;
    if (!FretNumber(n.Fret, fret) || !SlotPitch(track, n, s, pitch)) continue;
    notes.push_back({s, fret + capo, pitch});
  }
  return notes;
}

double FretboardGeometry::stringY(int string) const {
  const double m = margin();
  return strings <= 1 ? height / 2 : m + string * (height - 2 * m) / (strings - 1);
}

// Real frets shrink by the twelfth root of two each; half that shrink keeps the high frets
// wide enough to click while still reading as a neck.
double FretboardGeometry::wireX(int f) const {
  const double nut = openWidth();
  const double shrink = 1 - std::pow(2.0, -f / 24.0);
  const double whole = 1 - std::pow(2.0, -kFretboardFrets / 24.0);
  return nut + (width - nut - 4) * shrink / whole;
}

double FretboardGeometry::fretCentreX(int f) const {
  if (f <= 0) return openWidth() / 2;
  return (wireX(f - 1) + wireX(f)) / 2;
}

std::optional<StringFret> FretboardGeometry::hit(double x, double y) const {
  if (x < 0 || x > width || y < 0 || y > height || strings < 1) return std::nullopt;
  const double gap = strings > 1 ? (height - 2 * margin()) / (strings - 1) : height;
  int string = static_cast<int>(std::lround((y - margin()) / gap));
  if (strings == 1) string = 0;
  if (string < 0 || string >= strings || std::abs(y - stringY(string)) > gap / 2 + 1) return std::nullopt;
  const double ux = shown(x);  // back to right-handed coordinates
  int fret = 0;
  while (fret < kFretboardFrets && ux >= wireX(fret)) ++fret;
  if (ux >= wireX(kFretboardFrets)) return std::nullopt;
  return StringFret{string, fret};
}

int PianoGeometry::whiteCount() const {
  int n = 0;
  for (int k = lowKey; k <= highKey; ++k) n += IsBlackKey(k) ? 0 : 1;
  return std::max(1, n);
}

PianoGeometry::Box PianoGeometry::keyBox(int key) const {
  const double ww = whiteWidth();
  int whitesBefore = 0;
  for (int k = lowKey; k < key; ++k) whitesBefore += IsBlackKey(k) ? 0 : 1;
  if (!IsBlackKey(key)) return {whitesBefore * ww, 0, ww, height};
  // A black key straddles the line between the white keys either side of it.
  const double bw = ww * 0.6;
  return {whitesBefore * ww - bw / 2, 0, bw, height * 0.62};
}

std::optional<int> PianoGeometry::hit(double x, double y) const {
  if (x < 0 || x >= width || y < 0 || y >= height) return std::nullopt;
  const auto inside = [&](int k) {
    const Box b = keyBox(k);
    return x >= b.x && x < b.x + b.w && y >= b.y && y < b.y + b.h;
  };
  for (int k = lowKey; k <= highKey; ++k)
    if (IsBlackKey(k) && inside(k)) return k;
  for (int k = lowKey; k <= highKey; ++k)
    if (!IsBlackKey(k) && inside(k)) return k;
  return std::nullopt;
}

bool WriteFretboardNote(EditContext& ctx, int string, int neckFret) {
  Document& d = ctx.doc;
  const Track& tr = d.score.track(d.CursorTrack);
  if (tr.DrumTrack) return false;
  const int capo = tr.Capo > 0 && tr.Capo < 40 ? tr.Capo : 0;
  if (neckFret < capo) {
    ctx.status(ctx.text("str_CantAddPitch"));
    return false;
  }
  const bool ok = RunCommand(ctx, [&] {
    d.score.noteMut(d.CursorTrack, d.CursorBar, d.CursorBeat, string).Fret = std::to_string(neckFret - capo);
    d.CursorString = static_cast<int16_t>(string);
  }, "Typing");
  if (ok && ctx.settings.PlayAsTyped) ctx.playBeat();
  return ok;
}

bool WritePianoNote(EditContext& ctx, int pitch) {
  Document& d = ctx.doc;
  if (d.score.track(d.CursorTrack).DrumTrack) return false;
  const int16_t line = d.CursorLine;
  d.CursorLine = static_cast<int16_t>(pitch);
  const bool ok = WriteNotationNote(ctx, -1);
  // The staff cursor stays where the user left it unless notation entry is on.
  if (!ctx.NotationEntry) d.CursorLine = line;
  if (ok && ctx.settings.PlayAsTyped) ctx.playBeat();
  return ok;
}

}  // namespace plectaro
