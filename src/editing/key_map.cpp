#include "editing/key_map.h"

#include <algorithm>

#include "editing/note_commands.h"
#include "editing/rhythm_commands.h"
#include "editing/bar_commands.h"
#include "editing/cursor_access.h"
#include "editing/selection.h"
#include "editing/staff_entry.h"
#include "score/bar_timing.h"

namespace plectaro {

namespace {

// Commands called while a key is handled draw once, at the end of the key.
struct KeyScope {
  explicit KeyScope(EditContext& c) : ctx(c) { ++ctx.depth; }
  ~KeyScope() { --ctx.depth; }
  EditContext& ctx;
};

int numStrings(const Document& d) {
  return std::clamp<int>(d.score.track(d.CursorTrack).Tuning.NumStrings, 1, kMaxStrings);
}


// A beat grown by the Right key takes the rhythm of the beat before it, so a run of eighths
// needs one length step only.
Beat rhythmOf(const Beat& from) {
  Beat b;
  b.Length = from.Length;
  b.IsTuplet = from.IsTuplet;
  b.Tuplet = from.Tuplet;
  b.Dotted = from.Dotted;
  return b;
}

bool isLetter(Key k) { return k >= Key::A && k <= Key::Z; }

// Keys that sound the beat afterwards when play as typed is on.
bool playsOnTab(Key k) { return IsDigitKey(k) || k == Key::Enter || k == Key::Period || k == Key::X; }

bool rhythmKey(EditContext& ctx, Key key, bool shift) {
  if (shift) return false;
  switch (key) {
    case Key::Period: mnuChordDotted_Click(ctx); return true;
    case Key::NumpadPlus: mnuChordLengthIncrease_Click(ctx); return true;
    case Key::NumpadMinus: mnuChordLengthDecrease_Click(ctx); return true;
    default: return false;
  }
}

// Arrows, Space, Enter, Del, Ins: the same on every kind of track.
bool cursorKey(EditContext& ctx, Key key, bool shift, bool drum) {
  switch (key) {
    case Key::Left: if (!shift) MoveCursorLeft(ctx); return true;
    case Key::Right: if (!shift) MoveCursorRight(ctx); return true;
    case Key::Up:
      if (!shift) MoveCursorUp(ctx);
      else if (!drum) mnuNoteShiftUp_Click(ctx);
      return true;
    case Key::Down:
      if (!shift) MoveCursorDown(ctx);
      else if (!drum) mnuNoteShiftDown_Click(ctx);
      return true;
    case Key::Space:
      if (shift) {
        if (ctx.hooks.playFromHere) ctx.hooks.playFromHere();
      } else if (ctx.hooks.playFromStart) {
        ctx.hooks.playFromStart();
      }
      return true;
    case Key::Enter: if (!drum) ToggleNotationEntry(ctx); return !drum;
    case Key::Delete:
      if (shift) mnuNoteDeleteBeat_Click(ctx);
      else if (ctx.NotationEntry && !drum) ClearNotationNote(ctx);
      else ClearNoteValue(ctx);
      return true;
    case Key::Backspace: if (!shift) ClearNoteValue(ctx); return true;
    case Key::Insert: mnuNoteInsertBeat_Click(ctx); return true;
    default: return false;
  }
}

bool shiftedTabKey(EditContext& ctx, Key key) {
  switch (key) {
    case Key::NumpadPlus: mnuNoteUp_Click(ctx); return true;
    case Key::NumpadMinus: mnuNoteDown_Click(ctx); return true;
    case Key::R: mnuNoteEffectsLetRing_Click(ctx); return true;
    case Key::M: MoveChordRight(ctx); return true;
    case Key::N: MoveChordLeft(ctx); return true;
    case Key::O: ShiftChordRight(ctx); return true;
    case Key::T: if (ctx.hooks.openDialog) ctx.hooks.openDialog(EditDialog::Text); return true;
    case Key::D3: mnuChordXTuplets_Click(ctx, kTriplet); return true;
    case Key::D5: mnuChordXTuplets_Click(ctx, k5Tuplet); return true;
    case Key::D6: mnuChordXTuplets_Click(ctx, k6Tuplet); return true;
    case Key::D7: mnuChordXTuplets_Click(ctx, k7Tuplet); return true;
    case Key::D9: mnuChordXTuplets_Click(ctx, k9Tuplet); return true;
    default: return false;
  }
}

bool effectKey(EditContext& ctx, Key key) {
  const Document& d = ctx.doc;
  switch (key) {
    case Key::B: case Key::H: case Key::S: case Key::G:
      if (!CursorSlot(d).hasNote()) return true;
      if (key == Key::B && ctx.hooks.openDialog) ctx.hooks.openDialog(EditDialog::Bend);
      if (key == Key::H) mnuNoteEffectsTechniques_Click(ctx, 9);
      if (key == Key::S) mnuNoteEffectsTechniques_Click(ctx, 6);
      if (key == Key::G) mnuNoteEffectsGhostNote_Click(ctx);
      return true;
    case Key::T: case Key::V: case Key::U: case Key::D: case Key::C: case Key::L:
      if (CursorBeat(d).isRest()) return true;
      if (key == Key::T) mnuChordTechniques_Click(ctx, 3);
      if (key == Key::V) mnuChordTechniques_Click(ctx, 0);
      if (key == Key::U) mnuChordUpStroke_Click(ctx);
      if (key == Key::D) mnuChordDownStroke_Click(ctx);
      if (key == Key::C && ctx.hooks.openDialog) ctx.hooks.openDialog(EditDialog::Chord);
      if (key == Key::L) mnuNoteLinkNote_Click(ctx);
      return true;
    case Key::X: ToggleDeadNote(ctx); return true;
    case Key::R: RepeatPreviousChord(ctx); return true;
    default: return false;
  }
}

// Keys every editor has beside the arrows: Home and End within the bar, Page Up and Page Down
// to the bar before and after, Ctrl+Home and Ctrl+End to the first and last bar.
bool navigationKey(EditContext& ctx, Key key, Modifiers mods) {
  const bool ctrl = (mods & kCtrl) != 0;
  if (mods & ~static_cast<unsigned>(kCtrl)) return false;
  Document& d = ctx.doc;
  switch (key) {
    case Key::Home:
      if (ctrl) mnuBarFirst_Click(ctx);
      else RunCursorMove(ctx, [&] { d.CursorBeat = 0; });
      return true;
    case Key::End:
      if (ctrl) mnuBarLast_Click(ctx);
      else RunCursorMove(ctx, [&] { d.CursorBeat = static_cast<int16_t>(d.score.GetLastBeat(d.CursorTrack, d.CursorBar)); });
      return true;
    case Key::PageUp: if (!ctrl) mnuBarPrevious_Click(ctx); return !ctrl;
    case Key::PageDown: if (!ctrl) mnuBarNext_Click(ctx); return !ctrl;
    default: return false;
  }
}

// Shift with Left/Right, Home/End, Page Up/Down (and Ctrl+Shift+Home/End) marks beats and bars
// as it moves; with Alt as well the marking spans all tracks. Moving right never grows the
// score the way the plain Right key does.
bool selectionKey(EditContext& ctx, Key key, Modifiers mods) {
  if (!(mods & kShift)) return false;
  const bool ctrl = (mods & kCtrl) != 0;
  const bool all = (mods & kAlt) != 0;
  Document& d = ctx.doc;
  const int t = d.CursorTrack;
  std::function<void()> move;
  switch (key) {
    case Key::Left:
      move = [&] {
        if (d.CursorBeat > 0) --d.CursorBeat;
        else if (d.CursorBar > 0) d.CursorBeat = static_cast<int16_t>(d.score.GetLastBeat(t, --d.CursorBar));
      };
      break;
    case Key::Right:
      move = [&] {
        if (d.CursorBeat < d.score.GetLastBeat(t, d.CursorBar)) ++d.CursorBeat;
        else if (d.CursorBar < d.score.GetLastBar(t)) ++d.CursorBar, d.CursorBeat = 0;
      };
      break;
    case Key::Home:
      move = [&] { if (ctrl) d.CursorBar = 0; d.CursorBeat = 0; };
      break;
    case Key::End:
      move = [&] {
        if (ctrl) d.CursorBar = static_cast<int16_t>(d.score.GetLastBar(t));
        d.CursorBeat = static_cast<int16_t>(d.score.GetLastBeat(t, d.CursorBar));
      };
      break;
    case Key::PageUp:
      move = [&] { if (d.CursorBar > 0) --d.CursorBar; d.CursorBeat = 0; };
      break;
    case Key::PageDown:
      move = [&] {
        if (d.CursorBar < d.score.GetLastBar(t)) ++d.CursorBar;
        d.CursorBeat = static_cast<int16_t>(d.score.GetLastBeat(t, d.CursorBar));
      };
      break;
    default:
      return false;
  }
  if (ctrl && key != Key::Home && key != Key::End) return false;
  ExtendSelection(ctx, move, all);
  return true;
}

}  // namespace

const std::vector<ShortcutEntry>& ShortcutTable() {
  static const std::vector<ShortcutEntry> table = {
      {0, "Play Tab", "Space"},
      {0, "Play from current bar", "Shift+Space"},
      {1, "Move left a chord", "Left"},
      {1, "Move right a chord", "Right"},
      {1, "Move up a string / line / note", "Up"},
      {1, "Move down a string / line / note", "Down"},
      {1, "Shift note up a string *", "Shift+Up"},
      {1, "Shift note down a string *", "Shift+Down"},
      {1, "Delete this beat", "Shift+Del"},
      {1, "Insert a beat", "Shift+Ins"},
      {1, "Clear Note Value", "Del"},
      {2, "String Bend On/Off *", "B"},
      {2, "Hammer On/Pull Off *", "H"},
      {2, "Slide *", "S"},
      {2, "Ghost Note On/Off", "G"},
      {2, "Vibrato *", "V"},
      {2, "Upstroke *", "U"},
      {2, "Downstroke *", "D"},
      {2, "Add Chord *", "C"},
      {2, "Tie Note On/Off", "L"},
      {2, "Dead Note On/Off *", "X"},
      {2, "Repeat Previous Chord *", "R"},
      {3, "Dotted Note", "."},
      {3, "Increase/Decrease Beat Length", "+"},
      {3, "Increase/Decrease Beat Length", "-"},
      {3, "Add 1 to Note *", "Shift++"},
      {3, "Subtract 1 from Note *", "Shift+-"},
      {3, "Let Ring *", "Shift+R"},
      {3, "Move Chord Right", "Shift+M"},
      {3, "Move Chord Left", "Shift+N"},
      {3, "Shift Chord Right", "Shift+O"},
      {3, "Add Text", "Shift+T"},
      {4, "Triplet On/Off", "Shift+3"},
      {4, "5let On/Off", "Shift+5"},
      {4, "6let On/Off", "Shift+6"},
      {4, "7let On/Off", "Shift+7"},
      {4, "9let On/Off", "Shift+9"},
      {4, "Toggle notation note", "Enter"},
      {5, "Undo", "Z"},
      {5, "First / last beat of the bar", "Home"},
      {5, "First / last beat of the bar", "End"},
      {5, "Previous / next bar", "PgUp"},
      {5, "Previous / next bar", "PgDn"},
      {5, "First / last bar", "Ctrl+Home"},
      {5, "First / last bar", "Ctrl+End"},
      {6, "Mark beats and bars", "Shift+Left"},
      {6, "Mark beats and bars", "Shift+Right"},
      {6, "Mark to the start / end of the bar", "Shift+Home"},
      {6, "Mark to the start / end of the bar", "Shift+End"},
      {6, "Mark bars", "Shift+PgUp"},
      {6, "Mark bars", "Shift+PgDn"},
      {6, "Mark bars in all tracks", "Alt+Shift+PgDn"},
      {6, "Clear what is marked", "Del"},
  };
  return table;
}

char DrumSymbolOfKey(Key key) {
  switch (key) {
    case Key::C: return 'c';
    case Key::X: return 'X';
    case Key::S: return 'S';
    case Key::O: return 'O';
    case Key::F: return 'F';
    case Key::T: return 't';
    default: return 0;
  }
}

void MoveCursorLeft(EditContext& ctx) {
  RunCursorMove(ctx, [&] {
    Document& d = ctx.doc;
    if (d.CursorBeat > 0) {
      --d.CursorBeat;
    } else if (d.CursorBar > 0) {
      --d.CursorBar;
      d.CursorBeat = static_cast<int16_t>(d.score.GetLastBeat(d.CursorTrack, d.CursorBar));
    }
  });
}

void MoveCursorRight(EditContext& ctx) {
  Document& d = ctx.doc;
  if (d.CursorBeat < d.score.GetLastBeat(d.CursorTrack, d.CursorBar)) {
    RunCursorMove(ctx, [&] { ++d.CursorBeat; });
    return;
  }
  // On the last beat the bar's fill decides. Measuring can fail on a bar read from a file with
  // a zero denominator; RunCommand reports that and the cursor stays.
  bool tooLong = false;
  RunCommand(ctx, [&] {
    const int t = d.CursorTrack;
    const BarCheck fill = CheckBar(d.score, t, d.CursorBar);
    const Beat& here = d.score.beat(t, d.CursorBar, d.CursorBeat);
    if (fill == kBarTooLong) {
      tooLong = true;
    } else if (fill == kBarTooShort) {
      Beat grown = rhythmOf(here);
      TrackBar& tb = d.score.barMut(t, d.CursorBar);
      if (tb.Beats.size() > static_cast<size_t>(kMaxIndex)) throw ScoreError("a bar holds at most 32768 beats");
      tb.Beats.push_back(std::move(grown));
      ++d.CursorBeat;
    } else if (d.CursorBar < d.score.GetLastBar(t)) {
      ++d.CursorBar;
      d.CursorBeat = 0;
    } else {
      Beat grown = rhythmOf(here);
      AddBar(d.score);
      ++d.CursorBar;
      d.CursorBeat = 0;
      Beat& first = d.score.beatMut(t, d.CursorBar, 0);
      grown.GotoName = first.GotoName;
      first = std::move(grown);
    }
  }, "Add Beat");
  if (tooLong) ctx.prompter.message(ctx.text("str_ExceededBar"), ctx.text("str_BarExceeded"), MessageIcon::Critical);
}

// Up walks toward string 0 (the highest) and the notation line up; both wrap round. On a
// drum track the line walks the drum staff, and the tab cursor follows to the line that
// plays the sound, so that Del and the effect keys act where the eye is.
void moveCursorVertically(EditContext& ctx, bool up) {
  Document& d = ctx.doc;
  const Track& tr = d.score.track(d.CursorTrack);
  RunCursorMove(ctx, [&] {
    const int n = numStrings(d);
    if (tr.DrumTrack) {
      d.CursorLine = static_cast<int16_t>(NextDrumLine(d.CursorLine, !up));
      const int line = DrumLineOf(tr, d.CursorLine);
      if (line >= 0) d.CursorString = static_cast<int16_t>(line);
      return;
    }
    if (ctx.NotationEntry) {
      const int bottom = NotationLineBottom(tr);
      const int line = d.CursorLine;
      d.CursorLine = static_cast<int16_t>(up ? (line >= bottom && line < bottom + kNotationLineSpan ? line + 1 : bottom)
                                             : (line > bottom && line <= bottom + kNotationLineSpan ? line - 1
                                                                                                    : bottom + kNotationLineSpan));
      return;
    }
    const int s = d.CursorString;
    d.CursorString = static_cast<int16_t>(up ? (s <= 0 ? n - 1 : s - 1) : (s >= n - 1 ? 0 : s + 1));
  });
  // The drummer hears the sound the cursor stands on before writing it.
  if (tr.DrumTrack && ctx.settings.PlayAsTyped && ctx.hooks.playPercussion) ctx.hooks.playPercussion(d.CursorLine);
}

void MoveCursorUp(EditContext& ctx) { moveCursorVertically(ctx, true); }
void MoveCursorDown(EditContext& ctx) { moveCursorVertically(ctx, false); }

void ToggleNotationEntry(EditContext& ctx) { ToggleNotationEntryAt(ctx); }

void SetCursorTrack(EditContext& ctx, int track) {
  RunCursorMove(ctx, [&] {
    ctx.doc.score.track(track);
    ctx.doc.CursorTrack = static_cast<int16_t>(track);
  });
}

bool picDocument_KeyDown(EditContext& ctx, Key key, Modifiers mods) {
  if (ctx.hooks.isPlaying && ctx.hooks.isPlaying()) {
    if (ctx.hooks.stopPlayback) ctx.hooks.stopPlayback();
    return true;
  }
  if (key >= Key::Numpad0 && key <= Key::Numpad9)
    key = DigitKey(static_cast<int>(key) - static_cast<int>(Key::Numpad0));
  if (!PasswordCorrect(ctx)) return true;
  if (key == Key::Z) {
    mnuEditUndo_Click(ctx);
    return true;
  }
  if (selectionKey(ctx, key, mods)) return true;
  if (ctx.selection.active) {
    // Del and Backspace clear what is marked; Escape and every other key let go of it.
    if ((key == Key::Delete || key == Key::Backspace) && !(mods & kShift)) {
      ClearSelection(ctx);
      return true;
    }
    Deselect(ctx);
    if (key == Key::Escape) return true;
  }
  if (navigationKey(ctx, key, mods)) return true;
  // Ctrl and Alt combinations belong to the menus; a letter typed with them must not also
  // toggle an effect.
  if (mods & (kCtrl | kAlt)) return false;
  const bool shift = (mods & kShift) != 0;

  Document& d = ctx.doc;
  ctx.KeyChanged = false;

  bool handled = false;
  const bool drum = d.score.track(d.CursorTrack).DrumTrack;
  {
    // Whatever the key runs is one step of undo, named after the first command it ran; it
    // closes before the draw so that the Edit menu names it at once.
    UndoStep step(ctx);
    KeyScope scope(ctx);
    handled = cursorKey(ctx, key, shift, drum) || rhythmKey(ctx, key, shift);
    if (!handled && drum) {
      const char symbol = shift ? 0 : DrumSymbolOfKey(key);
      if (symbol) {
        WriteDrumNote(ctx, symbol);
        handled = true;
      }
    } else if (!handled) {
      if (shift) {
        handled = shiftedTabKey(ctx, key);
      } else if (isLetter(key)) {
        handled = effectKey(ctx, key);
      } else if (IsDigitKey(key) && ctx.NotationEntry) {
        // On the staff a digit names the string to play the note on, counted from the top
        // string as guitarists count; 0 (or a string the track lacks) lets the writer choose.
        const int string = DigitOf(key) - 1;
        WriteNotationNote(ctx, string >= 0 && string < numStrings(d) ? string : -1);
        handled = true;
      } else if (IsDigitKey(key)) {
        TypeFretDigit(ctx, DigitOf(key));
        handled = true;
      }
    }
  }

  if (handled && ctx.settings.PlayAsTyped && !shift) {
    const bool plays = drum ? DrumSymbolOfKey(key) != 0 : playsOnTab(key);
    if (plays && !CursorBeat(d).isRest()) ctx.playBeat();
  }
  if (handled) ctx.redraw();
  return handled;
}

}  // namespace plectaro
