#include "exchange/midi_import.h"

#include <gtest/gtest.h>

#include <cmath>

#include "exchange/midi_export.h"
#include "playback/midi_out.h"
#include "score/bar_timing.h"
#include "score/music_file.h"
#include "score/new_score.h"

namespace plectaro {
namespace {

constexpr int kTpq = 480;  // a 64th is 30 ticks

// A MIDI track written in 64ths: notes (start, length, key), velocity 100, on one channel.
struct N {
  double start, length;
  int key, velocity = 100;
};

MidiTrackChunk trackOf(const std::string& name, std::vector<N> notes, int channel = 0, int program = -1) {
  MidiTrackChunk t;
  if (!name.empty()) t.Events.push_back(MakeMetaEvent(0, kMetaTrackName, name));
  if (program >= 0) t.Events.push_back({0, uint8_t(0xC0 | channel), uint8_t(program), 0, ""});
  std::vector<MidiEvent> ev;
  for (const N& n : notes) {
    ev.push_back({uint32_t(std::lround(n.start * 30)), uint8_t(0x90 | channel), uint8_t(n.key), uint8_t(n.velocity), ""});
    ev.push_back({uint32_t(std::lround((n.start + n.length) * 30)), uint8_t(0x80 | channel), uint8_t(n.key), 0, ""});
  }
  std::stable_sort(ev.begin(), ev.end(), [](const auto& a, const auto& b) { return a.Tick < b.Tick; });
  t.Events.insert(t.Events.end(), ev.begin(), ev.end());
  return t;
}

MidiFileData fileOf(std::vector<MidiTrackChunk> tracks, std::vector<MidiEvent> conductor = {}) {
  MidiFileData f;
  f.Division = kTpq;
  MidiTrackChunk c;
  c.Events = std::move(conductor);
  f.Tracks.push_back(c);
  for (auto& t : tracks) f.Tracks.push_back(std::move(t));
  return ParseMidiFile(SerializeMidiFile(f));  // through the bytes, as a file from disk comes
}

MidiImportOptions opts(bool ties, bool reverb, bool quantize) {
  MidiImportOptions o;
  o.AddTies = ties;
  o.Reverb = reverb;
  o.Quantize = quantize;
  return o;
}

struct Imported {
  Score score;
  std::vector<MidiImportTrackReport> reports;
};

Imported import(const MidiFileData& f, MidiImportOptions o = {}) {
  Imported r;
  r.reports = FullImport(OpenMIDIData(f), o, r.score);
  return r;
}

// "fret/string" of every note of a beat, highest string first: "0/0 2/3".
std::string frets(const Score& s, int t, int b, int k) {
  std::string out;
  const Beat& beat = s.beat(t, b, k);
  for (int i = 0; i < kMaxStrings; ++i) {
    const NoteSlot& n = beat.Notes[size_t(i)];
    if (!n.hasNote()) continue;
    out += (out.empty() ? "" : " ") + n.Fret + "/" + std::to_string(i) + (n.Tied ? "~" : "");
  }
  return out.empty() ? "rest" : out;
}

// The beats of a bar as "length:frets", a length in 64ths.
std::vector<std::string> beats(const Score& s, int t, int b) {
  std::vector<std::string> out;
  for (int k = 0; k <= s.GetLastBeat(t, b); ++k)
    out.push_back(Format64ths(GetNumOf64ths(s.beat(t, b, k))) + ":" + frets(s, t, b, k));
  return out;
}

TEST(MidiImport, PlaceNoteOnString) {
  struct Case {
    int numStrings, string, note;
    bool placed;
    const char* fret;
    int numStringsAfter;
  } cases[] = {
      {6, 5, 40, true, "0", 6},     // the low E string, open
      {6, 0, 93, true, "29", 6},    // the highest fret there is
      {6, 0, 94, false, "", 6},     // fret 30 moves on to the next string
      {6, 5, 39, false, "", 7},     // below string 5 of six strings: a seventh string is added
      {6, 4, 30, false, "", 6},     // only string 5 widens the track
      {7, 5, 39, false, "", 7},
      {7, 6, 35, true, "0", 7},
  };
  for (const Case& c : cases) {
    Score s;
    s.Tracks[0].Tuning.NumStrings = int16_t(c.numStrings);
    EXPECT_EQ(PlaceNoteOnString(s, c.string, 0, 0, 0, c.note, 100), c.placed) << c.note;
    EXPECT_EQ(s.note(0, 0, 0, c.string).Fret, c.fret) << c.note;
    EXPECT_EQ(s.Tracks[0].Tuning.NumStrings, c.numStringsAfter) << c.note;
  }
}

TEST(MidiImport, StringScanOfAChord) {
  struct Case {
    const char* name;
    std::vector<int> keys;  // struck together, in this order
    const char* frets;
    int numStrings, lost;
  } cases[] = {
      {"highest string that fits wins", {64, 69, 40}, "0/0 10/1 0/5", 6, 0},
      {"a low note widens and takes string 6 in the same scan", {35}, "0/6", 7, 0},
      {"seven notes fill all strings, the eighth is lost",
       {35, 64, 59, 55, 50, 45, 40, 60}, "0/0 0/1 0/2 0/3 0/4 0/5 0/6", 7, 1},
      {"too high for every string", {94, 64}, "0/0", 6, 1},
  };
  for (const Case& c : cases) {
    std::vector<N> notes;
    for (int k : c.keys) notes.push_back({0, 16, k});
    const Imported r = import(fileOf({trackOf("Gtr", notes)}));
    EXPECT_EQ(frets(r.score, 0, 0, 0), c.frets) << c.name;
    EXPECT_EQ(r.score.Tracks[0].Tuning.NumStrings, c.numStrings) << c.name;
    EXPECT_EQ(r.reports[0].Lost, c.lost) << c.name;
    EXPECT_EQ(r.reports[0].Placed, int(c.keys.size()) - c.lost) << c.name;
  }
}

TEST(MidiImport, VelocityBandsAtTheirEdges) {
  const std::pair<int, int32_t> cases[] = {
      {1, kVolPPP}, {16, kVolPPP}, {17, kVolPP},  {34, kVolPP},  {35, kVolP},   {52, kVolP},
      {53, kVolMP}, {69, kVolMP},  {70, kVolMF},  {87, kVolMF},  {88, kVolF},   {105, kVolF},
      {106, kVolFF}, {113, kVolFF}, {114, kVolFFF}, {127, kVolFFF}};
  for (auto [velocity, code] : cases) EXPECT_EQ(VolumeCodeForVelocity(velocity), code) << velocity;
}

TEST(MidiImport, TrackSetUpByNameChannelAndProgram) {
  const MidiFileData f = fileOf({trackOf("Lead", {{0, 16, 64}}), trackOf("bass", {{0, 16, 40}}),
                                 trackOf("FRETLESS BaSs", {{0, 16, 40}}), trackOf("", {{0, 16, 40}}, 2, 33),
                                 trackOf("Kit", {{0, 8, 36}, {0, 8, 42}, {8, 8, 38}, {8, 8, 42}, {16, 8, 69}}, 9)});
  const MidiImportSource src = OpenMIDIData(f);
  EXPECT_EQ(src.TrackList[0], "Track 1 (null)");
  EXPECT_EQ(src.TrackList[1], "Track 2 (Lead)");
  const Imported r = import(f, opts(false, true, false));
  ASSERT_EQ(r.score.Tracks.size(), 5u);  // the conductor track has no notes and is left out
  const auto& T = r.score.Tracks;
  EXPECT_EQ(T[0].Name, "Lead");
  EXPECT_EQ(T[0].Tuning.Offset[0], 0);
  for (int t : {1, 2, 3}) {
    EXPECT_EQ(T[size_t(t)].Tuning.Offset[5], -12) << t;
    EXPECT_EQ(frets(r.score, t, 0, 0), "2/3") << t;  // low E is fret 2 of the bass's D string
  }
  EXPECT_EQ(T[3].Instrument, 33);
  EXPECT_EQ(T[3].Channel, 2);
  EXPECT_TRUE(T[0].Reverb);

  const Track& kit = T[4];
  EXPECT_TRUE(kit.DrumTrack);
  EXPECT_EQ(kit.Channel, 9);
  EXPECT_EQ(kit.Tuning.NumStrings, 4);  // four different sounds, a line each
  EXPECT_EQ(r.reports[4].Placed, 5);
  // Each hit sounds its own key again when played.
  auto keyOf = [&](int b, int k, int line) {
    const std::string& sym = r.score.note(4, b, k, line).Fret;
    const size_t i = size_t(std::find(kDrumSymbols.begin(), kDrumSymbols.end(), sym[0]) - kDrumSymbols.begin());
    return GetDrumNote(kit.DrumMaps[size_t(line)].Drum[i]);
  };
  EXPECT_EQ(keyOf(0, 0, 0), 36);
  EXPECT_EQ(keyOf(0, 0, 1), 42);
  EXPECT_EQ(keyOf(0, 1, 2), 38);
  EXPECT_EQ(keyOf(0, 2, 3), 69);  // beyond the list's gap: looked up, not note - 34
}

TEST(MidiImport, TempoAndBarsFromMetaEvents) {
  // 3/4 for two bars, then 6/8; a signature change in the middle of a bar starts a new bar.
  const MidiFileData f = fileOf({trackOf("G", {{0, 48, 64}, {48, 48, 64}, {96, 48, 64}, {144, 8, 64}})},
                                {MakeTempoEvent(0, 600000), MakeTimeSignatureEvent(0, 3, 4),
                                 MakeTempoEvent(960, 400000), MakeTimeSignatureEvent(48 * 2 * 30, 6, 8),
                                 MakeTimeSignatureEvent(136 * 30, 4, 4)});
  const Imported r = import(f);
  EXPECT_EQ(r.score.Tempo, 100);  // the first tempo event; the later one is not kept
  std::vector<std::pair<int, int>> sigs;
  for (const BarInfo& b : r.score.BarInfos) sigs.push_back({b.TimeSigNumerator, b.TimeSigDenominator});
  // Bar 3 is cut short at 136 by the 4/4: 40 64ths, written 5/8.
  EXPECT_EQ(sigs, (std::vector<std::pair<int, int>>{{3, 4}, {3, 4}, {5, 8}, {4, 4}}));
  for (int b = 0; b < 4; ++b) EXPECT_EQ(CheckBar(r.score, 0, b), kBarExact) << b;
}

TEST(MidiImport, BeatsRestsTiesAndQuantize) {
  struct Case {
    const char* name;
    std::vector<N> notes;
    MidiImportOptions options;
    std::vector<std::string> bar0, bar1;
  } cases[] = {
      {"a rest between notes, a short note followed by a rest",
       {{0, 16, 64}, {32, 8, 64}}, {},
       {"16.0:0/0", "16.0:rest", "8.0:0/0", "24.0:rest"}, {}},
      {"triplets are recognised",
       {{0, 16.0 / 3 * 2, 64}, {16.0 / 3 * 2, 16.0 / 3 * 2, 65}, {32.0 / 3 * 2, 16.0 / 3 * 2, 66}, {32, 32, 67}}, {},
       {"10.667:0/0", "10.667:1/0", "10.667:2/0", "32.0:3/0"}, {}},
      {"a chord lasts as long as its longest note",
       {{0, 8, 64}, {0, 24, 40}, {24, 40, 64}}, {},
       {"24.0:0/0 0/5", "32.0:0/0", "8.0:rest"}, {}},
      {"crossing the bar line: cut without ties",
       {{48, 32, 64}, {80, 48, 64}}, {},
       {"48.0:rest", "16.0:0/0"}, {"16.0:rest", "48.0:0/0"}},
      {"crossing the bar line: tied with ties",
       {{48, 32, 64}, {80, 48, 64}}, opts(true, false, false),
       {"48.0:rest", "16.0:0/0"}, {"16.0:0/0~", "48.0:0/0"}},
      {"a length that no single beat has is split, and tied with ties",
       {{0, 20, 64}, {20, 44, 65}}, opts(true, false, false),
       {"16.0:0/0", "4.0:0/0~", "32.0:1/0", "12.0:1/0~"}, {}},
      {"unquantized starts round to the nearest 64th",
       {{0, 15.6, 64}, {15.6, 48.4, 65}}, {},
       {"16.0:0/0", "48.0:1/0"}, {}},
      {"quantized starts are truncated",
       {{0, 15.6, 64}, {15.6, 48.4, 65}}, opts(false, false, true),
       {"12.0:0/0", "3.0:rest", "48.0:1/0", "1.0:rest"}, {}},
  };
  for (const Case& c : cases) {
    MidiImportOptions o = c.options;
    const Imported r = import(fileOf({trackOf("G", c.notes)}), o);
    EXPECT_EQ(beats(r.score, 0, 0), c.bar0) << c.name;
    if (!c.bar1.empty()) {
      EXPECT_EQ(beats(r.score, 0, 1), c.bar1) << c.name;
    }
  }
}

// A demo song written out and read back keeps every note: the file's notes are either placed
// or counted as lost, and the bars come back exact.
TEST(MidiImport, DemoSongsComeBack) {
  MemorySettingsStore settings;
  SetDefaultVars(settings);
  for (const char* name : {"band.plm", "riff.plm", "waltz.plm"}) {
    SCOPED_TRACE(name);
    Document doc;
    ASSERT_EQ(OpenMusicFile(doc, std::string(PLECTARO_SOURCE_DIR) + "/data/examples/" + name, settings),
              OpenOutcome::Opened);
    const MidiImportSource src = OpenMIDIData(ParseMidiFile(SerializeMidiFile(MakeMIDIData(doc.score))));
    Score back;
    const auto reports = FullImport(src, opts(true, false, true), back);
    EXPECT_EQ(back.Tempo, doc.score.Tempo);
    int placed = 0;
    for (size_t i = 0; i < reports.size(); ++i) {
      EXPECT_EQ(reports[i].Placed + reports[i].Lost, src.NotesPerTrack[size_t(reports[i].MidiTrack)]);
      placed += reports[i].Placed;
      for (int b = 0; b <= back.GetLastBar(int(i)); ++b)
        EXPECT_EQ(CheckBar(back, int(i), b), kBarExact) << "track " << i << " bar " << b;
    }
    EXPECT_GT(placed, 0);
  }
}

TEST(MidiImport, NothingToImportIsRefused) {
  EXPECT_THROW(import(fileOf({trackOf("empty", {})})), ScoreError);
}

}  // namespace
}  // namespace plectaro
