#include "editing/note_commands.h"

#include <string>
#include <utility>

#include "editing/bar_commands.h"
#include "editing/cursor_access.h"

namespace plectaro {

namespace {

// Toggles a field of the cursor's slot when it holds a note.
template <class Field>
void toggleSlot(EditContext& ctx, Field field, bool sounds, std::string_view step) {
  const bool ran = RunCommand(ctx, [&] {
    if (!CursorSlot(ctx.doc).hasNote()) return;
    NoteSlot& n = CursorSlotMut(ctx.doc);
    n.*field = !(n.*field);
  }, step);
  if (ran && sounds) ctx.playBeat();
}

// The shared setter of the effect menus: the code, or 0 when it is set already.
void setCode(int32_t& field, int32_t code) { field = field == code ? 0 : code; }

void checkMenuIndex(int index, int count) {
  if (index < 0 || index >= count)
    throw ScoreError("menu entry " + std::to_string(index) + " does not exist");
}

void shiftString(EditContext& ctx, int direction) {
  if (ctx.doc.score.track(ctx.doc.CursorTrack).DrumTrack) return;
  RunCommand(ctx, [&] {
    Document& d = ctx.doc;
    const int from = d.CursorString;
    const int to = from + direction;
    if (to < 0 || to >= d.score.track(d.CursorTrack).Tuning.NumStrings) return;
    const NoteSlot& src = CursorSlot(d);
    int fret = 0;
    if (!FretNumber(src.Fret, fret)) return;
    if (d.score.note(d.CursorTrack, d.CursorBar, d.CursorBeat, to).hasNote()) return;  // keep it
    const auto& off = d.score.track(d.CursorTrack).Tuning.Offset;
    const int openFrom = GetStringPitch(from) + off[static_cast<size_t>(from)];
    const int openTo = GetStringPitch(to) + off[static_cast<size_t>(to)];
    const int newFret = fret + openFrom - openTo;
    if (newFret < 0 || newFret > 99) return;  // the pitch is not on that string
    Beat& b = CursorBeatMut(d);
    NoteSlot moved = std::move(b.Notes[static_cast<size_t>(from)]);
    moved.Fret = std::to_string(newFret);
    b.Notes[static_cast<size_t>(from)] = NoteSlot{};
    b.Notes[static_cast<size_t>(to)] = std::move(moved);
    d.CursorString = static_cast<int16_t>(to);  // the cursor follows the note
  }, direction < 0 ? "Shift Note Up" : "Shift Note Down");
}

void setFinger(EditContext& ctx, int index, int32_t NoteSlot::*field) {
  RunCommand(ctx, [&] {
    checkMenuIndex(index, 5);
    if (!CursorSlot(ctx.doc).hasNote()) return;
    setCode(CursorSlotMut(ctx.doc).*field, index + 1);
  }, "Fingering");
}

// Swaps beat k with beat k + 1 of the cursor's bar; `whole` moves lengths too.
void swapWithNext(EditContext& ctx, int k, bool whole, bool follow, std::string_view step) {
  RunCommand(ctx, [&] {
    Document& d = ctx.doc;
    const int last = d.score.GetLastBeat(d.CursorTrack, d.CursorBar);
    if (k < 0 || k + 1 > last) return;
    TrackBar& tb = d.score.barMut(d.CursorTrack, d.CursorBar);
    Beat& a = tb.Beats[static_cast<size_t>(k)];
    Beat& b = tb.Beats[static_cast<size_t>(k) + 1];
    if (whole) {
      std::swap(a, b);
    } else {
      Beat moved = a;  // the notes and marks of a go into b's place in time
      moved.Length = b.Length;
      moved.Dotted = b.Dotted;
      moved.IsTuplet = b.IsTuplet;
      moved.Tuplet = b.Tuplet;
      moved.GotoName = b.GotoName;
      b = std::move(moved);
      d.score.ClearBeat(d.CursorTrack, d.CursorBar, k);
    }
    if (follow) d.CursorBeat = static_cast<int16_t>(d.CursorBeat == k ? k + 1 : k);
  }, step);
}

}  // namespace

void TypeFretDigit(EditContext& ctx, int digit) {
  RunCommand(ctx, [&] {
    if (digit < 0 || digit > 9) throw ScoreError("not a digit: " + std::to_string(digit));
    NoteSlot& n = CursorSlotMut(ctx.doc);
    const std::string d(1, static_cast<char>('0' + digit));
    n.Fret = (n.Fret == "1" || n.Fret == "2") ? n.Fret + d : d;
  }, "Typing");
}

void ClearNoteValue(EditContext& ctx) {
  RunCommand(ctx, [&] {
    if (CursorSlot(ctx.doc).hasNote()) CursorSlotMut(ctx.doc).Fret.clear();
  }, "Clear Note Value");
}

void ToggleDeadNote(EditContext& ctx) {
  RunCommand(ctx, [&] {
    NoteSlot& n = CursorSlotMut(ctx.doc);
    n.Fret = n.Fret == "x" ? "" : "x";
  }, "Dead Note");
}

void mnuNoteUp_Click(EditContext& ctx) {
  RunCommand(ctx, [&] {
    int fret = 0;
    if (!FretNumber(CursorSlot(ctx.doc).Fret, fret) || fret >= 99) return;
    CursorSlotMut(ctx.doc).Fret = std::to_string(fret + 1);
  }, "Add 1 to Note");
}

void mnuNoteDown_Click(EditContext& ctx) {
  RunCommand(ctx, [&] {
    int fret = 0;
    if (!FretNumber(CursorSlot(ctx.doc).Fret, fret) || fret <= 0) return;
    CursorSlotMut(ctx.doc).Fret = std::to_string(fret - 1);
  }, "Subtract 1 from Note");
}

void mnuNoteShiftUp_Click(EditContext& ctx) { shiftString(ctx, -1); }
void mnuNoteShiftDown_Click(EditContext& ctx) { shiftString(ctx, +1); }

void mnuNoteInsertBeat_Click(EditContext& ctx) {
  RunCommand(ctx, [&] {
    Document& d = ctx.doc;
    const int last = d.score.GetLastBeat(d.CursorTrack, d.CursorBar);
    if (last >= kMaxIndex) throw ScoreError("a bar holds at most 32768 beats");
    TrackBar& tb = d.score.barMut(d.CursorTrack, d.CursorBar);
    const auto at = tb.Beats.begin() + d.CursorBeat;
    Beat fresh = *at;  // a blank beat of the cursor beat's length
    fresh.GotoName.clear();
    tb.Beats.insert(at, std::move(fresh));
    d.score.ClearBeat(d.CursorTrack, d.CursorBar, d.CursorBeat);
  }, "Insert Beat");
}

void mnuNoteDeleteBeat_Click(EditContext& ctx) {
  RunCommand(ctx, [&] {
    Document& d = ctx.doc;
    const int last = d.score.GetLastBeat(d.CursorTrack, d.CursorBar);
    if (last == 0) {
      // The only beat: the bar goes (in this track), and the cursor lands on the last beat
      // of the bar before it.
      RemoveBarAt(d.score, d.CursorBar, {d.CursorTrack});
      if (d.CursorBar > 0) --d.CursorBar;
      d.clampCursor();
      d.CursorBeat = static_cast<int16_t>(d.score.GetLastBeat(d.CursorTrack, d.CursorBar));
      return;
    }
    TrackBar& tb = d.score.barMut(d.CursorTrack, d.CursorBar);
    tb.Beats.erase(tb.Beats.begin() + d.CursorBeat);
    if (d.CursorBeat > last - 1) d.CursorBeat = static_cast<int16_t>(last - 1);
  }, "Delete Beat");
}

void mnuNoteVolumes_Click(EditContext& ctx, int index) {
  const bool ran = RunCommand(ctx, [&] {
    checkMenuIndex(index, 8);
    const int32_t v = kVolumeMenuToStored[static_cast<size_t>(index)];
    Document& d = ctx.doc;
    if (ctx.VolumesWholeChord) {
      const int n = d.score.track(d.CursorTrack).Tuning.NumStrings;
      for (int s = 0; s < n && s < kMaxStrings; ++s)
        if (d.score.note(d.CursorTrack, d.CursorBar, d.CursorBeat, s).hasNote())
          d.score.noteMut(d.CursorTrack, d.CursorBar, d.CursorBeat, s).Volume = v;
    } else if (CursorSlot(d).hasNote()) {
      CursorSlotMut(d).Volume = v;
    }
  }, "Volume");
  if (ran) ctx.playBeat();
}

void mnuNoteVolumesWholeChord_Click(EditContext& ctx) {
  ctx.VolumesWholeChord = !ctx.VolumesWholeChord;
}

void mnuNoteLinkNote_Click(EditContext& ctx) { toggleSlot(ctx, &NoteSlot::Tied, false, "Tie Note"); }
void mnuNoteLHFS_Click(EditContext& ctx, int index) { setFinger(ctx, index, &NoteSlot::LeftFinger); }
void mnuNoteRHFS_Click(EditContext& ctx, int index) { setFinger(ctx, index, &NoteSlot::RightFinger); }

void mnuNoteEffectsGhostNote_Click(EditContext& ctx) { toggleSlot(ctx, &NoteSlot::GhostNote, true, "Ghost Note"); }
void mnuNoteEffectsLetRing_Click(EditContext& ctx) { toggleSlot(ctx, &NoteSlot::LetRing, true, "Let Ring"); }
void mnuNoteEffectsAccentuate_Click(EditContext& ctx) { toggleSlot(ctx, &NoteSlot::Accentuate, true, "Accentuate"); }

void mnuNoteEffectsHarmonics_Click(EditContext& ctx, int index) {
  if (RunCommand(ctx, [&] {
        checkMenuIndex(index, 7);
        if (CursorSlot(ctx.doc).hasNote()) setCode(CursorSlotMut(ctx.doc).Harmonic, index + 1);
      }, "Harmonic"))
    ctx.playBeat();
}

void mnuNoteEffectsTechniques_Click(EditContext& ctx, int index) {
  if (RunCommand(ctx, [&] {
        checkMenuIndex(index, 10);
        if (CursorSlot(ctx.doc).hasNote())
          setCode(CursorSlotMut(ctx.doc).Technique, kTechniqueMenuCodes[index]);
      }, "Technique"))
    ctx.playBeat();
}

void mnuChordTechniques_Click(EditContext& ctx, int index) {
  if (RunCommand(ctx, [&] {
        checkMenuIndex(index, 7);
        setCode(CursorBeatMut(ctx.doc).ChordTechnique, index + 1);
      }, "Technique"))
    ctx.playBeat();
}

void mnuChordUpStroke_Click(EditContext& ctx) {
  RunCommand(ctx, [&] { setCode(CursorBeatMut(ctx.doc).Stroke, kUpStroke); }, "Upstroke");
}
void mnuChordDownStroke_Click(EditContext& ctx) {
  RunCommand(ctx, [&] { setCode(CursorBeatMut(ctx.doc).Stroke, kDownStroke); }, "Downstroke");
}

void RepeatPreviousChord(EditContext& ctx) {
  RunCommand(ctx, [&] {
    Document& d = ctx.doc;
    int bar = d.CursorBar;
    int beat = d.CursorBeat - 1;
    if (beat < 0) {
      if (bar == 0) return;
      --bar;
      beat = d.score.GetLastBeat(d.CursorTrack, bar);
    }
    Beat copy = d.score.beat(d.CursorTrack, bar, beat);
    CursorBeatMut(d) = std::move(copy);
  }, "Repeat Previous Chord");
}

void MoveChordRight(EditContext& ctx) { swapWithNext(ctx, ctx.doc.CursorBeat, true, true, "Move Chord Right"); }
void MoveChordLeft(EditContext& ctx) { swapWithNext(ctx, ctx.doc.CursorBeat - 1, true, true, "Move Chord Left"); }
void ShiftChordRight(EditContext& ctx) { swapWithNext(ctx, ctx.doc.CursorBeat, false, true, "Shift Chord Right"); }

}  // namespace plectaro
