#include "score/music_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <unordered_map>

#include "score/cipher.h"
#include "score/new_score.h"
#include "score/text_codec.h"
#include "score/value_text.h"

namespace plectaro {

namespace {

// ---- tag names (Windows-1252 bytes; kept apart so that no hex escape swallows a letter) ----
namespace tag {
constexpr std::string_view Notes = "\xDD", Album = "\xDE", Artist = "\xD8", Author = "\xD7",
                           Copyright = "\xB9", Instructions = "\xA7", Notice = "\xAB",
                           ResourceText = "RT://", ResourceAddress = "RA://", Password = "\xAC",
                           ChordCharts = "\xB1", FileHeaders = "\xD0", Protected = "\xB0",
                           Shuffle = "\xF7", Tempo = "\xAA", SubTitle = "\xB4",
                           TabAuthor = "\xF0", Title = "\xA6", RowSpacing = "\xB3",
                           HeaderFont = "#FC", NoteFont = "#NC", LineColor = "#LC";
constexpr std::string_view LastTrack = "\xB8", LastBar = "\x90", LastBeat = "\xB5";
constexpr std::string_view RepeatClose = "\x93", Denominator = "\x9E\x9E", RepeatOpen = "\x94",
                           Numerator = "\xBA", DSAlCoda = "\x95", Coda = "\x99\x99",
                           ToCoda = "\x9C\x9C", Sign = "\x9D";
constexpr std::string_view Reverb = "\xD1\xD1", Lyric = "\xD2\xD2", OctaveDown = "\xD4\xD4" "D",
                           OctaveUp = "\xD4\xD4" "U", Bass = "\xB2" "BA" "\xB2",
                           Tab = "\xB2" "TA" "\xB2", Treble = "\xB2" "TR" "\xB2",
                           Drum = "\xB2" "DR" "\xB2";
constexpr std::string_view Capo = "f.t.cap:", ChordVolume = "f.t.cvo:", Channel = "f.t.cha:",
                           EffectChannel = "f.t.ech:", Instrument = "f.t.ins:",
                           InstrumentName = "f.t.inn:", Name = "f.t.nam:", Strings = "f.t.str:",
                           TuningPrefix = "f.t.tu", Volume = "f.t.vov:";
constexpr std::string_view BarCopy = "TB=", Key = "ki:", KeyMinor = "km:";
constexpr std::string_view Goto = "goto:", Dot = "dot:", Tremolo = "trm:", Tuplet = "tpt:",
                           Stroke = "strk:", ChordTech = "ctch:", Text = "txt:", Length = "l:",
                           Chord = "crd:";
constexpr std::string_view Accent = "acc:", Ghost = "gho:", Harmonic = "har:",
                           LeftFinger = "lhf:", RightFinger = "rhf:", LetRing = "rng:",
                           Tied = "lnk:", Note = "p", Technique = "tch:", Bend = "bnd:",
                           Grace = "grc:", Trill = "trr:";
}  // namespace tag

// Drum map tags in file order, with the index of their symbol in DrumMap (X o x r f O s S c ~ t F).
struct DrumTag {
  std::string_view name;
  size_t field;
};
constexpr DrumTag kDrumTags[12] = {
    {"f.t.dbf", 11}, {"f.t.dbo", 5}, {"f.t.dbs", 7}, {"f.t.dbx", 0}, {"f.t.dlc", 8}, {"f.t.dlf", 4},
    {"f.t.dlo", 1},  {"f.t.dlr", 3}, {"f.t.dls", 6}, {"f.t.dlt", 10}, {"f.t.dlx", 2}, {"f.t.dro", 9}};

constexpr size_t kChordTextWidth = 3;  // the reader trims, so any width serves

int stringsOf(const Track& t) { return std::clamp<int>(t.Tuning.NumStrings, 0, kMaxStrings); }

// ============================== writer ==============================

// A bar number inside a bar's tags. The bar compression renders each bar once with bar number
// 0 and notes where the number stands, so the stream can put the real number there later
// without rendering the bar a second time.
struct BarNo {
  int b;
};

class Out {
 public:
  explicit Out(std::string& s, std::vector<size_t>* barMarks = nullptr) : s_(s), marks_(barMarks) {}
  Out& operator<<(BarNo b) {
    if (marks_) marks_->push_back(s_.size());
    return *this << b.b;
  }
  Out& operator<<(std::string_view v) {
    s_.append(v);
    return *this;
  }
  Out& operator<<(const char* v) { return *this << std::string_view(v); }
  Out& operator<<(char c) {
    s_.push_back(c);
    return *this;
  }
  Out& operator<<(int v) {
    char buf[16];
    auto r = std::to_chars(buf, buf + sizeof buf, v);
    s_.append(buf, r.ptr);
    return *this;
  }
  Out& operator<<(bool v) { return *this << FormatBool(v); }
  // A text field, turned into the file's code page.
  Out& text(const std::string& v) {
    AppendUtf8AsCp1252(s_, v);
    return *this;
  }
  Out& real(double v) { return *this << std::string_view(FormatDouble(v)); }

