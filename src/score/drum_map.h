// Which line and symbol of a drum track sound a given drum. A drum track writes a symbol on a
// line, and the line's DrumMap says which drum that symbol strikes; whoever puts drums into a
// track (MIDI import, the Drum Machine) needs the way back, from a drum to a line and symbol.
#pragma once

#include <functional>
#include <optional>

#include "score/score_records.h"

namespace plectaro {

struct DrumSlot {
  int line = 0;
  int symbol = 0;  // index into kDrumSymbols
};

// The line and symbol of `tr` that strike drum `sound` (1..46 of the percussion list), among
// its first NumStrings lines: the first line already set up for the sound; else the sound is
// given the first free symbol of the line with the fewest sounds, so that each drum gets a
// line of its own while lines last. `usable`, when given, passes over lines it refuses (a line
// already struck in the beat at hand). nullopt when no line can take it.
std::optional<DrumSlot> DrumSlotFor(Track& tr, int sound, const std::function<bool(int line)>& usable = {});

// The drum (1..46) that the symbol text `fret` strikes on line `line` of `tr`; 0 for none.
int DrumSoundAt(const Track& tr, int line, const std::string& fret);

}  // namespace plectaro
