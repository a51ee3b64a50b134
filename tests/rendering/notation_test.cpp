// Pitch to staff height, keys and accidentals.
#include <gtest/gtest.h>

#include "rendering/notation.h"

namespace plectaro {
namespace {

TEST(StaffPosition, TableValuesFlatsAndOutsiders) {
  struct Case {
    int pitch;
    bool flat;
    int position;
  };
  const Case cases[] = {
      {64, false, -3}, {64, true, -3},   // open high E
      {61, false, 4},  {61, true, 1},    // C sharp at C, D flat at D
      {57, false, 11}, {59, false, 8},   // the single step of 3 between A and B
      {23, false, 80}, {105, false, -87},
      {22, false, 21}, {106, false, 21}, {-5, false, 21}, {1000, false, 21},
  };
  for (const Case& c : cases) EXPECT_EQ(StaffPosition(c.pitch, c.flat), c.position) << c.pitch << " " << c.flat;
}

TEST(Keys, FlatCodesAndPitchClasses) {
  for (int code = -10; code <= 16; ++code) {
    const bool flat = (code >= 8 && code <= 14) || (code >= -7 && code <= -2);
    EXPECT_EQ(KeyUsesFlats(code), flat) << code;
  }
  EXPECT_TRUE(SamePitchClass(0, 120));
  EXPECT_TRUE(SamePitchClass(5, -7));
  EXPECT_FALSE(SamePitchClass(0, 132));  // only multiples up to 120 are tried
  EXPECT_FALSE(SamePitchClass(60, 61));
  EXPECT_TRUE(PitchInKey(58, 8));    // B flat in one flat
  EXPECT_FALSE(PitchInKey(51, 8));   // E flat needs two
  EXPECT_TRUE(PitchInKey(51, 9));
  EXPECT_TRUE(PitchInKey(54, 1));    // F sharp in one sharp
  EXPECT_TRUE(PitchInKey(60, 7));   // B sharp, the seventh sharp
  EXPECT_FALSE(PitchInKey(60, 6));
}

TEST(Accidentals, ByKey) {
  struct Case {
    int pitch;
    int key;
    Accidental expected;
  };
  const Case cases[] = {
      {61, 0, Accidental::Sharp},   {61, 8, Accidental::Flat},     // C sharp / D flat
      {66, 1, Accidental::None},    {65, 1, Accidental::Natural},  // F sharp / F in G major
      {58, 8, Accidental::None},    {59, 8, Accidental::Natural},  // B flat / B in F major
      {64, 0, Accidental::None},    {56, 10, Accidental::None},    // E in C, A flat in E flat
      {63, 3, Accidental::Sharp},   {62, 3, Accidental::None},
  };
  for (const Case& c : cases)
    EXPECT_EQ(AccidentalFor(c.pitch, c.key), c.expected) << c.pitch << " in key " << c.key;
}

TEST(SlotPitch, TuningCapoOctaveAndJunk) {
  Track t;
  NoteSlot n;
  int pitch = 0;
  n.Fret = "5";
  ASSERT_TRUE(SlotPitch(t, n, 1, pitch));
  EXPECT_EQ(pitch, 64);
  t.Tuning.Offset[5] = -2;  // drop D
  n.Fret = "0";
  ASSERT_TRUE(SlotPitch(t, n, 5, pitch));
  EXPECT_EQ(pitch, 38);
  t.Capo = 2;
  t.OctaveUp = true;
  ASSERT_TRUE(SlotPitch(t, n, 0, pitch));
  EXPECT_EQ(pitch, 64 + 2 + 12);
  for (const char* junk : {"", "x", "X", "99999999999", "-3", "o"}) {
    n.Fret = junk;
    EXPECT_FALSE(SlotPitch(t, n, 0, pitch)) << junk;
  }
  n.Fret = "3";
  EXPECT_FALSE(SlotPitch(t, n, 7, pitch));
}

}  // namespace
}  // namespace plectaro