 private:
  std::string& s_;
  std::vector<size_t>* marks_;
};

void writeFont(Out& o, std::string_view name, const FontInfo& f) {
  o << '<' << name << int{f.Color} << '|' << f.Bold << '\\' << f.Italic << '/';
  o.text(f.Name) << '|' << int{f.Size} << '\\' << f.Strikethrough << '/' << f.Underline << '>';
}

void writeDocumentFields(Out& o, const Score& s) {
  auto textTag = [&](std::string_view name, const std::string& v) {
    if (IsBlank(v)) return;
    o << '<' << name;
    o.text(v) << '>';
  };
  auto flagTag = [&](std::string_view name, bool v) {
    if (v) o << '<' << name << '>';
  };
  textTag(tag::Notes, s.Notes);
  textTag(tag::Album, s.Album);
  textTag(tag::Artist, s.Artist);
  textTag(tag::Author, s.Author);
  textTag(tag::Copyright, s.Copyright);
  textTag(tag::Instructions, s.Instructions);
  textTag(tag::Notice, s.Notice);
  textTag(tag::ResourceText, s.ResourceText);
  textTag(tag::ResourceAddress, s.ResourceAddress);
  textTag(tag::Password, s.Password);
  flagTag(tag::ChordCharts, s.AlwaysDrawChordCharts);
  flagTag(tag::FileHeaders, s.AlwaysDrawFileHeaders);
  flagTag(tag::Protected, s.PasswordProtected);
  flagTag(tag::Shuffle, s.ShuffleRhythm);
  o << '<' << tag::Tempo << std::string_view(FormatFloat(s.Tempo)) << '>';
  textTag(tag::SubTitle, s.SubTitle);
  textTag(tag::TabAuthor, s.TabAuthor);
  textTag(tag::Title, s.Title);
  o << '<' << tag::RowSpacing << int{s.RowSpacing} << '>';
  writeFont(o, tag::HeaderFont, s.HeaderFont);
  writeFont(o, tag::NoteFont, s.NoteFont);
  o << '<' << tag::LineColor << int{s.LineColor} << '>';
}

void writeSizes(Out& o, const Score& s) {
  o << '<' << tag::LastTrack << s.LastTrack() << '>';
  o << '<' << tag::LastBar << (static_cast<int>(s.BarInfos.size()) - 1) << '>';
  for (int t = 0; t <= s.LastTrack(); ++t)
    for (int b = 0; b <= s.GetLastBar(t); ++b)
      o << '<' << tag::LastBeat << t << '|' << b << '/' << s.GetLastBeat(t, b) << '>';
}

void writeBarInfos(Out& o, const Score& s) {
  for (int b = 0; b < static_cast<int>(s.BarInfos.size()); ++b) {
    const BarInfo& bi = s.BarInfos[static_cast<size_t>(b)];
    if (bi.RepeatClose > 0) o << '<' << tag::RepeatClose << b << '|' << int{bi.RepeatClose} << '>';
    o << '<' << tag::Denominator << int{bi.TimeSigDenominator} << '>';
    if (bi.RepeatOpen) o << '<' << tag::RepeatOpen << b << '>';
    o << '<' << tag::Numerator << int{bi.TimeSigNumerator} << '>';
    if (bi.DSAlCoda) o << '<' << tag::DSAlCoda << b << '>';
    if (bi.Coda) o << '<' << tag::Coda << b << '>';
    if (bi.ToCoda) o << '<' << tag::ToCoda << b << '>';
    if (bi.Sign) o << '<' << tag::Sign << b << '>';
  }
}

void writeTrackHeader(Out& o, const Track& tr, int t) {
  if (tr.Reverb) o << '<' << tag::Reverb << t << '>';
  for (int i = 0; i < 5; ++i) {
    const std::string& line = tr.Lyrics[static_cast<size_t>(i)];
    if (!IsBlank(line)) {
      o << '<' << tag::Lyric << char('1' + i) << t << '|';
      o.text(line) << '>';
    }
  }
  if (tr.OctaveDown) o << '<' << tag::OctaveDown << t << '>';
  if (tr.OctaveUp) o << '<' << tag::OctaveUp << t << '>';
  if (tr.BassStaff) o << '<' << tag::Bass << t << '>';
  if (tr.TabStaff) o << '<' << tag::Tab << t << '>';
  if (tr.TrebleStaff) o << '<' << tag::Treble << t << '>';
  if (tr.DrumTrack) o << '<' << tag::Drum << t << '>';
  for (int s = 0; s < kMaxStrings; ++s)
    for (const DrumTag& d : kDrumTags)
      o << '<' << d.name << t << '\\' << s << '|'
        << int{tr.DrumMaps[static_cast<size_t>(s)].Drum[d.field]} << '>';
  o << '<' << tag::Capo << int{tr.Capo} << '>';
  o << '<' << tag::ChordVolume << int{tr.ChordVolume} << '>';
  o << '<' << tag::Channel << int{tr.Channel} << '>';
  o << '<' << tag::EffectChannel << int{tr.EffectChannel} << '>';
  o << '<' << tag::Instrument << int{tr.Instrument} << '>';
  if (!tr.DrumTrack) {
    o << '<' << tag::InstrumentName;
    o.text(tr.InstrumentName) << '>';
  }
  o << '<' << tag::Name;
  o.text(tr.Name) << '>';
  o << '<' << tag::Strings << int{tr.Tuning.NumStrings} << '>';
  for (int i = 0; i < kMaxStrings; ++i)
    o << '<' << tag::TuningPrefix << char('0' + i) << ':' << int{tr.Tuning.Offset[static_cast<size_t>(i)]}
      << '>';
  o << '<' << tag::Volume << int{tr.Volume} << '>';
}

// Points separated alternately by '\' and '/', each point followed by its separator.
template <size_t N>
void writePoints(Out& o, const std::array<double, N>& points) {
  for (size_t i = 0; i < N; ++i) o.real(points[i]) << (i % 2 == 0 ? '\\' : '/');
}

void writePadded(Out& o, const std::string& v) {
  std::string enc = Utf8ToCp1252(v);
  if (enc.size() < kChordTextWidth) enc.append(kChordTextWidth - enc.size(), ' ');
  o << std::string_view(enc);
}

void writeChord(Out& o, const BeatChord& c, int t, BarNo b, int k) {
  o << '<' << tag::Chord << t << '|' << b << '\\' << k << '/' << c.Barre << '\\' << int{c.StartFret}
    << '/' << int{c.NumStrings} << '\\';
  for (size_t i = 0; i < kMaxStrings; ++i) o << int{c.Tuning[i]} << (i % 2 == 0 ? '/' : '\\');
  size_t n = 0;
  for (const auto* texts : {&c.Frets, &c.Fingers})
    for (const std::string& v : *texts) {
      writePadded(o, v);
      o << (n++ % 2 == 0 ? '\\' : '/');
    }
  o.text(c.Name) << '>';
}

void writeNote(Out& o, const NoteSlot& n, int t, BarNo b, int k, int s) {
  // Every note tag names its place as t|b\k/s.
  auto place = [&](std::string_view name) -> Out& {
    return o << '<' << name << t << '|' << b << '\\' << k << '/' << s;
  };
  if (n.Accentuate) place(tag::Accent) << '>';
  if (n.GhostNote) place(tag::Ghost) << '>';
  if (n.Harmonic != 0)  // the one note tag with ':' before the string and '/' after it
    o << '<' << tag::Harmonic << t << '|' << b << '\\' << k << ':' << s << '/' << int{n.Harmonic} << '>';
  if (n.LeftFinger != 0) place(tag::LeftFinger) << ':' << int{n.LeftFinger} << '>';
  if (n.RightFinger != 0) place(tag::RightFinger) << ':' << int{n.RightFinger} << '>';
  if (n.LetRing) place(tag::LetRing) << '>';
  if (n.Tied) place(tag::Tied) << '>';
  if (!n.Fret.empty()) {
    place(tag::Note) << ':';
    o.text(n.Fret) << '|' << int{n.Volume} << '>';
  }
  if (n.Technique != 0) place(tag::Technique) << '|' << int{n.Technique} << '>';
  if (n.HasBend) {
    place(tag::Bend) << ':';
    writePoints(o, n.Bend->Points);
    o << int{n.Bend->PresetIndex} << ':' << int{n.Bend->Scale} << '>';
  }
  if (n.HasGrace) {
    place(tag::Grace) << ':' << int{n.Grace->Length} << '|' << int{n.Grace->Volume} << ':';
    o.text(n.Grace->Fret) << '|' << int{n.Grace->Transition} << '>';
  }
  if (n.HasTrill) place(tag::Trill) << ':' << int{n.Trill.TrillFret} << '|' << int{n.Trill.Period} << '>';
}

void writeBeat(Out& o, const Beat& bt, int t, BarNo b, int k, int numStrings) {
  if (!bt.GotoName.empty()) {
    o << '<' << tag::Goto << t << '|' << b << '\\' << k << '/';
    o.text(bt.GotoName) << '>';
  }
  if (bt.Dotted) o << '<' << tag::Dot << t << '|' << b << '\\' << k << '>';
  if (bt.HasTremoloBar) {
    o << '<' << tag::Tremolo << t << '\\' << b << '|' << k << '\\' << int{bt.TremoloBar->Kind} << '/';
    o.text(bt.TremoloBar->Label) << '|';
    writePoints(o, bt.TremoloBar->Points);
    o << '>';
  }
  if (bt.IsTuplet) o << '<' << tag::Tuplet << t << '|' << b << ':' << k << '\\' << int{bt.Tuplet} << '>';
  if (bt.Stroke != 0) o << '<' << tag::Stroke << t << '|' << b << '/' << k << '\\' << int{bt.Stroke} << '>';
  if (bt.ChordTechnique != 0)
    o << '<' << tag::ChordTech << t << '|' << b << '/' << k << '\\' << int{bt.ChordTechnique} << '>';
  if (!IsBlank(bt.Text)) {
    o << '<' << tag::Text << t << '|' << b << '/' << k << '\\';
    o.text(bt.Text) << '>';
  }
  o << '<' << tag::Length << int{bt.Length} << '>';
  if (bt.HasChord) writeChord(o, *bt.Chord, t, b, k);
  for (int s = 0; s < numStrings; ++s) writeNote(o, bt.Notes[static_cast<size_t>(s)], t, b, k, s);
}

// The body of one TrackBar: key tags and beats. The bar compression renders it once with bar
// number 0, so that equal bars give equal text.
void writeBarBody(Out& o, const TrackBar& tb, int t, BarNo b, int numStrings) {
  o << '<' << tag::Key << t << '\\' << b << '/' << int{tb.KeySignature} << '>';
  o << '<' << tag::KeyMinor << t << '\\' << b << '/' << tb.KeyMinor << '>';
  for (size_t k = 0; k < tb.Beats.size(); ++k)
    writeBeat(o, tb.Beats[k], t, b, static_cast<int>(k), numStrings);
}

// Each bar of a track rendered once with bar number 0, where that number stands in it, and
// the nearest earlier bar with the same text (or -1). A reference may point at a bar that is
// itself a reference.
struct TrackBarTexts {
  std::vector<std::string> texts;
  std::vector<std::vector<size_t>> barMarks;
  std::vector<int> refs;
};

TrackBarTexts renderBars(const Track& tr, int t) {
  const int numStrings = stringsOf(tr);
  const size_t n = tr.Bars.size();
  TrackBarTexts r{std::vector<std::string>(n), std::vector<std::vector<size_t>>(n), std::vector<int>(n, -1)};
  std::unordered_map<std::string_view, int> lastSeen;
  lastSeen.reserve(n);
  std::vector<size_t> rendered(n);  // the bar whose text stands for this one
  for (size_t b = 0; b < n; ++b) {
    // A bar still shared with the bar before it (a copy never edited) has the same text.
    if (b > 0 && tr.Bars[b].sharesWith(tr.Bars[b - 1])) {
      r.refs[b] = static_cast<int>(b) - 1;
      rendered[b] = rendered[b - 1];
      lastSeen[r.texts[rendered[b]]] = static_cast<int>(b);
      continue;
    }
    rendered[b] = b;
    Out o(r.texts[b], &r.barMarks[b]);
    writeBarBody(o, *tr.Bars[b], t, BarNo{0}, numStrings);
    auto [it, fresh] = lastSeen.try_emplace(r.texts[b], static_cast<int>(b));
    if (!fresh) {
      r.refs[b] = it->second;
      it->second = static_cast<int>(b);
    }
  }
  return r;
}

void writeTrackBars(Out& o, const Track& tr, int t) {
  const TrackBarTexts bars = renderBars(tr, t);
  for (size_t b = 0; b < tr.Bars.size(); ++b) {
    if (bars.refs[b] >= 0) {
      o << '<' << tag::BarCopy << t << '\\' << static_cast<int>(b) << '|' << bars.refs[b] << '>';
      continue;
    }
    // The bar's text with its real number where the 0 stands.
    const std::string& text = bars.texts[b];
    size_t from = 0;
    for (size_t mark : bars.barMarks[b]) {
      o << std::string_view(text).substr(from, mark - from) << static_cast<int>(b);
      from = mark + 1;
    }
    o << std::string_view(text).substr(from);
  }
}

// ============================== reader ==============================

// The arguments of one tag piece, read field by field. Each field runs from the current
// position to the next occurrence of its delimiter; a field with no delimiter after it takes
// the rest of the piece (a '<' inside a field cut the piece short).
class Fields {
 public:
  Fields(std::string_view piece, size_t start) : p_(piece), pos_(std::min(start, piece.size())) {}

