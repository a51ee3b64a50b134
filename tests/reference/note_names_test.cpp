#include "reference/note_names.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace plectaro {
namespace {

TEST(NoteNames, HighStringOffersAnOctaveEitherSide) {
  const std::vector<std::string> expected = {
      "-E", "-F", "-F#", "-G", "-G#", "-A", "-A#", "-B", "-C", "-C#", "-D", "-D#", "E",
      "+F", "+F#", "+G", "+G#", "+A", "+A#", "+B", "+C", "+C#", "+D", "+D#", "+E"};
  EXPECT_EQ(NoteNamesOfString(1), expected);
}

TEST(NoteNames, NamesAndPitchesOnEachString) {
  struct Case {
    int string;
    int pitch;
    const char* name;
  };
  const Case cases[] = {
      {1, 64, "E"},   {1, 52, "-E"},  {1, 76, "+E"},  {2, 59, "B"},  {3, 55, "G"},
      {4, 50, "D"},   {5, 45, "A"},   {6, 40, "E"},   {6, 38, "-D"}, {6, 52, "+E"},
      {7, 35, "B"},   {7, 23, "-B"},  {7, 36, "+C"},  {5, 46, "+A#"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.name) + " on string " + std::to_string(c.string));
    EXPECT_EQ(PitchToNoteName(c.string, c.pitch), c.name);
    EXPECT_EQ(NoteNameToPitch(c.string, c.name), c.pitch);
  }
}

TEST(NoteNames, EveryNameOfEveryStringRoundTrips) {
  for (int s = 1; s <= 7; ++s) {
    const std::vector<std::string> names = NoteNamesOfString(s);
    ASSERT_EQ(names.size(), 25u);
    for (size_t i = 0; i < names.size(); ++i) {
      const int pitch = NoteNameToPitch(s, names[i]);
      EXPECT_EQ(pitch, StandardPitchOfString(s) + static_cast<int>(i) - 12) << names[i];
      EXPECT_EQ(PitchToNoteName(s, pitch), names[i]);
    }
  }
}

TEST(NoteNames, OutsideTheRangeGivesNothing) {
  EXPECT_EQ(PitchToNoteName(1, 51), "");
  EXPECT_EQ(PitchToNoteName(1, 77), "");
  EXPECT_EQ(PitchToNoteName(0, 64), "");
  EXPECT_EQ(PitchToNoteName(8, 64), "");
  EXPECT_EQ(NoteNameToPitch(1, "Db"), 0);   // flats are never used
  EXPECT_EQ(NoteNameToPitch(1, "+E#"), 0);
  EXPECT_EQ(NoteNameToPitch(1, ""), 0);
  EXPECT_EQ(NoteNameToPitch(9, "E"), 0);
  EXPECT_EQ(NoteNameToPitch(1, " +F "), 65);  // blanks from a text box are forgiven
}

}  // namespace
}  // namespace plectaro
