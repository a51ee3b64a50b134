// The score as a Standard MIDI File.
//
// The events are not computed a second time here: the score is played through the playback
// scheduler on a virtual clock, and every message it sends is written down. So the file holds
// what the listener hears, note for note: the same pitches, velocities, channels and order,
// repeats and D.S./coda unfolded the way they are played, strums and effects included.
// Only the times differ: a message that playback sends when beat k of a bar starts is stored at
// the beat's exact position from the note lengths, so tuplet notes fall between playback's
// whole 64th steps; messages that come later (strum strings, effect steps) keep their distance
// in milliseconds from that beat.
#pragma once

#include <filesystem>

#include "exchange/midi_file.h"
#include "score/score_records.h"

namespace plectaro {

struct MidiExportOptions {
  int TicksPerQuarter = 960;  // divisible by 3, 5 and 16, so most tuplets land on whole ticks
  int OutputBank = 0;
};

// One track chunk per Track, named after it; the first also carries the tempo and the time
// signatures.
MidiFileData MakeMIDIData(const Score& score, const MidiExportOptions& options = {});

// Writes the file; the old file stays whole if writing fails (FileError). Throws ScoreError
// if the song never ends (an endless repeat).
void MakeMIDIFile(const Score& score, const std::filesystem::path& path, const MidiExportOptions& options = {});

}  // namespace plectaro
