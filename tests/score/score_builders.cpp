#include "score_builders.h"

namespace plectaro::testing {

Score BlankScore() { return Score(); }

void SetFrets(Score& s, int t, int b, int k, const std::vector<std::string>& frets) {
  for (size_t i = 0; i < frets.size(); ++i) s.noteMut(t, b, k, static_cast<int>(i)).Fret = frets[i];
}

Score EveryTagScore() {
  Score s;
  s.Title = "Every Tag";
  s.SubTitle = "sub";
  s.Artist = "Artist é";
  s.Album = "Album €";
  s.Author = "Author";
  s.Copyright = "(c) 2026";
  s.TabAuthor = "tabber";
  s.Instructions = "play it loud";
  s.Notice = "notice";
  s.Notes = "notes";
  s.Password = "secret";
  s.PasswordProtected = true;
  s.ShuffleRhythm = true;
  s.AlwaysDrawChordCharts = true;
  s.AlwaysDrawFileHeaders = true;
  s.Tempo = 97.5f;
  s.RowSpacing = 80;
  s.HeaderFont = {true, true, "Arial", 22, true, true, 255};
  s.NoteFont = {false, true, "Times New Roman", 9, false, true, 65280};
  s.LineColor = 8421504;

  s.Tracks.resize(2);
  s.SetBarCount(2);
  BarInfo& b0 = s.barInfoMut(0);
  b0.RepeatOpen = true;
  b0.Sign = true;
  BarInfo& b1 = s.barInfoMut(1);
  b1.RepeatClose = 3;
  b1.ToCoda = true;
  b1.DSAlCoda = true;
  s.SetTimeSignature(1, 6, 8);
  s.barInfoMut(2).Coda = true;

  Track& g = s.trackMut(0);
  g.Reverb = true;
  g.OctaveDown = true;
  g.OctaveUp = true;
  g.BassStaff = true;
  g.Lyrics = {"la la", "", "third line", "", "fifth"};
  g.Capo = 2;
  g.Tuning.Offset = {0, 0, 0, 0, 0, -2, 0};
  g.DrumMaps[3].Drum = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};

  TrackBar& tb = s.barMut(0, 0);
  tb.KeySignature = -3;
  tb.KeyMinor = true;
  s.SetBeatCount(0, 0, 3);
  for (int k = 0; k < 4; ++k) s.beatMut(0, 0, k).Length = kEighth;
  Beat& a = s.beatMut(0, 0, 0);
  a.GotoName = "Verse";
  a.Dotted = true;
  a.HasTremoloBar = true;
  a.TremoloBar.mut().Kind = 3;
  a.TremoloBar.mut().Label = "4½";
  for (size_t i = 0; i < 25; ++i) a.TremoloBar.mut().Points[i] = -0.25 * static_cast<double>(i);
  a.IsTuplet = true;
  a.Tuplet = k5Tuplet;
  a.Stroke = kDownStroke;
  a.ChordTechnique = kPalmMute;
  a.Text = "let it ring";
  a.HasChord = true;
  BeatChord& c = a.Chord.mut();
  c.Name = "Am7";
  c.StartFret = 1;
  c.NumStrings = 6;
  c.Barre = true;
  c.Frets = {"0", "1", "0", "2", "0", "x", ""};
  c.Fingers = {"", "1", "", "2", "", "", ""};
  c.Tuning = {64, 59, 55, 50, 45, 40, 0};

  NoteSlot& n = s.noteMut(0, 0, 0, 1);
  n.Fret = "12";
  n.Volume = kVolFFF;
  n.Accentuate = n.GhostNote = n.LetRing = n.Tied = true;
  n.Harmonic = kArtificialHarmonic12;
  n.LeftFinger = 3;
  n.RightFinger = 4;
  n.Technique = kSlideIntoDown;
  n.HasBend = true;
  for (size_t i = 0; i < 26; ++i) n.Bend.mut().Points[i] = 0.5 * static_cast<double>(i % 5);
  n.Bend.mut().PresetIndex = 2;
  n.Bend.mut().Scale = 7;
  n.HasGrace = true;
  n.Grace = GraceInfo{"x", 1, kVolP, kGraceHammer};
  n.HasTrill = true;
  n.Trill = {14, 2};
  SetFrets(s, 0, 0, 1, {"x", "", "", "", "", "3"});
  SetFrets(s, 0, 0, 2, {"", "", "5", "7"});

  Track& d = s.trackMut(1);
  d.Name = "Drums";
  d.DrumTrack = true;
  d.Channel = 9;
  d.TrebleStaff = false;
  d.Tuning.NumStrings = 4;
  SetFrets(s, 1, 0, 0, {"X", "o", "", "~"});
  // Identical bars 1 and 2 of the drum track exercise the bar compression.
  s.barMut(1, 1) = s.bar(1, 0);
  s.barMut(1, 2) = s.bar(1, 0);
  return s;
}

}  // namespace plectaro::testing
