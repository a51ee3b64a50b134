#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "playback/effects.h"
#include "score/document.h"
#include "score/file_io.h"
#include "score/music_file.h"
#include "score/settings_store.h"
#include "playback/offline_play.h"
#include "playback/scheduler.h"
#include "playback/virtual_clock.h"
#include "song_builder.h"

namespace plectaro {
namespace {

using test::AddBeat;
using test::EveryNoteEnds;
using test::MakeSong;
using test::NoteOn;
using test::NoteOns;

// One track at tempo 60 (a step of 62 ms, so the first beat starts at 62 ms); the beat under
// test comes first, then rests long enough for its effect to run out before the song stops.
// Track 0 plays on channel 0, its effects on channel 1.
constexpr double kStart = 62;

Score EffectSong(int length, const std::function<void(Beat&)>& edit, float tempo = 60) {
  Score s = MakeSong(1, 2, tempo);
  edit(AddBeat(s, 0, 0, length, {{0, "5"}}));
  AddBeat(s, 0, 1, kWhole);
  return s;
}

struct Wheel {
  double ms;
  int channel, value;
  bool operator==(const Wheel&) const = default;
};

// The wheel messages up to the song's stop (the stop adds resets of its own).
std::vector<Wheel> Wheels(const std::vector<MidiMessage>& msgs, double beforeMs = 1e9) {
  std::vector<Wheel> w;
  for (const MidiMessage& m : msgs) {
    if ((m.Status & 0xF0) != 0xE0 || m.TimeMs >= beforeMs) continue;
    EXPECT_EQ(m.Data1, 0) << "the low byte of the wheel never moves";
    w.push_back({m.TimeMs, m.Status & 0x0F, m.Data2});
  }
  return w;
}

std::vector<MidiMessage> Trace(const Score& s, EffectSettings fx = {}) {
  PlaybackOptions options;
  options.FollowPlayback = false;
  options.Effects = fx;
  return TraceSong(s, 0, 32767, options);
}

std::array<double, 26> StepCurve() {
  // Flat, then up a full tone (4 quarter tones) between points 2 and 3, and held there.
  std::array<double, 26> c{};
  for (size_t i = 2; i < c.size(); ++i) c[i] = 4;
  c[2] = 4;
  return c;
}

TEST(Effects, BendTraceFollowsTheCurve) {
  struct Case {
    const char* name;
    int length;
    float tempo;
    double coefficient;
    int32_t interval;  // ms between firings
  };
  const Case cases[] = {
      {"quarter at 60: 250 steps over the beat", kQuarter, 60, 8, 4},
      {"coefficient 0: the wheel never moves", kQuarter, 60, 0, 4},
      {"64th at 240: held at the 1 ms floor", kSixtyFourth, 240, 8, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Score s = EffectSong(c.length, [](Beat& b) {
      b.Notes[0].HasBend = true;
      b.Notes[0].Bend.mut().Points = StepCurve();
    }, c.tempo);
    const auto msgs = Trace(s, {c.coefficient, 4, 12, 6});
    const double start = IntervalForTempo(c.tempo);
    const auto wheels = Wheels(msgs, start + 1000 * 60 / c.tempo * 4);
    // Positions 0.0 to 25.9 in tenths, then the centre again.
    ASSERT_EQ(wheels.size(), 261u);
    for (size_t k = 0; k < wheels.size(); ++k) {
      EXPECT_EQ(wheels[k].ms, start + static_cast<double>(k) * c.interval) << k;
      EXPECT_EQ(wheels[k].channel, 1) << k;
    }
    // The curve climbs between positions 2 and 3: f x (4 - 0) quarter tones.
    const int ramp[] = {64, 67, 70, 74, 77, 80, 83, 86, 90, 93};
    for (size_t k = 0; k < wheels.size(); ++k) {
      const int want = k < 20 ? 64 : k < 30 ? ramp[k - 20] : k < 260 ? 96 : 64;
      EXPECT_EQ(wheels[k].value, c.coefficient == 0 ? 64 : want) << k;
    }
    // The bent note itself sounds on the effect channel, the wheel's channel.
    ASSERT_FALSE(NoteOns(msgs).empty());
    EXPECT_EQ(NoteOns(msgs)[0], (NoteOn{start, 1, 69, 100}));
  }
  // The floor makes the 64th's bend outlast its beat (16 ms) by far.
  EXPECT_EQ(PlanBend(StepCurve(), 1, 3750.0 / 240, 1, 8).IntervalMs, 1);
}

TEST(Effects, VibratoSwingsRound66ThenCentres) {
  struct Case {
    int technique, count;
    std::vector<int> values;
    int32_t interval;
  };
  const Case cases[] = {
      {kVibrato, 6, {62, 70, 62, 70, 62, 70, 64}, 167},
      {kVibrato, 1, {62, 64}, 1000},
      {kWideVibrato, 2, {54, 78, 64}, 500},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.count);
    Score s = EffectSong(kQuarter, [&](Beat& b) { b.ChordTechnique = c.technique; });
    const auto wheels = Wheels(Trace(s, {7.9, 4, 12, c.count}), 1500);
    ASSERT_EQ(wheels.size(), c.values.size());
    for (size_t k = 0; k < wheels.size(); ++k) {
      EXPECT_EQ(wheels[k].value, c.values[k]) << k;
      EXPECT_EQ(wheels[k].channel, 1);
      // The return to the centre goes out with the last swing.
      EXPECT_EQ(wheels[k].ms, kStart + static_cast<double>(std::min(k, c.values.size() - 2)) * c.interval) << k;
    }
  }
}

// Note-ons and note-offs (velocity 0) of one channel, without the silencing controllers.
std::vector<NoteOn> Notes(const std::vector<MidiMessage>& msgs, int channel, double beforeMs = 1e9) {
  std::vector<NoteOn> out;
  for (const MidiMessage& m : msgs)
    if ((m.Status & 0xF0) == 0x90 && (m.Status & 0x0F) == channel && m.TimeMs < beforeMs)
      out.push_back({m.TimeMs, channel, m.Data1, m.Data2});
  return out;
}

TEST(Effects, NoteEffectsPlayTheirRuns) {
  struct Case {
    const char* name;
    std::function<void(Score&)> build;
    int channel;
    std::vector<NoteOn> notes;  // until the next beat at 1054 ms
  };
  auto slot = [](Score& s) -> NoteSlot& { return s.barMut(0, 0).Beats[0].Notes[0]; };
  const Case cases[] = {
      {"slide up to the next note: half the beat held, then 70 and 71; the next beat lands on 72",
       [&](Score& s) {
         slot(s).Technique = kSlideUp;
         AddBeat(s, 0, 0, kQuarter, {{0, "8"}});
       },
       0, {{62, 0, 69, 100}, {562, 0, 69, 0}, {562, 0, 70, 100}, {812, 0, 70, 0}, {812, 0, 71, 100}}},
      {"slide down with nothing after: five semitones away",
       [&](Score& s) { slot(s).Technique = kSlideDown; },
       0, {{62, 0, 69, 100}, {562, 0, 69, 0}, {562, 0, 68, 100}, {662, 0, 68, 0}, {662, 0, 67, 100},
           {762, 0, 67, 0}, {762, 0, 66, 100}, {862, 0, 66, 0}, {862, 0, 65, 100}, {962, 0, 65, 0},
           {962, 0, 64, 100}}},
      {"slide into from below, within a 16th",
       [&](Score& s) { slot(s).Technique = kSlideIntoUp; },
       0, {{62, 0, 64, 100}, {112, 0, 64, 0}, {112, 0, 65, 100}, {162, 0, 65, 0}, {162, 0, 66, 100},
           {212, 0, 66, 0}, {212, 0, 67, 100}, {262, 0, 67, 0}, {262, 0, 68, 100}, {312, 0, 68, 0},
           {312, 0, 69, 100}}},
      {"trill to fret 7 in 16ths",
       [&](Score& s) {
         slot(s).HasTrill = true;
         slot(s).Trill = {7, 1};
       },
       1, {{62, 1, 69, 100}, {312, 1, 69, 0}, {312, 1, 71, 100}, {562, 1, 71, 0}, {562, 1, 69, 100},
           {812, 1, 69, 0}, {812, 1, 71, 100}}},
      {"tremolo picking in 16ths strikes both picked strings again",
       [&](Score& s) {
         slot(s).Technique = kTremoloPicking16;
         auto& low = s.barMut(0, 0).Beats[0].Notes[1];
         low.Fret = "5";
         low.Technique = kTremoloPicking16;
       },
       1, {{62, 1, 64, 100}, {62, 1, 69, 100}, {312, 1, 64, 100}, {312, 1, 69, 100},
           {562, 1, 64, 100}, {562, 1, 69, 100}, {812, 1, 64, 100}, {812, 1, 69, 100}}},
      {"grace note (32nd, hammered on) before its note",
       [&](Score& s) {
         slot(s).HasGrace = true;
         slot(s).Grace = GraceInfo{"3", 1, 0, kGraceHammer};
       },
       1, {{62, 1, 67, 100}, {187, 1, 69, 80}}},
      {"dead grace note: a click, then the note",
       [&](Score& s) {
         slot(s).HasGrace = true;
         slot(s).Grace = GraceInfo{"x", 2, 5, kGraceNone};
       },
       1, {{62, 1, 69, 82}, {62, 1, 69, 0}, {124, 1, 69, 100}}},
      {"tapped harmonic: the octave over the fretted note",
       [&](Score& s) { slot(s).Harmonic = kTappedHarmonic; },
       0, {{62, 0, 81, 100}}},
      {"natural harmonic at the 7th fret: the fifth over the octave",
       [&](Score& s) {
         slot(s).Harmonic = kNaturalHarmonic;
         slot(s).Fret = "7";
       },
       0, {{62, 0, 83, 100}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Score s = MakeSong(1, 2, 60);
    AddBeat(s, 0, 0, kQuarter, {{0, "5"}});
    AddBeat(s, 0, 1, kWhole);
    c.build(s);
    const auto msgs = Trace(s);
    EXPECT_EQ(Notes(msgs, c.channel, 1054), c.notes);
    EXPECT_TRUE(EveryNoteEnds(msgs));
  }
}

TEST(Effects, TremoloBarMovesEveryNoteOfTheChord) {
  Score s = EffectSong(kQuarter, [](Beat& b) {
    b.Notes[1].Fret = "5";
    b.HasTremoloBar = true;
    for (size_t i = 0; i < 25; ++i) b.TremoloBar.mut().Points[i] = -2;  // a dip of a semitone
  });
  const auto msgs = Trace(s, {8, 4, 12, 6});
  std::vector<int> chordChannels;
  for (const NoteOn& n : NoteOns(msgs)) chordChannels.push_back(n.channel);
  EXPECT_EQ(chordChannels, (std::vector<int>{1, 1}));
  const auto wheels = Wheels(msgs, 1100);
  ASSERT_EQ(wheels.size(), 251u);  // positions 0.0 to 24.9, then the centre
  EXPECT_EQ(wheels[1].ms - wheels[0].ms, 4);  // 1000 ms / 240
  EXPECT_EQ(wheels[0].value, 48);
  EXPECT_EQ(wheels[249].value, 48);
  EXPECT_EQ(wheels[250].value, 64);
}

TEST(Effects, StopInTheMiddleCentresTheWheelAndSilences) {
  Score s = EffectSong(kWhole, [](Beat& b) {
    b.Notes[0].HasBend = true;
    b.Notes[0].Bend.mut().Points = StepCurve();
    b.ChordTechnique = kVibrato;  // the bend keeps the wheel: no vibrato elements
  });
  VirtualClock clock;
  RecordingMidiOut out([&clock] { return clock.nowMs(); });
  Scheduler sch(out, clock);
  sch.options.FollowPlayback = false;
  sch.PlayTab(s, 0, 1);
  clock.advanceTo(1500);
  const size_t before = out.messages.size();
  sch.StopTab();
  clock.advanceTo(10000);
  const auto wheels = Wheels(out.messages);
  ASSERT_FALSE(wheels.empty());
  EXPECT_EQ(wheels.back(), (Wheel{1500, 1, 64}));
  EXPECT_GT(Wheels({out.messages.begin(), out.messages.begin() + static_cast<long>(before)}).back().value, 64);
  EXPECT_TRUE(EveryNoteEnds(out.messages));
  // Nothing fires after the stop.
  EXPECT_EQ(out.messages.back().TimeMs, 1500);
}

TEST(Effects, ManyEffectsRunSideBySide) {
  // One track bends while another trills, each on its own effect channel, and a plain string
  // keeps sounding on the first track's main channel, out of the wheel's reach.
  Score s = MakeSong(2, 2, 60);
  Beat& bent = AddBeat(s, 0, 0, kQuarter, {{0, "5"}, {2, "2"}});
  bent.Notes[0].HasBend = true;
  bent.Notes[0].Bend.mut().Points = StepCurve();
  Beat& trilled = AddBeat(s, 1, 0, kQuarter, {{0, "5"}});
  trilled.Notes[0].HasTrill = true;
  trilled.Notes[0].Trill = {7, 0};
  for (int t = 0; t < 2; ++t) AddBeat(s, t, 1, kWhole);
  const auto msgs = Trace(s);
  const auto wheels = Wheels(msgs, 1200);
  EXPECT_EQ(std::count_if(wheels.begin(), wheels.end(), [](const Wheel& w) { return w.channel == 1; }), 261);
  EXPECT_EQ(wheels.size(), 261u);
  EXPECT_EQ(Notes(msgs, 0, 1054), (std::vector<NoteOn>{{62, 0, 57, 100}}));
  EXPECT_EQ(Notes(msgs, 1, 1054), (std::vector<NoteOn>{{62, 1, 69, 100}}));
  EXPECT_EQ(Notes(msgs, 3, 1054).size(), 15u);  // a 32nd trill over a quarter: 8 notes, 7 ends
  EXPECT_TRUE(EveryNoteEnds(msgs));
}

// Whether anything on the channel ends `key` (its note-off or a channel-wide stop) in the span.
bool EndedBetween(const std::vector<MidiMessage>& msgs, int channel, int key, double fromMs, double toMs) {
  for (const MidiMessage& m : msgs) {
    if ((m.Status & 0x0F) != channel || m.TimeMs < fromMs || m.TimeMs >= toMs) continue;
    if ((m.Status & 0xF0) == 0x90 && m.Data1 == key && m.Data2 == 0) return true;
    if ((m.Status & 0xF0) == 0xB0 && (m.Data1 == 120 || m.Data1 == 123)) return true;
  }
  return false;
}

TEST(Effects, BendAndTrillInOneBeatBothSound) {
  struct Case {
    const char* name;
    size_t trillString;
    int trillChannel;       // where the trill's notes go
    int trillKey;           // its first note
    bool trillRidesWheel;   // its notes bend with the wheel
  };
  const Case cases[] = {
      // Bend on the top string (69), trill on the B string (64 to 66): the trill keeps its pitch
      // on the main channel while the bent note rings and rises on the effect channel.
      {"trill on another string", 1, 0, 64, false},
      // Both on one string: the trill's notes are bent with it, on the effect channel.
      {"trill on the bent string", 0, 1, 69, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Score s = EffectSong(kQuarter, [&](Beat& b) {
      b.Notes[0].HasBend = true;
      b.Notes[0].Bend.mut().Points = StepCurve();
      NoteSlot& trill = b.Notes[c.trillString];
      trill.Fret = "5";
      trill.HasTrill = true;
      trill.Trill = {7, 1};  // 16ths: four notes over the quarter
    });
    const auto msgs = Trace(s);
    const std::vector<NoteOn> trillNotes = Notes(msgs, c.trillChannel, 1054);
    ASSERT_FALSE(trillNotes.empty());
    EXPECT_EQ(trillNotes.front(), (NoteOn{62, c.trillChannel, c.trillKey, 100}));
    EXPECT_EQ(std::count_if(trillNotes.begin(), trillNotes.end(), [](const NoteOn& n) { return n.velocity > 0; }), 4);
    if (!c.trillRidesWheel) {
      EXPECT_FALSE(EndedBetween(msgs, 1, 69, 63, 1054)) << "the trill cut the bent note";
      EXPECT_EQ(Notes(msgs, 1, 1054), (std::vector<NoteOn>{{62, 1, 69, 100}}));
    }
    // The bend runs its whole curve on the effect channel whichever way the trill goes.
    const auto wheels = Wheels(msgs, 1200);
    EXPECT_EQ(wheels.size(), 261u);
    EXPECT_TRUE(std::all_of(wheels.begin(), wheels.end(), [](const Wheel& w) { return w.channel == 1; }));
    EXPECT_TRUE(EveryNoteEnds(msgs));
  }
}

TEST(Effects, PlanMessagesCarryTheirTimes) {
  const EffectPlan p = PlanVibrato(3, 62.5, 16, false, {7.9, 4, 12, 2});
  const auto msgs = EffectMessages(p, 100);
  EXPECT_EQ(msgs, (std::vector<MidiMessage>{{100, 0xE3, 0, 62}, {600, 0xE3, 0, 70}, {600, 0xE3, 0, 64}}));
}

// The demo song of every effect, traced; the golden file was read through by hand once (each
// effect's run of notes or wheel values at its beat). PLECTARO_UPDATE_GOLDEN=1 writes it anew.
TEST(Effects, DemoSongTraceIsGolden) {
  Document doc;
  MemorySettingsStore settings;
  ASSERT_EQ(OpenMusicFile(doc, PLECTARO_SOURCE_DIR "/data/examples/effects.plm", settings), OpenOutcome::Opened);
  std::ostringstream trace;
  for (const MidiMessage& m : Trace(doc.score)) trace << FormatTraceLine(m) << "\n";
  const std::string golden = PLECTARO_SOURCE_DIR "/tests/data/effects_trace.txt";
  if (std::getenv("PLECTARO_UPDATE_GOLDEN")) WriteFileAtomically(golden, trace.str());
  EXPECT_EQ(trace.str(), ReadWholeFile(golden));
}

}  // namespace
}  // namespace plectaro
