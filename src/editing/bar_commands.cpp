#include "editing/bar_commands.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>

#include "editing/selection.h"

namespace plectaro {

namespace {

// Which tracks a list names, checked; throws on a track that does not exist.
std::vector<bool> chosenTracks(const Score& s, const std::vector<int>& tracks) {
  std::vector<bool> chosen(s.Tracks.size(), false);
  for (int t : tracks) {
    s.track(t);
    chosen[static_cast<size_t>(t)] = true;
  }
  return chosen;
}

bool allChosen(const std::vector<bool>& chosen) {
  return std::all_of(chosen.begin(), chosen.end(), [](bool c) { return c; });
}

int lastBarOfScore(const Score& s) { return static_cast<int>(s.BarInfos.size()) - 1; }

void checkBar(const Score& s, int bar) { s.barInfo(bar); }

// A bar record without the marks that belong to one place in the song.
BarInfo plainBarInfo(const BarInfo& from) {
  BarInfo b;
  b.TimeSigNumerator = from.TimeSigNumerator;
  b.TimeSigDenominator = from.TimeSigDenominator;
  return b;
}

// A blank bar carrying a key: the shared blank bar when the key is C major, so that blank bars
// cost nothing.
Cow<TrackBar> blankBar(int32_t key, bool minor) {
  if (key == 0 && !minor) return Cow<TrackBar>();
  TrackBar tb;
  tb.KeySignature = key;
  tb.KeyMinor = minor;
  return Cow<TrackBar>(std::move(tb));
}

std::pair<int, int> rangeOf(const EditContext& ctx, ApplyRange range) {
  const Document& d = ctx.doc;
  const int last = lastBarOfScore(d.score);
  switch (range) {
    case ApplyRange::Selection:
      if (auto sel = SelectionOf(ctx)) return {sel->firstBar, std::min(sel->lastBar, last)};
      return {d.CursorBar, d.CursorBar};
    case ApplyRange::ThisBar: return {d.CursorBar, d.CursorBar};
    case ApplyRange::FromThisBar: return {d.CursorBar, last};
    case ApplyRange::AllBars: return {0, last};
  }
  return {d.CursorBar, d.CursorBar};
}

void moveToBar(EditContext& ctx, int bar, bool resetBeat) {
  RunCursorMove(ctx, [&] {
    Document& d = ctx.doc;
    const int last = d.score.GetLastBar(d.CursorTrack);
    bar = std::clamp(bar, 0, std::max(last, 0));
    if (bar == d.CursorBar && !resetBeat) return;
    d.CursorBar = static_cast<int16_t>(bar);
    d.CursorBeat = 0;
  });
}

// A track of a drum kit and a track of strings cannot take each other's bars: the frets of one
// are the drum symbols of the other.
TrackBar fitToStrings(const TrackBar& src, int numStrings) {
  TrackBar tb = src;
  for (Beat& b : tb.Beats)
    for (int s = std::max(numStrings, 0); s < kMaxStrings; ++s) b.Notes[static_cast<size_t>(s)] = NoteSlot{};
  return tb;
}

bool usesStringsBeyond(const TrackBar& tb, int numStrings) {
  for (const Beat& b : tb.Beats)
    for (int s = std::max(numStrings, 0); s < kMaxStrings; ++s)
      if (!(b.Notes[static_cast<size_t>(s)] == NoteSlot{})) return true;
  return false;
}

// The chosen bars of a track as clipboard records: shared with the score, not copied.
BarClipboard clipOf(const Score& s, int track, const std::vector<int>& bars) {
  BarClipboard clip;
  clip.drumTrack = s.track(track).DrumTrack;
  for (int b : bars) {
    s.bar(track, b);
    clip.bars.push_back(s.Tracks[static_cast<size_t>(track)].Bars[static_cast<size_t>(b)]);
    clip.infos.push_back(plainBarInfo(s.barInfo(b)));
  }
  return clip;
}

}  // namespace

BarClipboard ClipOfTracks(const Score& s, int cursorTrack, const std::vector<int>& tracks,
                          const std::vector<int>& bars) {
  BarClipboard clip = clipOf(s, cursorTrack, bars);
  if (tracks.size() < s.Tracks.size()) return clip;
  for (size_t t = 0; t < s.Tracks.size(); ++t) {
    BarClipboard one = clipOf(s, static_cast<int>(t), bars);
    clip.trackBars.push_back(std::move(one.bars));
    clip.drumTracks.push_back(one.drumTrack);
  }
  return clip;
}

const char* const kMajorKeyNames[15] = {
    "Cb (bbbbbbb)", "Gb (bbbbbb)", "Db (bbbbb)", "Ab (bbbb)", "Eb (bbb)", "Bb (bb)", "F (b)", "C",
    "G (#)", "D (##)", "A (###)", "E (####)", "B (#####)", "F# (######)", "C# (#######)"};
const char* const kMinorKeyNames[15] = {
    "Abm (bbbbbbb)", "Ebm (bbbbbb)", "Bbm (bbbbb)", "Fm (bbbb)", "Cm (bbb)", "Gm (bb)", "Dm (b)",
    "Am ", "Em (#)", "Bm (##)", "F#m (###)", "C#m (####)", "G#m (#####)", "D#m (######)",
    "A#m (#######)"};

int32_t KeyCodeOfListIndex(int index) {
  index = std::clamp(index, 0, 14);
  if (index == 7) return 0;
  if (index > 7) return index - 7;  // 1..7 sharps
  return 7 + (7 - index);           // 8..14: one to seven flats
}

int KeyListIndexOfCode(int32_t key) {
  if (key >= 1 && key <= 7) return 7 + key;
  if (key >= 8 && key <= 14) return 7 - (key - 7);
  if (key >= -7 && key <= -1) return 7 + key;
  return 7;
}

void ClearBar(Score& s, int track, int bar) {
  s.SetBeatCount(track, bar, 0);
  s.ClearBeat(track, bar, 0);
}

void AddBar(Score& s) {
  const int last = lastBarOfScore(s);
  if (last + 1 > kMaxIndex) throw ScoreError("a score holds at most 32768 bars");
  s.BarInfos.push_back(plainBarInfo(s.barInfo(last)));
  for (Track& tr : s.Tracks) {
    const int32_t key = tr.Bars.empty() ? 0 : tr.Bars.back()->KeySignature;
    const bool minor = !tr.Bars.empty() && tr.Bars.back()->KeyMinor;
    tr.Bars.push_back(blankBar(key, minor));
  }
}

void InsertBarAt(Score& s, int bar, const std::vector<int>& tracks) {
  checkBar(s, bar);
  const std::vector<bool> chosen = chosenTracks(s, tracks);
  AddBar(s);
  for (size_t t = 0; t < s.Tracks.size(); ++t) {
    if (!chosen[t]) continue;
    auto& bars = s.Tracks[t].Bars;
    if (static_cast<size_t>(bar) >= bars.size()) throw ScoreError("bar " + std::to_string(bar) + " is out of range");
    bars.insert(bars.begin() + bar, bars[static_cast<size_t>(bar)]);
    bars.pop_back();
    ClearBar(s, static_cast<int>(t), bar);
  }
  if (allChosen(chosen)) {
    s.BarInfos.insert(s.BarInfos.begin() + bar, plainBarInfo(s.BarInfos[static_cast<size_t>(bar)]));
    s.BarInfos.pop_back();
  }
}

void RemoveBarAt(Score& s, int bar, const std::vector<int>& tracks) {
  checkBar(s, bar);
  const std::vector<bool> chosen = chosenTracks(s, tracks);
  if (lastBarOfScore(s) == 0) {  // a score keeps one bar
    for (size_t t = 0; t < s.Tracks.size(); ++t)
      if (chosen[t]) ClearBar(s, static_cast<int>(t), 0);
    return;
  }
  const bool all = allChosen(chosen);
  for (size_t t = 0; t < s.Tracks.size(); ++t) {
    if (!chosen[t]) continue;
    auto& bars = s.Tracks[t].Bars;
    if (static_cast<size_t>(bar) >= bars.size()) throw ScoreError("bar " + std::to_string(bar) + " is out of range");
    bars.erase(bars.begin() + bar);
    if (!all) {
      const TrackBar& prev = *bars.back();
      bars.push_back(blankBar(prev.KeySignature, prev.KeyMinor));
    }
  }
  if (all) s.BarInfos.erase(s.BarInfos.begin() + bar);
}

void mnuBarClear_Click(EditContext& ctx) {
  RunCommand(ctx, [&] {
    ClearBar(ctx.doc.score, ctx.doc.CursorTrack, ctx.doc.CursorBar);
    ctx.doc.CursorBeat = 0;
  }, "Clear Bar");
}

void mnuBarFirst_Click(EditContext& ctx) { moveToBar(ctx, 0, true); }
void mnuBarPrevious_Click(EditContext& ctx) {
  if (ctx.doc.CursorBar > 0) moveToBar(ctx, ctx.doc.CursorBar - 1, true);
}
void mnuBarNext_Click(EditContext& ctx) {
  if (ctx.doc.CursorBar < ctx.doc.score.GetLastBar(ctx.doc.CursorTrack))
    moveToBar(ctx, ctx.doc.CursorBar + 1, true);
}
void mnuBarLast_Click(EditContext& ctx) {
  moveToBar(ctx, ctx.doc.score.GetLastBar(ctx.doc.CursorTrack), true);
}

bool InsertBar(EditContext& ctx, const std::vector<int>& tracks) {
  if (tracks.empty()) {
    ctx.message("str_SelectAtLeastOneTrack", MessageIcon::Warning);
    return false;
  }
  return RunCommand(ctx, [&] {
    InsertBarAt(ctx.doc.score, ctx.doc.CursorBar, tracks);
    ctx.doc.CursorBeat = 0;
  }, "Insert Bar");
}

bool RemoveBar(EditContext& ctx, const std::vector<int>& tracks) {
  if (tracks.empty()) {
    ctx.message("str_SelectAtLeastOneTrack", MessageIcon::Warning);
    return false;
  }
  const auto sel = SelectionOf(ctx);
  const bool selectedBars = sel && sel->wholeBars;
  const int first = selectedBars ? sel->firstBar : ctx.doc.CursorBar;
  const int last = selectedBars ? sel->lastBar : ctx.doc.CursorBar;
  const bool ok = RunCommand(ctx, [&] {
    // From the last bar back, so the bars still to go keep their numbers.
    for (int b = std::min(last, lastBarOfScore(ctx.doc.score)); b >= first; --b) RemoveBarAt(ctx.doc.score, b, tracks);
    ctx.doc.CursorBar = static_cast<int16_t>(first);
    ctx.doc.CursorBeat = 0;
  }, first == last ? "Remove Bar" : "Remove Bars");
  // The bars the selection held are gone.
  if (ok && selectedBars) ctx.selection = Selection{};
  return ok;
}

bool CopyBars(EditContext& ctx, const std::vector<int>& bars) {
  if (bars.empty()) {
    ctx.message("str_SelectAtLeastOneBarToCopy", MessageIcon::Warning);
    return false;
  }
  try {
    ctx.clipboard = clipOf(ctx.doc.score, ctx.doc.CursorTrack, bars);
  } catch (const ScoreError& e) {
    ctx.prompter.message(e.what(), ctx.text("str_Error"), MessageIcon::Critical);
    return false;
  }
  return true;
}

bool CutBars(EditContext& ctx, const std::vector<int>& tracks, const std::vector<int>& bars) {
  if (tracks.empty()) {
    ctx.message("str_SelectAtLeastOneTrackToCutFrom", MessageIcon::Warning);
    return false;
  }
  if (bars.empty()) {
    ctx.message("str_SelectAtLeastOneBarToCut", MessageIcon::Warning);
    return false;
  }
  const int source = std::find(tracks.begin(), tracks.end(), ctx.doc.CursorTrack) != tracks.end()
                         ? ctx.doc.CursorTrack
                         : tracks.front();
  return RunCommand(ctx, [&] {
    Score& s = ctx.doc.score;
    chosenTracks(s, tracks);
    BarClipboard clip = clipOf(s, source, bars);
    for (int t : tracks)
      for (int b : bars) ClearBar(s, t, b);
    ctx.clipboard = std::move(clip);
  }, "Cut");
}

bool PasteBars(EditContext& ctx, const std::vector<int>& tracks, int pastings, bool after) {
  if (ctx.clipboard.empty()) {
    ctx.message("str_CopySomethingFirst", MessageIcon::Warning);
    return false;
  }
  if (tracks.empty()) {
    ctx.message("str_SelectAtLeastOneTrack", MessageIcon::Warning);
    return false;
  }
  if (pastings < 1 || pastings > kMaxIndex) {
    ctx.message("str_InvalidPastings", MessageIcon::Warning);
    return false;
  }
  // A band clipboard goes back track by track when the score has as many tracks; otherwise
  // its cursor track's bars serve like a copy of one track.
  const bool band = ctx.clipboard.trackBars.size() == ctx.doc.score.Tracks.size();
  for (int t : tracks) {
    if (t < 0 || t > ctx.doc.score.LastTrack()) continue;
    const bool drum = band ? ctx.clipboard.drumTracks[static_cast<size_t>(t)] : ctx.clipboard.drumTrack;
    if (ctx.doc.score.Tracks[static_cast<size_t>(t)].DrumTrack != drum) {
      ctx.message("str_WrongTrackType", MessageIcon::Warning);
      return false;
    }
  }
  return RunCommand(ctx, [&] {
    Score& s = ctx.doc.score;
    const std::vector<bool> chosen = chosenTracks(s, tracks);
    const BarClipboard& clip = ctx.clipboard;
    const long long total = static_cast<long long>(clip.bars.size()) * pastings;
    if (total + static_cast<long long>(s.BarInfos.size()) > kMaxIndex + 1LL)
      throw ScoreError("a score holds at most 32768 bars; these pastings would make " +
                       std::to_string(total + static_cast<long long>(s.BarInfos.size())));
    const int at = ctx.doc.CursorBar + (after ? 1 : 0);
    checkBar(s, std::min(at, lastBarOfScore(s)));
    for (size_t t = 0; t < s.Tracks.size(); ++t) {
      Track& tr = s.Tracks[t];
      if (static_cast<size_t>(at) > tr.Bars.size()) throw ScoreError("bar " + std::to_string(at) + " is out of range");
      std::vector<Cow<TrackBar>> block;
      block.reserve(static_cast<size_t>(total));
      if (chosen[t]) {
        const int strings = tr.Tuning.NumStrings;
        const auto& source = band ? clip.trackBars[t] : clip.bars;
        for (int p = 0; p < pastings; ++p)
          for (const Cow<TrackBar>& b : source)
            block.push_back(usesStringsBeyond(*b, strings) ? Cow<TrackBar>(fitToStrings(*b, strings)) : b);
      } else {
        const TrackBar& near = *tr.Bars[static_cast<size_t>(std::max(at - 1, 0))];
        block.assign(static_cast<size_t>(total), blankBar(near.KeySignature, near.KeyMinor));
      }
      tr.Bars.insert(tr.Bars.begin() + at, block.begin(), block.end());
    }
    std::vector<BarInfo> infos;
    for (int p = 0; p < pastings; ++p) infos.insert(infos.end(), clip.infos.begin(), clip.infos.end());
    s.BarInfos.insert(s.BarInfos.begin() + at, infos.begin(), infos.end());
    ctx.doc.CursorBar = static_cast<int16_t>(at);
    ctx.doc.CursorBeat = 0;
  }, "Paste");
}

bool ApplyTimeSignature(EditContext& ctx, int numerator, int denominator, ApplyRange range) {
  const bool denOk = denominator == 1 || denominator == 2 || denominator == 4 || denominator == 8 ||
                     denominator == 16 || denominator == 32;
  if (numerator < 1 || numerator > 32 || !denOk) {
    ctx.message("str_ValidTSPlease", MessageIcon::Warning);
    return false;
  }
  return RunCommand(ctx, [&] {
    auto [first, last] = rangeOf(ctx, range);
    for (int b = first; b <= last; ++b) ctx.doc.score.SetTimeSignature(b, numerator, denominator);
  }, "Time Signature");
}

bool ApplyKeySignature(EditContext& ctx, int32_t key, bool minor, ApplyRange range) {
  if (ctx.doc.score.track(ctx.doc.CursorTrack).DrumTrack) {
    ctx.message("str_NoPercussionKeySigs", MessageIcon::Information);
    return false;
  }
  return RunCommand(ctx, [&] {
    auto [first, last] = rangeOf(ctx, range);
    // A selection of all tracks sets the key of every track that has one (not the drums).
    const auto sel = range == ApplyRange::Selection ? SelectionOf(ctx) : std::nullopt;
    const std::vector<int> tracks = sel ? sel->tracks : std::vector<int>{ctx.doc.CursorTrack};
    for (int t : tracks) {
      if (ctx.doc.score.track(t).DrumTrack) continue;
      for (int b = first; b <= last && b <= ctx.doc.score.GetLastBar(t); ++b) {
        const TrackBar& tb = ctx.doc.score.bar(t, b);
        if (tb.KeySignature == key && tb.KeyMinor == minor) continue;  // stays shared
        TrackBar& w = ctx.doc.score.barMut(t, b);
        w.KeySignature = key;
        w.KeyMinor = minor;
      }
    }
  }, "Key Signature");
}

void mnuBarRepeatOpen_Click(EditContext& ctx) {
  RunCommand(ctx, [&] {
    BarInfo& bi = ctx.doc.score.barInfoMut(ctx.doc.CursorBar);
    bi.RepeatOpen = !bi.RepeatOpen;
  }, "Repeat Open");
}

void mnuBarRepeatClose_Click(EditContext& ctx) {
  if (ctx.doc.score.barInfo(ctx.doc.CursorBar).RepeatClose > 0) {
    SetRepeatClose(ctx, 0);
    return;
  }
  if (!PasswordCorrect(ctx)) return;
  if (ctx.hooks.askRepeatCount) {
    if (auto count = ctx.hooks.askRepeatCount()) SetRepeatClose(ctx, *count);
    return;
  }
  auto answer = ctx.prompter.textInput(ctx.text("txt_RepeatCount"), ctx.text("txt_RepeatClose"), false);
  if (!answer) return;
  int count = 0;
  const std::string& a = *answer;
  const size_t b = a.find_first_not_of(' ');
  const size_t e = a.find_last_not_of(' ');
  auto [ptr, ec] = b == std::string::npos ? std::from_chars(a.data(), a.data(), count)
                                          : std::from_chars(a.data() + b, a.data() + e + 1, count);
  if (b == std::string::npos || ec != std::errc() || ptr != a.data() + e + 1 || count < 1 ||
      count > kMaxIndex) {
    ctx.message("str_PleaseEnterValidNumber", MessageIcon::Warning);
    return;
  }
  SetRepeatClose(ctx, count);
}

bool SetRepeatClose(EditContext& ctx, int count) {
  return RunCommand(ctx, [&] {
    if (count < 0 || count > kMaxIndex) throw ScoreError("a repeat count must be 0 to 32767");
    ctx.doc.score.barInfoMut(ctx.doc.CursorBar).RepeatClose = static_cast<int16_t>(count);
  }, "Repeat Close");
}

bool SetCoda(EditContext& ctx, int signBar, int dsAlCodaBar, int toCodaBar, int codaBar) {
  return RunCommand(ctx, [&] {
    Score& s = ctx.doc.score;
    for (int b : {signBar, dsAlCodaBar, toCodaBar, codaBar})
      if (b != -1) checkBar(s, b);
    for (BarInfo& bi : s.BarInfos) bi.Sign = bi.DSAlCoda = bi.ToCoda = bi.Coda = false;
    if (signBar != -1) s.barInfoMut(signBar).Sign = true;
    if (dsAlCodaBar != -1) s.barInfoMut(dsAlCodaBar).DSAlCoda = true;
    if (toCodaBar != -1) s.barInfoMut(toCodaBar).ToCoda = true;
    if (codaBar != -1) s.barInfoMut(codaBar).Coda = true;
  }, "Coda");
}

}  // namespace plectaro
