// Small helpers to build scores in code and to read a recorded message stream.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

#include "playback/recording_out.h"
#include "score/score_records.h"

namespace plectaro::test {

// A score of `tracks` tracks and `bars` bars of 4/4, every bar empty (no beats yet).
inline Score MakeSong(int tracks, int bars, float tempo = 120) {
  Score s;
  s.Tempo = tempo;
  s.Tracks.resize(static_cast<size_t>(tracks));
  for (int t = 0; t < tracks; ++t) {
    Track& tr = s.Tracks[static_cast<size_t>(t)];
    tr.Channel = static_cast<int16_t>(2 * t);
    tr.EffectChannel = static_cast<int16_t>(2 * t + 1);
  }
  s.SetBarCount(bars - 1);
  for (Track& tr : s.Tracks)
    for (auto& bar : tr.Bars) bar.mut().Beats.clear();
  return s;
}

// Appends a beat to (track, bar) with frets given as {string, fret text}.
inline Beat& AddBeat(Score& s, int t, int b, int length,
                     std::initializer_list<std::pair<int, const char*>> frets = {}) {
  auto& beats = s.barMut(t, b).Beats;
  beats.emplace_back();
  Beat& beat = beats.back();
  beat.Length = length;
  for (auto [string, fret] : frets) beat.Notes[static_cast<size_t>(string)].Fret = fret;
  return beat;
}

// Fills (track, bar) with four quarter notes, each on `string` at fret `fret`.
inline void FourQuarters(Score& s, int t, int b, int string, const char* fret) {
  for (int i = 0; i < 4; ++i) AddBeat(s, t, b, kQuarter, {{string, fret}});
}

struct NoteOn {
  double ms;
  int channel, note, velocity;
  bool operator==(const NoteOn&) const = default;
};

inline std::vector<NoteOn> NoteOns(const std::vector<MidiMessage>& msgs) {
  std::vector<NoteOn> ons;
  for (const MidiMessage& m : msgs)
    if ((m.Status & 0xF0) == 0x90 && m.Data2 > 0) ons.push_back({m.TimeMs, m.Status & 0x0F, m.Data1, m.Data2});
  return ons;
}

// Every note-on is later ended on its channel: by a note-off of the same key, or by
// "all notes off" (controller 123) on the channel.
inline bool EveryNoteEnds(const std::vector<MidiMessage>& msgs) {
  std::vector<std::pair<int, int>> sounding;
  for (const MidiMessage& m : msgs) {
    const int ch = m.Status & 0x0F;
    if ((m.Status & 0xF0) == 0x90) {
      if (m.Data2 > 0) sounding.push_back({ch, m.Data1});
      else std::erase(sounding, std::pair<int, int>{ch, m.Data1});
    } else if ((m.Status & 0xF0) == 0xB0 && m.Data1 == 123) {
      std::erase_if(sounding, [ch](const auto& n) { return n.first == ch; });
    }
  }
  return sounding.empty();
}

}  // namespace plectaro::test
