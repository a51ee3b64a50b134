// Scores read from files are not validated: any field may hold any number. Whatever they
// hold, playback must end, send only well-formed messages, and leave no note sounding.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "playback/offline_play.h"
#include "song_builder.h"

namespace plectaro {
namespace {

Score RandomScore(std::mt19937& rng) {
  auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
  const char* frets[] = {"", "", "0", "3", "12", "24", "x", "X", "o", "~", "-7", "300", " 5", "abc"};
  // Tempi stay musical here (a tempo of 0 plays 33 s steps: a real song would outlast the
  // offline limit); DamagedScoresPlayWithoutHanging covers that one.
  Score s = test::MakeSong(pick(1, 4), pick(1, 6), static_cast<float>(pick(20, 400)));
  for (size_t b = 0; b < s.BarInfos.size(); ++b) {
    BarInfo& bi = s.BarInfos[b];
    bi.TimeSigNumerator = pick(-2, 40);
    bi.TimeSigDenominator = pick(-1, 33);
    bi.RepeatOpen = pick(0, 3) == 0;
    bi.RepeatClose = static_cast<int16_t>(pick(-3, 3) * (pick(0, 2) == 0));
    bi.Sign = pick(0, 5) == 0;
    bi.Coda = pick(0, 5) == 0;
    bi.ToCoda = pick(0, 5) == 0;
    bi.DSAlCoda = pick(0, 5) == 0;
  }
  for (int t = 0; t <= s.LastTrack(); ++t) {
    Track& tr = s.Tracks[static_cast<size_t>(t)];
    tr.Channel = static_cast<int16_t>(pick(-3, 20));
    tr.EffectChannel = static_cast<int16_t>(pick(-3, 20));
    tr.Instrument = static_cast<int16_t>(pick(-10, 200));
    tr.Volume = static_cast<int16_t>(pick(-100, 300));
    tr.Tuning.NumStrings = static_cast<int16_t>(pick(0, 9));
    tr.Tuning.Offset[static_cast<size_t>(pick(0, 6))] = static_cast<int16_t>(pick(-80, 80));
    tr.DrumTrack = pick(0, 4) == 0;
    tr.OctaveUp = pick(0, 1);
    tr.OctaveDown = pick(0, 1);
    for (auto& map : tr.DrumMaps)
      for (auto& d : map.Drum) d = static_cast<int16_t>(pick(-5, 60));
    for (size_t b = 0; b < s.BarInfos.size(); ++b) {
      const int beats = pick(0, 6);
      for (int k = 0; k < beats; ++k) {
        Beat& beat = test::AddBeat(s, t, static_cast<int>(b), pick(-2, 9));
        beat.IsTuplet = pick(0, 3) == 0;
        beat.Tuplet = pick(-2, 12);
        beat.Dotted = pick(0, 1);
        beat.Stroke = pick(-1, 3);
        if (pick(0, 6) == 0) beat.Text = "t=" + std::to_string(pick(-50, 50000));
        for (NoteSlot& n : beat.Notes) {
          n.Fret = frets[pick(0, 13)];
          n.Volume = pick(-3, 12);
          n.Harmonic = pick(-1, 9);
          n.GhostNote = pick(0, 5) == 0;
          n.Tied = pick(0, 5) == 0;
          n.LetRing = pick(0, 5) == 0;
          n.HasBend = pick(0, 8) == 0;
        }
      }
    }
  }
  return s;
}

TEST(Robustness, DamagedScoresAlwaysEndCleanly) {
  std::mt19937 rng(20261123);
  for (int i = 0; i < 1000; ++i) {
    const Score s = RandomScore(rng);
    PlaybackOptions opt;
    opt.CountIn = i % 3 == 0;
    opt.Metronome = i % 5 == 0;
    opt.OutputBank = static_cast<int16_t>(i % 7 == 0 ? 300 : 0);
    std::vector<MidiMessage> msgs;
    try {
      msgs = TraceSong(s, (i % 4) - 1, 32767, opt);
    } catch (const ScoreError& e) {
      ADD_FAILURE() << i << ": " << e.what();  // every song ends: D.S. and coda jump once
      continue;
    }
    double last = 0;
    for (const MidiMessage& m : msgs) {
      ASSERT_GE(m.Status, 0x80) << i;
      ASSERT_LE(m.Data1, 127) << i;
      ASSERT_LE(m.Data2, 127) << i;
      ASSERT_TRUE(std::isfinite(m.TimeMs)) << i;
      ASSERT_GE(m.TimeMs, last) << i;
      last = m.TimeMs;
    }
    ASSERT_TRUE(test::EveryNoteEnds(msgs)) << i;
  }
}

}  // namespace
}  // namespace plectaro