  std::string_view raw(char delim) {
    size_t end = p_.find(delim, pos_);
    std::string_view v;
    if (end == std::string_view::npos) {
      v = p_.substr(pos_);
      pos_ = p_.size();
    } else {
      v = p_.substr(pos_, end - pos_);
      pos_ = end + 1;
    }
    return v;
  }
  int16_t i16(char delim) { return ParseI16(raw(delim)); }
  int32_t i32(char delim) { return ParseI32(raw(delim)); }
  int index(char delim) { return ParseI16(raw(delim)); }
  bool flag(char delim) { return ParseBool(raw(delim)); }
  double real(char delim) { return ParseNumber(raw(delim)); }
  float real32(char delim) { return ParseFloat(raw(delim)); }
  std::string text(char delim) { return Cp1252ToUtf8(raw(delim)); }
  void textInto(char delim, std::string& out) {
    out.clear();
    AppendCp1252AsUtf8(out, raw(delim));
  }
  // Fret texts are nearly always plain ASCII and short: they go straight into the slot.
  void textInto(char delim, SmallText& out) {
    const std::string_view r = raw(delim);
    for (const char c : r)
      if (static_cast<unsigned char>(c) >= 0x80) {
        out = Cp1252ToUtf8(r);
        return;
      }
    out = r;
  }

 private:
  std::string_view p_;
  size_t pos_;
};

class Reader {
 public:
  Reader(Score& s, size_t plainSize, BeatAllowance allowance)
      : s_(s), beatBudget_(allowance.perByte * plainSize + allowance.spare) {}

  void piece(std::string_view p);
  // Gives every bar the beats its size tag declared and no tag has needed yet.
  void finish();

  // True once every declared bar of every track had its beats (or its bar copy) read.
  bool allBarsRead() const { return readTrack_ > s_.LastTrack(); }
  ReadProgress progress() const {
    ReadProgress r;
    for (int t = 0; t <= s_.LastTrack(); ++t) {
      const int bars = static_cast<int>(s_.Tracks[static_cast<size_t>(t)].Bars.size());
      r.barsDeclared += bars;
      if (t < readTrack_) r.barsRead += bars;
      else if (t == readTrack_) r.barsRead += std::clamp(readBar_, 0, bars);
    }
    return r;
  }

