#include "editing/operations.h"

#include <algorithm>
#include <cstdlib>

#include "editing/cursor_access.h"
#include "editing/selection.h"
#include "score/bar_timing.h"
#include "score/value_text.h"

namespace plectaro {

// ---- bar timing ----

BarCheckMessage CheckBarMessage(const EditContext& ctx, int track, int bar) {
  const Score& s = ctx.doc.score;
  const std::string have = Format64ths(GetBeatsLength(s, track, bar));
  const std::string want = Format64ths(GetBarLength(s, track, bar));
  // The closing words carry the full stop; the unit alone is the same text without it.
  const std::string closing = ctx.text("str_notesLong");
  std::string unit = closing;
  if (!unit.empty() && unit.back() == '.') unit.pop_back();
  switch (CheckBar(s, track, bar)) {
    case kBarExact:
      return {ctx.text("str_barComplete1") + have + closing, "str_BarComplete"};
    case kBarTooLong:
      return {ctx.text("str_barTooLong1") + have + unit + ctx.text("str_BarShouldBe") + want + closing,
              "str_BarExceeded"};
    default:
      return {ctx.text("str_barIncomplete1") + have + unit + ctx.text("str_BarShouldBe") + want + closing,
              "str_BarIncomplete"};
  }
}

void mnuOperationsCheckBar_Click(EditContext& ctx) {
  try {
    const BarCheckMessage m = CheckBarMessage(ctx, ctx.doc.CursorTrack, ctx.doc.CursorBar);
    ctx.prompter.message(m.text, ctx.text(m.titleKey), MessageIcon::Information);
  } catch (const ScoreError& e) {
    ctx.prompter.message(e.what(), ctx.text("str_Error"), MessageIcon::Critical);
  }
}

void mnuFixThisBar_Click(EditContext& ctx) {
  const Document& d = ctx.doc;
  try {
    if (CheckBar(d.score, d.CursorTrack, d.CursorBar) == kBarExact) {
      ctx.message("str_BarNotNeedFix", MessageIcon::Information);
      return;
    }
  } catch (const ScoreError& e) {
    ctx.prompter.message(e.what(), ctx.text("str_Error"), MessageIcon::Critical);
    return;
  }
  RunCommand(
      ctx, [&] { RepairBar(ctx.doc.score, ctx.doc.CursorTrack, ctx.doc.CursorBar); }, "Fix this Bar");
}

void mnuFixAllBars_Click(EditContext& ctx) {
  RunCommand(ctx, [&] { FixAllBars(ctx.doc.score, ctx.doc.CursorTrack); }, "Fix all Bars");
}

// ---- rests ----

int RemoveRests(Score& s, int track) {
  int removed = 0;
  for (int b = 0; b <= s.GetLastBar(track); ++b) {
    const std::vector<Beat>& beats = s.bar(track, b).Beats;
    const auto rests = std::count_if(beats.begin(), beats.end(), [](const Beat& k) { return k.isRest(); });
    if (rests == 0) continue;
    std::vector<Beat>& mut = s.barMut(track, b).Beats;
    if (rests == static_cast<long>(mut.size())) {
      removed += static_cast<int>(mut.size()) - 1;
      mut.resize(1);
      continue;
    }
    removed += static_cast<int>(rests);
    mut.erase(std::remove_if(mut.begin(), mut.end(), [](const Beat& k) { return k.isRest(); }), mut.end());
  }
  return removed;
}

void mnuOperationsRemoveRests_Click(EditContext& ctx) {
  if (!PasswordCorrect(ctx)) return;
  if (!ctx.prompter.yesNo(ctx.text("str_ConfirmRemoveRests"), ctx.text("str_RemoveAllRests"))) return;
  RunCommand(ctx, [&] { RemoveRests(ctx.doc.score, ctx.doc.CursorTrack); }, "Remove all Rests");
}

// ---- transposing ----

namespace {

struct Moving {
  int string;
  int pitch;  // the new pitch
};

// Transposes one beat; returns the strings whose notes found no place.
std::vector<int> transposeBeat(Beat& beat, const Track& tr, int semitones) {
  const int strings = std::clamp<int>(tr.Tuning.NumStrings, 1, kMaxStrings);
  auto openPitch = [&](int s) { return GetStringPitch(s) + tr.Tuning.Offset[static_cast<size_t>(s)]; };
  const std::array<NoteSlot, kMaxStrings> old = beat.Notes;
  std::vector<Moving> pending;
  for (int s = 0; s < strings; ++s) {
    int fret = 0;
    if (!FretNumber(old[static_cast<size_t>(s)].Fret, fret)) continue;
    const int pitch = fret + openPitch(s) + semitones;
    const int onOwn = pitch - openPitch(s);
    if (onOwn >= 0 && onOwn <= kHighestFret) {
      beat.Notes[static_cast<size_t>(s)].Fret = std::to_string(onOwn);
    } else {
      pending.push_back({s, pitch});
      beat.Notes[static_cast<size_t>(s)] = NoteSlot();
    }
  }
  std::vector<int> unplaced;
  for (size_t i = 0; i < pending.size(); ++i) {
    const Moving& m = pending[i];
    // A string is free when nothing sounds on it and no other displaced note must go back to it.
    auto freeString = [&](int s) {
      if (beat.Notes[static_cast<size_t>(s)].hasNote()) return false;
      for (size_t j = i + 1; j < pending.size(); ++j)
        if (pending[j].string == s) return false;
      return true;
    };
    // Nearest strings first; between two at the same distance, the one the pitch moved towards
    // (a higher string for a rise).
    int best = -1;
    for (int dist = 1; dist < strings && best < 0; ++dist) {
      const int toward = semitones > 0 ? m.string - dist : m.string + dist;
      const int away = semitones > 0 ? m.string + dist : m.string - dist;
      for (int s : {toward, away}) {
        if (s < 0 || s >= strings || !freeString(s)) continue;
        const int fret = m.pitch - openPitch(s);
        if (fret >= 0 && fret <= kHighestFret) {
          best = s;
          break;
        }
      }
    }
    if (best < 0) {
      beat.Notes[static_cast<size_t>(m.string)] = old[static_cast<size_t>(m.string)];
      unplaced.push_back(m.string);
      continue;
    }
    NoteSlot moved = old[static_cast<size_t>(m.string)];
    moved.Fret = std::to_string(m.pitch - openPitch(best));
    beat.Notes[static_cast<size_t>(best)] = std::move(moved);
  }
  return unplaced;
}

}  // namespace

std::vector<UnplacedNote> TransposeTracks(Score& s, const std::vector<int>& tracks, int semitones,
                                          const SelectedRange* range) {
  std::vector<UnplacedNote> unplaced;
  if (semitones == 0) return unplaced;
  for (int t : tracks) {
    const Track& tr = s.track(t);
    if (tr.DrumTrack) continue;
    const int firstBar = range ? std::max(range->firstBar, 0) : 0;
    const int lastBar = range ? std::min(range->lastBar, s.GetLastBar(t)) : s.GetLastBar(t);
    for (int b = firstBar; b <= lastBar; ++b) {
      std::vector<Beat> beats = s.bar(t, b).Beats;
      std::vector<UnplacedNote> here;
      const bool someBeats = range && !range->wholeBars;
      const size_t firstBeat = someBeats ? static_cast<size_t>(std::max(range->firstBeat, 0)) : 0;
      const size_t endBeat = someBeats ? std::min(beats.size(), static_cast<size_t>(range->lastBeat) + 1) : beats.size();
      for (size_t k = firstBeat; k < endBeat; ++k)
        for (int str : transposeBeat(beats[k], tr, semitones))
          here.push_back({t, b, static_cast<int>(k), str, beats[k].Notes[static_cast<size_t>(str)].Fret});
      unplaced.insert(unplaced.end(), here.begin(), here.end());
      // Only bars that changed are written, so the others stay shared with undo snapshots.
      if (beats != s.bar(t, b).Beats) s.barMut(t, b).Beats = std::move(beats);
    }
  }
  return unplaced;
}

bool Transpose(EditContext& ctx, const std::vector<int>& tracks, int semitones, const SelectedRange* range) {
  if (tracks.empty()) {
    ctx.message("str_PleaseChooseAtLeastOneTrack", MessageIcon::Information);
    return false;
  }
  std::vector<UnplacedNote> unplaced;
  const bool ok = RunCommand(
      ctx, [&] { unplaced = TransposeTracks(ctx.doc.score, tracks, semitones, range); }, "Transpose");
  if (ok && !unplaced.empty()) {
    std::string text = ctx.text("str_TransposeNoRoom");
    for (const UnplacedNote& n : unplaced)
      text += "\n" + std::to_string(n.track + 1) + ", " + std::to_string(n.bar + 1) + ", " +
              std::to_string(n.beat + 1) + ", " + std::to_string(n.string + 1) + ": " + n.fret;
    ctx.prompter.message(text, ctx.text("str_Warning"), MessageIcon::Warning);
  }
  return ok;
}

// ---- go-to points ----

std::vector<GotoPoint> GotoPoints(const Score& s) {
  std::vector<GotoPoint> points;
  for (int t = 0; t <= s.LastTrack(); ++t)
    for (int b = 0; b <= s.GetLastBar(t); ++b) {
      const std::vector<Beat>& beats = s.bar(t, b).Beats;
      for (size_t k = 0; k < beats.size(); ++k)
        if (!beats[k].GotoName.empty()) points.push_back({beats[k].GotoName, t, b, static_cast<int>(k)});
    }
  return points;
}

int NumberOfGotoPoints(const Score& s, int track) {
  const std::vector<GotoPoint> all = GotoPoints(s);
  return static_cast<int>(std::count_if(all.begin(), all.end(), [&](const GotoPoint& p) { return p.track == track; }));
}

namespace {
const GotoPoint* findPoint(const std::vector<GotoPoint>& points, const std::string& name) {
  for (const GotoPoint& p : points)
    if (p.name == name) return &p;
  return nullptr;
}
}  // namespace

bool AddGotoPoint(EditContext& ctx, const std::string& rawName) {
  const std::string name(Trim(rawName));
  if (name.empty()) {
    ctx.message("str_PleaseName", MessageIcon::Information);
    return false;
  }
  const std::vector<GotoPoint> points = GotoPoints(ctx.doc.score);
  if (findPoint(points, name)) {
    ctx.prompter.message(ctx.text("str_PointExists1") + name + ctx.text("str_PointExists2"), "Plectaro",
                         MessageIcon::Information);
    return false;
  }
  if (static_cast<int>(points.size()) >= kMaxGotoPoints) {
    ctx.message("str_NoMorePoints", MessageIcon::Information);
    return false;
  }
  const bool ok = RunCommand(ctx, [&] { CursorBeatMut(ctx.doc).GotoName = name; }, "Add a Go-To Point");
  if (ok && ctx.hooks.gotoPointsChanged) ctx.hooks.gotoPointsChanged();
  return ok;
}

bool DeleteGotoPoint(EditContext& ctx, const std::string& name) {
  const std::vector<GotoPoint> points = GotoPoints(ctx.doc.score);
  const GotoPoint* p = findPoint(points, name);
  if (!p || !PasswordCorrect(ctx)) return false;
  if (!ctx.prompter.yesNo(ctx.text("str_ConfirmDeletePoint1") + name + ctx.text("str_ConfirmDeletePoint2"),
                          ctx.text("str_ConfirmationRequired")))
    return false;
  const GotoPoint at = *p;
  const bool ok = RunCommand(
      ctx, [&] { ctx.doc.score.beatMut(at.track, at.bar, at.beat).GotoName.clear(); }, "Delete a Go-To Point");
  if (ok && ctx.hooks.gotoPointsChanged) ctx.hooks.gotoPointsChanged();
  return ok;
}

bool GoToPoint(EditContext& ctx, const std::string& name) {
  const std::vector<GotoPoint> points = GotoPoints(ctx.doc.score);
  const GotoPoint* p = findPoint(points, name);
  if (!p) return false;
  const GotoPoint at = *p;
  RunCursorMove(ctx, [&] {
    Document& d = ctx.doc;
    d.CursorTrack = static_cast<int16_t>(at.track);
    d.CursorBar = static_cast<int16_t>(at.bar);
    d.CursorBeat = static_cast<int16_t>(at.beat);
  });
  return true;
}

}  // namespace plectaro
