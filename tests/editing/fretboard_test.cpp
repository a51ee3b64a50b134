// The fretboard and piano panels' geometry and what their clicks write.
#include <gtest/gtest.h>

#include "edit_fixture.h"
#include "editing/fretboard.h"
#include "rendering/notation.h"

namespace plectaro::test {
namespace {

TEST(Fretboard, EveryPlaceIsHitWhereItIsDrawnInBothHands) {
  for (const bool lefty : {false, true}) {
    for (const int strings : {4, 6, 7}) {
      FretboardGeometry g;
      g.strings = strings;
      g.leftHanded = lefty;
      for (int s = 0; s < strings; ++s)
        for (int f = 0; f <= kFretboardFrets; ++f) {
          const auto h = g.hit(g.shown(g.fretCentreX(f)), g.stringY(s) + 2);
          ASSERT_TRUE(h.has_value()) << lefty << " " << s << " " << f;
          EXPECT_EQ(*h, (StringFret{s, f})) << "left-handed " << lefty << " strings " << strings;
        }
      EXPECT_FALSE(g.hit(-1, g.stringY(0)).has_value());
      EXPECT_FALSE(g.hit(10, g.height + 1).has_value());
    }
  }
  // Frets narrow toward the body, and the left-handed nut is on the right.
  FretboardGeometry g;
  EXPECT_GT(g.wireX(1) - g.wireX(0), g.wireX(24) - g.wireX(23));
  g.leftHanded = true;
  EXPECT_GT(g.shown(g.fretCentreX(0)), g.shown(g.fretCentreX(12)));
}

TEST(Piano, KeysAreHitWhereTheyAreDrawnBlackOverWhite) {
  PianoGeometry p;
  for (int k = p.lowKey; k <= p.highKey; ++k) {
    const PianoGeometry::Box b = p.keyBox(k);
    // White keys are hit low down, below the black ones; black keys anywhere on them.
    const double y = IsBlackKey(k) ? b.h / 2 : p.height - 5;
    EXPECT_EQ(p.hit(b.x + b.w / 2, y), k);
  }
  // High on the line between C and D is the C sharp.
  const PianoGeometry::Box d = p.keyBox(62);
  EXPECT_EQ(p.hit(d.x + 1, 5), 61);
  EXPECT_EQ(p.hit(d.x + d.w / 2, 5), 62);
  EXPECT_FALSE(p.hit(p.width + 1, 5).has_value());
}

TEST(Fretboard, AClickWritesThatNoteAtTheCursorAsOneUndoStep) {
  struct Case {
    int capo, string, neckFret;
    const char* fret;  // written on the string, "" when refused
  };
  const Case cases[] = {
      {0, 4, 3, "3"},   // fret 3 of string 5
      {0, 0, 0, "0"},   // an open string
      {0, 5, 24, "24"},
      {2, 4, 5, "3"},   // under a capo at 2 the tab counts from the capo
      {2, 4, 1, ""},    // behind the capo cannot be played
  };
  for (const Case& c : cases) {
    Editor e;
    e.doc.score.Tracks[0].Capo = static_cast<int16_t>(c.capo);
    e.keys("Right");
    const Score before = e.doc.score;
    const bool ok = WriteFretboardNote(e.ctx, c.string, c.neckFret);
    EXPECT_EQ(ok, *c.fret != 0);
    EXPECT_EQ(e.fret(0, 1, c.string), c.fret);
    if (!ok) continue;
    EXPECT_EQ(e.doc.CursorString, c.string);
    EXPECT_EQ(e.played.size(), 1u) << "the note sounds";
    // And the hand notes show it where it was clicked.
    const int open[] = {64, 59, 55, 50, 45, 40};
    EXPECT_EQ(HandNotesOf(e.doc.score.Tracks[0], e.beat(0, 1)),
              (std::vector<HandNote>{{c.string, c.neckFret, open[c.string] + c.neckFret}}));
    e.keys("Z");
    EXPECT_EQ(e.doc.score, before);
  }
}

TEST(Piano, AClickPlacesThePitchOnTheBestFreeString) {
  Editor e;
  EXPECT_TRUE(WritePianoNote(e.ctx, 60));
  EXPECT_TRUE(WritePianoNote(e.ctx, 64));
  EXPECT_TRUE(WritePianoNote(e.ctx, 67));
  EXPECT_EQ(e.fret(0, 0, 1), "1");  // C4 on the B string
  EXPECT_EQ(e.fret(0, 0, 0), "0");  // E4 the open top string
  EXPECT_EQ(e.fret(0, 0, 2), "12"); // G4: the two top strings are taken
  EXPECT_FALSE(WritePianoNote(e.ctx, 30)) << "below the lowest string";
  EXPECT_FALSE(e.ctx.NotationEntry);
}

}  // namespace
}  // namespace plectaro::test
