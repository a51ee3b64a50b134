#include "shell/status_time.h"

#include <cmath>
#include <cstdio>
#include <optional>

#include "score/bar_timing.h"

namespace plectaro {

std::optional<double> CursorTimeSeconds(const Document& doc) {
  const Score& s = doc.score;
  if (!(s.Tempo > 0) || !std::isfinite(s.Tempo)) return std::nullopt;
  try {
    const int t = doc.CursorTrack;
    double sixtyFourths = 0;
    for (int b = 0; b < doc.CursorBar && b <= s.GetLastBar(t); ++b) sixtyFourths += GetBeatsLength(s, t, b);
    const auto& beats = s.bar(t, doc.CursorBar).Beats;
    for (int k = 0; k < doc.CursorBeat && k < static_cast<int>(beats.size()); ++k)
      sixtyFourths += GetNumOf64ths(beats[static_cast<size_t>(k)]);
    return sixtyFourths * 3.75 / s.Tempo;
  } catch (const ScoreError&) {
    return std::nullopt;
  }
}

std::string FormatStatusTime(double seconds) {
  // Whole seconds, counted down as a player's clock counts: 59.9 s is still "0:59".
  const long long whole = std::isfinite(seconds) && seconds > 0 ? static_cast<long long>(std::floor(seconds)) : 0;
  char buf[64];
  std::snprintf(buf, sizeof buf, "%lld:%02lld", whole / 60, whole % 60);
  return buf;
}

}  // namespace plectaro
