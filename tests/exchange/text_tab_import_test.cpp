// Text tab into a track: staves, columns, lengths, bars, effect letters, details, and what a
// failed import leaves behind. Includes a round trip through the text writer.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "exchange/text_tab_export.h"
#include "exchange/text_tab_import.h"
#include "score/bar_timing.h"
#include "score/document.h"
#include "score/file_io.h"
#include "score/music_file.h"
#include "score/settings_store.h"

namespace plectaro {
namespace {

Score Import(std::string_view text, AsciiImportOptions o = {}) {
  Score s;
  ASCIIToPLM(s, 0, text, o);
  return s;
}

// The beats of a track with notes, as "string:fret" words: "0:5 5:3".
std::vector<std::string> Frets(const Score& s, int track = 0) {
  std::vector<std::string> out;
  for (int b = 0; b <= s.GetLastBar(track); ++b) {
    for (const Beat& beat : s.bar(track, b).Beats) {
      std::string w;
      for (int st = 0; st < kMaxStrings; ++st) {
        const std::string& f = beat.Notes[static_cast<size_t>(st)].Fret;
        if (!f.empty()) w += (w.empty() ? "" : " ") + std::to_string(st) + ":" + f;
      }
      if (!w.empty()) out.push_back(w);
    }
  }
  return out;
}

using Words = std::vector<std::string>;

TEST(TextImport, ColumnsAndStrings) {
  struct Case {
    const char* name;
    std::string text;
    Words frets;
  };
  const Case cases[] = {
      {"string names and bar lines never reach the columns",
       "e|--0--|--3--|\nB|--1--|-----|\nG|--0--|-----|\nD|--2--|-----|\nA|--3--|-----|\nE|-----|--3--|\n",
       {"0:0 1:1 2:0 3:2 4:3", "0:3 5:3"}},
      {"28 is one fret, 29 is 2 then 9",
       "---28---29---\n-------------\n-------------\n", {"0:28", "0:2", "0:9"}},
      {"two-digit frets and a wider neighbour",
       "--12--\n---3--\n------\n", {"0:12"}},
      {"an 8-line staff uses its first 7",
       "-1------\n-1------\n-1------\n-1------\n-1------\n-1------\n-1------\n----8---\n",
       {"0:1 1:1 2:1 3:1 4:1 5:1 6:1"}},
      {"chord names and lyrics between staves",
       "Am7        G\ne|--5--|\nB|--5--|\nG|--5--|\nwords go here twenty-one\nC9\n"
       "e|--7--|\nB|--7--|\nG|--7--|\n",
       {"0:5 1:5 2:5", "0:7 1:7 2:7"}},
      {"dead notes stand between dashes",
       "--x--3--\n--x--3--\n--x--3--\n", {"0:x 1:x 2:x", "0:3 1:3 2:3"}},
      {"letters beside frets keep the columns",
       "--5h7--7b9--\n--0----0----\n-------------\n", {"0:5 1:0", "0:7", "0:7 1:0", "0:9"}},
  };
  for (const Case& c : cases) EXPECT_EQ(Frets(Import(c.text)), c.frets) << c.name;
}

TEST(TextImport, LineEndsAreAlike) {
  const std::string lf = "Title: Ends\ne|--1--3--|\nB|--1--3--|\nG|--2-----|\n\ne|--5--|\nB|--5--|\nG|--5--|\n";
  AsciiImportOptions o;
  o.GetFileDetails = true;
  const Score expected = Import(lf, o);
  EXPECT_EQ(Frets(expected), (Words{"0:1 1:1 2:2", "0:3 1:3", "0:5 1:5 2:5"}));
  for (std::string_view eol : {"\r\n", "\r"}) {
    std::string text;
    for (char c : lf) text += c == '\n' ? std::string(eol) : std::string(1, c);
    EXPECT_EQ(Import(text, o), expected) << (eol.size() == 2 ? "CR LF" : "CR");
  }
  EXPECT_EQ(expected.Title, "Ends");
}

TEST(TextImport, LengthsFromGapsAndBarsByTime) {
  // Beats on strings 1 and 2 by turns (so no two digits touch) after gaps of 1, 2, 4, 8, 16,
  // 32 and 64 columns; the last beat is closed by the staff's four trailing columns.
  std::string lines[3];
  for (int i = 0; i < 8; ++i) {
    const int gap = i < 7 ? 1 << i : 4;
    for (int l = 0; l < 3; ++l) {
      lines[l] += (l == i % 2 ? "0" : "-");
      lines[l] += std::string(static_cast<size_t>(gap - 1), '-');
    }
  }
  const Score s = Import(lines[0] + "\n" + lines[1] + "\n" + lines[2] + "\n");
  std::vector<int> lengths;
  for (int b = 0; b <= s.GetLastBar(0); ++b)
    for (const Beat& beat : s.bar(0, b).Beats)
      if (!beat.isRest()) lengths.push_back(beat.Length);
  EXPECT_EQ(lengths, (std::vector<int>{6, 5, 4, 3, 2, 1, 0, 4}));
  // 63 64ths leave bar 1 short, so the whole note joins it and overfills it; the next beat
  // opens bar 2, which rests fill.
  EXPECT_EQ(s.GetLastBar(0), 1);
  EXPECT_EQ(s.GetLastBeat(0, 0), 6);
  EXPECT_EQ(CheckBar(s, 0, 0), kBarTooLong);
  EXPECT_EQ(CheckBar(s, 0, 1), kBarExact);

  // Seventeen sixteenths: a full bar and one more beat, the last bar rounded off with rests.
  std::string sixteenths;
  for (int i = 0; i < 17; ++i) sixteenths += "-7--";
  const Score t = Import(sixteenths + "\n" + sixteenths + "\n" + sixteenths + "\n");
  EXPECT_EQ(t.GetLastBar(0), 1);
  EXPECT_EQ(t.GetLastBeat(0, 0), 15);
  EXPECT_EQ(CheckBar(t, 0, 1), kBarExact);
}

TEST(TextImport, EnforcedLengthAndTiming) {
  AsciiImportOptions o;
  o.EnforceLength = true;
  o.Length = kEighth;
  o.EnforceTiming = true;
  o.Timing = "3:4";
  const Score s = Import("-1-2-3-4-5-6-7-\n---------------\n---------------\n", o);
  EXPECT_EQ(s.GetLastBar(0), 1);
  EXPECT_EQ(s.GetLastBeat(0, 0), 5);  // six eighths in 3/4
  for (int b = 0; b <= 1; ++b) {
    EXPECT_EQ(s.barInfo(b).TimeSigNumerator, 3);
    EXPECT_EQ(s.barInfo(b).TimeSigDenominator, 4);
    EXPECT_EQ(s.bar(0, b).Beats.front().Length, kEighth);
  }

  for (const char* bad : {"", "4", "0:4", "4:3", "33:4", "4:64", "a:b", "4:4:4"}) {
    int n = 0, d = 0;
    EXPECT_FALSE(ParseTiming(bad, n, d)) << bad;
  }
  int n = 0, d = 0;
  EXPECT_TRUE(ParseTiming(" 7 : 8 ", n, d));
  EXPECT_EQ(n * 100 + d, 708);
}

TEST(TextImport, EffectLetters) {
  const Score s = Import(
      "--5h7--9p7--5/7--7\\5--7b9--(5)--12~~~--t12--<12>--\n"
      "--------------------------------------------------\n"
      "--------------------------------------------------\n");
  std::vector<const Beat*> beats;
  for (const Beat& b : s.bar(0, 0).Beats) beats.push_back(&b);
  for (int b = 1; b <= s.GetLastBar(0); ++b)
    for (const Beat& x : s.bar(0, b).Beats) beats.push_back(&x);
  ASSERT_GE(beats.size(), 14u);
  auto note = [&](size_t i) -> const NoteSlot& { return beats[i]->Notes[0]; };
  EXPECT_EQ(note(0).Technique, kHammerOnPullOff);
  EXPECT_EQ(note(2).Technique, kHammerOnPullOff);
  EXPECT_EQ(note(4).Technique, kSlideUp);
  EXPECT_EQ(note(6).Technique, kSlideDown);
  EXPECT_EQ(note(5).Technique, kNoTechnique);  // the 7 slid to from 5 does not slide itself
  EXPECT_TRUE(note(8).HasBend);
  EXPECT_TRUE(note(10).GhostNote);
  EXPECT_EQ(note(11).Fret, "12");
  EXPECT_EQ(beats[11]->ChordTechnique, kVibrato);
  EXPECT_EQ(beats[12]->ChordTechnique, kTapping);
  EXPECT_EQ(note(13).Harmonic, kNaturalHarmonic);
}

TEST(TextImport, BassTabTunesTheTrack) {
  const Score s = Import("G|-----5-|\nD|---5---|\nA|-3-----|\nE|-------|\n");
  EXPECT_EQ(s.track(0).Tuning.NumStrings, 4);
  EXPECT_EQ(Frets(s), (Words{"2:3", "1:5", "0:5"}));
  EXPECT_EQ(s.GetNotePitch(0, 0, 0, 2), 36);  // third fret of the A string is C
}

TEST(TextImport, Details) {
  struct Case {
    std::string text;
    TabDetails want;
  };
  const Case cases[] = {
      {"Title: Blue Night\nArtist: The Owls\nAlbum: Late\nTranscribed by: Sam\nEmail: sam@example.org\n",
       {"The Owls", "The Owls", "Sam", "sam@example.org", "Late", "Blue Night"}},
      {"SONG: Rain &amp; Fire\nBAND: Low Tide\nTabbed by: Kim\n",
       {"Low Tide", "Low Tide", "Kim", "", "Unknown Album", "Rain & Fire"}},
      {"Author: Ann\nAuthor/Artist: Bo\n",
       {"Ann", "Bo", "Anonymous", "", "Unknown Album", "Unknown"}},
      {"nothing here\nTitle:   \n",
       {"Unknown Author", "Unknown Artist", "Anonymous", "", "Unknown Album", "Unknown"}},
  };
  for (const Case& c : cases) {
    const TabDetails d = ScanDetails(c.text);
    EXPECT_EQ(d.Author, c.want.Author) << c.text;
    EXPECT_EQ(d.Artist, c.want.Artist) << c.text;
    EXPECT_EQ(d.TabAuthor, c.want.TabAuthor) << c.text;
    EXPECT_EQ(d.Email, c.want.Email) << c.text;
    EXPECT_EQ(d.Album, c.want.Album) << c.text;
    EXPECT_EQ(d.Title, c.want.Title) << c.text;
  }
  AsciiImportOptions o;
  o.GetFileDetails = true;
  const Score s = Import(std::string(cases[0].text) + "---5---\n---5---\n---5---\n", o);
  EXPECT_EQ(s.Notice, "Tabber Email: sam@example.org");
  EXPECT_EQ(s.TabAuthor, "Sam");
}

TEST(TextImport, WebPage) {
  const std::string page =
      "<html><body><pl_res_text='Lesson 4'><pl_plm_addr='http://127.0.0.1/x.plm'>"
      "<pl_res_addr='http://127.0.0.1/'>\n<p class=\"x\">Title: Web Song</p>\n<pre>\n"
      "e|-3-&nbsp;&nbsp;-5-|\nB|-3-&nbsp;&nbsp;-5-|\nG|-3-&nbsp;&nbsp;-5-|\n</pre></body></html>\n";
  AsciiImportOptions o;
  o.FromWeb = true;
  o.GetFileDetails = true;
  Score s;
  const AsciiImportResult r = ASCIIToPLM(s, 0, page, o);
  EXPECT_EQ(r.Markers.ResourceText, "Lesson 4");
  EXPECT_EQ(r.Markers.MusicFileAddress, "http://127.0.0.1/x.plm");
  EXPECT_EQ(s.ResourceAddress, "http://127.0.0.1/");
  EXPECT_EQ(s.Title, "Web Song");
  EXPECT_EQ(Frets(s), (Words{"0:3 1:3 2:3", "0:5 1:5 2:5"}));
  EXPECT_EQ(StripTags("a<b>c</b> <12> x < y"), "ac <12> x < y");
}

// A failed import under the guard leaves the document exactly as it was.
TEST(TextImport, FailuresLeaveTheScore) {
  struct Case {
    std::string text;
    AsciiImportOptions o;
  };
  AsciiImportOptions badTiming;
  badTiming.EnforceTiming = true;
  badTiming.Timing = "4/4";
  const Case cases[] = {{"just words\n\n", {}},
                        {"-------\n-------\n-------\n", {}},
                        {"--1--\n--1--\n--1--\n", badTiming},
                        {"", {}}};
  for (const Case& c : cases) {
    Document doc;
    doc.score.noteMut(0, 0, 0, 0).Fret = "9";
    const Score before = doc.score;
    EXPECT_THROW(Transact(doc, [&] { ASCIIToPLM(doc.score, 0, c.text, c.o); }), ScoreError) << c.text;
    EXPECT_EQ(doc.score, before);
  }
  Score drums;
  drums.Tracks[0].DrumTrack = true;
  EXPECT_THROW(ASCIIToPLM(drums, 0, "--1--\n--1--\n--1--\n", {}), ScoreError);
}

TEST(TextImport, DecodesBytes) {
  EXPECT_EQ(DecodeTabText("\xEF\xBB\xBFTitle"), "Title");
  EXPECT_EQ(DecodeTabText("Caf\xC3\xA9"), "Caf\xC3\xA9");
  EXPECT_EQ(DecodeTabText("Caf\xE9"), "Caf\xC3\xA9");
}

// Tabs written the way people post them: string names, bar lines, chord names and lyrics,
// effect letters, several staves, Windows line ends, a bass and a seven-string.
TEST(TextImport, TabsAsPeoplePostThem) {
  struct Case {
    const char* file;
    const char* title;
    const char* artist;
    int strings;
    Words firstBeats;
    size_t beats;
  };
  const Case cases[] = {
      {"01_basic_riff.txt", "Gravel Lane", "The Hollow Pines", 6,
       {"5:0", "3:2 4:2 5:0", "3:2 4:2 5:0", "4:5 5:3"}, 8},
      {"02_chords_and_lyrics.txt", "Harbour Lights", "Saltwater Choir", 6,
       {"0:3 1:0 2:0 3:0 4:2 5:3", "0:3 1:0 2:0 3:0 4:2 5:3", "0:2 1:3 2:2 3:0"}, 8},
      {"03_legato_letters.txt", "Quicksilver", "Vela Run", 6,
       {"3:7", "3:9", "2:4", "2:6", "1:5", "1:8", "0:5", "0:7 3:7", "0:5 3:5"}, 9},
      {"04_two_digit_frets.txt", "High Wire", "Ada Lune", 6,
       {"0:12", "0:15", "0:17", "0:15", "0:12", "1:13"}, 6},
      {"05_several_staves.txt", "Long Road", "North Gate", 6, {"0:0", "1:1", "2:2", "0:0"}, 18},
      {"06_windows_line_ends.txt", "Window Frame", "Glass Street", 6,
       {"2:2", "1:1", "0:0", "1:1", "2:2"}, 5},
      {"07_bass.txt", "Low Tide Groove", "The Undertow", 4,
       {"3:3", "2:5", "2:7", "1:5", "1:7", "3:3"}, 6},
      {"08_palm_mutes_and_dead_notes.txt", "Chug", "Iron Kettle", 6,
       {"3:2 4:2 5:0", "3:x 4:x 5:x", "3:2 4:2 5:0"}, 10},
      {"09_no_string_names.txt", "Plain Lines", "Pencil Box", 6, {"2:0", "1:0", "0:0", "1:0", "2:0"}, 5},
      {"10_seven_string_and_harmonics.txt", "Deep Seven", "Seven Stars", 7,
       {"6:0", "6:0", "0:12 1:12 6:5"}, 3},
  };
  const std::filesystem::path folder = std::filesystem::path(PLECTARO_SOURCE_DIR) / "tests" / "data" / "tabs";
  AsciiImportOptions o;
  o.GetFileDetails = true;
  for (const Case& c : cases) {
    const Score s = Import(DecodeTabText(ReadWholeFile(folder / c.file)), o);
    EXPECT_EQ(s.Title, c.title) << c.file;
    EXPECT_EQ(s.Artist, c.artist) << c.file;
    EXPECT_EQ(s.track(0).Tuning.NumStrings, c.strings) << c.file;
    const Words frets = Frets(s);
    EXPECT_EQ(frets.size(), c.beats) << c.file;
    EXPECT_EQ(Words(frets.begin(), frets.begin() + static_cast<long>(std::min(frets.size(), c.firstBeats.size()))),
              c.firstBeats)
        << c.file;
  }
}

// Every track of the demo songs goes out as text and comes back with the same frets on the
// same strings, in the same order. Lengths come back from the columns, so bars are rebuilt by
// time and rests are lost: that is what text cannot carry.
TEST(TextImport, DemoTracksRoundTrip) {
  const std::filesystem::path folder = std::filesystem::path(PLECTARO_SOURCE_DIR) / "data" / "examples";
  int tracks = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".plm") continue;
    MemorySettingsStore settings;
    Document doc;
    ASSERT_EQ(OpenMusicFile(doc, entry.path(), settings), OpenOutcome::Opened) << entry.path();
    for (int t = 0; t <= doc.score.LastTrack(); ++t) {
      if (doc.score.track(t).DrumTrack) continue;
      const Words frets = Frets(doc.score, t);
      if (frets.empty()) continue;
      ++tracks;
      const std::string text = ExportASCIIText(doc.score, t, {true, 60});
      Score back;
      back.Tracks[0].Tuning = doc.score.track(t).Tuning;
      ASCIIToPLM(back, 0, DecodeTabText(text), {});
      EXPECT_EQ(Frets(back), frets) << entry.path().filename() << " track " << t + 1;
    }
  }
  EXPECT_GE(tracks, 3);
}

}  // namespace
}  // namespace plectaro
