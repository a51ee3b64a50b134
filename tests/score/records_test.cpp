#include <gtest/gtest.h>

#include "score/new_score.h"
#include "score/score_records.h"
#include "score/text_codec.h"
#include "score/value_text.h"

namespace plectaro {
namespace {

TEST(Records, NotePitchIsFretPlusOffsetPlusOpenString) {
  struct Case {
    int string;
    const char* fret;
    int16_t offset;
    int want;
  };
  const Case cases[] = {{0, "12", 0, 76}, {0, "12", -2, 74}, {5, "0", 0, 40}, {6, "3", 1, 39}, {2, " 7 ", 0, 62}};
  for (const Case& c : cases) {
    Score s;
    s.trackMut(0).Tuning.Offset[static_cast<size_t>(c.string)] = c.offset;
    s.noteMut(0, 0, 0, c.string).Fret = c.fret;
    EXPECT_EQ(s.GetNotePitch(0, 0, 0, c.string), c.want) << c.string << " " << c.fret;
  }
  Score s;
  for (const char* notPitch : {"", "x", "X", "~", "1x"}) {
    s.noteMut(0, 0, 0, 0).Fret = notPitch;
    EXPECT_THROW(s.GetNotePitch(0, 0, 0, 0), ScoreError) << notPitch;
  }
}

TEST(Records, BoundsAreCheckedEverywhere) {
  Score s;
  EXPECT_THROW(s.track(1), ScoreError);
  EXPECT_THROW(s.bar(0, -1), ScoreError);
  EXPECT_THROW(s.beat(0, 0, 1), ScoreError);
  EXPECT_THROW(s.note(0, 0, 0, 7), ScoreError);
  EXPECT_THROW(s.SetBeatCount(0, 0, -1), ScoreError);
  EXPECT_THROW(s.SetTuning(0, {}, 8), ScoreError);
}

TEST(Records, BarCountChangesEveryTrackTogether) {
  Score s;
  s.Tracks.resize(3);
  s.SetBarCount(9);
  for (const Track& t : s.Tracks) EXPECT_EQ(t.Bars.size(), s.BarInfos.size());
  s.SetBarCount(0);
  for (const Track& t : s.Tracks) EXPECT_EQ(t.Bars.size(), 1u);
}

TEST(Records, CopiesShareBarsUntilOneIsWritten) {
  Score a;
  a.SetBarCount(99);
  Score b = a;
  b.noteMut(0, 50, 0, 0).Fret = "5";
  EXPECT_EQ(a.note(0, 50, 0, 0).Fret, "");
  EXPECT_TRUE(a.Tracks[0].Bars[49].sharesWith(b.Tracks[0].Bars[49]));
  EXPECT_FALSE(a.Tracks[0].Bars[50].sharesWith(b.Tracks[0].Bars[50]));
  EXPECT_NE(a, b);
}

// Texts on both sides of the inline limit (15) and far beyond it behave as std::string does:
// copies, moves, comparisons, the NUL at the end, concatenation.
TEST(Records, SmallTextActsAsAString) {
  for (const std::string& want : {std::string(), std::string("7"), std::string(14, 'a'), std::string(15, 'b'),
                                 std::string(16, 'c'), std::string(300, 'd'), std::string("\xc2\xbd")}) {
    SmallText t = want;
    EXPECT_EQ(t.size(), want.size());
    EXPECT_EQ(t, want);
    EXPECT_EQ(std::string(t.c_str()), want);  // NUL-terminated whatever the length
    SmallText copy = t;
    SmallText moved = std::move(t);
    EXPECT_EQ(copy, want);
    EXPECT_EQ(moved, want);
    EXPECT_TRUE(t.empty());  // NOLINT: a moved-from text is left empty
    copy = moved;            // heap to heap, inline to inline
    EXPECT_EQ(copy, want);
    EXPECT_EQ("<" + copy + ">", "<" + want + ">");
    copy.clear();
    EXPECT_EQ(copy, "");
  }
  EXPECT_EQ(sizeof(SmallText), 16u);
}

// A blank beat must cost no allocation: its boxes are empty pointers that read as blank records,
// and writing one detaches it from every copy.
TEST(Records, BlankBoxesReadBlankAndDetachOnWrite) {
  Beat a;
  Beat b = a;
  EXPECT_TRUE(a.Notes[0].Bend.sharesWith(b.Notes[0].Bend));
  EXPECT_EQ(a.Notes[0].Grace->Fret, "");
  EXPECT_EQ(a.Chord->NumStrings, 0);
  b.Notes[0].Bend.mut().Scale = 3;
  EXPECT_EQ(a.Notes[0].Bend->Scale, 0);
  EXPECT_NE(a, b);
  Beat c = b;
  c.Notes[0].Bend.mut().Scale = 4;  // shared with b until now
  EXPECT_EQ(b.Notes[0].Bend->Scale, 3);
  b.Notes[0].Bend = {};
  EXPECT_EQ(a, b);  // an emptied box equals a blank one
}

TEST(Records, ClearBeatKeepsLengthAndGotoName) {
  Score s;
  Beat& b = s.beatMut(0, 0, 0);
  b.Length = kEighth;
  b.GotoName = "Chorus";
  b.Text = "x";
  b.Dotted = b.IsTuplet = b.HasChord = b.HasTremoloBar = true;
  b.Stroke = kUpStroke;
  NoteSlot& n = b.Notes[3];
  n.Fret = "9";
  n.Volume = kVolPP;
  n.HasBend = n.HasGrace = n.HasTrill = n.Tied = n.LetRing = n.GhostNote = true;
  s.ClearBeat(0, 0, 0);
  Beat want;
  want.Length = kEighth;
  want.GotoName = "Chorus";
  // Contents of the boxed sub-records stay; only their flags are cleared.
  want.Chord = s.beat(0, 0, 0).Chord;
  want.TremoloBar = s.beat(0, 0, 0).TremoloBar;
  EXPECT_EQ(s.beat(0, 0, 0), want);
  EXPECT_TRUE(s.beat(0, 0, 0).isRest());
}

TEST(NewScore, FallbacksAndFirstRunDefaults) {
  MemorySettingsStore empty;
  Document doc;
  doc.CursorBar = 4;
  InitScore(doc, empty);
  const Score& s = doc.score;
  EXPECT_EQ(s.Title, "Untitled");
  EXPECT_EQ(s.Tempo, 60);
  EXPECT_EQ(s.RowSpacing, 100);
  EXPECT_TRUE(s.AlwaysDrawChordCharts);
  EXPECT_EQ(s.HeaderFont.Name, "Times New Roman");
  EXPECT_EQ(s.HeaderFont.Size, 22);  // the fallback before any first run
  EXPECT_EQ(s.NoteFont.Name, "Arial");
  EXPECT_EQ(s.NoteFont.Size, 8);
  EXPECT_EQ(doc.CursorBar, 0);
  EXPECT_TRUE(doc.ScoreChanged);
  EXPECT_EQ(s.Tracks.size(), 1u);
  EXPECT_EQ(s.bar(0, 0).Beats.size(), 1u);
  EXPECT_EQ(s.beat(0, 0, 0).Length, kQuarter);

  MemorySettingsStore firstRun;
  SetDefaultVars(firstRun);
  firstRun.SaveSetting(kDefaultInfoSection, "3", "Me");
  firstRun.SaveSetting(kDefaultInfoSection, "12", "132.5");
  firstRun.SaveSetting(kDefaultInfoSection, "10", "False");
  InitScore(doc, firstRun);
  EXPECT_EQ(doc.score.HeaderFont.Size, 19);
  EXPECT_EQ(doc.score.Author, "Me");
  EXPECT_EQ(doc.score.Tempo, 132.5f);
  EXPECT_FALSE(doc.score.AlwaysDrawChordCharts);
}

TEST(TextCodec, EveryByteRoundTrips) {
  std::string all;
  for (int b = 0; b < 256; ++b) all += static_cast<char>(b);
  EXPECT_EQ(Utf8ToCp1252(Cp1252ToUtf8(all)), all);
  EXPECT_EQ(Cp1252ToUtf8("\x80\xBD\xE9"), "€½é");
  EXPECT_EQ(Utf8ToCp1252("日本\xC3"), "???");
}

TEST(ValueText, LenientParsing) {
  EXPECT_EQ(ParseI16(" 42 "), 42);
  EXPECT_EQ(ParseI16("99999"), 32767);
  EXPECT_EQ(ParseI16("-99999"), -32768);
  EXPECT_EQ(ParseI16("2.5"), 2);  // halves to even
  EXPECT_EQ(ParseI16("3.5"), 4);
  EXPECT_EQ(ParseI16("garbage"), 0);
  EXPECT_EQ(ParseI32("12abc"), 12);
  EXPECT_TRUE(ParseBool("True"));
  EXPECT_TRUE(ParseBool("-1"));
  EXPECT_FALSE(ParseBool("False"));
  EXPECT_FALSE(ParseBool(""));
  EXPECT_EQ(FormatFloat(120), "120");
  EXPECT_EQ(FormatFloat(97.5f), "97.5");
  EXPECT_EQ(ParseFloat(FormatFloat(0.1f)), 0.1f);
}

}  // namespace
}  // namespace plectaro
