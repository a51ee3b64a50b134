#include "tools/drum_midi.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "exchange/midi_file.h"
#include "score/file_io.h"
#include "tools/drum_sequencer.h"

namespace plectaro {

std::string DrumPatternToMidi(const DrumPattern& p) {
  MidiFileData file;
  file.Format = 0;
  file.Division = kDrumMidiTicksPerQuarter;
  MidiTrackChunk track;
  track.Events.push_back(MakeTempoEvent(0, static_cast<uint32_t>(60000000 / std::max<int16_t>(p.Tempo, 1))));
  std::vector<MidiEvent> offs, ons;
  // Positions are kept exact in quarter notes and rounded per event, so tuplets do not drift.
  double quarters = 0;
  auto tickAt = [](double q) { return static_cast<uint32_t>(std::llround(q * kDrumMidiTicksPerQuarter)); };
  for (int s = 0; s < p.steps(); ++s) {
    const uint32_t on = tickAt(quarters);
    quarters += StepFactor(p, s);
    const uint32_t off = tickAt(quarters);
    for (int n = 0; n < p.instruments(); ++n) {
      if (!p.cell(s, n)) continue;
      const int key = GetDrumIndex(p.Instruments[static_cast<size_t>(n)]);
      if (key <= 0) continue;
      const auto vel = static_cast<uint8_t>(std::clamp<int>(p.Volumes[static_cast<size_t>(n)], 1, 127));
      const uint8_t status = 0x90 | kPercussionChannel;
      // Each hit ends where its step does; ends go before starts at the same tick, so a hit
      // on the next step is not cut by the end of this one.
      track.Events.push_back({on, status, static_cast<uint8_t>(key), vel, {}});
      track.Events.push_back({off, status, static_cast<uint8_t>(key), 0, {}});
    }
  }
  std::stable_sort(track.Events.begin(), track.Events.end(), [](const MidiEvent& a, const MidiEvent& b) {
    if (a.Tick != b.Tick) return a.Tick < b.Tick;
    return a.isNoteOff() && !b.isNoteOff();
  });
  // The track ends when the last step does, so the file loops cleanly in a sequencer.
  track.Events.push_back(MakeMetaEvent(tickAt(quarters), kMetaEndOfTrack, {}));
  file.Tracks.push_back(std::move(track));
  return SerializeMidiFile(file);
}

void ExportDrumPatternMidi(const std::filesystem::path& path, const DrumPattern& p) {
  WriteFileAtomically(path, DrumPatternToMidi(p));
}

}  // namespace plectaro
