#include "score/new_score.h"

#include "score/value_text.h"

namespace plectaro {

namespace {

struct DefaultReader {
  const SettingsStore& s;
  std::string text(const char* key, const char* fallback) const {
    return s.GetSetting(kDefaultInfoSection, key, fallback);
  }
  template <class T>
  T parsed(const char* key, T fallback, T (*parse)(std::string_view)) const {
    auto v = s.value(kDefaultInfoSection, key);
    return v ? parse(*v) : fallback;
  }
  bool flag(const char* key, bool fallback) const { return parsed(key, fallback, ParseBool); }
  int32_t i32(const char* key, int32_t fallback) const { return parsed(key, fallback, ParseI32); }
  int16_t i16(const char* key, int16_t fallback) const { return parsed(key, fallback, ParseI16); }
  float real(const char* key, float fallback) const { return parsed(key, fallback, ParseFloat); }
  // The seven keys of one font: prefix "GFONT" or "GNOTE".
  FontInfo font(const std::string& p, const char* name, int16_t size) const {
    FontInfo f;
    f.Color = i32((p + "COLOR").c_str(), 0);
    f.Bold = flag((p + "BOLD").c_str(), false);
    f.Italic = flag((p + "ITALIC").c_str(), false);
    f.Name = text((p + "NAME").c_str(), name);
    f.Size = i16((p + "SIZE").c_str(), size);
    f.Strikethrough = flag((p + "STRIKE").c_str(), false);
    f.Underline = flag((p + "UNDERLINE").c_str(), false);
    return f;
  }
};

}  // namespace

void InitScore(Document& doc, const SettingsStore& settings) {
  const DefaultReader d{settings};
  Score s;  // a fresh Score already has one track, one bar, one beat
  s.HeaderFont = d.font("GFONT", "Times New Roman", 22);
  s.NoteFont = d.font("GNOTE", "Arial", 8);
  s.LineColor = d.i32("COLOR3", 0);
  doc.ScoreChanged = true;

  s.ResourceText.clear();
  s.ResourceAddress.clear();
  s.SubTitle.clear();
  s.Title = "Untitled";
  s.PasswordProtected = false;
  s.Password.clear();

  s.Artist = d.text("1", "");
  s.Album = d.text("2", "");
  s.Author = d.text("3", "");
  s.Copyright = d.text("4", "");
  s.TabAuthor = d.text("5", "");
  s.Instructions = d.text("6", "");
  s.Notice = d.text("7", "");
  s.Notes = d.text("8", "");
  s.ShuffleRhythm = d.flag("9", false);
  s.AlwaysDrawChordCharts = d.flag("10", true);
  s.RowSpacing = d.i16("11", 100);
  s.Tempo = d.real("12", 60);
  s.AlwaysDrawFileHeaders = d.flag("13", false);

  // A default Track is the new-Score guitar track: "Track 1", nylon guitar, channel 0,
  // effect channel 1, volume 50, chord volume 30, no capo, treble and tab staves.
  s.Tracks.assign(1, Track());
  s.BarInfos.assign(1, BarInfo());
  s.SetTuning(0, {0, 0, 0, 0, 0, 0, 0}, 6);
  s.SetTimeSignature(0, 4, 4);
  s.ClearBeat(0, 0, 0);
  s.beatMut(0, 0, 0).Length = kQuarter;

  doc.score = std::move(s);
  doc.CursorTrack = doc.CursorBar = doc.CursorBeat = doc.CursorString = doc.CursorLine = 0;
  doc.Layout.clear();
  doc.FullRelayout = true;
}

void ForceNewFile(Document& doc, const SettingsStore& settings) {
  InitScore(doc, settings);
  doc.score.CurrentFileName.clear();
  doc.PasswordEntered = false;
  doc.touched();
}

void SetDefaultVars(SettingsStore& settings) {
  struct Entry {
    const char* key;
    const char* value;
  };
  static constexpr Entry kFirstRun[] = {
      {"GFONTCOLOR", "0"},        {"GFONTBOLD", "False"},   {"GFONTITALIC", "False"},
      {"GFONTNAME", "Times New Roman"}, {"GFONTSIZE", "19"}, {"GFONTSTRIKE", "False"},
      {"GFONTUNDERLINE", "False"}, {"GNOTECOLOR", "0"},      {"GNOTEBOLD", "False"},
      {"GNOTEITALIC", "False"},   {"GNOTENAME", "Arial"},   {"GNOTESIZE", "8"},
      {"GNOTESTRIKE", "False"},   {"GNOTEUNDERLINE", "False"}, {"COLOR3", "0"},
  };
  for (const Entry& e : kFirstRun) settings.SaveSetting(kDefaultInfoSection, e.key, e.value);
  settings.sync();
}

}  // namespace plectaro
