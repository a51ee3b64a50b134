#include "exchange/text_tab_import.h"

#include <algorithm>
#include <cctype>
#include <vector>

#include "score/bar_timing.h"
#include "score/text_codec.h"
#include "score/value_text.h"

namespace plectaro {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
char lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

void replaceAll(std::string& s, std::string_view from, std::string_view to) {
  std::string out;
  out.reserve(s.size());
  size_t pos = 0;
  for (size_t hit; (hit = s.find(from, pos)) != std::string::npos; pos = hit + from.size()) {
    out.append(s, pos, hit - pos);
    out += to;
  }
  out.append(s, pos, std::string::npos);
  s = std::move(out);
}

bool validUtf8(std::string_view b) {
  for (size_t i = 0; i < b.size();) {
    const auto c = static_cast<unsigned char>(b[i]);
    const size_t more = c < 0x80 ? 0 : (c >= 0xC2 && c <= 0xDF) ? 1 : (c >= 0xE0 && c <= 0xEF) ? 2
                        : (c >= 0xF0 && c <= 0xF4) ? 3 : 9;
    if (more == 9 || i + more >= b.size()) return false;
    for (size_t k = 1; k <= more; ++k)
      if ((static_cast<unsigned char>(b[i + k]) & 0xC0) != 0x80) return false;
    i += more + 1;
  }
  return true;
}

// The common character references of a page, so that details read "Guns & Roses", not "&amp;".
std::string decodeEntities(std::string s) {
  static const std::pair<std::string_view, std::string_view> kRefs[] = {
      {"&amp;", "&"}, {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&#39;", "'"},
      {"&apos;", "'"}, {"&nbsp;", " "}};
  for (const auto& [from, to] : kRefs) replaceAll(s, from, to);
  return s;
}

// ---- effect letters ----
//
// Each letter beside a fret becomes one dash, so the line keeps its width and the staff its
// columns; the letter is kept as a mark on that column and sets the effect on the note:
//   after a fret:  h p  hammer-on / pull-off     /  slide up      \  slide down
//                  s    legato slide              b r ^  bend      .  staccato
//                  ~    vibrato (on the beat)     *  natural harmonic   >  let ring
//   before a fret: (    ghost note ("(5)")        t  tapping (on the beat)
//                  /  \ slide into the note, when no fret stands before the letter
//                  * <  natural harmonic ("<12>")
//   x between dashes is a dead note.
// A run of the same letter after a fret ("7~~~~") is one mark: the whole run becomes dashes.
constexpr std::string_view kEffectLetters = "bshp/\\t~^.()r*<>";

struct Line {
  std::string chars;
  std::string marks;  // the letter a dash stood for, '\0' for none
};

void normaliseEffects(Line& l) {
  std::string& c = l.chars;
  const size_t n = c.size();
  l.marks.assign(n, '\0');
  for (size_t i = 0; i < n; ++i) {
    const char ch = c[i];
    const bool prevDigit = i > 0 && isDigit(c[i - 1]);
    const bool nextDigit = i + 1 < n && isDigit(c[i + 1]);
    if (kEffectLetters.find(ch) != std::string_view::npos && (prevDigit || nextDigit)) {
      l.marks[i] = ch;
      c[i] = '-';
      // The rest of a run of the letter ("~~~~") goes with it.
      size_t j = i + 1;
      while (j < n && c[j] == ch) c[j++] = '-';
      i = j - 1;
    } else if ((ch == 'x' || ch == 'X') && i > 0 && i + 1 < n && (c[i - 1] == '-' || c[i - 1] == '|') &&
               (c[i + 1] == '-' || c[i + 1] == '|')) {
      l.marks[i] = 'x';
      c[i] = '-';
    }
  }
}

void keepAccepted(Line& l, std::string_view accepted) {
  size_t w = 0;
  for (size_t r = 0; r < l.chars.size(); ++r) {
    if (accepted.find(l.chars[r]) == std::string_view::npos) continue;
    l.chars[w] = l.chars[r];
    l.marks[w] = l.marks[r];
    ++w;
  }
  l.chars.resize(w);
  l.marks.resize(w);
}

// A tab line keeps its dashes; a chord-name, lyric or heading line keeps a few digits at most.
// Such lines end a staff like an empty line, so "Am7" above a staff never lands on a string.
bool isStringLine(const std::string& chars) {
  const auto dashes = static_cast<size_t>(std::count(chars.begin(), chars.end(), '-'));
  return dashes >= 3 && dashes * 4 >= chars.size();
}

// Standard tunings by number of strings: a four- or five-line staff is a bass.
void tuneForLines(Score& s, int track, int lines) {
  const Track& tr = s.track(track);
  if (lines == tr.Tuning.NumStrings || lines < 4) return;
  std::array<int16_t, kMaxStrings> offsets{};
  if (lines == 4 || lines == 5) offsets = {-21, -21, -22, -22, -22, 0, 0};
  s.SetTuning(track, offsets, lines);
}

bool fretCell(const Line& l, size_t col) { return isDigit(l.chars[col]) || l.marks[col] == 'x'; }

// `before`: the mark stands in front of the fret; `owned`: another fret stands in front of the
// mark, whose effect it already is ("5/7" slides from 5, it does not slide into 7).
void applyEffect(Beat& beat, NoteSlot& note, char mark, bool before, bool owned = false) {
  if (before) {
    switch (mark) {
      case '(': note.GhostNote = true; break;
      case 't': beat.ChordTechnique = kTapping; break;
      case '<': note.Harmonic = kNaturalHarmonic; break;
      case '/': if (!owned) note.Technique = kSlideIntoUp; break;
      case '\\': if (!owned) note.Technique = kSlideIntoDown; break;
      case '*': if (!owned) note.Harmonic = kNaturalHarmonic; break;
      default: break;
    }
    return;
  }
  switch (mark) {
    case 'h':
    case 'p': note.Technique = kHammerOnPullOff; break;
    case '/': note.Technique = kSlideUp; break;
    case '\\': note.Technique = kSlideDown; break;
    case 's': note.Technique = kLegatoSlide; break;
    case '.': note.Technique = kStaccato; break;
    case 'b':
    case 'r':
    case '^': {
      // A full-step bend (four quarter tones) reached half way through the beat.
      BendInfo& b = note.Bend.mut();
      for (size_t i = 0; i < b.Points.size(); ++i) b.Points[i] = std::min(4.0, static_cast<double>(i) * 4.0 / 12.0);
      note.HasBend = true;
      break;
    }
    case '~': beat.ChordTechnique = kVibrato; break;
    case '*': note.Harmonic = kNaturalHarmonic; break;
    case '>': note.LetRing = true; break;
    default: break;
  }
}

int lengthOfGap(int gap) {
  if (gap < 2) return kSixtyFourth;
  if (gap < 4) return kThirtySecond;
  if (gap < 8) return kSixteenth;
  if (gap < 16) return kEighth;
  if (gap < 32) return kQuarter;
  if (gap < 64) return kHalf;
  return kWhole;
}

// Writes beats into the track bar by bar, opening a new bar whenever one is full.
class TrackFiller {
 public:
  TrackFiller(Score& s, int track, const AsciiImportOptions& o, int num, int den)
      : s_(s), track_(track), o_(o), num_(num), den_(den) {}

  // A new blank beat at `column`, in place in its bar (beats are costly to move).
  Beat& add(int column) {
    if (pending_) close(column - lastColumn_);
    if (bar_ > s_.GetLastBar(track_)) {
      const BarInfo prev = s_.barInfo(bar_ - 1);
      s_.SetBarCount(bar_);
      s_.SetTimeSignature(bar_, prev.TimeSigNumerator, prev.TimeSigDenominator);
    }
    if (bar_ != filledBar_) {
      s_.barMut(track_, bar_).Beats.clear();
      s_.barMut(track_, bar_).Beats.reserve(16);
      if (o_.EnforceTiming) s_.SetTimeSignature(bar_, num_, den_);
      filledBar_ = bar_;
    }
    Beat& beat = s_.barMut(track_, bar_).Beats.emplace_back();
    beat.Length = kSixteenth;
    pending_ = true;
    lastColumn_ = column;
    ++beats_;
    return beat;
  }

  // The staff ended `trailing` columns after its last beat.
  void endStaff(int staffLength) {
    if (pending_) close(staffLength - lastColumn_);
  }

  int beats() const { return beats_; }
  int lastFilledBar() const { return filledBar_; }

 private:
  void close(int gap) {
    pending_ = false;
    Beat& b = s_.barMut(track_, filledBar_).Beats.back();
    b.Length = o_.EnforceLength ? o_.Length : lengthOfGap(gap);
    if (CheckBar(s_, track_, filledBar_) != kBarTooShort) bar_ = filledBar_ + 1;
  }

  Score& s_;
  int track_;
  const AsciiImportOptions& o_;
  int num_, den_;
  int bar_ = 0;
  int filledBar_ = -1;
  bool pending_ = false;
  int lastColumn_ = 0;
  int beats_ = 0;
};

// Reads one staff column by column.
void parseStaff(const std::vector<const Line*>& staff, TrackFiller& fill) {
  size_t len = 32000;
  for (const Line* l : staff) len = std::min(len, l->chars.size());
  const int strings = static_cast<int>(std::min<size_t>(staff.size(), kMaxStrings));
  size_t col = 0;
  while (col < len) {
    // Most columns are blank: look before building a beat, which is costly to make.
    bool anyFret = false;
    for (int st = 0; st < strings && !anyFret; ++st) anyFret = fretCell(*staff[static_cast<size_t>(st)], col);
    if (!anyFret) {
      ++col;
      continue;
    }
    Beat& beat = fill.add(static_cast<int>(col));
    size_t widest = 1;
    for (int st = 0; st < strings; ++st) {
      const Line& l = *staff[static_cast<size_t>(st)];
      if (!fretCell(l, col)) continue;
      NoteSlot& note = beat.Notes[static_cast<size_t>(st)];
      size_t width = 1;
      if (l.marks[col] == 'x') {
        note.Fret = "x";
      } else {
        int fret = l.chars[col] - '0';
        // Two digits are one fret only below 29: "28" is a fret, "29" is 2 then 9.
        if (col + 1 < len && isDigit(l.chars[col + 1]) && fret * 10 + (l.chars[col + 1] - '0') < 29) {
          fret = fret * 10 + (l.chars[col + 1] - '0');
          width = 2;
        }
        note.Fret = std::to_string(fret);
      }
      widest = std::max(widest, width);
      if (col + width < l.marks.size() && l.marks[col + width] != '\0')
        applyEffect(beat, note, l.marks[col + width], false);
      if (col > 0 && l.marks[col - 1] != '\0')
        applyEffect(beat, note, l.marks[col - 1], true, col >= 2 && fretCell(l, col - 2));
    }
    col += widest;
  }
  fill.endStaff(static_cast<int>(len));
}

}  // namespace

std::string DecodeTabText(std::string_view bytes) {
  if (bytes.substr(0, 3) == "\xEF\xBB\xBF") return std::string(bytes.substr(3));
  if (validUtf8(bytes)) return std::string(bytes);
  return Cp1252ToUtf8(bytes);
}

bool ParseTiming(std::string_view text, int& numerator, int& denominator) {
  text = Trim(text);
  const size_t colon = text.find(':');
  if (colon == std::string_view::npos) return false;
  auto number = [](std::string_view t, int& out) {
    t = Trim(t);
    if (t.empty() || t.size() > 3) return false;
    out = 0;
    for (char c : t) {
      if (!isDigit(c)) return false;
      out = out * 10 + (c - '0');
    }
    return true;
  };
  if (!number(text.substr(0, colon), numerator) || !number(text.substr(colon + 1), denominator))
    return false;
  const bool denOk = denominator == 1 || denominator == 2 || denominator == 4 || denominator == 8 ||
                     denominator == 16 || denominator == 32;
  return numerator >= 1 && numerator <= 32 && denOk;
}

std::string ReadMarker(std::string_view text, std::string_view key) {
  const size_t at = text.find(key);
  if (at == std::string_view::npos) return "";
  const size_t from = at + key.size();
  const size_t end = text.find('\'', from);
  return std::string(text.substr(from, end == std::string_view::npos ? std::string_view::npos : end - from));
}

std::string StripTags(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  size_t i = 0;
  while (i < text.size()) {
    const char c = text[i];
    if (c == '<' && i + 1 < text.size()) {
      const char n = text[i + 1];
      if (std::isalpha(static_cast<unsigned char>(n)) || n == '/' || n == '!' || n == '?') {
        const size_t close = text.find('>', i + 1);
        if (close != std::string_view::npos) {
          i = close + 1;
          continue;
        }
      }
    }
    out += c;
    ++i;
  }
  return out;
}

TabDetails ScanDetails(std::string_view text) {
  std::string low(text);
  std::transform(low.begin(), low.end(), low.begin(), lower);
  // Labels are matched in any case ("ARTIST:", "artist:"); the value is the rest of the line.
  auto find = [&](std::initializer_list<std::string_view> labels, std::string_view fallback) {
    for (std::string_view label : labels) {
      std::string l(label);
      std::transform(l.begin(), l.end(), l.begin(), lower);
      for (size_t at = low.find(l); at != std::string::npos; at = low.find(l, at + 1)) {
        const size_t from = at + l.size();
        size_t end = text.find_first_of("\r\n", from);
        if (end == std::string_view::npos) end = text.size();
        const std::string value = decodeEntities(std::string(Trim(text.substr(from, end - from))));
        if (!IsBlank(value)) return std::string(Trim(value));
      }
    }
    return std::string(fallback);
  };
  TabDetails d;
  d.Author = find({"Author:", "Author/Artist:", "Artist:", "Band:"}, "Unknown Author");
  d.Artist = find({"Artist:", "Author/Artist:", "Band:"}, "Unknown Artist");
  d.TabAuthor = find({"Transcribed:", "Transcribed by:", "By:"}, "Anonymous");
  d.Email = find({"Email:", "E-Mail:", "E Mail:"}, "");
  d.Album = find({"Album:"}, "Unknown Album");
  d.Title = find({"Title:", "Song:"}, "Unknown");
  return d;
}

AsciiImportResult ASCIIToPLM(Score& s, int track, std::string_view input, const AsciiImportOptions& o) {
  int num = 4, den = 4;
  if (o.EnforceTiming && !ParseTiming(o.Timing, num, den))
    throw ScoreError("Please enter a valid time signature.");
  if (o.EnforceLength && (o.Length < kWhole || o.Length > kSixtyFourth))
    throw ScoreError("the note length must be one of the seven lengths");
  if (s.track(track).DrumTrack) throw ScoreError("text tab cannot be imported onto a drum track");

  AsciiImportResult result;
  std::string text(input);
  if (o.FromWeb) {
    replaceAll(text, ";&n", "---");
    replaceAll(text, "&n", "--");
  }
  result.Markers.ResourceText = ReadMarker(text, "<pl_res_text='");
  result.Markers.MusicFileAddress = ReadMarker(text, "<pl_plm_addr='");
  result.Markers.ResourceAddress = ReadMarker(text, "<pl_res_addr='");

  // A lone CR ends a line too: old Mac files and some clipboards use it.
  replaceAll(text, "\r\n", "\n");
  std::replace(text.begin(), text.end(), '\r', '\n');
  text = StripTags(text);

  // Cut into lines and clean each one.
  std::vector<Line> lines;
  for (size_t pos = 0; pos <= text.size();) {
    size_t end = text.find('\n', pos);
    if (end == std::string::npos) end = text.size();
    Line l{text.substr(pos, end - pos), {}};
    normaliseEffects(l);
    keepAccepted(l, o.AcceptedChars);
    if (l.chars != "-" && l.chars != "--" && l.chars != "---") lines.push_back(std::move(l));
    pos = end + 1;
  }

  // Staves: runs of tab lines; anything else between them ends a staff.
  std::vector<std::vector<const Line*>> staves;
  std::vector<const Line*> current;
  for (const Line& l : lines) {
    if (isStringLine(l.chars)) {
      current.push_back(&l);
      continue;
    }
    if (!current.empty()) staves.push_back(std::move(current));
    current.clear();
  }
  if (!current.empty()) staves.push_back(std::move(current));
  // The string lines of a staff are as wide as each other. A dashed line on the edge of a
  // staff that is much shorter or longer ("PM-----|" above it, a hyphenated lyric below) is
  // not a string, and would push every string down by one if it were kept.
  for (auto& st : staves) {
    std::vector<size_t> widths;
    for (const Line* l : st) widths.push_back(l->chars.size());
    std::nth_element(widths.begin(), widths.begin() + static_cast<long>(widths.size() / 2), widths.end());
    const size_t median = widths[widths.size() / 2];
    auto odd = [median](const Line* l) {
      const size_t w = l->chars.size();
      return (w > median ? w - median : median - w) * 5 > median;
    };
    while (st.size() > 1 && odd(st.front())) st.erase(st.begin());
    while (st.size() > 1 && odd(st.back())) st.pop_back();
  }
  // One or two dashed lines are an underline or a rule, not a staff.
  std::erase_if(staves, [](const auto& st) { return st.size() < 3; });
  if (staves.empty()) throw ScoreError("the text holds no tab staff");

  // ClearTrack: every bar of the track starts anew.
  for (int b = 0; b <= s.GetLastBar(track); ++b) s.barMut(track, b) = TrackBar();
  if (o.EnforceTiming)
    for (int b = 0; b <= s.GetLastBar(track); ++b) s.SetTimeSignature(b, num, den);
  tuneForLines(s, track, static_cast<int>(std::min<size_t>(staves.front().size(), kMaxStrings)));

  TrackFiller fill(s, track, o, num, den);
  for (const auto& staff : staves) parseStaff(staff, fill);
  if (fill.beats() == 0) throw ScoreError("the tab holds no frets");

  // The last bar is rounded off with rests, as a player would read the tab's end.
  if (CheckBar(s, track, fill.lastFilledBar()) == kBarTooShort) FixBar(s, track, fill.lastFilledBar());

  if (o.GetFileDetails) {
    const TabDetails d = ScanDetails(text);
    s.Author = d.Author;
    s.Artist = d.Artist;
    s.TabAuthor = d.TabAuthor;
    s.Album = d.Album;
    s.Title = d.Title;
    if (!d.Email.empty()) s.Notice = "Tabber Email: " + d.Email;
  }
  if (!result.Markers.ResourceText.empty()) s.ResourceText = result.Markers.ResourceText;
  if (!result.Markers.ResourceAddress.empty()) s.ResourceAddress = result.Markers.ResourceAddress;

  result.Staves = static_cast<int>(staves.size());
  result.Beats = fill.beats();
  result.Bars = fill.lastFilledBar() + 1;
  return result;
}

}  // namespace plectaro