 private:
  using Handler = void (Reader::*)(Fields&);
  struct Entry {
    std::string_view name;
    Handler fn;
  };
  // The handlers whose names could begin `p`, longest name first.
  static std::span<const Entry> candidatesFor(std::string_view p);

  void grow(size_t beats) {
    if (beats > beatBudget_)
      throw FileError("the file is damaged: it declares more beats than it holds");
    beatBudget_ -= beats;
  }

  // ---- document fields ----
  void notes(Fields& f) { s_.Notes = f.text('>'); }
  void album(Fields& f) { s_.Album = f.text('>'); }
  void artist(Fields& f) { s_.Artist = f.text('>'); }
  void author(Fields& f) { s_.Author = f.text('>'); }
  void copyright(Fields& f) { s_.Copyright = f.text('>'); }
  void instructions(Fields& f) { s_.Instructions = f.text('>'); }
  void notice(Fields& f) { s_.Notice = f.text('>'); }
  void password(Fields& f) { s_.Password = f.text('>'); }
  void chordCharts(Fields&) { s_.AlwaysDrawChordCharts = true; }
  void fileHeaders(Fields&) { s_.AlwaysDrawFileHeaders = true; }
  void isProtected(Fields&) { s_.PasswordProtected = true; }
  void shuffle(Fields&) { s_.ShuffleRhythm = true; }
  void tempo(Fields& f) { s_.Tempo = f.real32('>'); }
  void subTitle(Fields& f) { s_.SubTitle = f.text('>'); }
  void tabAuthor(Fields& f) { s_.TabAuthor = f.text('>'); }
  void title(Fields& f) { s_.Title = f.text('>'); }
  void rowSpacing(Fields& f) { s_.RowSpacing = f.i16('>'); }
  static void font(Fields& f, FontInfo& font) {
    font.Color = f.i32('|');
    font.Bold = f.flag('\\');
    font.Italic = f.flag('/');
    font.Name = f.text('|');
    font.Size = f.i16('\\');
    font.Strikethrough = f.flag('/');
    font.Underline = f.flag('>');
  }
  void headerFont(Fields& f) { font(f, s_.HeaderFont); }
  void noteFont(Fields& f) { font(f, s_.NoteFont); }
  void lineColor(Fields& f) { s_.LineColor = f.i32('>'); }

  // ---- sizes ----
  void lastTrack(Fields& f);
  void lastBar(Fields& f);
  void lastBeat(Fields& f);

  // A file sizes every bar before any bar's beats, and many bars then turn out to be copies of
  // earlier ones. So a declared beat count waits here, per track and bar (-1: nothing waits),
  // until a tag needs the bar's beats or the read ends; a copy drops it. A large score then
  // never holds the beats of its copied bars at all.
  int pendingLast(size_t t, size_t b) const {
    return t < pending_.size() && b < pending_[t].size() ? pending_[t][b] : -1;
  }
  void settle(int t, int b) {
    if (t < 0 || b < 0) return;
    const int last = pendingLast(static_cast<size_t>(t), static_cast<size_t>(b));
    if (last < 0) return;
    pending_[static_cast<size_t>(t)][static_cast<size_t>(b)] = -1;
    s_.SetBeatCount(t, b, last);
  }
  // Sizes that shrink take what waits for the places they drop with them, as eager sizing would.
  void dropPendingBeyond(size_t tracks, size_t bars) {
    if (pending_.size() > tracks) pending_.resize(tracks);
    for (std::vector<int>& bs : pending_)
      if (bs.size() > bars) bs.resize(bars);
  }

  // Tags naming a track or bar the file never sized are skipped the way beats are (see beatAt):
  // they write to scratch records that nothing reads, since an exception for each such tag
  // slowed damaged files down.
  template <class Items>
  static bool within(const Items& items, int i) {
    return i >= 0 && static_cast<size_t>(i) < items.size();
  }
  BarInfo& barInfoAt(int b) { return within(s_.BarInfos, b) ? s_.BarInfos[static_cast<size_t>(b)] : scratchBarInfo_; }
  Track& trackAt(int t) { return within(s_.Tracks, t) ? s_.Tracks[static_cast<size_t>(t)] : scratchTrack_; }
  bool barSized(int t, int b) const { return within(s_.Tracks, t) && within(s_.Tracks[static_cast<size_t>(t)].Bars, b); }
  TrackBar& barAt(int t, int b) { return barSized(t, b) ? s_.barMut(t, b) : scratchBar_; }

  // ---- bar infos ----
  void repeatClose(Fields& f) {
    int b = f.index('|');
    barInfoAt(b).RepeatClose = f.i16('>');
  }
  void denominator(Fields& f) { barInfoAt(denominatorBar_++).TimeSigDenominator = f.i32('>'); }
  void numerator(Fields& f) { barInfoAt(numeratorBar_++).TimeSigNumerator = f.i32('>'); }
  void repeatOpen(Fields& f) { barInfoAt(f.index('>')).RepeatOpen = true; }
  void dsAlCoda(Fields& f) { barInfoAt(f.index('>')).DSAlCoda = true; }
  void coda(Fields& f) { barInfoAt(f.index('>')).Coda = true; }
  void toCoda(Fields& f) { barInfoAt(f.index('>')).ToCoda = true; }
  void sign(Fields& f) { barInfoAt(f.index('>')).Sign = true; }

  // ---- track header ----
  void reverb(Fields& f) { trackAt(f.index('>')).Reverb = true; }
  void lyric(Fields& f);
  void octaveDown(Fields& f) { trackAt(f.index('>')).OctaveDown = true; }
  void octaveUp(Fields& f) { trackAt(f.index('>')).OctaveUp = true; }
  void bass(Fields& f) { trackAt(f.index('>')).BassStaff = true; }
  void tab(Fields& f) { trackAt(f.index('>')).TabStaff = true; }
  void treble(Fields& f) { trackAt(f.index('>')).TrebleStaff = true; }
  void drum(Fields& f) { trackAt(f.index('>')).DrumTrack = true; }
  void drumMap(Fields& f, size_t field) {
    int t = f.index('\\');
    int str = f.index('|');
    if (str < 0 || str >= kMaxStrings) return;
    trackAt(t).DrumMaps[static_cast<size_t>(str)].Drum[field] = f.i16('>');
  }
  template <size_t Field>
  void drumMapOf(Fields& f) {
    drumMap(f, Field);
  }
  // The track whose header tags come now; past the last track, a scratch one (see beatAt).
  Track& headerTrack() { return trackAt(headerTrack_); }
  void capo(Fields& f) { headerTrack().Capo = f.i16('>'); }
  void chordVolume(Fields& f) { headerTrack().ChordVolume = f.i16('>'); }
  void channel(Fields& f) { headerTrack().Channel = f.i16('>'); }
  void effectChannel(Fields& f) { headerTrack().EffectChannel = f.i16('>'); }
  void instrument(Fields& f) { headerTrack().Instrument = f.i16('>'); }
  void instrumentName(Fields& f) { headerTrack().InstrumentName = f.text('>'); }
  void name(Fields& f) { headerTrack().Name = f.text('>'); }
  void strings(Fields& f) {
    // The one field checked on reading: it bounds every loop over a beat's seven slots.
    headerTrack().Tuning.NumStrings = static_cast<int16_t>(std::clamp<int>(f.i16('>'), 1, kMaxStrings));
  }
  template <size_t String>
  void tuning(Fields& f) {
    headerTrack().Tuning.Offset[String] = f.i16('>');
  }
  void volume(Fields& f) {
    // The last tag of a track's header; one past the last track moves no further.
    if (&headerTrack() == &scratchTrack_) return;
    headerTrack().Volume = f.i16('>');
    ++headerTrack_;
  }

