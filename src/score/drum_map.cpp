#include "score/drum_map.h"

#include <algorithm>

namespace plectaro {

namespace {

int lineCount(const Track& tr) { return std::clamp<int>(tr.Tuning.NumStrings, 1, kMaxStrings); }

}  // namespace

std::optional<DrumSlot> DrumSlotFor(Track& tr, int sound, const std::function<bool(int line)>& usable) {
  if (sound <= 0) return std::nullopt;
  const int lines = lineCount(tr);
  auto open = [&](int line) { return !usable || usable(line); };
  for (int line = 0; line < lines; ++line) {
    if (!open(line)) continue;
    const auto& map = tr.DrumMaps[static_cast<size_t>(line)].Drum;
    for (size_t sym = 0; sym < map.size(); ++sym)
      if (map[sym] == sound) return DrumSlot{line, static_cast<int>(sym)};
  }
  int best = -1, bestUsed = static_cast<int>(kDrumSymbols.size());
  for (int line = 0; line < lines; ++line) {
    if (!open(line)) continue;
    const auto& map = tr.DrumMaps[static_cast<size_t>(line)].Drum;
    const int used = static_cast<int>(std::count_if(map.begin(), map.end(), [](int16_t v) { return v != 0; }));
    if (used < bestUsed) best = line, bestUsed = used;
  }
  if (best < 0) return std::nullopt;
  auto& map = tr.DrumMaps[static_cast<size_t>(best)].Drum;
  const auto sym = std::find(map.begin(), map.end(), int16_t{0}) - map.begin();
  map[static_cast<size_t>(sym)] = static_cast<int16_t>(sound);
  return DrumSlot{best, static_cast<int>(sym)};
}

int DrumSoundAt(const Track& tr, int line, const std::string& fret) {
  if (line < 0 || line >= lineCount(tr) || fret.size() != 1) return 0;
  const auto it = std::find(kDrumSymbols.begin(), kDrumSymbols.end(), fret[0]);
  if (it == kDrumSymbols.end()) return 0;
  return tr.DrumMaps[static_cast<size_t>(line)].Drum[static_cast<size_t>(it - kDrumSymbols.begin())];
}

}  // namespace plectaro
