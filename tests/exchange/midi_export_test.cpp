#include "exchange/midi_export.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cmath>
#include <map>
#include <tuple>
#include <vector>

#include "playback/offline_play.h"
#include "score/music_file.h"
#include "score/new_score.h"

namespace plectaro {
namespace {

Score song(int tracks, int bars) {
  Score s;
  s.Tempo = 120;
  s.Tracks.resize(static_cast<size_t>(tracks));
  for (int t = 0; t < tracks; ++t) {
    s.Tracks[static_cast<size_t>(t)].Name = "T" + std::to_string(t + 1);
    s.Tracks[static_cast<size_t>(t)].Channel = static_cast<int16_t>(2 * t);
    s.Tracks[static_cast<size_t>(t)].EffectChannel = static_cast<int16_t>(2 * t + 1);
  }
  s.SetBarCount(bars - 1);
  for (Track& tr : s.Tracks)
    for (auto& bar : tr.Bars) bar.mut().Beats.clear();
  return s;
}

Beat& add(Score& s, int t, int b, int length, int string, const char* fret, bool triplet = false) {
  auto& beats = s.barMut(t, b).Beats;
  beats.emplace_back();
  beats.back().Length = length;
  beats.back().IsTuplet = triplet;
  beats.back().Notes[static_cast<size_t>(string)].Fret = fret;
  return beats.back();
}

struct Note {
  uint32_t tick;
  int channel, key, velocity;
  bool operator==(const Note&) const = default;
};

std::vector<Note> noteOns(const MidiTrackChunk& t) {
  std::vector<Note> v;
  for (const MidiEvent& e : t.Events)
    if (e.isNoteOn()) v.push_back({e.Tick, e.channel(), e.Data1, e.Data2});
  return v;
}

TEST(MidiExport, ExactPositionsForTupletsRepeatsAndSignatures) {
  // Track 1: a triplet of eighths and a half; track 2: quarters. Bar 1 is repeated once and
  // bar 2 is in 3/4. Playback takes 6 whole steps per triplet eighth; the file keeps 5.33.
  Score s = song(2, 2);
  for (int i = 0; i < 3; ++i) add(s, 0, 0, kEighth, 0, "0", true);
  add(s, 0, 0, kHalf, 0, "2");
  add(s, 0, 0, kQuarter, 0, "3");
  for (int i = 0; i < 4; ++i) add(s, 1, 0, kQuarter, 5, "0");
  s.barInfoMut(0).RepeatClose = 1;
  s.SetTimeSignature(1, 3, 4);
  add(s, 0, 1, kHalf, 0, "5").Dotted = true;
  for (int i = 0; i < 3; ++i) add(s, 1, 1, kQuarter, 5, "3");

  const MidiFileData f = ParseMidiFile(SerializeMidiFile(MakeMIDIData(s)));
  EXPECT_EQ(f.Format, 1);
  EXPECT_EQ(f.Division, 960);
  ASSERT_EQ(f.Tracks.size(), 2u);
  EXPECT_EQ(f.Tracks[1].name(), "T2");
  std::vector<uint32_t> ticks0;
  for (const Note& n : noteOns(f.Tracks[0])) ticks0.push_back(n.tick);
  const std::vector<uint32_t> pass = {0, 320, 640, 960, 2880};
  std::vector<uint32_t> want = pass;
  for (uint32_t t : pass) want.push_back(t + 3840);
  want.push_back(7680);
  EXPECT_EQ(ticks0, want);
  const auto ons1 = noteOns(f.Tracks[1]);
  ASSERT_EQ(ons1.size(), 11u);
  EXPECT_EQ(ons1[4].tick, 3840u);
  EXPECT_EQ(ons1[10], (Note{7680 + 1920, 2, 43, 100}));

  // Tempo 120 and the signatures where they change: 4/4 at the start, 3/4 after the repeat.
  std::vector<std::tuple<uint32_t, int, int>> sigs;
  uint32_t tempo = 0;
  for (const MidiEvent& e : f.Tracks[0].Events) {
    int n = 0, d = 0;
    if (e.isMeta() && e.Data1 == kMetaTempo) tempo = TempoOf(e);
    if (e.isMeta() && e.Data1 == kMetaTimeSignature && TimeSignatureOf(e, n, d)) sigs.emplace_back(e.Tick, n, d);
  }
  EXPECT_EQ(tempo, 500000u);
  EXPECT_EQ(sigs, (std::vector<std::tuple<uint32_t, int, int>>{{0, 4, 4}, {7680, 3, 4}}));
}

// Every demo song: the file read back holds, channel by channel, the same notes in the same
// order as the message stream of playback, every note is switched off in its own track, and
// where no tuplet or strum stands between, a note sits at exactly its playback step.
TEST(MidiExport, DemoSongsAgreeWithPlayback) {
  MemorySettingsStore settings;
  SetDefaultVars(settings);
  for (const char* name : {"band.plm", "riff.plm", "waltz.plm"}) {
    SCOPED_TRACE(name);
    Document doc;
    ASSERT_EQ(OpenMusicFile(doc, std::string(PLECTARO_SOURCE_DIR) + "/data/examples/" + name, settings),
              OpenOutcome::Opened);
    const Score& s = doc.score;
    const MidiFileData f = ParseMidiFile(SerializeMidiFile(MakeMIDIData(s)));
    ASSERT_EQ(f.Tracks.size(), s.Tracks.size());

    std::map<int, std::vector<std::pair<int, int>>> fromFile, fromTrace;
    std::map<int, std::vector<uint32_t>> fileTicks;
    for (const MidiTrackChunk& t : f.Tracks) {
      std::map<int, int> sounding;
      for (const MidiEvent& e : t.Events) {
        if (e.isNoteOn()) {
          fromFile[e.channel()].push_back({e.Data1, e.Data2});
          fileTicks[e.channel()].push_back(e.Tick);
          ++sounding[e.channel() * 128 + e.Data1];
        } else if (e.isNoteOff()) {
          EXPECT_GT(sounding[e.channel() * 128 + e.Data1]--, 0) << "a note-off with no note";
        }
      }
      for (const auto& [key, n] : sounding) EXPECT_EQ(n, 0) << "note " << key % 128 << " never ends";
    }
    std::map<int, std::vector<double>> traceMs;
    for (const MidiMessage& m : TraceSong(s, 0, 32767, PlaybackOptions{false})) {
      if ((m.Status & 0xF0) != 0x90 || m.Data2 == 0) continue;
      fromTrace[m.Status & 0x0F].push_back({m.Data1, m.Data2});
      traceMs[m.Status & 0x0F].push_back(m.TimeMs);
    }
    EXPECT_EQ(fromFile, fromTrace);

    bool tuplets = false;
    for (const Track& tr : s.Tracks)
      for (const auto& bar : tr.Bars)
        for (const Beat& beat : bar->Beats) tuplets = tuplets || beat.IsTuplet;
    if (tuplets) continue;  // playback rounds tuplets up to whole steps, the file does not
    const double interval = IntervalForTempo(s.Tempo);
    int onStep = 0;
    for (const auto& [ch, ticks] : fileTicks)
      for (size_t i = 0; i < ticks.size() && i < traceMs[ch].size(); ++i) {
        const double step = traceMs[ch][i] / interval - 1;
        if (step != std::floor(step)) continue;  // a strum string, some milliseconds late
        EXPECT_EQ(ticks[i], static_cast<uint32_t>(step * 60)) << "channel " << ch << " note " << i;
        ++onStep;
      }
    EXPECT_GT(onStep, 20);
  }
}

TEST(MidiExport, SavingOverAFileReplacesItWhole) {
  const auto dir = std::filesystem::temp_directory_path() / ("plectaro_midi_" + std::to_string(::getpid()));
  std::filesystem::create_directories(dir);
  Score s = song(1, 1);
  add(s, 0, 0, kWhole, 0, "0");
  MakeMIDIFile(s, dir / "a.mid");
  const MidiFileData f = ReadMidiFile((dir / "a.mid").string());
  EXPECT_EQ(f.Format, 0);
  EXPECT_EQ(noteOns(f.Tracks[0]), (std::vector<Note>{{0, 0, 64, 100}}));
  EXPECT_THROW(MakeMIDIFile(s, dir / "missing" / "b.mid"), FileError);
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace plectaro
