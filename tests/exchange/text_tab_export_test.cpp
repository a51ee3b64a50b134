// The text and HTML writers: exact bytes of the files, the cell marks, and how rows break.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "exchange/text_tab_export.h"
#include "score/value_text.h"

namespace plectaro {
namespace {

// Two bars of a six-string track: bar 1 holds a hammered "12" and an empty beat, bar 2 a
// vibrato beat with "3" on the low string and a repeat close of count 2.
Score TwoBars() {
  Score s;
  s.Title = "Café Song";
  s.Artist = "the band";
  s.Tempo = 120;
  s.SetBarCount(1);
  s.SetBeatCount(0, 0, 1);
  s.noteMut(0, 0, 0, 0).Fret = "12";
  s.noteMut(0, 0, 0, 0).Technique = kHammerOnPullOff;
  s.beatMut(0, 1, 0).ChordTechnique = kVibrato;
  s.noteMut(0, 1, 0, 5).Fret = "3";
  s.barInfoMut(1).RepeatClose = 2;
  return s;
}

const std::vector<std::string> kTwoBarRows = {
    // Three blanks, "     " for each plain beat and "   " closing bar 1; bar 2's vibrato beat
    // is "  ~" and two blanks, and its repeat count 2 closes it with " x3".
    "   " "     " "     " "   " "   " "  ~  " " x3",
    "|---12h--------||---------|",
    "|--------------||---------|",
    "|--------------||---------|",
    "|--------------||---------|",
    "|--------------||---------|",
    "|--------------||----3----|",
    "",
};

std::string Joined(const std::vector<std::string>& lines) {
  std::string s;
  for (const auto& l : lines) s += l + "\r\n";
  return s;
}

TEST(TextExport, RowsOfAShortTrack) {
  EXPECT_EQ(WriteTabRows(TwoBars(), 0, 60), Joined(kTwoBarRows));
}

TEST(TextExport, WholeTextFile) {
  const std::vector<std::string>& rows = kTwoBarRows;
  std::vector<std::string> lines = {
      std::string(64, '#'),
      "# This file is the author's own work and represents only their #",
      "# interpretation of the song. This file may only be used for   #",
      "# scholarship, study, or private research.                     #",
      std::string(64, '#'),
      "",
      "CAF\xC9 SONG - THE BAND",  // upper case in Windows-1252
      "Tempo:120",
      "", "", ""};
  lines.insert(lines.end(), rows.begin(), rows.end());
  lines.push_back("");
  lines.push_back("Created with Plectaro (" + std::string(kProductWebAddress) + ")");
  EXPECT_EQ(ExportASCIIText(TwoBars(), 0, {true, 60}), Joined(lines));

  // Without the warning the file starts at the title.
  const std::string plain = ExportASCIIText(TwoBars(), 0, {false, 60});
  EXPECT_EQ(plain.rfind("CAF\xC9 SONG - THE BAND\r\nTempo:120\r\n\r\n\r\n\r\n", 0), 0u);
}

TEST(TextExport, HtmlHead) {
  const std::string web(kProductWebAddress);
  const std::string html = ExportHTMLText(TwoBars(), 0, {false, 60});
  const std::string head = Joined({
      "<html>",
      "<head>",
      "<title>Created With Plectaro - " + web + "</title>",
      "</head>",
      "<pre>",
      "<font face= \"Courier New, Courier, mono\"</font>",
      "<font size= \"+1\"</font>",
      "<a href= \"" + web + "\">Click Here to get Plectaro!</a>",
      "CAF\xC9 SONG - THE BAND",
      "Tempo:120",
      "",
      "   " "     " "     " "   " "   " "  ~  " " x3",
  });
  EXPECT_EQ(html.substr(0, head.size()), head);
  // The last row's empty line, one more empty line, then </pre>.
  EXPECT_EQ(html.substr(html.size() - 17), "--|\r\n\r\n\r\n</pre>\r\n");
  EXPECT_EQ(html.find("</html>"), std::string::npos);
}

TEST(TextExport, CellMarksFollowTheirOrder) {
  struct Case {
    int technique;
    bool bend;
    int harmonic;
    bool letRing;
    std::string_view mark;
  };
  const Case cases[] = {
      {kHammerOnPullOff, true, 1, true, "h-"}, {kLegatoSlide, true, 0, false, "/-"},
      {kSlideDown, false, 0, false, "\\-"},    {kSlideUp, false, 0, false, "/-"},
      {kStaccato, true, 0, false, ".-"},       {kTremoloPicking8, true, 1, true, "b-"},
      {kNoTechnique, false, 3, true, "*-"},    {kSlideIntoUp, false, 0, true, ">-"},
      {kNoTechnique, false, 0, false, "--"},
  };
  for (const Case& c : cases) {
    NoteSlot n;
    n.Technique = c.technique;
    n.HasBend = c.bend;
    n.Harmonic = c.harmonic;
    n.LetRing = c.letRing;
    EXPECT_EQ(TabCellMark(n), c.mark) << "technique " << c.technique;
  }

  struct BeatCase {
    bool tremolo;
    int chordTechnique;
    std::string_view mark;
  };
  const BeatCase beats[] = {
      {true, kVibrato, "  ^"},    {false, kFadeIn, "  <"},   {false, kPalmMute, "  m"},
      {false, kTapping, " T."},   {false, kVibrato, "  ~"},  {false, kWideVibrato, "  ~"},
      {false, kSlapping, "   "},  {false, kNoChordTechnique, "   "},
  };
  for (const BeatCase& c : beats) {
    Beat b;
    b.HasTremoloBar = c.tremolo;
    b.ChordTechnique = c.chordTechnique;
    EXPECT_EQ(EffectCellMark(b), c.mark) << "chord technique " << c.chordTechnique;
  }
}

TEST(TextExport, Padding) {
  EXPECT_EQ(PadDashes(""), "---");
  EXPECT_EQ(PadDashes("x"), "--x");
  EXPECT_EQ(PadDashes("12"), "-12");
  EXPECT_EQ(PadDashes("1234"), "234");  // a damaged fret text still keeps the columns
  EXPECT_EQ(PadBlanks("x3"), " x3");
  EXPECT_EQ(PadBlanks("x12"), "x12");
}

// Rows break only between bars, every line of a row holds the same bars, and a row passes the
// maximum by less than one bar.
TEST(TextExport, RowsNeverCutABar) {
  Score s;
  s.SetBarCount(9);
  for (int b = 0; b <= 9; ++b) {
    s.SetBeatCount(0, b, b % 3);  // bars of 1, 2 and 3 beats: 11, 16 and 21 columns
    s.noteMut(0, b, 0, 2).Fret = std::to_string(b);
  }
  for (int maxLen : {0, 1, 11, 20, 33, 60, 1000}) {
    const std::string rows = WriteTabRows(s, 0, maxLen);
    const auto lines = SplitLines(rows);
    int barsSeen = 0;
    for (size_t first = 0; first < lines.size(); first += 8) {
      ASSERT_LT(first + 7, lines.size());
      const size_t width = lines[first].size();
      int bars = 0;
      for (char c : lines[first + 1]) bars += c == '|';
      bars /= 2;
      for (size_t k = 0; k < 7; ++k) EXPECT_EQ(lines[first + k].size(), width) << maxLen;
      EXPECT_TRUE(lines[first + 7].empty());
      for (size_t k = 1; k < 7; ++k) {
        EXPECT_EQ(lines[first + k].front(), '|');
        EXPECT_EQ(lines[first + k].back(), '|');
      }
      const size_t lastBarWidth = 6 + 5 * static_cast<size_t>((barsSeen + bars - 1) % 3 + 1);
      EXPECT_LT(width - lastBarWidth, static_cast<size_t>(std::max(maxLen, 1))) << maxLen;
      barsSeen += bars;
    }
    EXPECT_EQ(barsSeen, 10) << maxLen;
  }
}

TEST(TextExport, MissingTrackIsAnError) {
  EXPECT_THROW(ExportASCIIText(Score(), 3, {}), ScoreError);
}

}  // namespace
}  // namespace plectaro
