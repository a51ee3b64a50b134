#include "editing/rhythm_commands.h"

#include <string>

#include "editing/cursor_access.h"

namespace plectaro {

namespace {

void stepCursorBeat(EditContext& ctx, int (*step)(int)) {
  RunCommand(ctx, [&] {
    const int now = CursorBeat(ctx.doc).Length;
    const int next = step(now);
    if (next != now) CursorBeatMut(ctx.doc).Length = next;
  }, "Beat Length");
}

void stepTrack(EditContext& ctx, int (*step)(int), const char* confirmKey, const char* titleKey) {
  if (!PasswordCorrect(ctx)) return;
  if (!ctx.prompter.yesNo(ctx.text(confirmKey), ctx.text(titleKey))) return;
  RunCommand(ctx, [&] {
    Score& s = ctx.doc.score;
    const int t = ctx.doc.CursorTrack;
    for (int b = 0; b <= s.GetLastBar(t); ++b) {
      // Only bars with something to change are written, so the others stay shared.
      bool any = false;
      for (const Beat& beat : s.bar(t, b).Beats) any = any || step(beat.Length) != beat.Length;
      if (!any) continue;
      for (Beat& beat : s.barMut(t, b).Beats) beat.Length = step(beat.Length);
    }
  }, ctx.text(titleKey));
}

}  // namespace

// Written as separate tests that never chain, so one call moves at most one step.
int LongerLength(int length) { return length >= 1 && length <= 6 ? length - 1 : length; }
int ShorterLength(int length) { return length >= 0 && length <= 5 ? length + 1 : length; }

void mnuChordLengthIncrease_Click(EditContext& ctx) { stepCursorBeat(ctx, LongerLength); }
void mnuChordLengthDecrease_Click(EditContext& ctx) { stepCursorBeat(ctx, ShorterLength); }

void mnuChordDotted_Click(EditContext& ctx) {
  RunCommand(ctx, [&] {
    Beat& b = CursorBeatMut(ctx.doc);
    b.Dotted = !b.Dotted;
  }, "Dotted Note");
}

void mnuChordXTuplets_Click(EditContext& ctx, int index) {
  RunCommand(ctx, [&] {
    if (index < 0 || index >= kTupletKinds)
      throw ScoreError("tuplet entry " + std::to_string(index) + " does not exist");
    Beat& b = CursorBeatMut(ctx.doc);
    if (b.IsTuplet && b.Tuplet == index) {
      b.IsTuplet = false;
    } else {
      b.Tuplet = index;
      b.IsTuplet = true;
    }
  }, "Tuplet");
}

void mnuIncreaseLengths_Click(EditContext& ctx) {
  stepTrack(ctx, LongerLength, "str_ConfirmIncreaseLengths", "str_IncreaseLengths");
}
void MnuDecreaseLengths_Click(EditContext& ctx) {
  stepTrack(ctx, ShorterLength, "str_ConfirmDecreaseLengths", "str_DecreaseLengths");
}

}  // namespace plectaro
