#include "rendering/track_head.h"

#include <array>

namespace plectaro {

namespace {

// Sharps rather than flats: the tunings guitarists write down (drop D, open G, DADGAD) read
// that way, and one spelling keeps the line short.
constexpr std::array<const char*, 12> kPitchNames = {"C", "C#", "D", "D#", "E", "F",
                                                     "F#", "G", "G#", "A", "A#", "B"};

std::string tuningText(const Track& t) {
  const int strings = StringCount(t);
  bool standard = true;
  for (int s = 0; s < strings; ++s) standard = standard && t.Tuning.Offset[static_cast<size_t>(s)] == 0;
  if (standard) return {};
  std::string text;
  // String 0 is the highest; the tuning is read from the lowest up.
  for (int s = strings - 1; s >= 0; --s) {
    const int pitch = kStandardStringPitch[static_cast<size_t>(s)] + t.Tuning.Offset[static_cast<size_t>(s)];
    if (!text.empty()) text += ' ';
    text += kPitchNames[static_cast<size_t>(((pitch % 12) + 12) % 12)];
  }
  return text;
}

}  // namespace

std::string TrackHeadText(const Score& score, int track) {
  if (track < 0 || track > score.LastTrack()) return {};
  const Track& t = score.Tracks[static_cast<size_t>(track)];
  std::string text = std::to_string(track + 1) + ".";
  if (!t.Name.empty()) text += " " + t.Name;
  if (!t.InstrumentName.empty() && t.InstrumentName != t.Name)
    text += (t.Name.empty() ? " " : " - ") + t.InstrumentName;
  if (!t.DrumTrack) {
    const std::string tuning = tuningText(t);
    if (!tuning.empty()) text += " (" + tuning + ")";
  }
  return text;
}

void DrawTrackHead(DrawContext& ctx, double x, double rowTop) {
  const Track& t = ctx.trackRef();
  // The name sits clear above the highest staff, where a tempo or chord name of the first bar
  // would not reach; a track with no staff at all still gets its name at the row top.
  const double firstLine = !t.TrebleStaff && !t.BassStaff && t.TabStaff ? rowTop + TabStaffTop(t)
                           : !t.TrebleStaff && t.BassStaff            ? rowTop + BassStaffTop(t)
                                                                      : rowTop + TrebleStaffTop(t);
  Font f;
  f.family = "Arial";
  f.size = 9;
  f.bold = true;
  const std::string text = TrackHeadText(ctx.score, ctx.track);
  const TextMetrics m = ctx.surface.measureText(text, f);
  ctx.surface.drawText({x, firstLine - 44 - m.height()}, text, f, Color::FromStored(ctx.score.LineColor));
}

}  // namespace plectaro