  // ---- bars of a track ----
  void stepBar();
  void barCopy(Fields& f);
  void key(Fields& f) {
    int t = f.index('\\');
    int b = f.index('/');
    barAt(t, b).KeySignature = f.i32('>');
  }
  void keyMinor(Fields& f) {
    int t = f.index('\\');
    int b = f.index('/');
    barAt(t, b).KeyMinor = f.flag('>');
  }
  // Most beat and note tags begin t|b\k.
  Beat& beatAt(Fields& f, char afterBar = '\\', char afterBeat = '/') {
    int t = f.index('|');
    int b = f.index(afterBar);
    int k = f.index(afterBeat);
    return beatAt(t, b, k);
  }
  // A tag that names a beat the file never sized is skipped: its fields go to a scratch beat
  // that nothing reads. An exception for each such tag made a damaged file (where most tags
  // can name such a place) slow to open.
  Beat& beatAt(int t, int b, int k) {
    if (!barSized(t, b)) return scratch_;
    settle(t, b);
    if (!within(s_.Tracks[static_cast<size_t>(t)].Bars[static_cast<size_t>(b)]->Beats, k)) return scratch_;
    return s_.beatMut(t, b, k);
  }
  NoteSlot& noteAt(Fields& f, char afterString) {
    Beat& bt = beatAt(f);
    int str = f.index(afterString);
    if (str < 0 || str >= kMaxStrings) return scratch_.Notes[0];
    return bt.Notes[static_cast<size_t>(str)];
  }
  // Every handler takes the place first: the fields are read in file order.
  void gotoName(Fields& f) {
    Beat& bt = beatAt(f);
    bt.GotoName = f.text('>');
  }
  void dot(Fields& f) { beatAt(f, '\\', '>').Dotted = true; }
  void tremolo(Fields& f);
  void tuplet(Fields& f) {
    Beat& bt = beatAt(f, ':', '\\');
    bt.Tuplet = f.i32('>');
    bt.IsTuplet = true;
  }
  void stroke(Fields& f) {
    Beat& bt = beatAt(f, '/', '\\');
    bt.Stroke = f.i32('>');
  }
  void chordTechnique(Fields& f) {
    Beat& bt = beatAt(f, '/', '\\');
    bt.ChordTechnique = f.i32('>');
  }
  void text(Fields& f) {
    Beat& bt = beatAt(f, '/', '\\');
    bt.Text = f.text('>');
  }
  void length(Fields& f);
  void chord(Fields& f);
  void accent(Fields& f) { noteAt(f, '>').Accentuate = true; }
  void ghost(Fields& f) { noteAt(f, '>').GhostNote = true; }
  void harmonic(Fields& f) {
    Beat& bt = beatAt(f, '\\', ':');
    int str = f.index('/');
    if (str < 0 || str >= kMaxStrings) return;
    bt.Notes[static_cast<size_t>(str)].Harmonic = f.i32('>');
  }
  void leftFinger(Fields& f) {
    NoteSlot& n = noteAt(f, ':');
    n.LeftFinger = f.i32('>');
  }
  void rightFinger(Fields& f) {
    NoteSlot& n = noteAt(f, ':');
    n.RightFinger = f.i32('>');
  }
  void letRing(Fields& f) { noteAt(f, '>').LetRing = true; }
  void tied(Fields& f) { noteAt(f, '>').Tied = true; }
  void note(Fields& f) {
    NoteSlot& n = noteAt(f, ':');
    f.textInto('|', n.Fret);
    if (!n.Fret.empty() && (n.Fret.front() == ' ' || n.Fret.back() == ' ')) n.Fret = Trim(n.Fret.view());
    n.Volume = f.i32('>');
  }
  void technique(Fields& f) {
    NoteSlot& n = noteAt(f, '|');
    n.Technique = f.i32('>');
  }
  void bend(Fields& f);
  void grace(Fields& f) {
    NoteSlot& n = noteAt(f, ':');
    GraceInfo& g = n.Grace.mut();
    g.Length = f.i32('|');
    g.Volume = f.i32(':');
    f.textInto('|', g.Fret);
    g.Transition = f.i32('>');
    n.HasGrace = true;
  }
  void trill(Fields& f) {
    NoteSlot& n = noteAt(f, ':');
    n.Trill.TrillFret = f.i16('|');
    n.Trill.Period = f.i32('>');
    n.HasTrill = true;
  }

  template <size_t N>
  static void points(Fields& f, std::array<double, N>& out) {
    for (size_t i = 0; i < N; ++i) out[i] = f.real(i % 2 == 0 ? '\\' : '/');
  }

  Score& s_;
  std::vector<std::vector<int>> pending_;
  Beat scratch_;
  Track scratchTrack_;
  BarInfo scratchBarInfo_;
  TrackBar scratchBar_;
  size_t beatBudget_;
  int headerTrack_ = 0;
  int readTrack_ = 0, readBar_ = 0, readBeat_ = 0;
  int denominatorBar_ = 0, numeratorBar_ = 0;
};

// Tag names in a tree that branches at the first byte where they differ, so a tag is matched
// with one full comparison however many names share its first letters (thirty track header
// names begin "f.t.", twelve of them "f.t.d"). A node whose names cannot branch (one of them
// ends where they stop agreeing) keeps them as a list, longest name first.
template <class Entry>
class TagTree {
 public:
  // The entries are reordered so that every leaf is one run of them.
  explicit TagTree(std::vector<Entry> entries) : entries_(std::move(entries)) { build(0, entries_.size(), 0); }
  // The entries whose names could begin `p`, longest name first.
  std::span<const Entry> find(std::string_view p) const {
    const Node* n = &nodes_[0];
    while (n->leafEnd == 0) {
      if (p.size() <= n->at) return {};
      const int16_t child = n->child[static_cast<unsigned char>(p[n->at])];
      if (child < 0) return {};
      n = &nodes_[static_cast<size_t>(child)];
    }
    return std::span<const Entry>(entries_).subspan(n->leafBegin, n->leafEnd - n->leafBegin);
  }

 private:
  struct Node {
    size_t at = 0;                       // the byte the names below branch on
    size_t leafBegin = 0, leafEnd = 0;   // a leaf's run of entries; leafEnd 0 on a branch
    std::array<int16_t, 256> child{};
  };

