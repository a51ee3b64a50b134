#include "tools/drum_midi.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "score/file_io.h"
#include "tools/drum_sequencer.h"

namespace plectaro {

namespace {

struct Event {
  int64_t tick;
  int order;  // note-offs before note-ons at the same tick, so a repeated hit is not cut
  uint8_t status, data1, data2;
};

void put32(std::string& out, uint32_t v) {
  for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>((v >> shift) & 0xFF);
}

void putVarLen(std::string& out, uint32_t v) {
  uint8_t bytes[5];
  int n = 0;
  bytes[n++] = v & 0x7F;
  while ((v >>= 7) != 0) bytes[n++] = static_cast<uint8_t>((v & 0x7F) | 0x80);
  while (n > 0) out += static_cast<char>(bytes[--n]);
}

}  // namespace

std::string DrumPatternToMidi(const DrumPattern& p) {
  std::vector<Event> events;
  // A step lasts 16 x factor 64ths, which is factor quarters: the same factor as the player's.
  // Positions are kept exact in quarters and rounded per event, so tuplets do not drift.
  double quarters = 0;
  for (int s = 0; s < p.steps(); ++s) {
    const double factor = StepFactor(p, s);
    const auto on = static_cast<int64_t>(std::llround(quarters * kDrumMidiTicksPerQuarter));
    quarters += factor;
    const auto off = static_cast<int64_t>(std::llround(quarters * kDrumMidiTicksPerQuarter));
    for (int n = 0; n < p.instruments(); ++n) {
      if (!p.cell(s, n)) continue;
      const int key = GetDrumIndex(p.Instruments[static_cast<size_t>(n)]);
      if (key <= 0) continue;
      const auto vel = static_cast<uint8_t>(std::clamp<int>(p.Volumes[static_cast<size_t>(n)], 1, 127));
      events.push_back({on, 1, 0x90 | kPercussionChannel, static_cast<uint8_t>(key), vel});
      events.push_back({off, 0, 0x90 | kPercussionChannel, static_cast<uint8_t>(key), 0});
    }
  }
  std::stable_sort(events.begin(), events.end(),
                   [](const Event& a, const Event& b) { return a.tick != b.tick ? a.tick < b.tick : a.order < b.order; });

  std::string track;
  const auto usPerQuarter = static_cast<uint32_t>(60000000 / std::max<int16_t>(p.Tempo, 1));
  track += std::string("\x00\xFF\x51\x03", 4);
  track += static_cast<char>((usPerQuarter >> 16) & 0xFF);
  track += static_cast<char>((usPerQuarter >> 8) & 0xFF);
  track += static_cast<char>(usPerQuarter & 0xFF);
  int64_t last = 0;
  for (const Event& e : events) {
    putVarLen(track, static_cast<uint32_t>(e.tick - last));
    last = e.tick;
    track += static_cast<char>(e.status);
    track += static_cast<char>(e.data1);
    track += static_cast<char>(e.data2);
  }
  // The track ends when the last step does, so the file loops cleanly in a sequencer.
  const auto end = static_cast<int64_t>(std::llround(quarters * kDrumMidiTicksPerQuarter));
  putVarLen(track, static_cast<uint32_t>(std::max<int64_t>(end - last, 0)));
  track += std::string("\xFF\x2F\x00", 3);

  std::string out = "MThd";
  put32(out, 6);
  out += std::string("\x00\x00\x00\x01", 4);  // format 0, one track
  out += static_cast<char>(kDrumMidiTicksPerQuarter >> 8);
  out += static_cast<char>(kDrumMidiTicksPerQuarter & 0xFF);
  out += "MTrk";
  put32(out, static_cast<uint32_t>(track.size()));
  return out + track;
}

void ExportDrumPatternMidi(const std::filesystem::path& path, const DrumPattern& p) {
  WriteFileAtomically(path, DrumPatternToMidi(p));
}

}  // namespace plectaro
