#include "editing/find_replace.h"

#include <algorithm>
#include <cctype>

namespace plectaro {

namespace {

std::string folded(std::string s, bool matchCase) {
  if (!matchCase)
    for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

int occurrences(const std::string& text, const std::string& term, bool matchCase) {
  if (term.empty() || text.size() < term.size()) return 0;
  const std::string hay = folded(text, matchCase), needle = folded(term, matchCase);
  int n = 0;
  for (size_t at = hay.find(needle); at != std::string::npos; at = hay.find(needle, at + needle.size())) ++n;
  return n;
}

std::string replaced(const std::string& text, const std::string& term, const std::string& with, bool matchCase) {
  const std::string hay = folded(text, matchCase), needle = folded(term, matchCase);
  std::string out;
  size_t from = 0;
  for (size_t at = hay.find(needle); at != std::string::npos; at = hay.find(needle, from)) {
    out.append(text, from, at - from).append(with);
    from = at + needle.size();
  }
  return out.append(text, from, std::string::npos);
}

// A fret text a slot may hold after a replacement: a number of at most two digits, "x" for a
// dead note, or "" to clear.
bool validFretText(const std::string& f) {
  if (f.empty() || f == "x") return true;
  return f.size() <= 2 && std::all_of(f.begin(), f.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::vector<int> tracksOf(const Score& s, const FindRequest& r, int cursorTrack) {
  std::vector<int> t;
  if (r.AllTracks) {
    for (int i = 0; i <= s.LastTrack(); ++i) t.push_back(i);
  } else if (cursorTrack >= 0 && cursorTrack <= s.LastTrack()) {
    t.push_back(cursorTrack);
  }
  return t;
}

}  // namespace

std::vector<FindMatch> FindAll(const Score& s, const FindRequest& r, int cursorTrack) {
  std::vector<FindMatch> found;
  if (r.What.empty()) return found;
  for (int t : tracksOf(s, r, cursorTrack)) {
    const Track& tr = s.Tracks[static_cast<size_t>(t)];
    if (r.Lyrics)
      for (int line = 0; line < static_cast<int>(tr.Lyrics.size()); ++line)
        if (int n = occurrences(tr.Lyrics[static_cast<size_t>(line)], r.What, r.MatchCase))
          found.push_back({MatchKind::Lyric, t, 0, 0, line, n});
    const int strings = std::clamp<int>(tr.Tuning.NumStrings, 1, kMaxStrings);
    for (int b = 0; b < static_cast<int>(tr.Bars.size()); ++b) {
      const auto& beats = tr.Bars[static_cast<size_t>(b)]->Beats;
      for (int k = 0; k < static_cast<int>(beats.size()); ++k) {
        const Beat& beat = beats[static_cast<size_t>(k)];
        if (r.Texts)
          if (int n = occurrences(beat.Text, r.What, r.MatchCase)) found.push_back({MatchKind::Text, t, b, k, 0, n});
        if (r.GotoNames)
          if (int n = occurrences(beat.GotoName, r.What, r.MatchCase))
            found.push_back({MatchKind::GotoName, t, b, k, 0, n});
        if (r.Frets && !tr.DrumTrack)
          for (int st = 0; st < strings; ++st)
            if ((r.String < 0 || r.String == st) && beat.Notes[static_cast<size_t>(st)].Fret == r.What)
              found.push_back({MatchKind::Fret, t, b, k, st, 1});
      }
    }
  }
  return found;
}

bool FindNext(EditContext& ctx, const FindRequest& request) {
  Document& d = ctx.doc;
  std::vector<FindMatch> found = FindAll(d.score, request, d.CursorTrack);
  // Lyrics belong to the whole track, not to a beat the cursor could stand on.
  std::erase_if(found, [](const FindMatch& m) { return m.Kind == MatchKind::Lyric; });
  if (found.empty()) {
    ctx.message("str_NoMatches");
    return false;
  }
  const auto after = [&](const FindMatch& m) {
    if (m.Track != d.CursorTrack) return m.Track > d.CursorTrack;
    if (m.Bar != d.CursorBar) return m.Bar > d.CursorBar;
    if (m.Beat != d.CursorBeat) return m.Beat > d.CursorBeat;
    return m.Kind == MatchKind::Fret && m.Index > d.CursorString;
  };
  auto it = std::find_if(found.begin(), found.end(), after);
  const FindMatch m = it == found.end() ? found.front() : *it;
  RunCursorMove(ctx, [&] {
    d.CursorTrack = static_cast<int16_t>(m.Track);
    d.CursorBar = static_cast<int16_t>(m.Bar);
    d.CursorBeat = static_cast<int16_t>(m.Beat);
    if (m.Kind == MatchKind::Fret) {
      d.CursorString = static_cast<int16_t>(m.Index);
      ctx.NotationEntry = false;
    }
  });
  return true;
}

int ReplaceAll(EditContext& ctx, const FindRequest& r) {
  Document& d = ctx.doc;
  if (r.Frets && !validFretText(r.With)) {
    ctx.message("str_PleaseEnterValidNumber", MessageIcon::Warning);
    return 0;
  }
  const std::vector<FindMatch> found = FindAll(d.score, r, d.CursorTrack);
  int count = 0;
  for (const FindMatch& m : found) count += m.Count;
  if (count == 0) {
    ctx.message("str_NoMatches");
    return 0;
  }
  const bool ok = RunCommand(ctx, [&] {
    Score& s = d.score;
    for (const FindMatch& m : found) {
      switch (m.Kind) {
        case MatchKind::Lyric: {
          std::string& line = s.trackMut(m.Track).Lyrics[static_cast<size_t>(m.Index)];
          line = replaced(line, r.What, r.With, r.MatchCase);
          break;
        }
        case MatchKind::Text: {
          Beat& b = s.beatMut(m.Track, m.Bar, m.Beat);
          b.Text = replaced(b.Text, r.What, r.With, r.MatchCase);
          break;
        }
        case MatchKind::GotoName: {
          Beat& b = s.beatMut(m.Track, m.Bar, m.Beat);
          b.GotoName = replaced(b.GotoName, r.What, r.With, r.MatchCase);
          break;
        }
        case MatchKind::Fret:
          s.noteMut(m.Track, m.Bar, m.Beat, m.Index).Fret = r.With;
          break;
      }
    }
  }, "Replace");
  if (!ok) return 0;
  ctx.prompter.message(std::to_string(count) + " " + ctx.text("str_termsReplaced"), "Plectaro",
                       MessageIcon::Information);
  if (r.GotoNames && ctx.hooks.gotoPointsChanged) ctx.hooks.gotoPointsChanged();
  return count;
}

}  // namespace plectaro