  size_t build(size_t begin, size_t end, size_t agreed) {
    const size_t self = nodes_.size();
    nodes_.emplace_back();
    // How far all names here agree, and whether every one goes on past that point.
    size_t common = entries_[begin].name.size();
    for (size_t i = begin + 1; i < end; ++i) {
      const std::string_view a = entries_[begin].name, b = entries_[i].name;
      size_t k = agreed;
      while (k < common && k < b.size() && a[k] == b[k]) ++k;
      common = k;
    }
    bool branches = end - begin > 1;
    for (size_t i = begin; i < end && branches; ++i) branches = entries_[i].name.size() > common;
    if (!branches) {
      std::stable_sort(entries_.begin() + static_cast<std::ptrdiff_t>(begin),
                       entries_.begin() + static_cast<std::ptrdiff_t>(end),
                       [](const Entry& a, const Entry& b) { return a.name.size() > b.name.size(); });
      nodes_[self].leafBegin = begin;
      nodes_[self].leafEnd = end;
      return self;
    }
    std::stable_sort(entries_.begin() + static_cast<std::ptrdiff_t>(begin),
                     entries_.begin() + static_cast<std::ptrdiff_t>(end), [common](const Entry& a, const Entry& b) {
                       return static_cast<unsigned char>(a.name[common]) < static_cast<unsigned char>(b.name[common]);
                     });
    nodes_[self].at = common;
    nodes_[self].child.fill(-1);
    for (size_t i = begin; i < end;) {
      size_t j = i + 1;
      while (j < end && entries_[j].name[common] == entries_[i].name[common]) ++j;
      const size_t child = build(i, j, common + 1);
      nodes_[self].child[static_cast<unsigned char>(entries_[i].name[common])] = static_cast<int16_t>(child);
      i = j;
    }
    return self;
  }

