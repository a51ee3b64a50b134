// Find and Replace over beat texts, lyrics, go-to names and frets: what is counted, what is
// changed, where the cursor goes, and that one undo takes a whole replacement back.
#include <gtest/gtest.h>

#include "edit_fixture.h"
#include "editing/find_replace.h"

namespace plectaro::test {
namespace {

// Two tracks of three bars: texts, a go-to name, lyrics and frets to look for.
void fill(Editor& e) {
  Score& s = e.doc.score;
  s.SetBarCount(3);
  e.addTrack(6);
  for (int t = 0; t < 2; ++t)
    for (int b = 0; b < 3; ++b) s.SetBeatCount(t, b, 2);
  s.beatMut(0, 0, 0).Text = "Verse";
  s.beatMut(0, 1, 1).Text = "verse again, verse";
  s.beatMut(1, 2, 0).Text = "VERSE";
  s.beatMut(0, 2, 0).GotoName = "Verse 2";
  s.trackMut(0).Lyrics[0] = "a verse of words";
  for (int b = 0; b < 3; ++b) {
    s.noteMut(0, b, 0, 4).Fret = "3";
    s.noteMut(0, b, 1, 3).Fret = "3";
  }
  s.noteMut(1, 0, 0, 4).Fret = "3";
}

TEST(FindReplace, CountsAndReplacesEveryKindOfTerm) {
  struct Case {
    const char* what;
    FindRequest req;
    int replaced;
    std::function<void(const Score&)> check;
  };
  const auto req = [](const char* what, const char* with) {
    FindRequest r;
    r.What = what;
    r.With = with;
    return r;
  };
  FindRequest frets = req("3", "5");
  frets.Texts = frets.Lyrics = frets.GotoNames = false;
  frets.Frets = true;
  frets.String = 4;
  FindRequest anyString = frets;
  anyString.String = -1;
  FindRequest cased = req("Verse", "Chorus");
  cased.MatchCase = true;
  FindRequest everywhere = req("verse", "Chorus");
  everywhere.AllTracks = true;
  FindRequest textsOnly = req("verse", "V");
  textsOnly.Lyrics = textsOnly.GotoNames = false;
  const Case cases[] = {
      {"any case, one track", req("verse", "Chorus"), 5,
       [](const Score& s) {
         EXPECT_EQ(s.beat(0, 1, 1).Text, "Chorus again, Chorus");
         EXPECT_EQ(s.beat(0, 2, 0).GotoName, "Chorus 2");
         EXPECT_EQ(s.Tracks[0].Lyrics[0], "a Chorus of words");
         EXPECT_EQ(s.beat(1, 2, 0).Text, "VERSE") << "other tracks are left";
       }},
      {"match case", cased, 2,
       [](const Score& s) {
         EXPECT_EQ(s.beat(0, 0, 0).Text, "Chorus");
         EXPECT_EQ(s.beat(0, 2, 0).GotoName, "Chorus 2");
         EXPECT_EQ(s.beat(0, 1, 1).Text, "verse again, verse");
       }},
      {"all tracks", everywhere, 6, [](const Score& s) { EXPECT_EQ(s.beat(1, 2, 0).Text, "Chorus"); }},
      {"texts only", textsOnly, 3, [](const Score& s) { EXPECT_EQ(s.Tracks[0].Lyrics[0], "a verse of words"); }},
      {"frets on string 5", frets, 3,
       [](const Score& s) {
         EXPECT_EQ(s.note(0, 1, 0, 4).Fret, "5");
         EXPECT_EQ(s.note(0, 1, 1, 3).Fret, "3");
       }},
      {"frets on any string", anyString, 6, [](const Score& s) { EXPECT_EQ(s.note(0, 2, 1, 3).Fret, "5"); }},
      {"nothing", req("bridge", "x"), 0, [](const Score&) {}},
  };
  for (const Case& c : cases) {
    Editor e;
    fill(e);
    const Score before = e.doc.score;
    EXPECT_EQ(ReplaceAll(e.ctx, c.req), c.replaced) << c.what;
    c.check(e.doc.score);
    ASSERT_EQ(e.prompter.asked().size(), 1u) << c.what;
    EXPECT_EQ(e.prompter.asked()[0].text,
              c.replaced ? std::to_string(c.replaced) + " terms were replaced." : "No matches were found.")
        << c.what;
    // One undo takes the whole replacement back.
    e.keys("Z");
    EXPECT_EQ(e.doc.score, before) << c.what;
  }
}

TEST(FindReplace, AFretReplacementMustBeAFret) {
  Editor e;
  fill(e);
  FindRequest r;
  r.What = "3";
  r.Frets = true;
  const Score before = e.doc.score;
  for (const char* bad : {"abc", "123", "-1"}) {
    r.With = bad;
    EXPECT_EQ(ReplaceAll(e.ctx, r), 0) << bad;
  }
  EXPECT_EQ(e.doc.score, before);
  r.With = "";
  EXPECT_EQ(ReplaceAll(e.ctx, r), 6) << "an empty replacement clears the notes";
  EXPECT_FALSE(e.doc.score.note(0, 0, 0, 4).hasNote());
}

TEST(FindReplace, FindNextWalksTheMatchesAndWrapsRound) {
  Editor e;
  fill(e);
  FindRequest r;
  r.What = "verse";
  r.AllTracks = true;
  int trackChanges = 0;
  e.ctx.hooks.trackChanged = [&] { ++trackChanges; };
  std::vector<std::array<int, 3>> stops;
  for (int i = 0; i < 5; ++i) {
    ASSERT_TRUE(FindNext(e.ctx, r));
    stops.push_back({e.doc.CursorTrack, e.doc.CursorBar, e.doc.CursorBeat});
  }
  // From the cursor at the first beat: the text of bar 2, the go-to name of bar 3, the other
  // track, round to the first beat, and on.
  EXPECT_EQ(stops, (std::vector<std::array<int, 3>>{{0, 1, 1}, {0, 2, 0}, {1, 2, 0}, {0, 0, 0}, {0, 1, 1}}));
  EXPECT_EQ(trackChanges, 2);
  EXPECT_FALSE(e.doc.ScoreChanged);
  r.What = "bridge";
  EXPECT_FALSE(FindNext(e.ctx, r));
  EXPECT_EQ(e.prompter.asked().back().text, "No matches were found.");
}

}  // namespace
}  // namespace plectaro::test
