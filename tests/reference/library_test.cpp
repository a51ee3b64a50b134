// The chord and scale libraries: generated files byte for byte, both number forms, broken
// files, the searches and the grid of the managers.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "../shell/test_folder.h"
#include "reference/cell_drawing.h"
#include "reference/library_filter.h"
#include "rendering/recording_surface.h"
#include "score/file_io.h"

namespace plectaro {
namespace {

using testing::TempFolder;

std::string crlf(std::initializer_list<std::string> lines) {
  std::string t;
  for (const std::string& l : lines) t += l + "\r\n";
  return t;
}

bool contains(const std::vector<std::string>& v, const std::string& s) {
  return std::find(v.begin(), v.end(), s) != v.end();
}

std::string lookup(std::string_view key) { return "<" + std::string(key) + ">"; }

TEST(ChordLibrary, GeneratesTheBuiltInChordsOnceAndByteForByte) {
  TempFolder home;
  ASSERT_TRUE(CreateAllChords(home.path()));
  const auto names = ListChordNames(home.path());
  EXPECT_EQ(names.size(), 396u);
  for (const char* n : {"A 6 9", "A m maj7", "A +", "A 0", "G# sus4", "C maj13"}) {
    ASSERT_TRUE(contains(names, n)) << n;
    EXPECT_NO_THROW(LoadChordFile(home.path(), n)) << n;
  }
  // Tuning lines without blanks, the other numbers in the blank-padded form, empty 7th fret.
  EXPECT_EQ(ReadWholeFile(ChordFolder(home.path()) / "A m7"),
            crlf({"", " 0 ", " 6 ", "64", "59", "55", "50", "45", "40", "35", " 0 ", " 0 ", " 0 ", " 0 ",
                  " 0 ", " 0 ", " 0 ", "0", "1", "0", "2", "0", "0", ""}));
  const ChordData sus4 = LoadChordFile(home.path(), "G# sus4");
  EXPECT_EQ(sus4.Frets, (std::array<std::string, 7>{"4", "2", "1", "1", "4", "4", ""}));
  EXPECT_EQ(sus4.NumStrings, 6);

  // A user's edits and deletions survive: the folder exists, so nothing is written again.
  std::filesystem::remove(ChordFolder(home.path()) / "A m7");
  EXPECT_FALSE(CreateAllChords(home.path()));
  EXPECT_FALSE(ChordExists(home.path(), "A m7"));
  RestoreChords(home.path());
  EXPECT_TRUE(ChordExists(home.path(), "A m7"));
}

TEST(ScaleLibrary, GeneratesTheBuiltInScalesWithTheSeventhStringMark) {
  TempFolder home;
  ASSERT_TRUE(CreateAllScales(home.path()));
  const auto names = ListScaleNames(home.path());
  EXPECT_EQ(names.size(), 38u);
  for (const char* n : {"Phrygian #6", "Locrian #2", "Neopolitan Major", "Spanish"}) {
    ASSERT_TRUE(contains(names, n)) << n;
    EXPECT_NO_THROW(LoadScaleFile(home.path(), n)) << n;
  }
  const ScaleData major = LoadScaleFile(home.path(), "Major");
  EXPECT_EQ(major.Keywords, "major, classical, acoustic, happy");
  // String 1 is "9": no notes. String 2 is "245". Row 6 holds only offset 0.
  for (int d = 0; d < kScaleOffsets; ++d) {
    EXPECT_FALSE(major.Positions[d][0]) << d;
    EXPECT_EQ(major.Positions[d][1], d == 2 || d == 4 || d == 5) << d;
    EXPECT_EQ(major.Positions[d][6], d == 0) << d;
  }
  const auto lines = testing::linesOf(ReadWholeFile(ScaleFolder(home.path()) / "Major"));
  ASSERT_EQ(lines.size(), 58u);
  EXPECT_EQ(lines[0], " 6 ");
  EXPECT_EQ(lines[2 + 7 * 2 + 1 - 1], "1");  // offset 2 on string 2
  EXPECT_EQ(lines[57], "major, classical, acoustic, happy");
}

TEST(LibraryFolders, AnExistingEmptyFolderStaysEmpty) {
  TempFolder home;
  std::filesystem::create_directories(ChordFolder(home.path()));
  std::filesystem::create_directories(ScaleFolder(home.path()));
  EXPECT_FALSE(CreateAllChords(home.path()));
  EXPECT_FALSE(CreateAllScales(home.path()));
  EXPECT_TRUE(ListChordNames(home.path()).empty());
  EXPECT_TRUE(ListScaleNames(home.path()).empty());
}

TEST(ChordFile, ReadsBothNumberFormsAndOnlyTheExactBarreMark) {
  struct Case {
    std::string barreLine, numberLine;
    bool barre;
    int16_t value;
  } cases[] = {
      {"1", " 6 ", true, 6}, {" 1", "6", false, 6}, {"0", "  6", false, 6},
      {"true", "6 ", false, 6}, {"", "-1 ", false, -1}, {"1 ", "", false, 0},
  };
  for (const Case& c : cases) {
    std::vector<std::string> lines(24, " 0 ");
    lines[0] = c.barreLine;
    lines[1] = c.numberLine;  // StartFret
    lines[2] = c.numberLine;  // NumStrings
    lines[3] = c.numberLine;  // Tuning[0]
    std::string bytes;
    for (const std::string& l : lines) bytes += l + "\r\n";
    const ChordData chord = ParseChordFile(bytes, "t");
    EXPECT_EQ(chord.Barre, c.barre) << c.barreLine;
    EXPECT_EQ(chord.StartFret, c.value) << c.numberLine;
    EXPECT_EQ(chord.NumStrings, c.value) << c.numberLine;
    EXPECT_EQ(chord.Tuning[0], c.value) << c.numberLine;
  }
}

TEST(LibraryFiles, ShortOrGarbledFilesFailWithTheirName) {
  std::string chord = ChordFileText(ChordData{});
  std::string scale = ScaleFileText(ScaleData{});
  auto withoutLastLine = [](std::string t) {
    t.resize(t.size() - 2);
    return t.substr(0, t.rfind("\r\n") + 2);
  };
  auto fails = [](auto parse, const std::string& bytes) {
    try {
      parse(bytes, "Broken One");
    } catch (const LibraryError& e) {
      return std::string(e.what()).find("Broken One") != std::string::npos;
    }
    return false;
  };
  EXPECT_TRUE(fails(ParseChordFile, withoutLastLine(chord)));  // 23 lines
  EXPECT_TRUE(fails(ParseScaleFile, withoutLastLine(scale)));  // 57 lines
  EXPECT_TRUE(fails(ParseChordFile, "abc\r\nsix\r\n" + chord));
  EXPECT_TRUE(fails(ParseChordFile, ""));
  EXPECT_FALSE(fails(ParseChordFile, chord));
  EXPECT_FALSE(fails(ParseScaleFile, scale));
}

TEST(LibraryFiles, SavedRecordsLoadAsTheyWere) {
  TempFolder home;
  ChordData c;
  c.StartFret = 4;
  c.NumStrings = 7;
  c.Barre = true;
  c.Frets = {"1", "1", "2", "3", "3", "x", ""};
  c.Tuning = {64, 59, 55, 50, 45, 40, 35};
  c.Fingers = {1, 1, 2, 4, 3, 0, 5};
  SaveChordFile(home.path(), "B 7 (barre)", c);
  ChordData back = LoadChordFile(home.path(), "B 7 (barre)");
  // The unused seventh string is written as one blank, so no line is empty; it plays nothing.
  EXPECT_EQ(back.Frets[6], " ");
  int fret = 0;
  EXPECT_FALSE(back.absoluteFret(6, fret));
  EXPECT_FALSE(back.absoluteFret(5, fret));
  ASSERT_TRUE(back.absoluteFret(3, fret));
  EXPECT_EQ(fret, 7);
  back.Frets[6] = "";
  EXPECT_EQ(back, c);

  ScaleData s = ScaleFromDigits({"013", "9", "9", "9", "9", "0246"}, "mine, test, äöü");
  s.NumStrings = 7;
  SaveScale(home.path(), "My #1", s);
  EXPECT_EQ(LoadScaleFile(home.path(), "My #1"), s);

  for (const char* bad : {"", "a/b", "..", ".hidden"}) {
    EXPECT_THROW(SaveChordFile(home.path(), bad, c), LibraryError) << bad;
    EXPECT_FALSE(ChordExists(home.path(), bad)) << bad;
  }
}

TEST(ScaleFile, APositionLineOfOtherTextLeavesThePositionFalse) {
  auto lines = testing::linesOf(ScaleFileText(ScaleFromDigits({"0", "0", "0", "0", "0", "0"}, "k")));
  lines[1] = "yes";  // offset 0, string 1
  lines[2] = " 1 ";  // offset 0, string 2: the reader trims
  std::string bytes;
  for (const std::string& l : lines) bytes += l + "\r\n";
  const ScaleData s = ParseScaleFile(bytes, "t");
  EXPECT_FALSE(s.Positions[0][0]);
  EXPECT_TRUE(s.Positions[0][1]);
}

TEST(ChordSearch, NameTabStringsAndCurrentFile) {
  TempFolder home;
  CreateAllChords(home.path());
  ChordData seven;
  seven.NumStrings = 7;
  seven.Frets = {"0", "1", "0", "2", "3", "x", "5"};
  SaveChordFile(home.path(), "C 7string", seven);
  const auto library = ListChordNames(home.path());
  auto load = [&](const std::string& n) { return LoadChordFile(home.path(), n); };
  auto run = [&](const ChordFilter& f, const Score* score = nullptr) {
    return ApplyChordFilter(library, f, load, score).names;
  };

  ChordFilter byName;
  for (const char* text : {"am7", "a m7", "AM7", "m7"}) {
    byName.text = text;
    EXPECT_TRUE(contains(run(byName), "A m7")) << text;
    EXPECT_TRUE(contains(run(byName), "A m7-5")) << text;
  }
  byName.text = "+";
  EXPECT_TRUE(contains(run(byName), "A +"));
  byName.text = "a0";
  EXPECT_EQ(run(byName), std::vector<std::string>{"A 0"});
  byName.text = "";
  EXPECT_EQ(run(byName).size(), 397u);

  ChordFilter byTab;
  byTab.mode = ChordSearch::Tab;
  byTab.tab = {"0", "1", "0", "2", "3", "0", ""};  // C major, string 1 first
  auto found = run(byTab);
  EXPECT_TRUE(contains(found, "C Maj"));
  EXPECT_FALSE(contains(found, "C 7string"));  // its sixth string is "x"
  // A box for string 7 only rejects seven-string chords.
  byTab.tab = {"0", "1", "", "", "", "", "9"};
  found = run(byTab);
  EXPECT_TRUE(contains(found, "C Maj"));
  EXPECT_FALSE(contains(found, "C 7string"));
  byTab.tab = {"", "", "", "", "", "x", "5"};
  EXPECT_EQ(run(byTab), std::vector<std::string>{"C 7string"});

  ChordFilter byStrings;
  byStrings.mode = ChordSearch::Strings;
  byStrings.numStrings = 7;
  EXPECT_EQ(run(byStrings), std::vector<std::string>{"C 7string"});
  byStrings.numStrings = 4;
  EXPECT_TRUE(run(byStrings).empty());
  EXPECT_EQ(EmptyChordResultText(byStrings, false, lookup), "<str_No> 4<str_StringChordsWereFound>");

  ChordFilter inFile;
  inFile.mode = ChordSearch::InFile;
  Score score;
  score.Tracks.resize(1);
  EXPECT_TRUE(run(inFile, &score).empty());
  EXPECT_EQ(EmptyChordResultText(inFile, false, lookup), "<str_NoChordsInFile>");
  Beat& b = score.Tracks[0].Bars[0].mut().Beats[0];
  b.HasChord = true;
  b.Chord.mut().Name = "A m maj7";
  EXPECT_EQ(run(inFile, &score), std::vector<std::string>{"A m maj7"});
  EXPECT_EQ(ChordCountText(1, lookup), "1 <str_Chord>");
  EXPECT_EQ(ChordCountText(0, lookup), "0 <str_Chords>");
}

TEST(ChordSearch, ABrokenFileIsSkippedAndNamedNotFatal) {
  TempFolder home;
  CreateAllChords(home.path());
  std::string shortFile = ChordFileText(ChordData{});
  shortFile.resize(shortFile.size() - 3);  // 23 whole lines
  std::ofstream(ChordFolder(home.path()) / "A broken", std::ios::binary) << shortFile;
  ChordFilter f;
  f.mode = ChordSearch::Strings;
  const FilterResult r = ApplyChordFilter(ListChordNames(home.path()), f,
                                          [&](const std::string& n) { return LoadChordFile(home.path(), n); },
                                          nullptr);
  EXPECT_EQ(r.names.size(), 396u);
  EXPECT_EQ(r.broken, std::vector<std::string>{"A broken"});
}

TEST(ScaleSearch, NameKeywordsAndStrings) {
  TempFolder home;
  CreateAllScales(home.path());
  const auto library = ListScaleNames(home.path());
  auto load = [&](const std::string& n) { return LoadScaleFile(home.path(), n); };
  ScaleFilter f;
  f.text = "phrygian";
  EXPECT_EQ(ApplyScaleFilter(library, f, load).names, (std::vector<std::string>{"Phrygian", "Phrygian #6"}));
  f.mode = ScaleSearch::Keywords;
  f.text = "Horror";
  EXPECT_EQ(ApplyScaleFilter(library, f, load).names, std::vector<std::string>{"Phrygian"});
  f.text = "bossa";
  EXPECT_TRUE(ApplyScaleFilter(library, f, load).names.empty());
  EXPECT_EQ(EmptyScaleResultText(f, false, lookup).second, "<str_NoKeywords1>bossa<str_NoKeywords2>");
  f.mode = ScaleSearch::Strings;
  EXPECT_EQ(ApplyScaleFilter(library, f, load).names.size(), 38u);
  EXPECT_EQ(EmptyScaleResultText(f, true, lookup).second, "<str_NoScalesInstalled> <str_toInstall>");
}

TEST(ScaleKeys, OffsetsFromEAndBack) {
  struct Case {
    const char* key;
    int offset;
  } cases[] = {{"A", 5}, {"G#", 4}, {"E", 0}, {"D#", 11}, {"F", 1}, {"C", 8}};
  for (const Case& c : cases) {
    const int item = static_cast<int>(std::find_if(kScaleKeys.begin(), kScaleKeys.end(),
                                                   [&](const char* k) { return std::string(k) == c.key; }) -
                                      kScaleKeys.begin());
    EXPECT_EQ(ScaleKeyOffset(item), c.offset) << c.key;
    // The octave switch finds the key item back from the offset: D# stays D#.
    EXPECT_EQ(ScaleKeyItem(c.offset), item) << c.key;
  }
}

TEST(ScaleKeys, NotesFollowKeyOctaveAndDirection) {
  const ScaleData s = ScaleFromDigits({"02", "9", "9", "9", "9", "13"}, "");
  using N = ScaleNote;
  EXPECT_EQ(ScaleNotes(s, 0, false, true), (std::vector<N>{{5, 1, 41}, {5, 3, 43}, {0, 0, 64}, {0, 2, 66}}));
  EXPECT_EQ(ScaleNotes(s, 5, true, false), (std::vector<N>{{0, 19, 83}, {0, 17, 81}, {5, 20, 60}, {5, 18, 58}}));
  // Row 6 holds its leftover mark, but a six-string scale never sounds it.
  EXPECT_EQ(ScaleNotes(s, 0, false, true).size(), 4u);
}

TEST(ScaleKeys, TheScaleListShowsTheWholeNeckInTheTracksTuning) {
  // E minor pentatonic as stored (E G A B D), string 1 first.
  const ScaleData pentatonic = ScaleFromDigits({"03", "03", "02", "02", "02", "03"}, "");
  const ScaleData none = ScaleFromDigits({"9", "9", "9", "9", "9", "9"}, "");
  const std::vector<int> standard = {64, 59, 55, 50, 45, 40};
  std::vector<int> dropD = standard;
  dropD[5] = 38;
  struct Case {
    const char* what;
    const ScaleData& scale;
    int keyItem;
    const std::vector<int>& tuning;
    std::vector<int> lowStringFrets;  // frets 0..12 on string 6
    std::vector<int> lowStringRoots;  // of all 24
  };
  const Case cases[] = {
      {"A minor pentatonic, standard", pentatonic, 0, standard, {0, 3, 5, 8, 10, 12}, {5, 17}},
      {"E, as stored", pentatonic, 7, standard, {0, 3, 5, 7, 10, 12}, {0, 12, 24}},
      {"D minor pentatonic in Drop D", pentatonic, 5, dropD, {0, 3, 5, 7, 10, 12}, {0, 12, 24}},
      {"a scale of no notes", none, 0, standard, {}, {}},
  };
  for (const Case& c : cases) {
    const auto dots = ScaleOnNeck(c.scale, ScaleKeyOffset(c.keyItem), c.tuning, 24);
    std::vector<int> frets, roots;
    for (const NeckDot& d : dots) {
      ASSERT_LT(d.string, 6) << c.what;
      ASSERT_LE(d.fret, 24) << c.what;
      if (d.string != 5) continue;
      if (d.fret <= 12) frets.push_back(d.fret);
      if (d.root) roots.push_back(d.fret);
    }
    EXPECT_EQ(frets, c.lowStringFrets) << c.what;
    EXPECT_EQ(roots, c.lowStringRoots) << c.what;
    // Five notes an octave on each of six strings, over 25 frets: 10 or 11 a string.
    if (!c.lowStringFrets.empty()) {
      EXPECT_GE(dots.size(), 60u) << c.what;
    }
  }
}

TEST(ManagerGrid, ColumnsRowsScrollAndHits) {
  const CellGeometry chart = ChordCellGeometry(1);
  EXPECT_EQ(chart.cellWidth, 100);
  EXPECT_TRUE(chart.chart.shown && !chart.tab.shown && !chart.notation.shown);
  EXPECT_EQ(ScaleCellGeometry(6).cellHeight, 275);
  struct Case {
    double w, h;
    size_t count;
    int columns, rows, scrollMax;
  } cases[] = {
      {50, 100, 10, 1, 1, 10},   // narrower than a cell: still one column
      {1000, 520, 396, 10, 4, 37},
      {1000, 520, 40, 10, 4, 0},  // all fit
      {1000, 520, 0, 10, 4, 0},
  };
  for (const Case& c : cases) {
    const GridLayout g = LayoutGrid(c.w, c.h, chart, c.count);
    EXPECT_EQ(g.columns, c.columns) << c.w;
    EXPECT_EQ(g.rows, c.rows) << c.h;
    EXPECT_EQ(g.scrollMax, c.scrollMax) << c.count;
  }
  const GridLayout g = LayoutGrid(1000, 520, chart, 25);
  EXPECT_EQ(CellAt(250, 140, g, chart, 0, 25), 12);
  EXPECT_EQ(CellAt(550, 140, g, chart, 1, 25), -1);  // beyond the last chord
  EXPECT_EQ(CellAt(1050, 10, g, chart, 0, 25), -1);
}

TEST(ChordChart, DotsNutBarreAndMarks) {
  // Chart at (100, 100): five fret columns of 13, strings over 55 units, string 1 at the
  // bottom for the right hand and at the top for the left.
  struct Case {
    const char* what;
    ChordData chord;
    bool lefty;
    size_t dots;
    bool nut;
    std::vector<std::string> texts;  // besides the string names
    double barreTop, barreHeight;    // 0 when there is no barre
  };
  ChordData open;  // C major at the nut
  open.Frets = {"0", "1", "0", "2", "3", "x", ""};
  open.Tuning = kLibraryTuning;
  open.Fingers = {0, 1, 0, 2, 3, 0, 0};
  ChordData barre = open;  // a barre at the 5th fret over strings 1 to 5, string 6 muted
  barre.StartFret = 4;
  barre.Barre = true;
  barre.Frets = {"1", "1", "2", "3", "3", "x", ""};
  barre.Fingers = {5, 0, 0, 0, 0, 0, 0};
  const Case cases[] = {
      {"open", open, false, 3, true, {"1", "2", "3", "X"}, 0, 0},
      {"barre", barre, false, 5, false, {"5", "T", "X"}, 100 + 11 - 3, 44 + 6},
      {"barre lefty", barre, true, 5, false, {"5", "T", "X"}, 100 - 3, 44 + 6},
  };
  for (const Case& c : cases) {
    RecordingSurface s;
    DrawChordChart(s, {100, 100}, c.chord, c.lefty);
    size_t dots = 0;
    for (const DrawCall& call : s.ofKind(DrawCall::Kind::FillEllipse)) dots += call.color == kBlack;
    EXPECT_EQ(dots, c.dots) << c.what;
    bool nut = false;
    for (const DrawCall& call : s.ofKind(DrawCall::Kind::Line)) nut = nut || call.width > 2;
    EXPECT_EQ(nut, c.nut) << c.what;
    std::vector<std::string> texts;
    for (const std::string& t : s.texts())
      if (t.find_first_of("ABCDEFG") == std::string::npos || t == "X") texts.push_back(t);
    EXPECT_EQ(texts, c.texts) << c.what;
    const auto bars = s.ofKind(DrawCall::Kind::FillRect);
    ASSERT_EQ(bars.size(), c.barreHeight > 0 ? 1u : 0u) << c.what;
    if (!bars.empty()) {
      EXPECT_NEAR(bars[0].points[0].y, c.barreTop, 0.01) << c.what;
      EXPECT_NEAR(bars[0].points[1].y, c.barreHeight, 0.01) << c.what;
    }
  }
}

}  // namespace
}  // namespace plectaro