  std::vector<Entry> entries_;
  std::vector<Node> nodes_;
};

std::span<const Reader::Entry> Reader::candidatesFor(std::string_view p) {
  static const TagTree<Entry> tree({
      {tag::Notes, &Reader::notes},
      {tag::Album, &Reader::album},
      {tag::Artist, &Reader::artist},
      {tag::Author, &Reader::author},
      {tag::Copyright, &Reader::copyright},
      {tag::Instructions, &Reader::instructions},
      {tag::Notice, &Reader::notice},
        // The resource tags are deliberately absent: they are written but were never read back,
        // and files rely on the fields staying empty after a load.
      {tag::Password, &Reader::password},
      {tag::ChordCharts, &Reader::chordCharts},
      {tag::FileHeaders, &Reader::fileHeaders},
      {tag::Protected, &Reader::isProtected},
      {tag::Shuffle, &Reader::shuffle},
      {tag::Tempo, &Reader::tempo},
      {tag::SubTitle, &Reader::subTitle},
      {tag::TabAuthor, &Reader::tabAuthor},
      {tag::Title, &Reader::title},
      {tag::RowSpacing, &Reader::rowSpacing},
      {tag::HeaderFont, &Reader::headerFont},
      {tag::NoteFont, &Reader::noteFont},
      {tag::LineColor, &Reader::lineColor},
      {tag::LastTrack, &Reader::lastTrack},
      {tag::LastBar, &Reader::lastBar},
      {tag::LastBeat, &Reader::lastBeat},
      {tag::RepeatClose, &Reader::repeatClose},
      {tag::Denominator, &Reader::denominator},
      {tag::RepeatOpen, &Reader::repeatOpen},
      {tag::Numerator, &Reader::numerator},
      {tag::DSAlCoda, &Reader::dsAlCoda},
      {tag::Coda, &Reader::coda},
      {tag::ToCoda, &Reader::toCoda},
      {tag::Sign, &Reader::sign},
      {tag::Reverb, &Reader::reverb},
      {tag::Lyric, &Reader::lyric},
      {tag::OctaveDown, &Reader::octaveDown},
      {tag::OctaveUp, &Reader::octaveUp},
      {tag::Bass, &Reader::bass},
      {tag::Tab, &Reader::tab},
      {tag::Treble, &Reader::treble},
      {tag::Drum, &Reader::drum},
      {kDrumTags[0].name, &Reader::drumMapOf<11>},
      {kDrumTags[1].name, &Reader::drumMapOf<5>},
      {kDrumTags[2].name, &Reader::drumMapOf<7>},
      {kDrumTags[3].name, &Reader::drumMapOf<0>},
      {kDrumTags[4].name, &Reader::drumMapOf<8>},
      {kDrumTags[5].name, &Reader::drumMapOf<4>},
      {kDrumTags[6].name, &Reader::drumMapOf<1>},
      {kDrumTags[7].name, &Reader::drumMapOf<3>},
      {kDrumTags[8].name, &Reader::drumMapOf<6>},
      {kDrumTags[9].name, &Reader::drumMapOf<10>},
      {kDrumTags[10].name, &Reader::drumMapOf<2>},
      {kDrumTags[11].name, &Reader::drumMapOf<9>},
      {tag::Capo, &Reader::capo},
      {tag::ChordVolume, &Reader::chordVolume},
      {tag::Channel, &Reader::channel},
      {tag::EffectChannel, &Reader::effectChannel},
      {tag::Instrument, &Reader::instrument},
      {tag::InstrumentName, &Reader::instrumentName},
      {tag::Name, &Reader::name},
      {tag::Strings, &Reader::strings},
      {"f.t.tu0:", &Reader::tuning<0>},
      {"f.t.tu1:", &Reader::tuning<1>},
      {"f.t.tu2:", &Reader::tuning<2>},
      {"f.t.tu3:", &Reader::tuning<3>},
      {"f.t.tu4:", &Reader::tuning<4>},
      {"f.t.tu5:", &Reader::tuning<5>},
      {"f.t.tu6:", &Reader::tuning<6>},
      {tag::Volume, &Reader::volume},
      {tag::BarCopy, &Reader::barCopy},
      {tag::Key, &Reader::key},
      {tag::KeyMinor, &Reader::keyMinor},
      {tag::Goto, &Reader::gotoName},
      {tag::Dot, &Reader::dot},
      {tag::Tremolo, &Reader::tremolo},
      {tag::Tuplet, &Reader::tuplet},
      {tag::Stroke, &Reader::stroke},
      {tag::ChordTech, &Reader::chordTechnique},
      {tag::Text, &Reader::text},
      {tag::Length, &Reader::length},
      {tag::Chord, &Reader::chord},
      {tag::Accent, &Reader::accent},
      {tag::Ghost, &Reader::ghost},
      {tag::Harmonic, &Reader::harmonic},
      {tag::LeftFinger, &Reader::leftFinger},
      {tag::RightFinger, &Reader::rightFinger},
      {tag::LetRing, &Reader::letRing},
      {tag::Tied, &Reader::tied},
      {tag::Technique, &Reader::technique},
      {tag::Bend, &Reader::bend},
      {tag::Grace, &Reader::grace},
      {tag::Trill, &Reader::trill},
      {tag::Note, &Reader::note},
  });
  return tree.find(p);
}

void Reader::piece(std::string_view p) {
  if (p.empty()) return;
  for (const Entry& e : candidatesFor(p)) {
    if (p.substr(0, e.name.size()) != e.name) continue;
    Fields f(p, e.name.size());
    try {
      (this->*e.fn)(f);
    } catch (const ScoreError&) {
      // A tag whose values the score refuses (a count beyond its limits) is skipped, as
      // unknown tags are.
    }
    return;
  }
}

void Reader::lastTrack(Fields& f) {
  int last = f.index('>');
  if (last < 0) return;
  const size_t n = static_cast<size_t>(last) + 1;
  // A track is charged for its own record and the lines a writer emits for it, not only for its
  // bars: otherwise a few bytes declaring thousands of one-bar tracks pass the budget and come
  // back out as tens of megabytes.
  constexpr size_t kTrackCost = 64;
  grow(n > s_.Tracks.size() ? (n - s_.Tracks.size()) * (s_.BarInfos.size() + kTrackCost) : 0);
  const size_t before = s_.Tracks.size();
  s_.Tracks.resize(n);
  dropPendingBeyond(n, s_.BarInfos.size());
  for (size_t t = before; t < n; ++t) {
    Track& tr = s_.Tracks[t];
    // Flags a file writes only when true start out false, as on every track of a load.
    tr.DrumTrack = tr.TabStaff = tr.TrebleStaff = tr.BassStaff = false;
    tr.Bars.resize(s_.BarInfos.size());
  }
}

void Reader::lastBar(Fields& f) {
  int last = f.index('>');
  if (last < 0) return;
  const size_t n = static_cast<size_t>(last) + 1;
  grow(n > s_.BarInfos.size() ? (n - s_.BarInfos.size()) * s_.Tracks.size() : 0);
  s_.SetBarCount(last);
  dropPendingBeyond(s_.Tracks.size(), n);
}

void Reader::lastBeat(Fields& f) {
  int t = f.index('|');
  int b = f.index('/');
  int last = f.index('>');
  if (last < 0 || !barSized(t, b)) return;
  // The place is checked now (a tag naming none is skipped) and the budget charged now; the
  // count itself is 16-bit like every index, so sizing later cannot fail.
  const size_t have = s_.bar(t, b).Beats.size();
  const auto ut = static_cast<size_t>(t), ub = static_cast<size_t>(b);
  const int waiting = pendingLast(ut, ub);
  const size_t now = waiting >= 0 ? static_cast<size_t>(waiting) + 1 : have;
  if (static_cast<size_t>(last) + 1 > now) grow(static_cast<size_t>(last) + 1 - now);
  if (pending_.size() <= ut) pending_.resize(ut + 1);
  if (pending_[ut].size() <= ub) pending_[ut].resize(s_.Tracks[ut].Bars.size(), -1);
  pending_[ut][ub] = last;
}

void Reader::finish() {
  for (size_t t = 0; t < pending_.size(); ++t)
    for (size_t b = 0; b < pending_[t].size(); ++b) settle(static_cast<int>(t), static_cast<int>(b));
}

void Reader::lyric(Fields& f) {
  // The line number 1 to 5 stands right after the name, then t|text.
  std::string_view head = f.raw('|');
  if (head.empty() || head[0] < '1' || head[0] > '5') return;
  const int t = ParseI16(head.substr(1));
  trackAt(t).Lyrics[static_cast<size_t>(head[0] - '1')] = f.text('>');
}

void Reader::stepBar() {
  readBeat_ = 0;
  if (readTrack_ >= 0 && readTrack_ <= s_.LastTrack() && readBar_ >= s_.GetLastBar(readTrack_)) {
    ++readTrack_;
    readBar_ = 0;
  } else {
    ++readBar_;
  }
}

void Reader::barCopy(Fields& f) {
  int t = f.index('\\');
  int b = f.index('|');
  int from = f.index('>');
  if (barSized(t, b) && barSized(t, from)) {
    Track& tr = s_.Tracks[static_cast<size_t>(t)];
    settle(t, from);
    tr.Bars[static_cast<size_t>(b)] = tr.Bars[static_cast<size_t>(from)];
    if (pendingLast(static_cast<size_t>(t), static_cast<size_t>(b)) >= 0)
      pending_[static_cast<size_t>(t)][static_cast<size_t>(b)] = -1;
  }
  stepBar();
}

void Reader::length(Fields& f) {
  const int32_t len = f.i32('>');
  Beat& bt = beatAt(readTrack_, readBar_, readBeat_);
  // A length beyond the beats the file sized is skipped, and the place does not move on.
  if (&bt == &scratch_) return;
  bt.Length = len;
  if (readBeat_ < s_.GetLastBeat(readTrack_, readBar_))
    ++readBeat_;
  else
    stepBar();
}

void Reader::tremolo(Fields& f) {
  int t = f.index('\\');
  int b = f.index('|');
  int k = f.index('\\');
  Beat& bt = beatAt(t, b, k);
  TremoloBarInfo& tb = bt.TremoloBar.mut();
  tb.Kind = f.i32('/');
  tb.Label = f.text('|');
  points(f, tb.Points);
  bt.HasTremoloBar = true;
}

void Reader::chord(Fields& f) {
  Beat& bt = beatAt(f);
  BeatChord& c = bt.Chord.mut();
  c.Barre = f.flag('\\');
  c.StartFret = f.i16('/');
  c.NumStrings = f.i16('\\');
  for (size_t i = 0; i < kMaxStrings; ++i) c.Tuning[i] = f.i16(i % 2 == 0 ? '/' : '\\');
  size_t n = 0;
  for (auto* texts : {&c.Frets, &c.Fingers})
    for (std::string& v : *texts) v = std::string(Trim(f.text(n++ % 2 == 0 ? '\\' : '/')));
  c.Name = f.text('>');
  bt.HasChord = true;
}

void Reader::bend(Fields& f) {
  NoteSlot& n = noteAt(f, ':');
  BendInfo& b = n.Bend.mut();
  points(f, b.Points);
  b.PresetIndex = f.i32(':');
  b.Scale = f.i32('>');
  n.HasBend = true;
}

// First line up to CR or LF, as a line input reads it.
std::string_view firstLine(std::string_view plain) {
  size_t end = plain.find_first_of("\r\n");
  return end == std::string_view::npos ? plain : plain.substr(0, end);
}

// A generous guess at the length of the text, so that a large score is built in one buffer
// instead of being copied again at every doubling.
size_t estimatedLength(const Score& s) {
  size_t n = 4096 + 40 * s.BarInfos.size();
  for (const Track& tr : s.Tracks) {
    n += 2500;
    for (const Cow<TrackBar>& bar : tr.Bars) n += 48 + bar->Beats.size() * (8 + 20 * static_cast<size_t>(stringsOf(tr)));
  }
  return n;
}

}  // namespace

std::string DescribeDamage(const ReadProgress& p) {
  return "damaged or incomplete: " + std::to_string(p.barsRead) + " of " +
         std::to_string(p.barsDeclared) + " bars could be read";
}

namespace {

// Writes the file's text into `text`; with a `drain`, hands it over (to be emptied) after the
// head and after each track, so that a large score is never held whole as text as well.
void writeMusic(const Score& s, std::string& text, const std::function<void(std::string&)>* drain) {
  Out o(text);
  const auto part = [&] {
    if (drain) (*drain)(text);
  };
  o << kVersionLine << "\r\n";
  writeDocumentFields(o, s);
  writeSizes(o, s);
  writeBarInfos(o, s);
  part();
  for (int t = 0; t <= s.LastTrack(); ++t) {
    const Track& tr = s.Tracks[static_cast<size_t>(t)];
    writeTrackHeader(o, tr, t);
    writeTrackBars(o, tr, t);
    part();
  }
  o << "\r\n";
  part();
}

bool isVersionLine(std::string_view line) {
  // Only the text before the last four characters of the first line counts, so a later
  // "Plectaro 4.1" would still be read.
  return line.size() >= 4 && line.substr(0, line.size() - 4) == "Plectaro";
}

// Hands the reader every piece of `text` between one '<' and the next. Until the text is
// `last`, the piece after the last '<' may go on in the next bytes: it is left, and its start
// returned. What stands before the first '<' is never a tag.
size_t feedPieces(Reader& reader, std::string_view text, bool last) {
  size_t pos = text.find('<');
  if (pos == std::string_view::npos) return text.size();
  for (;;) {
    const size_t next = text.find('<', pos + 1);
    if (next == std::string_view::npos) {
      if (!last) return pos;
      reader.piece(text.substr(pos + 1));
      return text.size();
    }
    reader.piece(text.substr(pos + 1, next - pos - 1));
    pos = next;
  }
}

// Reads a music file's text of `size` bytes that `more` appends to a buffer a piece at a time
// (false once there is no more).
ReadOutcome readMusic(size_t size, const std::function<bool(std::string&)>& more, Score& score,
                      ReadProgress* progress, BeatAllowance allowance) {
  std::string buf, ending;
  bool done = false;
  const auto fill = [&] {
    const size_t before = buf.size();
    if (done || !more(buf)) {
      done = true;
      return;
    }
    // The last two bytes of the text so far, for the check of a whole file below.
    ending += std::string_view(buf).substr(std::max(before, buf.size() - std::min<size_t>(buf.size(), 2)));
    if (ending.size() > 2) ending.erase(0, ending.size() - 2);
  };
  // Enough for the first line, or to know it is longer than a version line can be.
  while (!done && buf.find_first_of("\r\n") == std::string::npos && buf.size() <= 12) fill();
  if (!isVersionLine(firstLine(buf))) return ReadOutcome::WrongFile;

  Score s = score;
  for (Track& tr : s.Tracks) tr.DrumTrack = tr.TabStaff = tr.TrebleStaff = tr.BassStaff = false;
  s.AlwaysDrawChordCharts = s.AlwaysDrawFileHeaders = s.PasswordProtected = s.ShuffleRhythm = false;

  Reader reader(s, size, allowance);
  for (;;) {
    buf.erase(0, feedPieces(reader, buf, done));
    if (done) break;
    fill();
  }
  reader.finish();
  // The reader itself never notices a file that stops early: it fills what it meets. Every
  // saved file ends in CR LF after the last tag, and every bar it sizes gets its beats or a bar
  // copy, so a file cut short fails one of the two.
  const bool complete = reader.allBarsRead() && ending == "\r\n";
  if (progress) *progress = reader.progress();
  score = std::move(s);
  return complete ? ReadOutcome::Ok : ReadOutcome::Damaged;
}

}  // namespace

std::string WriteMusicText(const Score& s) {
  std::string text;
  text.reserve(estimatedLength(s));
  writeMusic(s, text, nullptr);
  return text;
}

ReadOutcome ReadMusicText(std::string_view plain, Score& score, ReadProgress* progress,
                          BeatAllowance allowance) {
  size_t at = 0;
  const auto more = [&](std::string& buf) {
    if (at == plain.size()) return false;
    const size_t n = std::min(kMusicReadPiece, plain.size() - at);
    buf.append(plain.substr(at, n));
    at += n;
    return true;
  };
  return readMusic(plain.size(), more, score, progress, allowance);
}

void SaveMusicFile(const Score& score, const std::filesystem::path& path) {
  WriteFileAtomically(path, [&](const ByteSink& put) {
    StreamCipher cipher;
    const std::function<void(std::string&)> drain = [&](std::string& piece) {
      cipher.apply(piece.data(), piece.size());
      put(piece);
      piece.clear();
    };
    std::string text;
    writeMusic(score, text, &drain);
  });
}

namespace {

// Open as File > Open does, with `read` filling the fresh score.
OpenOutcome openWith(Document& doc, const SettingsStore& settings,
                     const std::function<ReadOutcome(Score&)>& read_) {
  Document fresh;
  InitScore(fresh, settings);
  const ReadOutcome read = read_(fresh.score);
  if (read == ReadOutcome::WrongFile) {
    ForceNewFile(doc, settings);
    return OpenOutcome::WrongFile;
  }
  fresh.score.CurrentFileName.clear();
  doc.score = std::move(fresh.score);
  doc.CursorTrack = doc.CursorBar = doc.CursorBeat = doc.CursorString = doc.CursorLine = 0;
  doc.PasswordEntered = false;
  // A document just opened has nothing to lose yet; asking to save it on close would only
  // teach the user to click the question away. What came in of a damaged file stands nowhere
  // on disk as it is now, so closing it asks.
  doc.ScoreChanged = read == ReadOutcome::Damaged;
  doc.Layout.clear();
  doc.FullRelayout = true;
  return read == ReadOutcome::Damaged ? OpenOutcome::Damaged : OpenOutcome::Opened;
}

}  // namespace

OpenOutcome OpenMusicFile(Document& doc, const std::filesystem::path& path,
                          const SettingsStore& settings, ReadProgress* progress) {
  FileReader in(path);
  StreamCipher cipher;
  const auto more = [&](std::string& buf) {
    const size_t before = buf.size();
    if (!in.readSome(buf, kMusicReadPiece)) return false;
    cipher.apply(buf.data() + before, buf.size() - before);
    return true;
  };
  const OpenOutcome r = openWith(doc, settings, [&](Score& s) {
    return readMusic(in.size(), more, s, progress, BeatAllowance{});
  });
  if (r == OpenOutcome::Opened) doc.score.CurrentFileName = path.string();
  return r;
}

OpenOutcome OpenMusicText(Document& doc, std::string_view plain, const SettingsStore& settings,
                          ReadProgress* progress, BeatAllowance allowance) {
  return openWith(doc, settings, [&](Score& s) { return ReadMusicText(plain, s, progress, allowance); });
}

}  // namespace plectaro
