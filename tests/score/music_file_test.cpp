#include "score/music_file.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "score/cipher.h"
#include "score/new_score.h"
#include "score_builders.h"

namespace plectaro {
namespace {

namespace fs = std::filesystem;

class TempDir {
 public:
  TempDir() {
    std::string t = (fs::temp_directory_path() / "plectaro-test-XXXXXX").string();
    path_ = ::mkdtemp(t.data());
  }
  ~TempDir() {
    std::error_code ec;
    fs::remove_all(path_, ec);
  }
  fs::path operator/(const std::string& name) const { return path_ / name; }

 private:
  fs::path path_;
};

void writeBytes(const fs::path& p, const std::string& bytes) {
  std::ofstream(p, std::ios::binary) << bytes;
}

std::string hex(const std::string& s) {
  static const char* d = "0123456789abcdef";
  std::string h;
  for (unsigned char c : s) h += {d[c >> 4], d[c & 15]};
  return h;
}

Score reload(const Score& s) {
  Score back;
  EXPECT_EQ(ReadMusicText(WriteMusicText(s), back), ReadOutcome::Ok);
  return back;
}

TEST(Cipher, CheckValueOfTheVersionLine) {
  EXPECT_EQ(hex(CipherBytes("Plectaro 4.0\r\n")), "bfa0661654a3da3cb6477a0b2ecb");
  EXPECT_EQ(CipherBytes(CipherBytes("any bytes \x01\xff")), "any bytes \x01\xff");
}

TEST(MusicFile, WorkedExampleRiffIsByteExact) {
  Score s = testing::BlankScore();
  s.Title = "Riff";
  s.Tempo = 120;
  s.SetBeatCount(0, 0, 1);
  s.beatMut(0, 0, 0).Length = kHalf;
  s.beatMut(0, 0, 1).Length = kHalf;
  s.noteMut(0, 0, 0, 0).Fret = "0";

  std::string want = "Plectaro 4.0\r\n";
  want += "<\xB1><\xAA" "120><\xA6Riff><\xB3" "100>";
  want += "<#FC0|False\\False/Times New Roman|19\\False/False><#NC0|False\\False/Arial|8\\False/False><#LC0>";
  want += "<\xB8" "0><\x90" "0><\xB5" "0|0/1>";
  want += "<\x9E\x9E" "4><\xBA" "4>";
  want += "<\xB2" "TA" "\xB2" "0><\xB2" "TR" "\xB2" "0>";
  for (int str = 0; str < 7; ++str)
    for (const char* d : {"dbf", "dbo", "dbs", "dbx", "dlc", "dlf", "dlo", "dlr", "dls", "dlt", "dlx", "dro"})
      want += std::string("<f.t.") + d + "0\\" + std::to_string(str) + "|0>";
  want += "<f.t.cap:0><f.t.cvo:30><f.t.cha:0><f.t.ech:1><f.t.ins:24><f.t.inn:A. Guitar (Nylon)>"
          "<f.t.nam:Track 1><f.t.str:6>";
  for (int i = 0; i < 7; ++i) want += "<f.t.tu" + std::to_string(i) + ":0>";
  want += "<f.t.vov:50>";
  want += "<ki:0\\0/0><km:0\\0/False>";
  want += "<l:1><p0|0\\0/0:0|0>";
  want += "<l:1>";
  want += "\r\n";

  const std::string got = WriteMusicText(s);
  EXPECT_EQ(got, want);
  EXPECT_EQ(reload(s), s);
}

TEST(MusicFile, EveryTagSurvivesARoundTrip) {
  const Score s = testing::EveryTagScore();
  const std::string text = WriteMusicText(s);
  Score back = reload(s);
  // The resource fields are written but never read back; nothing else may change.
  EXPECT_EQ(back, s);
  EXPECT_EQ(WriteMusicText(back), text);
}

TEST(MusicFile, ResourceFieldsAreWrittenButNotReadBack) {
  Score s;
  s.ResourceAddress = "http://example.invalid/tab";
  s.ResourceText = "a page";
  const std::string text = WriteMusicText(s);
  EXPECT_NE(text.find("<RA://http://example.invalid/tab>"), std::string::npos);
  EXPECT_NE(text.find("<RT://a page>"), std::string::npos);
  Score back = reload(s);
  EXPECT_EQ(back.ResourceAddress, "");
  EXPECT_EQ(back.ResourceText, "");
}

TEST(MusicFile, EveryByteOfATextFieldSurvives) {
  std::string bytes;
  for (int b = 1; b < 256; ++b)
    if (b != '<' && b != '>') bytes += static_cast<char>(b);
  // Build the plain text by hand so the field holds raw file bytes, then load and save.
  Score s;
  std::string text = WriteMusicText(s);
  const std::string title = "<\xA6Untitled>";
  text.replace(text.find(title), title.size(), "<\xA6" + bytes + ">");
  Score loaded;
  ASSERT_EQ(ReadMusicText(text, loaded), ReadOutcome::Ok);
  EXPECT_EQ(WriteMusicText(loaded), text);
}

TEST(MusicFile, IdenticalBarsAreStoredAsReferences) {
  Score s;
  s.SetBarCount(5);
  for (int b : {1, 3, 5}) testing::SetFrets(s, 0, b, 0, {"3", "", "5"});
  testing::SetFrets(s, 0, 2, 0, {"7"});
  s.barMut(0, 4).KeySignature = 2;  // same beats as bar 0, different key: not a copy
  const std::string text = WriteMusicText(s);
  EXPECT_NE(text.find("<TB=0\\3|1>"), std::string::npos);
  EXPECT_NE(text.find("<TB=0\\5|3>"), std::string::npos);
  EXPECT_EQ(text.find("<TB=0\\4|"), std::string::npos);
  EXPECT_EQ(text.find("<TB=0\\1|"), std::string::npos);
  EXPECT_EQ(reload(s), s);

  // Bars that share one record in memory (as a load leaves them) write the same stream as
  // bars that only look alike.
  Score shared = s;
  shared.Tracks[0].Bars[3] = shared.Tracks[0].Bars[1];
  shared.Tracks[0].Bars[4] = shared.Tracks[0].Bars[3];
  shared.Tracks[0].Bars[5] = shared.Tracks[0].Bars[4];
  Score alike = s;
  for (int b : {3, 4, 5}) alike.barMut(0, b) = alike.bar(0, 1);
  for (Score* x : {&shared, &alike}) {
    x->SetBarCount(6);
    x->barMut(0, 6) = x->bar(0, 1);  // alike again, after the run of shared bars
  }
  EXPECT_NE(WriteMusicText(alike).find("<TB=0\\6|5>"), std::string::npos);
  EXPECT_EQ(WriteMusicText(shared), WriteMusicText(alike));
}

TEST(MusicFile, ReaderQuirks) {
  struct Case {
    const char* name;
    std::function<void(Score&)> edit;
    std::function<void(const Score&)> check;
  };
  const Case cases[] = {
      {"a '>' cuts the title", [](Score& s) { s.Title = "AC>DC"; },
       [](const Score& s) { EXPECT_EQ(s.Title, "AC"); }},
      {"a blank title is not written and the new-score title stands",
       [](Score& s) { s.Title = "   "; }, [](const Score& s) { EXPECT_EQ(s.Title, "Untitled"); }},
      {"a text of blanks on a beat is not written", [](Score& s) { s.beatMut(0, 0, 0).Text = "   "; },
       [](const Score& s) { EXPECT_EQ(s.beat(0, 0, 0).Text, ""); }},
      {"a '<' in a field splits the tag; the rest is skipped",
       [](Score& s) {
         s.Notice = "a<b";
         s.Title = "kept";
       },
       [](const Score& s) {
         EXPECT_EQ(s.Notice, "a");
         EXPECT_EQ(s.Title, "kept");
       }},
      {"notes above the string count are not written",
       [](Score& s) {
         s.trackMut(0).Tuning.NumStrings = 4;
         testing::SetFrets(s, 0, 0, 0, {"1", "2", "3", "4", "5", "6", "7"});
       },
       [](const Score& s) {
         EXPECT_EQ(s.note(0, 0, 0, 3).Fret, "4");
         EXPECT_EQ(s.note(0, 0, 0, 4).Fret, "");
         EXPECT_EQ(s.note(0, 0, 0, 6).Fret, "");
       }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Score s;
    c.edit(s);
    c.check(reload(s));
  }
}

TEST(MusicFile, FourStringTrackStillWritesSevenTuningsAndAllDrumTags) {
  Score s;
  s.trackMut(0).Tuning.NumStrings = 4;
  const std::string text = WriteMusicText(s);
  size_t drumTags = 0;
  for (size_t p = text.find("<f.t.d"); p != std::string::npos; p = text.find("<f.t.d", p + 1)) ++drumTags;
  EXPECT_EQ(drumTags, 84u);
  EXPECT_NE(text.find("<f.t.tu6:0>"), std::string::npos);
}

TEST(MusicFile, UnknownTagsAndGarbageAreSkipped) {
  Score s;
  s.Title = "Song";
  std::string text = WriteMusicText(s);
  text.insert(text.find("<\xA6"), "<zzz:1|2><><<<l:><p9|9\\9/9:9|9><TB=7\\7|7>");
  Score back;
  ASSERT_EQ(ReadMusicText(text, back), ReadOutcome::Ok);
  EXPECT_EQ(back.Title, "Song");
  EXPECT_EQ(back.Tracks.size(), 1u);
}

TEST(MusicFile, TagsNamingPlacesTheFileNeverSizedAreSkipped) {
  // Each set of tags names a track, bar, beat or string beyond what the file sized; the Score read is
  // the one read without them, whatever the kind of tag.
  Score s;
  s.Title = "Song";
  testing::SetFrets(s, 0, 0, 0, {"3", "", "5"});
  const std::string clean = WriteMusicText(s);
  Score expected;
  ASSERT_EQ(ReadMusicText(clean, expected), ReadOutcome::Ok);
  const char* const cases[] = {
      "<f.t.dbf5\\0|3><f.t.dlx9\\2|1>",                 // drum maps of missing tracks
      "<f.t.cap:4><f.t.str:4><f.t.vov:50><f.t.cap:7>",    // header tags past the last track
      "<trm:0\\9|0\\1/dip|0\\0/1\\2>",                  // tremolo bar on a missing bar
      "<dot:0|0\\7><tpt:3|0:0\\3><txt:0|0/9\\x><goto:0|0\\8/a>",  // beat tags, missing beats
      "<p0|0\\5/2:7|0><bnd:0|0\\5/2:0\\1/2\\3/4\\5/6\\7/8\\9/0\\1/2\\3/4\\5/6:0:1>",  // notes
      "<\x93" "9|3><\x94" "9><\x99\x99" "9><\x9D" "-1>",                    // marks of missing bars
      "<\xD1\xD1" "4><\xB2" "BA\xB2" "4><\xD2\xD2" "19|words><\xD2\xD2" "70|x>",  // track flags, lyrics
      "<ki:0\\9/2><km:4\\0/1><\xB5" "0|9/3><\xB5" "5|0/3>",  // keys and sizes of missing bars
      "<acc:0|0\\0/9><gho:0|0\\0/-1><har:0|0\\0:8/1><f.t.dbf5\\0|9>",  // strings past the last
  };
  for (const char* garbage : cases) {
    SCOPED_TRACE(garbage);
    std::string text = clean;
    text.insert(text.rfind('<'), garbage);
    Score back;
    ASSERT_EQ(ReadMusicText(text, back), ReadOutcome::Ok);
    EXPECT_TRUE(back == expected);
  }
}

TEST(MusicFile, SizeTagsAppliedInFileOrder) {
  // Sizes, copies and shrinking in orders the writer never uses, each after the last bar: the
  // bars must come out as if every tag had been applied the moment it was read.
  Score s;
  s.SetBarCount(2);
  testing::SetFrets(s, 0, 0, 0, {"3"});
  testing::SetFrets(s, 0, 1, 0, {"5"});
  const std::string clean = WriteMusicText(s);
  struct Case {
    const char* tail;
    int lastBeatOf[3];
    const char* fretOfBar2;
  };
  const Case cases[] = {
      {"<\xB5" "0|0/3>", {3, 0, 0}, ""},                     // a bar grown after its beats
      {"<\xB5" "0|2/5><\x90" "0><\x90" "2>", {0, 0, 0}, ""},  // sized, dropped, grown anew
      {"<\xB5" "0|1/5><TB=0\\2|1>", {0, 5, 5}, "5"},        // a copy of a bar just grown
      {"<\xB5" "0|2/5><TB=0\\2|0>", {0, 0, 0}, "3"},        // a size the copy replaces
      {"<TB=0\\2|1><\xB5" "0|2/4>", {0, 0, 4}, "5"},        // a copy grown afterwards
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.tail);
    std::string text = clean;
    text.insert(text.size() - 2, c.tail);
    Score back;
    ReadMusicText(text, back);
    for (int b = 0; b < 3; ++b) EXPECT_EQ(back.GetLastBeat(0, b), c.lastBeatOf[b]) << "bar " << b;
    EXPECT_EQ(back.note(0, 2, 0, 0).Fret, c.fretOfBar2);
  }
}

TEST(MusicFile, VersionLineCheck) {
  const std::string body = WriteMusicText(Score()).substr(kVersionLine.size());
  for (const char* line : {"Plectaro 4.0", "Plectaro 4.1", "Plectaro 9.9"}) {
    Score s;
    EXPECT_EQ(ReadMusicText(line + body, s), ReadOutcome::Ok) << line;
  }
  for (const char* line : {"Plectaro 3.6x", "Plectar 4.0", "", "abc", "\x89PNG"}) {
    Score s;
    s.Title = "untouched";
    EXPECT_EQ(ReadMusicText(line + body, s), ReadOutcome::WrongFile) << line;
    EXPECT_EQ(s.Title, "untouched");
  }
}

TEST(MusicFile, DeclaringMoreThanTheFileHoldsIsAnError) {
  // Tracks of a single bar cost little each, but tens of thousands of them from a few bytes would
  // come back out of the writer as tens of megabytes.
  for (const char* tail : {"<\xB8" "30000><\x90" "30000>", "<\xB8" "32767>"}) {
    SCOPED_TRACE(tail);
    Score s;
    std::string text = WriteMusicText(s);
    text += tail;
    Score back;
    EXPECT_THROW(ReadMusicText(text, back), FileError);
  }
}

class MusicFileOnDisk : public ::testing::Test {
 protected:
  TempDir dir;
  MemorySettingsStore settings;
};

TEST_F(MusicFileOnDisk, SavedFileIsAsLongAsItsPlainTextAndOpensAgain) {
  Score s = testing::EveryTagScore();
  const fs::path p = dir / "song.plm";
  SaveMusicFile(s, p);
  EXPECT_EQ(fs::file_size(p), WriteMusicText(s).size());

  Document doc;
  ASSERT_EQ(OpenMusicFile(doc, p, settings), OpenOutcome::Opened);
  EXPECT_EQ(doc.score.CurrentFileName, p.string());
  EXPECT_FALSE(doc.PasswordEntered);
  s.CurrentFileName = p.string();
  EXPECT_EQ(doc.score, s);
}

// Large files are read and written in pieces. Texts ending just before, on and after the edges
// of the pieces, tags cut by them, and the closing CR LF split between two pieces must all read
// as the whole text does, from memory and from disk; cut short, they must still be damaged.
TEST_F(MusicFileOnDisk, LargeFilesReadAcrossThePiecesTheyAreReadIn) {
  Score big = testing::EveryTagScore();
  big.SetBarCount(299);
  for (int b = 1; b < 300; ++b)
    for (int k = 0; k < 6; ++k) {
      big.SetBeatCount(0, b, 5);
      testing::SetFrets(big, 0, b, k, {std::to_string(b % 24), std::to_string(k), "7", "x", "12", std::to_string(b / 24)});
    }
  big.Notes = "n";
  const size_t bare = WriteMusicText(big).size() - 1;
  ASSERT_LT(bare + 8, kMusicReadPiece);
  for (const size_t length : {kMusicReadPiece - 1, kMusicReadPiece, kMusicReadPiece + 1, kMusicReadPiece + 2,
                              2 * kMusicReadPiece + 1}) {
    SCOPED_TRACE(length);
    // The notes field pads the text to the length wanted.
    Score s = big;
    s.Notes.assign(length - bare, 'n');
    const std::string text = WriteMusicText(s);
    ASSERT_EQ(text.size(), length);
    Score back;
    ASSERT_EQ(ReadMusicText(text, back), ReadOutcome::Ok);
    EXPECT_EQ(back, s);

    const fs::path p = dir / "big.plm";
    SaveMusicFile(s, p);
    EXPECT_EQ(ReadWholeFile(p), CipherBytes(text));
    Document doc;
    ASSERT_EQ(OpenMusicFile(doc, p, settings), OpenOutcome::Opened);
    s.CurrentFileName = p.string();
    EXPECT_EQ(doc.score, s);

    for (const size_t cut : {length - 1, length - 2, kMusicReadPiece, kMusicReadPiece - 1}) {
      if (cut >= length) continue;
      writeBytes(p, CipherBytes(std::string_view(text).substr(0, cut)));
      EXPECT_EQ(OpenMusicFile(doc, p, settings), OpenOutcome::Damaged) << "cut at " << cut;
    }
  }
}

TEST_F(MusicFileOnDisk, FilesThatAreNotMusicFilesGiveANewScore) {
  SaveMusicFile(Score(), dir / "good.plm");
  const std::string good = ReadWholeFile(dir / "good.plm");
  const std::pair<const char*, std::string> cases[] = {
      {"renamed picture", std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16)},
      {"empty", ""},
      {"truncated inside the version line", good.substr(0, 5)},
      {"old plain-text file", "Plectaro 3.6\r\n<title>\r\n"},
  };
  for (const auto& [name, bytes] : cases) {
    SCOPED_TRACE(name);
    writeBytes(dir / "x.plm", bytes);
    Document doc;
    doc.score.Title = "was open";
    doc.score.CurrentFileName = "/somewhere/was.plm";
    EXPECT_EQ(OpenMusicFile(doc, dir / "x.plm", settings), OpenOutcome::WrongFile);
    EXPECT_EQ(doc.score.Title, "Untitled");
    EXPECT_EQ(doc.score.CurrentFileName, "");
  }
}

TEST_F(MusicFileOnDisk, TheDefaultsOfNewScoresFillWhatTheFileDoesNotSay) {
  settings.SaveSetting(kDefaultInfoSection, "3", "Default Author");
  SaveMusicFile(Score(), dir / "plain.plm");
  Document doc;
  ASSERT_EQ(OpenMusicFile(doc, dir / "plain.plm", settings), OpenOutcome::Opened);
  EXPECT_EQ(doc.score.Author, "Default Author");
}

TEST_F(MusicFileOnDisk, FailuresLeaveDocumentAndFileAlone) {
  Document doc;
  doc.score.Title = "keep me";
  EXPECT_THROW(OpenMusicFile(doc, dir / "missing.plm", settings), FileError);
  EXPECT_EQ(doc.score.Title, "keep me");

  // A save that cannot complete (the target is a folder) leaves what was there.
  fs::create_directory(dir / "taken.plm");
  writeBytes(dir / "taken.plm" / "inside", "x");
  EXPECT_THROW(SaveMusicFile(doc.score, dir / "taken.plm"), FileError);
  EXPECT_TRUE(fs::exists(dir / "taken.plm" / "inside"));
  EXPECT_THROW(SaveMusicFile(doc.score, dir / "no-such-folder" / "a.plm"), FileError);
  // No temporary files are left behind.
  size_t entries = 0;
  for ([[maybe_unused]] const auto& e : fs::directory_iterator(dir / "")) ++entries;
  EXPECT_EQ(entries, 1u);
}

TEST(DemoSongs, LoadAndSaveGiveTheSameBytes) {
  const fs::path folder = fs::path(PLECTARO_SOURCE_DIR) / "data" / "examples";
  int seen = 0;
  for (const auto& e : fs::directory_iterator(folder)) {
    if (e.path().extension() != ".plm") continue;
    ++seen;
    SCOPED_TRACE(e.path().filename().string());
    const std::string plain = CipherBytes(ReadWholeFile(e.path()));
    Score s;
    ASSERT_EQ(ReadMusicText(plain, s), ReadOutcome::Ok);
    EXPECT_EQ(WriteMusicText(s), plain);
  }
  EXPECT_GE(seen, 3);
}

}  // namespace
}  // namespace plectaro
