// Builds the demo songs that ship in data/examples/ and writes them with our own writer.
// Run it again after a change to the songs: plectaro-make-demos data/examples
#include <cstdio>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "score/bar_timing.h"
#include "score/music_file.h"
#include "score/score_records.h"

using namespace plectaro;

namespace {

// One beat in a compact form: the length, the frets from string 0 down separated by blanks
// ("." for no note), and a few marks.
struct N {
  int len;
  const char* frets;
  bool dot = false;
  bool triplet = false;
};

void setBar(Score& s, int t, int b, const std::vector<N>& beats) {
  s.SetBeatCount(t, b, static_cast<int>(beats.size()) - 1);
  for (size_t k = 0; k < beats.size(); ++k) {
    Beat& bt = s.beatMut(t, b, static_cast<int>(k));
    bt = Beat();
    bt.Length = beats[k].len;
    bt.Dotted = beats[k].dot;
    bt.IsTuplet = beats[k].triplet;
    std::istringstream in(beats[k].frets);
    std::string fret;
    for (size_t str = 0; str < kMaxStrings && in >> fret; ++str)
      if (fret != ".") bt.Notes[str].Fret = fret;
  }
}

NoteSlot& note(Score& s, int t, int b, int k, int str) { return s.noteMut(t, b, k, str); }

Track& addTrack(Score& s, const char* name, const char* instrumentName, int program, int channel,
                int effectChannel) {
  s.Tracks.emplace_back();
  Track& tr = s.Tracks.back();
  tr.Bars.resize(s.BarInfos.size());
  tr.Name = name;
  tr.InstrumentName = instrumentName;
  tr.Instrument = static_cast<int16_t>(program);
  tr.Channel = static_cast<int16_t>(channel);
  tr.EffectChannel = static_cast<int16_t>(effectChannel);
  tr.Volume = 100;
  return tr;
}

void requireExactBars(const Score& s, const char* song) {
  for (int t = 0; t <= s.LastTrack(); ++t)
    for (int b = 0; b <= s.GetLastBar(t); ++b)
      if (CheckBar(s, t, b) != kBarExact)
        std::fprintf(stderr, "%s: track %d bar %d is not exact\n", song, t + 1, b + 1);
}

// ---------------------------------------------------------------- Riff: one overdriven guitar
Score riff() {
  Score s;
  s.Title = "Gravel Road Riff";
  s.SubTitle = "Demo song";
  s.Artist = "Plectaro Demo Band";
  s.TabAuthor = "Plectaro";
  s.Instructions = "Palm mute the eighths; let the last chord ring.";
  s.Tempo = 112;
  Track& g = s.Tracks[0];
  g.Name = "Guitar";
  g.InstrumentName = "Overdriven Guitar";
  g.Instrument = 29;
  g.Volume = 100;
  s.SetBarCount(7);

  const char* E5 = ". . . 2 2 0";
  const char* G5 = ". . . 5 5 3";
  const char* A5 = ". . . 7 7 5";
  for (int b : {0, 4}) {
    setBar(s, 0, b, {{kEighth, E5}, {kEighth, E5}, {kEighth, E5}, {kEighth, E5},
                     {kEighth, G5}, {kEighth, G5}, {kEighth, A5}, {kEighth, A5}});
    for (int k = 0; k < 4; ++k) s.beatMut(0, b, k).ChordTechnique = kPalmMute;
  }
  for (int b : {1, 5}) {
    setBar(s, 0, b, {{kEighth, E5}, {kEighth, E5}, {kSixteenth, ". . . 2 . ."}, {kSixteenth, ". . . 4 . ."},
                     {kEighth, ". . . 2 . ."}, {kEighth, ". . . . 2 ."}, {kEighth, ". . . . 0 ."},
                     {kQuarter, ". . . . . 3"}});
    note(s, 0, b, 3, 3).Technique = kHammerOnPullOff;
    note(s, 0, b, 7, 5).Technique = kSlideUp;
  }
  for (int b : {2, 6}) {
    setBar(s, 0, b, {{kQuarter, ". . 7 . . ."}, {kEighth, ". 8 . . . ."}, {kEighth, ". 7 . . . ."},
                     {kEighth, ". . 9 . . ."}, {kEighth, ". . 7 . . ."}, {kQuarter, ". . . 9 . ."}});
    NoteSlot& bend = note(s, 0, b, 0, 2);
    bend.HasBend = true;
    BendInfo& curve = bend.Bend.mut();
    for (size_t i = 0; i < curve.Points.size(); ++i) curve.Points[i] = i < 8 ? 0.25 * static_cast<double>(i) : 2;
    curve.Scale = 7;
    note(s, 0, b, 5, 3).LetRing = true;
  }
  setBar(s, 0, 3, {{kEighth, E5}, {kEighth, E5}, {kEighth, G5}, {kEighth, G5},
                   {kEighth, ". . . 4 4 2"}, {kEighth, ". . . 4 4 2"}, {kQuarter, ". . . 0 . ."}});
  note(s, 0, 3, 6, 3).Accentuate = true;
  // The last bar answers with a ringing E minor chord.
  setBar(s, 0, 7, {{kEighth, E5}, {kEighth, G5}, {kEighth, A5}, {kEighth, G5},
                   {kHalf, "0 0 0 2 2 0"}});
  s.beatMut(0, 7, 4).ChordTechnique = kVibrato;
  s.beatMut(0, 7, 4).Stroke = kDownStroke;
  for (int str = 0; str < 6; ++str) note(s, 0, 7, 4, str).LetRing = true;
  s.barInfoMut(0).RepeatOpen = true;
  s.barInfoMut(3).RepeatClose = 2;
  requireExactBars(s, "riff");
  return s;
}

// ------------------------------------------- Band: drums, bass, two guitars, repeats and a coda
struct ChordShape {
  const char* strum;  // full chord on the rhythm guitar
  const char* bass;   // root on the four-string bass
};

Score band() {
  Score s;
  s.Title = "Harbour Lights";
  s.SubTitle = "Demo song for a four-piece band";
  s.Artist = "Plectaro Demo Band";
  s.Album = "Examples";
  s.TabAuthor = "Plectaro";
  s.Tempo = 120;
  // Intro 0-1 | verse 2-5 (twice, Sign at 2, To Coda after 5) | chorus 6-9 (D.S. al Coda) | coda 10-11
  s.SetBarCount(11);
  s.barInfoMut(2).RepeatOpen = true;
  s.barInfoMut(2).Sign = true;
  s.barInfoMut(5).RepeatClose = 2;
  s.barInfoMut(5).ToCoda = true;
  s.barInfoMut(9).DSAlCoda = true;
  s.barInfoMut(10).Coda = true;

  Track& rhythm = s.Tracks[0];
  rhythm.Name = "Rhythm Guitar";
  rhythm.InstrumentName = "Distortion Guitar";
  rhythm.Instrument = 30;
  rhythm.Volume = 90;
  rhythm.Channel = 0;
  rhythm.EffectChannel = 1;
  Track& lead = addTrack(s, "Lead Guitar", "E. Guitar (Clean)", 27, 2, 3);
  lead.TrebleStaff = true;
  Track& bass = addTrack(s, "Bass", "E. Bass (Finger)", 33, 4, 5);
  bass.Tuning.NumStrings = 4;
  bass.Tuning.Offset = {-21, -21, -22, -22, 0, 0, 0};  // G D A E, an octave under the guitar
  bass.TrebleStaff = false;
  bass.BassStaff = true;
  Track& drums = addTrack(s, "Drums", "", 0, 9, 9);
  drums.DrumTrack = true;
  drums.TrebleStaff = false;
  drums.Tuning.NumStrings = 3;
  // Line 0 cymbals: x closed hi-hat, o open hi-hat, X crash. Line 1 snare. Line 2 bass drum.
  drums.DrumMaps[0].Drum = {15, 12, 8, 17, 0, 12, 0, 0, 0, 0, 0, 0};
  drums.DrumMaps[1].Drum = {4, 3, 4, 4, 0, 0, 0, 0, 0, 4, 0, 0};
  drums.DrumMaps[2].Drum = {1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0};

  const ChordShape Em{"0 0 0 2 2 0", ". . 2 0"}, C{"0 1 0 2 3 .", ". . 3 ."},
      G{"3 0 0 0 2 3", ". . . 3"}, D{"2 3 2 0 . .", ". 0 . ."};
  const ChordShape progression[12] = {Em, Em, Em, C, G, D, C, G, D, Em, C, Em};

  for (int b = 0; b < 12; ++b) {
    const ChordShape& ch = progression[b];
    // Rhythm guitar: quarter, two eighths, quarter, two eighths, strummed down and up.
    setBar(s, 0, b, {{kQuarter, ch.strum}, {kEighth, ch.strum}, {kEighth, ch.strum},
                     {kQuarter, ch.strum}, {kEighth, ch.strum}, {kEighth, ch.strum}});
    for (int k = 0; k < 6; ++k) s.beatMut(0, b, k).Stroke = (k == 2 || k == 5) ? kUpStroke : kDownStroke;
    // Bass: eighth-note roots.
    std::vector<N> roots(8, N{kEighth, ch.bass});
    setBar(s, 2, b, roots);
    // Drums: hi-hat eighths, snare on 2 and 4, bass drum on 1 and 3 (and the "and" of 3).
    std::vector<N> groove = {{kEighth, "x . X"}, {kEighth, "x . ."}, {kEighth, "x X ."}, {kEighth, "x . ."},
                             {kEighth, "x . X"}, {kEighth, "x . X"}, {kEighth, "x X ."}, {kEighth, "o . ."}};
    if (b == 0 || b == 2 || b == 6 || b == 10) groove[0].frets = "X . X";  // crash on each section
    setBar(s, 3, b, groove);
  }
  // Drums are silent for the first half bar of the intro and fill into the verse.
  setBar(s, 3, 1, {{kEighth, "x . X"}, {kEighth, "x . ."}, {kEighth, "x X ."}, {kEighth, "x . ."},
                   {kSixteenth, ". X ."}, {kSixteenth, ". X ."}, {kSixteenth, ". X ."}, {kSixteenth, ". X ."},
                   {kEighth, ". X X"}, {kEighth, "X . X"}});

  // Lead guitar: rests in the intro, a pentatonic melody over verse and chorus, a held note to end.
  setBar(s, 1, 0, {{kWhole, "."}});
  setBar(s, 1, 1, {{kHalf, "."}, {kQuarter, "."}, {kEighth, ". . 7 . . ."}, {kEighth, ". . 9 . . ."}});
  setBar(s, 1, 2, {{kQuarter, ". 8 . . . ."}, {kEighth, ". 10 . . . ."}, {kEighth, ". 8 . . . ."},
                   {kHalf, ". . 9 . . ."}});
  setBar(s, 1, 3, {{kQuarter, "8 . . . . ."}, {kEighth, "7 . . . . ."}, {kEighth, ". 8 . . . ."},
                   {kHalf, ". . 9 . . ."}});
  setBar(s, 1, 4, {{kQuarter, ". 8 . . . ."}, {kQuarter, ". 10 . . . ."}, {kHalf, "10 . . . . ."}});
  setBar(s, 1, 5, {{kQuarter, ". 10 . . . ."}, {kEighth, ". 8 . . . ."}, {kEighth, ". . 9 . . ."},
                   {kHalf, ". . 7 . . ."}});
  s.noteMut(1, 4, 2, 0).HasBend = true;
  s.noteMut(1, 4, 2, 0).Bend.mut().Points.fill(1);
  for (int b = 6; b < 10; ++b)
    setBar(s, 1, b, {{kQuarter, "12 . . . . ."}, {kQuarter, ". 12 . . . ."}, {kQuarter, "12 . . . . ."},
                     {kQuarter, ". . 12 . . ."}});
  setBar(s, 1, 9, {{kQuarter, "12 . . . . ."}, {kQuarter, ". 12 . . . ."}, {kHalf, ". . 12 . . ."}});
  s.beatMut(1, 9, 2).ChordTechnique = kVibrato;
  setBar(s, 1, 10, {{kHalf, ". . 9 . . ."}, {kHalf, ". 8 . . . ."}});
  setBar(s, 1, 11, {{kWhole, "12 12 . . . ."}});
  s.beatMut(1, 11, 0).ChordTechnique = kWideVibrato;
  s.beatMut(1, 2, 0).Text = "Verse";
  s.beatMut(1, 6, 0).Text = "Chorus";
  // The band ends together on a ringing chord.
  setBar(s, 0, 11, {{kWhole, Em.strum}});
  setBar(s, 2, 11, {{kWhole, Em.bass}});
  setBar(s, 3, 11, {{kWhole, "X . X"}});
  requireExactBars(s, "band");
  return s;
}

// ------------------------------------ Waltz: 3/4 fingerstyle with triplets and dotted notes
Score waltz() {
  Score s;
  s.Title = "Morning Waltz";
  s.SubTitle = "Fingerstyle study in A minor";
  s.Artist = "Plectaro Demo";
  s.TabAuthor = "Plectaro";
  s.Notes = "Let the bass notes ring through each bar.";
  s.Tempo = 90;
  Track& g = s.Tracks[0];
  g.Name = "Nylon Guitar";
  g.BassStaff = false;
  s.SetBarCount(7);
  for (int b = 0; b < 8; ++b) {
    s.SetTimeSignature(b, 3, 4);
    s.barMut(0, b).KeyMinor = true;
  }
  struct Arp {
    const char* bassNote;
    const char* t1;
    const char* t2;
    const char* t3;
    const char* top;
    const char* name;
    const char* chart;  // the chart's frets from string 0, counted from startFret
    int startFret;
    bool barre;
  };
  // The charts show the shapes to hold while the arpeggio rings; the second A minor is the
  // barre shape at the fifth fret, drawn above the nut.
  const Arp arps[6] = {
      {". . . . 0 .", ". . 2 . . .", ". 1 . . . .", "0 . . . . .", ". 1 . . . .", "Am", "0 1 2 2 0 x", 0, false},
      {". . . 0 . .", ". . 2 . . .", ". 3 . . . .", "1 . . . . .", ". 3 . . . .", "Dm", "1 3 2 0 x x", 0, false},
      {". . . . . 0", ". . 1 . . .", ". 0 . . . .", "0 . . . . .", ". 3 . . . .", "E7", "0 0 1 0 2 0", 0, false},
      {". . . . 0 .", ". . 2 . . .", ". 1 . . . .", "0 . . . . .", ". 1 . . . .", "Am", "1 1 1 3 3 1", 4, true},
      {". . . 3 . .", ". . 2 . . .", ". 1 . . . .", "1 . . . . .", ". 1 . . . .", "F", "1 1 2 3 3 1", 0, true},
      {". . . . 3 .", ". . 0 . . .", ". 1 . . . .", "0 . . . . .", ". 1 . . . .", "C", "0 1 0 2 3 x", 0, false},
  };
  s.AlwaysDrawChordCharts = true;
  // Bars 0-5: bass quarter, three triplet eighths, a quarter on top.
  for (int b = 0; b < 6; ++b) {
    const Arp& a = arps[b];
    setBar(s, 0, b, {{kQuarter, a.bassNote}, {kEighth, a.t1, false, true}, {kEighth, a.t2, false, true},
                     {kEighth, a.t3, false, true}, {kQuarter, a.top}});
    Beat& first = s.beatMut(0, b, 0);
    first.HasChord = true;
    BeatChord& c = first.Chord.mut();
    c.Name = a.name;
    c.NumStrings = 6;
    c.StartFret = static_cast<int16_t>(a.startFret);
    c.Barre = a.barre;
    c.Tuning = {64, 59, 55, 50, 45, 40, 0};
    std::istringstream chart(a.chart);
    for (size_t str = 0; str < 6 && chart >> c.Frets[str];) ++str;
  }
  // Bar 6: a dotted quarter, an eighth and a quarter; bar 7: the closing dotted half.
  setBar(s, 0, 6, {{kQuarter, ". . 1 . . 0", true}, {kEighth, ". 0 . . . ."}, {kQuarter, "0 . . . . ."}});
  s.beatMut(0, 6, 0).Text = "rit.";
  setBar(s, 0, 7, {{kHalf, "0 1 2 2 0 .", true}});
  for (int str = 0; str < 5; ++str) s.noteMut(0, 7, 0, str).LetRing = true;
  s.barInfoMut(7).RepeatClose = 0;
  requireExactBars(s, "waltz");
  return s;
}


// ------------------------------------------------------ Effects: every effect, one after another
// Each beat names its effect in its text, so the page reads as a key to the signs.
BendInfo bendCurve(std::initializer_list<double> points) {
  BendInfo b;
  size_t i = 0;
  double last = 0;
  for (double p : points) {
    if (i < b.Points.size()) b.Points[i++] = p;
    last = p;
  }
  for (; i < b.Points.size(); ++i) b.Points[i] = last;
  return b;
}

Score effects() {
  Score s;
  s.Title = "Effects Showcase";
  s.SubTitle = "Every effect the editor can play";
  s.TabAuthor = "Plectaro";
  s.Instructions = "Listen with the built-in synthesizer; each beat names its effect.";
  s.Tempo = 90;
  Track& g = s.Tracks[0];
  g.Name = "Guitar";
  g.InstrumentName = "Overdriven Guitar";
  g.Instrument = 29;
  g.Volume = 100;
  s.SetBarCount(7);
  auto text = [&](int b, int k, const char* t) { s.beatMut(0, b, k).Text = t; };

  // Bends and vibrato.
  setBar(s, 0, 0, {{kQuarter, ". . 7"}, {kQuarter, ". 8"}, {kQuarter, ". . 9"}, {kQuarter, "5"}});
  NoteSlot* n = &note(s, 0, 0, 0, 2);
  n->HasBend = true;
  n->Bend.mut() = bendCurve({0, 0.5, 1, 1.5, 2, 2.5, 3, 3.5, 4});
  n = &note(s, 0, 0, 1, 1);
  n->HasBend = true;
  n->Bend.mut() = bendCurve({0, 1, 2, 3, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 3, 2, 1, 0});
  n->Bend.mut().PresetIndex = 5;
  n = &note(s, 0, 0, 2, 2);
  n->HasBend = true;
  n->Bend.mut() = bendCurve({2});
  n->Bend.mut().PresetIndex = 6;
  s.beatMut(0, 0, 3).ChordTechnique = kVibrato;
  text(0, 0, "Full bend");
  text(0, 1, "Bend and release");
  text(0, 2, "Pre-bend");
  text(0, 3, "Vibrato");

  // Slides.
  setBar(s, 0, 1, {{kQuarter, ". . 5"}, {kQuarter, ". . 9"}, {kQuarter, ". . 7"}, {kQuarter, ". 7"}});
  note(s, 0, 1, 0, 2).Technique = kSlideUp;
  note(s, 0, 1, 1, 2).Technique = kLegatoSlide;
  note(s, 0, 1, 2, 2).Technique = kSlideDown;
  note(s, 0, 1, 3, 1).Technique = kSlideIntoUp;
  text(1, 0, "Slide up");
  text(1, 1, "Legato slide");
  text(1, 2, "Slide out");
  text(1, 3, "Slide into");

  // Trill and tremolo picking.
  setBar(s, 0, 2, {{kQuarter, ". 5"}, {kQuarter, "12"}, {kQuarter, ". . 9"}, {kQuarter, ". . 7"}});
  n = &note(s, 0, 2, 0, 1);
  n->HasTrill = true;
  n->Trill = {7, 1};
  note(s, 0, 2, 1, 0).Technique = kTremoloPicking16;
  note(s, 0, 2, 2, 2).Technique = kTremoloPicking32;
  text(2, 0, "Trill");
  text(2, 1, "Tremolo picking");
  s.beatMut(0, 2, 3).ChordTechnique = kWideVibrato;
  text(2, 3, "Wide vibrato");

  // Grace notes.
  setBar(s, 0, 3, {{kQuarter, ". . 7"}, {kQuarter, ". . 9"}, {kQuarter, ". 8"}, {kQuarter, ". . . 7"}});
  n = &note(s, 0, 3, 0, 2);
  n->HasGrace = true;
  n->Grace = GraceInfo{"5", 1, 0, kGraceHammer};
  n = &note(s, 0, 3, 1, 2);
  n->HasGrace = true;
  n->Grace = GraceInfo{"7", 0, 0, kGraceSlide};
  n = &note(s, 0, 3, 2, 1);
  n->HasGrace = true;
  n->Grace = GraceInfo{"x", 2, 5, kGraceNone};
  note(s, 0, 3, 3, 3).Technique = kHammerOnPullOff;
  text(3, 0, "Grace, hammer");
  text(3, 1, "Grace, slide");
  text(3, 2, "Dead grace");
  text(3, 3, "Hammer-on");

  // Harmonics.
  setBar(s, 0, 4, {{kEighth, "12 12 12"}, {kEighth, ". . 7"}, {kEighth, ". . . 5"}, {kEighth, "5"},
                   {kEighth, ". 7"}, {kEighth, ". . 9"}, {kQuarter, ". 10"}});
  for (int str = 0; str < 3; ++str) note(s, 0, 4, 0, str).Harmonic = kNaturalHarmonic;
  note(s, 0, 4, 1, 2).Harmonic = kNaturalHarmonic;
  note(s, 0, 4, 2, 3).Harmonic = kNaturalHarmonic;
  note(s, 0, 4, 3, 0).Harmonic = kTappedHarmonic;
  note(s, 0, 4, 4, 1).Harmonic = kArtificialHarmonic12;
  note(s, 0, 4, 5, 2).Harmonic = kPitchHarmonic;
  note(s, 0, 4, 6, 1).Harmonic = kSemiHarmonic;
  text(4, 0, "Harmonics");

  // The tremolo bar on a chord, strokes.
  setBar(s, 0, 5, {{kHalf, ". . 9 9 7"}, {kQuarter, "0 0 1 2 2 0"}, {kQuarter, "0 0 1 2 2 0"}});
  Beat& dip = s.beatMut(0, 5, 0);
  dip.HasTremoloBar = true;
  TremoloBarInfo& bar = dip.TremoloBar.mut();
  for (size_t i = 0; i < bar.Points.size(); ++i)
    bar.Points[i] = i <= 6 ? -static_cast<double>(i) * 4 / 6 : i <= 12 ? -4 + static_cast<double>(i - 6) * 4 / 6 : 0;
  bar.Label = "2";
  s.beatMut(0, 5, 1).Stroke = kDownStroke;
  s.beatMut(0, 5, 2).Stroke = kUpStroke;
  text(5, 0, "Tremolo bar dip");
  text(5, 1, "Strokes");

  // Touch and dynamics.
  setBar(s, 0, 6, {{kEighth, ". . . 7"}, {kEighth, ". . . 7"}, {kEighth, ". . . 5"}, {kEighth, ". . 7"},
                   {kEighth, ". . . . 0"}, {kEighth, ". . . . 0"}, {kQuarter, ". . 7 . ."}});
  note(s, 0, 6, 0, 3).GhostNote = true;
  note(s, 0, 6, 1, 3).Accentuate = true;
  note(s, 0, 6, 2, 3).Technique = kStaccato;
  s.beatMut(0, 6, 3).ChordTechnique = kTapping;
  for (int k : {4, 5}) s.beatMut(0, 6, k).ChordTechnique = kPalmMute;
  note(s, 0, 6, 6, 2).LetRing = true;
  text(6, 0, "Ghost, accent, staccato");
  text(6, 4, "Palm mute");

  // A ringing ending that fades in.
  setBar(s, 0, 7, {{kWhole, "0 0 1 2 2 0"}});
  s.beatMut(0, 7, 0).ChordTechnique = kFadeIn;
  text(7, 0, "Fade in");
  requireExactBars(s, "effects");
  return s;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: plectaro-make-demos FOLDER\n");
    return 2;
  }
  const std::filesystem::path dir = argv[1];
  try {
    SaveMusicFile(riff(), dir / "riff.plm");
    SaveMusicFile(band(), dir / "band.plm");
    SaveMusicFile(waltz(), dir / "waltz.plm");
    SaveMusicFile(effects(), dir / "effects.plm");
  } catch (const std::exception& e) {
    std::fprintf(stderr, "plectaro-make-demos: %s\n", e.what());
    return 1;
  }
  return 0;
}
