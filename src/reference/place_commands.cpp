#include "reference/place_commands.h"

#include "editing/cursor_access.h"
#include "score/value_text.h"

namespace plectaro {

namespace {

bool fretted(const EditContext& ctx) {
  const Document& d = ctx.doc;
  if (d.CursorTrack < 0 || d.CursorTrack > d.score.LastTrack()) return false;
  return !d.score.Tracks[static_cast<size_t>(d.CursorTrack)].DrumTrack;
}

int trackStrings(const Document& d) {
  return std::clamp<int>(d.score.Tracks[static_cast<size_t>(d.CursorTrack)].Tuning.NumStrings, 1, kMaxStrings);
}

}  // namespace

BeatChord ToBeatChord(const std::string& name, const ChordData& c) {
  BeatChord b;
  b.StartFret = c.StartFret;
  b.NumStrings = c.NumStrings;
  b.Barre = c.Barre;
  for (size_t i = 0; i < kMaxStrings && i < c.Frets.size(); ++i) {
    b.Frets[i] = c.Frets[i];
    b.Fingers[i] = std::to_string(c.Fingers[i]);
    b.Tuning[i] = c.Tuning[i];
  }
  b.Name = name;
  return b;
}

bool AddChordAsDiagram(EditContext& ctx, const std::string& name, const ChordData& chord) {
  if (!fretted(ctx)) return false;
  return RunCommand(ctx, [&] {
    Beat& b = CursorBeatMut(ctx.doc);
    b.HasChord = true;
    b.Chord = ToBeatChord(name, chord);
  });
}

bool AddChordAsNotes(EditContext& ctx, const ChordData& chord) {
  if (!fretted(ctx)) return false;
  return RunCommand(ctx, [&] {
    const int n = trackStrings(ctx.doc);
    Beat& b = CursorBeatMut(ctx.doc);
    for (int i = 0; i < n; ++i) {
      int fret = 0;
      // The chord's fret texts go over as they are: a fret (made absolute), "x" as a dead
      // note, and a blank string as no note.
      const bool muted = Trim(chord.Frets[static_cast<size_t>(i)]) == "x";
      b.Notes[static_cast<size_t>(i)].Fret = chord.absoluteFret(i, fret) ? std::to_string(fret) : muted ? "x" : "";
    }
  });
}

bool AddScaleAsNotes(EditContext& ctx, const ScaleData& scale, const ScaleView& view) {
  if (!fretted(ctx)) return false;
  return RunCommand(ctx, [&] {
    Document& d = ctx.doc;
    const int n = trackStrings(d);
    std::vector<ScaleNote> notes;
    for (const ScaleNote& note : ScaleNotes(scale, view.keyOffset, view.high, view.ascending))
      if (note.row < n) notes.push_back(note);
    if (notes.empty()) return;
    TrackBar& tb = d.score.barMut(d.CursorTrack, d.CursorBar);
    if (tb.Beats.size() + notes.size() > static_cast<size_t>(kMaxIndex))
      throw ScoreError("a bar holds at most 32768 beats");
    std::vector<Beat> beats(notes.size());
    for (size_t i = 0; i < notes.size(); ++i) {
      beats[i].Length = kEighth;
      beats[i].Notes[static_cast<size_t>(notes[i].row)].Fret = std::to_string(notes[i].fret);
    }
    const auto at = tb.Beats.begin() + d.CursorBeat;
    *at = beats.front();
    tb.Beats.insert(at + 1, beats.begin() + 1, beats.end());
  });
}

}  // namespace plectaro
