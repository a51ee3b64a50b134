#include "score/document.h"

#include <algorithm>

namespace plectaro {

void Document::clampCursor() {
  auto clampTo = [](int16_t& v, int last) { v = static_cast<int16_t>(std::clamp<int>(v, 0, std::max(last, 0))); };
  clampTo(CursorTrack, score.LastTrack());
  clampTo(CursorBar, score.GetLastBar(CursorTrack));
  clampTo(CursorBeat, score.GetLastBeat(CursorTrack, CursorBar));
  clampTo(CursorString, score.track(CursorTrack).Tuning.NumStrings - 1);
}

}  // namespace plectaro
