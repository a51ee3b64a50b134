// Entry on the notation staff and on drum tracks: where the notes land, how the line walks,
// what a click on a staff does, and that each written note is one undo step.
#include <gtest/gtest.h>

#include "edit_fixture.h"
#include "editing/hit_test.h"
#include "editing/staff_entry.h"
#include "editing/track_commands.h"
#include "rendering/draw_document.h"
#include "rendering/notation.h"

namespace plectaro::test {
namespace {

// Walks the notation line to `pitch` with the arrow keys, as a user would.
void walkTo(Editor& e, int pitch) {
  for (int guard = 0; e.doc.CursorLine != pitch && guard < 40; ++guard)
    e.keys(e.doc.CursorLine < pitch ? "Up" : "Down");
  ASSERT_EQ(e.doc.CursorLine, pitch);
}

TEST(NotationEntry, ACMajorScaleLandsOnTheLowestFretOfAFreeString) {
  Editor e;
  e.keys("Enter");
  ASSERT_TRUE(e.ctx.NotationEntry);
  EXPECT_EQ(e.doc.CursorLine, 64) << "starts at the open string under the cursor";
  struct Note {
    int pitch, string, fret;
  };
  const Note scale[] = {{48, 4, 3}, {50, 3, 0}, {52, 3, 2}, {53, 3, 3},
                        {55, 2, 0}, {57, 2, 2}, {59, 1, 0}, {60, 1, 1}};
  for (const Note& n : scale) {
    walkTo(e, n.pitch);
    e.keys(&n == &scale[7] ? "0" : "0 Right");
  }
  for (int k = 0; k < 8; ++k) {
    const int bar = k / 4, beat = k % 4;
    EXPECT_EQ(e.fret(bar, beat, scale[k].string), std::to_string(scale[k].fret)) << "note " << k;
    int held = 0;
    for (int s = 0; s < 6; ++s) held += e.fret(bar, beat, s).empty() ? 0 : 1;
    EXPECT_EQ(held, 1) << "note " << k;
  }
  EXPECT_EQ(e.played.size(), 8u) << "each written note sounds";
  // One undo takes back one note.
  e.keys("Z");
  EXPECT_EQ(e.fret(1, 3, 1), "");
  EXPECT_EQ(e.fret(1, 2, 1), "0");
}

TEST(NotationEntry, ChordsStringChoiceAndRefusals) {
  struct Case {
    const char* what;
    int capo;
    std::vector<std::pair<int, const char*>> writes;  // pitch and the key that writes it
    std::vector<std::pair<int, std::string>> expect;  // string and fret text after
    bool refused;
  };
  const Case cases[] = {
      // An E major chord built from the bottom: each note finds the next free string.
      {"chord", 0, {{40, "0"}, {47, "0"}, {52, "0"}, {56, "0"}}, {{5, "0"}, {4, "2"}, {3, "2"}, {2, "1"}}, false},
      // The same pitch twice stays one note.
      {"twice", 0, {{55, "0"}, {55, "0"}}, {{2, "0"}, {3, ""}}, false},
      // A digit names the string, counted from the top.
      {"string 4", 0, {{55, "4"}}, {{3, "5"}, {2, ""}}, false},
      // The capo raises every open string: D3 is fret 3 on the A string with capo 2.
      {"capo", 2, {{50, "0"}}, {{4, "3"}, {3, ""}}, false},
      // Fret 24 at most: the low E string cannot take A4, and the status line says so.
      {"too high", 0, {{69, "6"}}, {{5, ""}}, true},
      // A string that is asked for but cannot sound the pitch.
      {"taken", 0, {{40, "0"}, {40, "5"}}, {{5, "0"}, {4, ""}}, true},
  };
  for (const Case& c : cases) {
    Editor e;
    std::vector<std::string> said;
    e.ctx.hooks.status = [&](const std::string& t) { said.push_back(t); };
    e.doc.score.Tracks[0].Capo = static_cast<int16_t>(c.capo);
    e.keys("Enter");
    for (const auto& [pitch, key] : c.writes) {
      walkTo(e, pitch);
      e.keys(key);
    }
    for (const auto& [string, fret] : c.expect) EXPECT_EQ(e.fret(0, 0, string), fret) << c.what << " string " << string;
    EXPECT_EQ(!said.empty(), c.refused) << c.what;
    if (!said.empty()) {
      EXPECT_EQ(said[0], "This pitch cannot be played on this track's strings.");
    }
  }
}

TEST(NotationEntry, LineWalksTheRangeAndWraps) {
  Editor e;
  e.keys("Enter");
  walkTo(e, 40);  // the open low E is the bottom
  e.keys("Down");
  EXPECT_EQ(e.doc.CursorLine, 69) << "down from the bottom wraps 29 up";
  e.keys("Up");
  EXPECT_EQ(e.doc.CursorLine, 40) << "up from the top wraps to the bottom";
  // Drop D lowers the bottom with the string.
  Editor d;
  d.doc.score.Tracks[0].Tuning.Offset[5] = -2;
  d.keys("Enter");
  walkTo(d, 38);
  d.keys("Down");
  EXPECT_EQ(d.doc.CursorLine, 67);
  // Del clears the note of the line, wherever it is on the beat; Enter leaves the staff.
  e.keys("0");
  EXPECT_EQ(e.fret(0, 0, 5), "0");
  e.keys("Del");
  EXPECT_EQ(e.fret(0, 0, 5), "");
  e.keys("Enter 7");
  EXPECT_FALSE(e.ctx.NotationEntry);
  EXPECT_EQ(e.fret(0, 0, 5), "7") << "back on the tab a digit is a fret again";
}

TEST(NotationEntry, AClickOnTheStaffPicksThePitchAndSwitchesEntryOn) {
  Editor e;
  Track& tr = e.doc.score.Tracks[0];
  tr.BassStaff = true;  // both staves: low notes are read from the bass staff
  e.doc.score.SetBarCount(3);
  LayoutTrack(e.doc, 0, LayoutSettings{}, DrawTexts{});
  const BarLayout& l = e.doc.Layout[0][1];
  const double x = l.DrawX + RowLayout::BeatOffset(l.ShowsSignature, l.BeatSpacing, 0) + 3;
  struct Case {
    int pitch;
    bool bass;
  };
  for (const Case c : {Case{67, false}, Case{60, false}, Case{48, false}, Case{45, true}, Case{40, true}}) {
    const double base = l.DrawY + (c.bass ? BassStaffAnchor(tr) : TrebleStaffTop(tr));
    picDocument_MouseDown(e.ctx, MouseButton::Left, 0, x, base + StaffPosition(c.pitch, false) + 6.5 + 1);
    EXPECT_TRUE(e.ctx.NotationEntry);
    EXPECT_EQ(e.doc.CursorLine, c.pitch);
    EXPECT_EQ(e.doc.CursorBar, 1);
  }
  // A click on the tab goes back to strings.
  picDocument_MouseDown(e.ctx, MouseButton::Left, 0, x, l.DrawY + TabStaffTop(tr) + 20);
  EXPECT_FALSE(e.ctx.NotationEntry);
  EXPECT_EQ(e.doc.CursorString, 2);
}

// ---- drum tracks ----

// Walks the drum line to a sound; Up wraps round the whole list, so it always gets there.
void walkDrum(Editor& e, int sound) {
  for (int guard = 0; e.doc.CursorLine != sound && guard < 40; ++guard) e.keys("Up");
  ASSERT_EQ(e.doc.CursorLine, sound);
}

Editor drumEditor() {
  Editor e;
  Track& tr = e.doc.score.Tracks[0];
  tr.DrumTrack = true;
  tr.DrumMaps = DefaultDrumMaps();
  return e;
}

TEST(DrumEntry, UpAndDownWalkTheDrumStaffBothWays) {
  Editor e = drumEditor();
  std::vector<int> heard;
  e.ctx.hooks.playPercussion = [&](int sound) { heard.push_back(sound); };
  std::vector<int> down;
  for (int i = 0; i < 20; ++i) {
    e.keys("Down");
    down.push_back(e.doc.CursorLine);
  }
  std::vector<int> order(kDrumWalk.begin(), kDrumWalk.end());
  std::vector<int> expectDown = order;
  expectDown.push_back(19);  // and stays at the bottom
  EXPECT_EQ(down, expectDown);
  EXPECT_EQ(heard, expectDown) << "every step sounds the drum under the line";
  std::vector<int> up;
  for (int i = 0; i < 20; ++i) {
    e.keys("Up");
    up.push_back(e.doc.CursorLine);
  }
  std::vector<int> expectUp(order.rbegin() + 1, order.rend());
  expectUp.push_back(19);  // up from the top wraps to the bottom
  expectUp.push_back(2);
  EXPECT_EQ(up, expectUp);
  // The tab cursor follows to the line that plays the sound.
  walkDrum(e, 4);
  EXPECT_EQ(e.doc.CursorString, 2);
  walkDrum(e, 1);
  EXPECT_EQ(e.doc.CursorString, 5);
}

TEST(DrumEntry, LettersWriteOnTheLineThatSoundsTheDrum) {
  struct Case {
    int sound;
    const char* key;
    int line;
    const char* symbol;
  };
  const Case cases[] = {
      {4, "x", 2, "X"},   // snare
      {4, "o", 2, "O"},
      {12, "x", 1, "X"},  // open hi-hat
      {1, "x", 5, "X"},   // bass drum
      // S on the snare line plays the electric snare: the acoustic one is written with the
      // symbol that plays it there.
      {4, "s", 2, "X"},
      {8, "x", 1, "x"},   // the closed hi-hat is "x" on the hi-hat line
      {1, "s", 5, "S"},   // the bass drum line has no S yet and learns it
      {22, "x", -1, ""},  // cowbell: every line has its X taken
      {22, "t", 5, "t"},  // but the bass drum line has a free t
  };
  for (const Case& c : cases) {
    Editor e = drumEditor();
    std::vector<std::string> said;
    e.ctx.hooks.status = [&](const std::string& t) { said.push_back(t); };
    walkDrum(e, c.sound);
    e.keys(c.key);
    const Track& tr = e.doc.score.Tracks[0];
    if (c.line < 0) {
      EXPECT_FALSE(said.empty()) << c.sound << c.key;
      for (int s = 0; s < 6; ++s) EXPECT_EQ(e.fret(0, 0, s), "");
      continue;
    }
    EXPECT_EQ(e.fret(0, 0, c.line), c.symbol) << c.sound << c.key;
    // Whatever line it took, the symbol there plays the sound the cursor showed.
    const int sym = static_cast<int>(std::find(kDrumSymbols.begin(), kDrumSymbols.end(), c.symbol[0]) - kDrumSymbols.begin());
    EXPECT_EQ(tr.DrumMaps[static_cast<size_t>(c.line)].Drum[static_cast<size_t>(sym)], c.sound) << c.sound << c.key;
    EXPECT_EQ(e.played.size(), 1u);
  }
  // A map learnt while writing goes back with the note on undo.
  Editor e = drumEditor();
  const Score before = e.doc.score;
  walkDrum(e, 1);
  e.keys("s Z");
  EXPECT_EQ(e.doc.score, before);
}

}  // namespace
}  // namespace plectaro::test
