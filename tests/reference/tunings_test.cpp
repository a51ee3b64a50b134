#include "reference/tunings.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>

#include "score/file_io.h"

namespace plectaro {
namespace {

namespace fs = std::filesystem;

class TuningLibraryTest : public ::testing::Test {
 protected:
  TuningLibraryTest() {
    std::random_device rd;
    root_ = fs::temp_directory_path() / ("plectaro-tunings-" + std::to_string(rd()) + std::to_string(rd()));
    fs::create_directories(root_);
  }
  ~TuningLibraryTest() override {
    std::error_code ec;
    fs::remove_all(root_, ec);
  }
  fs::path root_;
};

TEST(TuningText, WritesBlankedNumbersFromString7Down) {
  TuningData dropD;
  dropD.StringNote[5] = 10;  // string 6
  EXPECT_EQ(WriteTuningText(dropD), " 6 \r\n 12 \r\n 10 \r\n 12 \r\n 12 \r\n 12 \r\n 12 \r\n 12 \r\n");
  EXPECT_EQ(dropD.pitch(6), 38);
  EXPECT_EQ(ReadTuningText(WriteTuningText(dropD)), dropD);
}

TEST(TuningText, ReaderAcceptsBothNumberFormsAndCutsTheCount) {
  const TuningData t = ReadTuningText("6.7\n12\n 13 \n12\n12\n12\n12\n11");
  EXPECT_EQ(t.NumStrings, 6);
  EXPECT_EQ(t.StringNote[5], 13);  // string 6
  EXPECT_EQ(t.StringNote[0], 11);  // string 1
}

TEST(TuningText, DamagedFilesAreRefusedWithAReason) {
  const char* bad[] = {
      "",                                      // empty
      " 6 \r\n 12 \r\n 12 \r\n",               // short
      " 0 \r\n12\n12\n12\n12\n12\n12\n12\n",   // no strings
      " 8 \r\n12\n12\n12\n12\n12\n12\n12\n",   // too many strings
      " 6 \r\n12\n12\n12\n25\n12\n12\n12\n",   // beyond the top note
      " 6 \r\n12\n12\n12\n12\n12\n12\n-1\n",   // below the lowest note
  };
  for (const char* text : bad) {
    SCOPED_TRACE(text);
    EXPECT_THROW(ReadTuningText(text), TuningError);
  }
}

TEST(TuningText, TrackOffsetsConvertBothWays) {
  TuningInfo info;
  info.NumStrings = 5;
  info.Offset = {0, 0, 0, -2, -2, -2, 0};
  const TuningData t = FromTuningInfo(info);
  EXPECT_EQ(t.NumStrings, 5);
  EXPECT_EQ(t.pitch(4), 48);
  EXPECT_EQ(ToTuningInfo(t), info);
}

TEST(TuningText, TypedNamesRunFromTheLowestString) {
  struct Case {
    const char* text;
    int strings;
    std::array<int16_t, kMaxStrings> offsets;  // string 1 first
  };
  const Case cases[] = {
      {"E A D G B E", 6, {0, 0, 0, 0, 0, 0, 0}},
      {"D A D G B E", 6, {0, 0, 0, 0, 0, -2, 0}},
      {"d,a,d,g,a,d", 6, {-2, -2, 0, 0, 0, -2, 0}},  // Open D, any case, commas
      {"Eb Ab Db Gb Bb Eb", 6, {-1, -1, -1, -1, -1, -1, 0}},
      {"B E A D G B E", 7, {0, 0, 0, 0, 0, 0, 0}},
      {"-B -E -A -D -G", 5, {-9, -9, -10, -10, -10, 0, 0}},  // a five-string bass
      {"A#", 1, {-6, 0, 0, 0, 0, 0, 0}},  // a tritone either way from E: the lower is taken
      {"+A#", 1, {6, 0, 0, 0, 0, 0, 0}},
      {"E1 A1 D2 G2", 4, {-21, -21, -22, -22, 0, 0, 0}},  // a bass, by octave numbers
      {"B0 E1 A1 D2 G2 C3", 6, {-16, -16, -17, -17, -17, -17, 0}},
      {"Cb4", 1, {-5, 0, 0, 0, 0, 0, 0}},  // B3: a flat below C belongs to the octave under it
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const auto info = ParseTuningNames(c.text);
    ASSERT_TRUE(info.has_value());
    EXPECT_EQ(info->NumStrings, c.strings);
    EXPECT_EQ(info->Offset, c.offsets);
  }
  for (const char* bad : {"", "E A D G B E A D", "H A D G B E", "E A D G B E#x", "+E+"})
    EXPECT_FALSE(ParseTuningNames(bad).has_value()) << bad;
}

TEST(TuningNames, OffsetsBeyondAnOctaveAreNamedWithTheirOctave) {
  struct Case {
    int string, offset;
    const char* name;
  } const cases[] = {
      {1, 0, "E"}, {6, -2, "-D"}, {1, 12, "+E"}, {1, -12, "-E"},
      {1, -21, "G2"}, {4, -22, "E1"}, {5, -22, "B0"}, {1, 13, "F5"},
      {8, 0, ""}, {1, -70, ""},  // no such string; below pitch 0
  };
  for (const Case& c : cases) EXPECT_EQ(OffsetName(c.string, c.offset), c.name) << c.string << " " << c.offset;
  // The bass tunings name what a bass player tunes to.
  const TuningInfo five = BassTuning(5);
  EXPECT_EQ(five.NumStrings, 5);
  EXPECT_EQ(OffsetName(5, five.Offset[4]), "B0");
  EXPECT_EQ(OffsetName(1, five.Offset[0]), "G2");
  EXPECT_EQ(BassTuning(3), TuningInfo{.NumStrings = 3});
}

TEST_F(TuningLibraryTest, FirstRunWritesTheBuiltInTuningsOnce) {
  TuningLibrary lib(root_);
  ASSERT_TRUE(lib.createAll());
  EXPECT_EQ(lib.names().size(), 22u);  // two names stand twice in the list
  // The second "Open F" replaced the first.
  const TuningData openF = lib.load("Open F");
  EXPECT_EQ(openF.StringNote[5], 13);
  EXPECT_EQ(openF.StringNote[4], 12);
  EXPECT_EQ(openF.StringNote[0], 13);
  EXPECT_EQ(lib.load("Nashville").pitch(3), 67);  // string 3 an octave up
  EXPECT_EQ(lib.load("Dropped D").pitch(6), 38);

  // The user's changes survive the next start.
  lib.remove("Open G");
  TuningData mine;
  mine.StringNote[0] = 10;
  lib.save("Mine", mine);
  EXPECT_FALSE(lib.createAll());
  EXPECT_FALSE(lib.exists("Open G"));
  EXPECT_EQ(lib.load("Mine"), mine);

  lib.restore();
  EXPECT_TRUE(lib.exists("Open G"));
  EXPECT_FALSE(lib.exists("Mine"));
}

TEST_F(TuningLibraryTest, AnExistingEmptyFolderStaysEmpty) {
  fs::create_directories(root_ / "My Tunings");
  TuningLibrary lib(root_);
  EXPECT_FALSE(lib.createAll());
  EXPECT_TRUE(lib.names().empty());
}

TEST_F(TuningLibraryTest, BadNamesAndDamagedFilesGiveTuningErrors) {
  TuningLibrary lib(root_);
  lib.createAll();
  for (const char* name : {"", "..", "a/b", " lead"}) {
    SCOPED_TRACE(name);
    EXPECT_THROW(lib.save(name, TuningData{}), TuningError);
    EXPECT_FALSE(lib.exists(name));
  }
  EXPECT_THROW(lib.load("No Such Tuning"), TuningError);
  WriteFileAtomically(lib.folder() / "Broken", "6\n1\n");
  EXPECT_THROW(lib.load("Broken"), TuningError);
}

}  // namespace
}  // namespace plectaro
