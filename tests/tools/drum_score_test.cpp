// The Drum Machine's pattern going into the score and coming back out of a drum track.
#include <gtest/gtest.h>

#include "editing/edit_context.h"
#include "score/bar_timing.h"
#include "score/document.h"
#include "score/prompter.h"
#include "tools/drum_score.h"

namespace plectaro {
namespace {

int row(const DrumPattern& p, const std::string& name) {
  return static_cast<int>(std::find(p.Instruments.begin(), p.Instruments.end(), name) - p.Instruments.begin());
}

// Steps of the given lengths ({code, dotted, tuplet}); the listed drums struck on every step.
struct Step {
  int code;
  bool dotted = false;
  bool tuplet = false;
};
DrumPattern MakePattern(const std::vector<Step>& steps, const std::vector<std::string>& drums) {
  DrumPattern p = NewDrumPattern();
  ResizePattern(p, static_cast<int>(steps.size()), p.instruments());
  for (size_t s = 0; s < steps.size(); ++s) {
    p.BeatLength[s] = steps[s].code;
    p.Dotted[s] = steps[s].dotted;
    p.Tupleted[s] = steps[s].tuplet;
    p.TupletCode[s] = 0;
    for (const std::string& d : drums) p.setCell(static_cast<int>(s), row(p, d), true);
  }
  return p;
}

struct Editor {
  Document doc;
  ScriptedPrompter prompter;
  EditContext ctx{doc, prompter};
  int drawn = 0;
  Editor() { ctx.hooks.drawDocument = [this] { ++drawn; }; }
  int drumTrack() {
    DrumPattern empty = MakePattern({{kSixteenthNote}}, {});
    EXPECT_TRUE(AddPatternAsTrack(ctx, empty, "Drums").done);
    return doc.score.LastTrack();
  }
};

TEST(DrumScore, PatternsLayIntoBarsAndReadBackTheSame) {
  struct Case {
    const char* what;
    std::vector<Step> steps;
    int timeNum, timeDen;
    std::vector<int> beatsPerBar;  // of the new track, bar by bar
  };
  const std::vector<Step> sixteenths(32, Step{kSixteenthNote});
  const Case cases[] = {
      {"a new pattern is two bars of 4/4", sixteenths, 4, 4, {16, 16}},
      {"in 3/4 the same steps make three bars and a part", sixteenths, 3, 4, {12, 12, 8}},
      {"dotted eighth and sixteenth, triplet eighths", {{3, true}, {4}, {3, false, true}, {3, false, true}, {3, false, true}, {2}, {2}},
       4, 4, {7}},
      {"a half that would overrun the bar starts the next", {{2}, {2}, {2}, {1}}, 4, 4, {3, 1}},
  };
  for (const Case& c : cases) {
    Editor e;
    e.doc.score.SetTimeSignature(0, c.timeNum, c.timeDen);
    const DrumPattern p = MakePattern(c.steps, {"Acoustic Bass Drum", "Closed High-Hat"});
    ASSERT_TRUE(AddPatternAsTrack(e.ctx, p, "Groove").done) << c.what;
    const Score& s = e.doc.score;
    const int t = s.LastTrack();
    EXPECT_EQ(e.doc.CursorTrack, t) << c.what;
    EXPECT_TRUE(s.Tracks[static_cast<size_t>(t)].DrumTrack);
    EXPECT_EQ(s.Tracks[static_cast<size_t>(t)].Channel, 9);
    ASSERT_EQ(s.BarInfos.size(), c.beatsPerBar.size()) << c.what;
    for (size_t b = 0; b < c.beatsPerBar.size(); ++b) {
      // The pattern's last bar is filled up with rests; every bar added keeps the time.
      EXPECT_EQ(CheckBar(s, t, static_cast<int>(b)), kBarExact) << c.what << " bar " << b;
      EXPECT_EQ(s.BarInfos[b].TimeSigNumerator, c.timeNum) << c.what;
      int hits = 0;
      for (const Beat& beat : s.bar(t, static_cast<int>(b)).Beats) hits += !beat.isRest();
      EXPECT_EQ(hits, c.beatsPerBar[b]) << c.what << " bar " << b;
    }
    // Read back: the same steps in order, with the rests that filled bars between them.
    const auto back = PatternFromTrack(s, t);
    ASSERT_TRUE(back) << c.what;
    std::vector<int> struck;
    for (int step = 0; step < back->steps(); ++step)
      for (int r = 0; r < back->instruments(); ++r)
        if (back->cell(step, r)) {
          struck.push_back(step);
          break;
        }
    ASSERT_EQ(static_cast<int>(struck.size()), p.steps()) << c.what;
    for (int step = 0; step < p.steps(); ++step) {
      const auto i = static_cast<size_t>(step);
      const auto j = static_cast<size_t>(struck[i]);
      EXPECT_EQ(back->BeatLength[j], p.BeatLength[i]) << c.what << " step " << step;
      EXPECT_EQ(back->Dotted[j], p.Dotted[i]);
      EXPECT_EQ(back->Tupleted[j], p.Tupleted[i]);
      for (int r = 0; r < p.instruments(); ++r)
        EXPECT_EQ(back->cell(struck[i], row(*back, p.Instruments[static_cast<size_t>(r)])), p.cell(step, r))
            << c.what << " step " << step << " " << p.Instruments[static_cast<size_t>(r)];
    }
  }
}

TEST(DrumScore, DrumsTheMapLacksGetSymbolsAndTooManyAtOnceAreCounted) {
  Editor e;
  DrumPattern p = MakePattern({{2}}, {});
  ResizePattern(p, 1, p.instruments() + 1);
  p.Instruments.back() = "Claves";
  p.Volumes.back() = 61;
  p.setCell(0, p.instruments() - 1, true);
  // Every row on at once: a six-line track takes six of the seventeen.
  DrumPattern all = p;
  for (int r = 0; r < all.instruments(); ++r) all.setCell(0, r, true);

  const DrumScoreResult one = AddPatternAsTrack(e.ctx, p, "Claves");
  EXPECT_EQ(one.lostHits, 0);
  auto back = PatternFromTrack(e.doc.score, e.doc.score.LastTrack());
  ASSERT_TRUE(back);
  const int claves = row(*back, "Claves");
  ASSERT_LT(claves, back->instruments());
  EXPECT_TRUE(back->cell(0, claves));
  EXPECT_EQ(back->Volumes[static_cast<size_t>(claves)], 61);  // MP survives the trip

  const DrumScoreResult crowd = AddPatternAsTrack(e.ctx, all, "Crowd");
  EXPECT_EQ(crowd.lostHits, all.instruments() - 6);
}

TEST(DrumScore, OverwriteAsksRefusesAndUndoes) {
  Editor e;
  const DrumPattern p = MakePattern(std::vector<Step>(8, Step{3}), {"Acoustic Snare"});

  // A fretted track is refused with its message; nothing changes.
  const Score before = e.doc.score;
  EXPECT_FALSE(OverwriteTrackWithPattern(e.ctx, p).done);
  ASSERT_EQ(e.prompter.asked().size(), 1u);
  EXPECT_EQ(e.prompter.asked()[0].text, e.ctx.text("str_IsNotPercTrack"));
  EXPECT_EQ(e.doc.score, before);
  EXPECT_FALSE(LoadPatternFromScore(e.ctx));
  EXPECT_EQ(e.prompter.asked().back().text, e.ctx.text("str_CantLoadTrack"));

  const int t = e.drumTrack();
  const Score withDrums = e.doc.score;
  e.prompter.clear();
  e.prompter.push(false);  // "The current beat will be lost. Continue?" No
  EXPECT_FALSE(OverwriteTrackWithPattern(e.ctx, p).done);
  EXPECT_EQ(e.prompter.asked().back().kind, "yesNo");
  EXPECT_EQ(e.doc.score, withDrums);

  e.prompter.push(true);
  ASSERT_TRUE(OverwriteTrackWithPattern(e.ctx, p).done);
  auto loaded = LoadPatternFromScore(e.ctx);
  ASSERT_TRUE(loaded);
  EXPECT_EQ(loaded->steps(), 8);
  EXPECT_TRUE(loaded->cell(7, row(*loaded, "Acoustic Snare")));
  EXPECT_EQ(e.doc.score.Tracks[static_cast<size_t>(t)].Name, "Drums");

  mnuEditUndo_Click(e.ctx);
  EXPECT_EQ(e.doc.score, withDrums);
  mnuEditUndo_Click(e.ctx);
  EXPECT_EQ(e.doc.score, before);
}

TEST(DrumScore, ALockedScoreIsLeftAloneWithoutAWord) {
  Editor e;
  e.drumTrack();
  e.ctx.hooks.passwordCorrect = [] { return false; };
  const Score before = e.doc.score;
  e.prompter.clear();
  const DrumPattern p = NewDrumPattern();
  EXPECT_FALSE(AddPatternAsTrack(e.ctx, p, "Drums").done);
  EXPECT_FALSE(OverwriteTrackWithPattern(e.ctx, p).done);
  EXPECT_FALSE(LoadPatternFromScore(e.ctx));
  EXPECT_TRUE(e.prompter.asked().empty());
  EXPECT_EQ(e.doc.score, before);
}

}  // namespace
}  // namespace plectaro
