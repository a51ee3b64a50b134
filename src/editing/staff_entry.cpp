#include "editing/staff_entry.h"

#include <algorithm>

#include "editing/cursor_access.h"
#include "rendering/notation.h"

namespace plectaro {

namespace {

int stringCount(const Track& tr) { return std::clamp<int>(tr.Tuning.NumStrings, 1, kMaxStrings); }

int symbolIndexOf(char symbol) {
  const auto it = std::find(kDrumSymbols.begin(), kDrumSymbols.end(), symbol);
  return it == kDrumSymbols.end() ? -1 : static_cast<int>(it - kDrumSymbols.begin());
}

// The string of the beat whose note sounds `pitch`; -1 if none does.
int stringSounding(const Track& tr, const Beat& beat, int pitch) {
  for (int s = 0; s < stringCount(tr); ++s) {
    int p = 0;
    if (SlotPitch(tr, beat.Notes[static_cast<size_t>(s)], s, p) && p == pitch) return s;
  }
  return -1;
}

}  // namespace

int OpenStringPitch(const Track& track, int string) {
  NoteSlot open;
  open.Fret = "0";
  int p = 0;
  SlotPitch(track, open, std::clamp(string, 0, kMaxStrings - 1), p);
  return p;
}

int NotationLineBottom(const Track& track) { return OpenStringPitch(track, stringCount(track) - 1); }

StringFret PlaceForPitch(const Track& track, const Beat& beat, int pitch, int onString) {
  StringFret best;
  for (int s = 0; s < stringCount(track); ++s) {
    if (onString >= 0 && s != onString) continue;
    if (beat.Notes[static_cast<size_t>(s)].hasNote()) continue;
    const int fret = pitch - OpenStringPitch(track, s);
    if (fret < 0 || fret > kHighestWrittenFret) continue;
    if (best.string < 0 || fret < best.fret) best = {s, fret};
  }
  return best;
}

bool WriteNotationNote(EditContext& ctx, int onString) {
  Document& d = ctx.doc;
  const Track& tr = d.score.track(d.CursorTrack);
  const int pitch = d.CursorLine;
  const int already = stringSounding(tr, CursorBeat(d), pitch);
  if (already >= 0 && (onString < 0 || onString == already)) {
    RunCursorMove(ctx, [&] { d.CursorString = static_cast<int16_t>(already); });
    return true;
  }
  const StringFret place = PlaceForPitch(tr, CursorBeat(d), pitch, onString);
  if (place.string < 0) {
    ctx.status(ctx.text("str_CantAddPitch"));
    return false;
  }
  return RunCommand(ctx, [&] {
    NoteSlot& n = d.score.noteMut(d.CursorTrack, d.CursorBar, d.CursorBeat, place.string);
    n.Fret = std::to_string(place.fret);
    d.CursorString = static_cast<int16_t>(place.string);
  }, "Typing");
}

void ClearNotationNote(EditContext& ctx) {
  Document& d = ctx.doc;
  const int s = stringSounding(d.score.track(d.CursorTrack), CursorBeat(d), d.CursorLine);
  if (s < 0) return;
  RunCommand(ctx, [&] {
    d.score.noteMut(d.CursorTrack, d.CursorBar, d.CursorBeat, s).Fret.clear();
    d.CursorString = static_cast<int16_t>(s);
  }, "Clear Note Value");
}

void ToggleNotationEntryAt(EditContext& ctx) {
  Document& d = ctx.doc;
  if (!ctx.NotationEntry) {
    RunCursorMove(ctx, [&] {
      const Track& tr = d.score.track(d.CursorTrack);
      const int bottom = NotationLineBottom(tr);
      int p = 0;
      const int s = std::clamp<int>(d.CursorString, 0, stringCount(tr) - 1);
      if (!SlotPitch(tr, CursorSlot(d), s, p)) p = OpenStringPitch(tr, s);
      d.CursorLine = static_cast<int16_t>(std::clamp(p, bottom, bottom + kNotationLineSpan));
    });
  }
  ctx.NotationEntry = !ctx.NotationEntry;
  ctx.redraw();
}

int NextDrumLine(int line, bool down) {
  const auto it = std::find(kDrumWalk.begin(), kDrumWalk.end(), line);
  if (it == kDrumWalk.end()) return kDrumWalk.front();
  if (down) return it + 1 == kDrumWalk.end() ? kDrumWalk.back() : *(it + 1);
  return it == kDrumWalk.begin() ? kDrumWalk.back() : *(it - 1);
}

int DrumLineOf(const Track& track, int sound, int symbolIndex) {
  if (sound <= 0) return -1;
  for (int line = 0; line < stringCount(track); ++line) {
    const auto& map = track.DrumMaps[static_cast<size_t>(line)].Drum;
    for (size_t k = 0; k < map.size(); ++k)
      if (map[k] == sound && (symbolIndex < 0 || static_cast<int>(k) == symbolIndex)) return line;
  }
  return -1;
}

bool WriteDrumNote(EditContext& ctx, char symbol) {
  Document& d = ctx.doc;
  const int sym = symbolIndexOf(symbol);
  if (sym < 0) return false;
  const int sound = d.CursorLine;
  const Track& tr = d.score.track(d.CursorTrack);
  if (DrumLineOf(tr, sound) < 0 && std::find(kDrumWalk.begin(), kDrumWalk.end(), sound) == kDrumWalk.end()) {
    // The line was never walked to: write on the tab line under the cursor, as the tab shows.
    return RunCommand(ctx, [&] { CursorSlotMut(d).Fret = std::string(1, symbol); }, "Typing");
  }
  int line = DrumLineOf(tr, sound, sym);
  bool teach = false;
  if (line < 0) {
    const auto freeFor = [&](int l) { return tr.DrumMaps[static_cast<size_t>(l)].Drum[static_cast<size_t>(sym)] == 0; };
    const int playing = DrumLineOf(tr, sound);
    if (playing >= 0 && freeFor(playing)) {
      line = playing;
    } else if (playing >= 0) {
      // The line already has this letter for another sound: the sound the cursor shows wins,
      // written with the symbol that plays it there.
      const auto& map = tr.DrumMaps[static_cast<size_t>(playing)].Drum;
      const char written = kDrumSymbols[static_cast<size_t>(std::find(map.begin(), map.end(), sound) - map.begin())];
      return RunCommand(ctx, [&] {
        d.score.noteMut(d.CursorTrack, d.CursorBar, d.CursorBeat, playing).Fret = std::string(1, written);
        d.CursorString = static_cast<int16_t>(playing);
      }, "Typing");
    } else {
      int fewest = 13;
      for (int l = 0; l < stringCount(tr); ++l) {
        if (!freeFor(l)) continue;
        const auto& m = tr.DrumMaps[static_cast<size_t>(l)].Drum;
        const int used = static_cast<int>(std::count_if(m.begin(), m.end(), [](int16_t v) { return v != 0; }));
        if (used < fewest) line = l, fewest = used;
      }
    }
    if (line < 0) {
      ctx.status(ctx.text("str_CantAddPitch"));
      return false;
    }
    teach = true;
  }
  return RunCommand(ctx, [&] {
    if (teach) d.score.trackMut(d.CursorTrack).DrumMaps[static_cast<size_t>(line)].Drum[static_cast<size_t>(sym)] =
        static_cast<int16_t>(sound);
    d.score.noteMut(d.CursorTrack, d.CursorBar, d.CursorBeat, line).Fret = std::string(1, symbol);
    d.CursorString = static_cast<int16_t>(line);
  }, "Typing");
}

}  // namespace plectaro
