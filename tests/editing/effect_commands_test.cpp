#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "editing/effect_commands.h"
#include "editing/note_commands.h"
#include "edit_fixture.h"

namespace plectaro {
namespace {

using test::Editor;

// Fret 5 on the top string and fret 7 on the next, cursor on the top string.
void twoNotes(Editor& e) {
  e.keys("5 Down 7 Up");
  ASSERT_EQ(e.fret(0, 0, 0), "5");
  ASSERT_EQ(e.fret(0, 0, 1), "7");
}

TEST(EffectCommands, EveryToggleTwiceLeavesTheSlot) {
  std::vector<std::pair<std::string, std::function<void(EditContext&)>>> toggles = {
      {"ghost", mnuNoteEffectsGhostNote_Click},
      {"let ring", mnuNoteEffectsLetRing_Click},
      {"accent", mnuNoteEffectsAccentuate_Click},
      {"up stroke", mnuChordUpStroke_Click},
      {"down stroke", mnuChordDownStroke_Click},
  };
  for (int i = 0; i < 7; ++i)
    toggles.push_back({"harmonic " + std::to_string(i), [i](EditContext& c) { mnuNoteEffectsHarmonics_Click(c, i); }});
  for (int i = 0; i < 10; ++i)
    toggles.push_back({"technique " + std::to_string(i), [i](EditContext& c) { mnuNoteEffectsTechniques_Click(c, i); }});
  for (int i = 0; i < 7; ++i)
    toggles.push_back({"chord technique " + std::to_string(i), [i](EditContext& c) { mnuChordTechniques_Click(c, i); }});
  for (const auto& [name, run] : toggles) {
    SCOPED_TRACE(name);
    Editor e;
    twoNotes(e);
    const Score before = e.doc.score;
    run(e.ctx);
    EXPECT_NE(e.doc.score, before) << "the first press changes something";
    run(e.ctx);
    EXPECT_EQ(e.doc.score, before);
  }
}

TEST(EffectCommands, ApplyAndClearTouchOneEffectOfOneSlot) {
  struct Case {
    const char* name;
    std::function<void(EditContext&)> apply, clear;
    std::function<bool(const Beat&, int string)> has;
  };
  BendInfo bend;
  bend.Points = BendPreset(0);
  TremoloBarInfo bar;
  bar.Points = TremoloPreset(0);
  const Case cases[] = {
      {"bend", [&](EditContext& c) { ApplyBend(c, bend); }, ClearBend,
       [](const Beat& b, int s) { return b.Notes[static_cast<size_t>(s)].HasBend; }},
      {"trill", [](EditContext& c) { ApplyTrill(c, {7, 1}); }, ClearTrill,
       [](const Beat& b, int s) { return b.Notes[static_cast<size_t>(s)].HasTrill; }},
      {"grace", [](EditContext& c) { ApplyGrace(c, {"3", 1, 0, kGraceHammer}); }, ClearGrace,
       [](const Beat& b, int s) { return b.Notes[static_cast<size_t>(s)].HasGrace; }},
      {"tremolo bar", [&](EditContext& c) { ApplyTremoloBar(c, bar); }, ClearTremoloBar,
       [](const Beat& b, int) { return b.HasTremoloBar; }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Editor e;
    twoNotes(e);
    const Score plain = e.doc.score;
    c.apply(e.ctx);
    EXPECT_TRUE(c.has(e.beat(0, 0), 0));
    EXPECT_TRUE(e.doc.ScoreChanged);
    EXPECT_FALSE(e.played.empty()) << "the changed beat is sounded";
    c.clear(e.ctx);
    EXPECT_EQ(e.doc.score, plain) << "apply then clear gives the slot back";

    // Every effect on both strings; clearing one on the top string leaves all the others.
    for (auto* other : {&cases[0], &cases[1], &cases[2], &cases[3]}) {
      other->apply(e.ctx);
      e.keys("Down");
      other->apply(e.ctx);
      e.keys("Up");
    }
    c.clear(e.ctx);
    for (const Case& o : cases) {
      const bool sameEffect = &o == &c;
      EXPECT_EQ(o.has(e.beat(0, 0), 0), !sameEffect) << o.name;
      if (std::string(o.name) != "tremolo bar") {
        EXPECT_TRUE(o.has(e.beat(0, 0), 1)) << o.name;
      }
    }
  }
}

TEST(EffectCommands, EffectsNeedANoteAndTextSetsTheBeat) {
  Editor e;
  e.keys("Right");  // an empty beat: no fret to bend, a rest takes no tremolo bar
  const Score before = e.doc.score;
  BendInfo bend;
  bend.Points = BendPreset(0);
  ApplyBend(e.ctx, bend);
  ApplyTrill(e.ctx, {7, 0});
  ApplyGrace(e.ctx, {"3", 0, 0, 0});
  ApplyTremoloBar(e.ctx, TremoloBarInfo());
  EXPECT_EQ(e.doc.score, before);

  ApplyText(e.ctx, "let it ring");
  EXPECT_EQ(e.beat(e.doc.CursorBar, e.doc.CursorBeat).Text, "let it ring");
  ApplyText(e.ctx, "");
  EXPECT_EQ(e.doc.score, before);
}

TEST(EffectCommands, CurvePictureClicks) {
  struct Case {
    double x, y;      // on a 250 x 120 picture
    size_t point;
    double bend, tremolo;  // the height the point takes in each editor
  };
  const Case cases[] = {
      {0, 0, 0, 12, 12},         // top left: the highest point of both
      {250, 120, 25, 0, -12},    // bottom right (the tremolo bar has 25 points: index 24)
      {125, 60, 13, 6, 0},       // the middle
      {4, 130, 0, 0, -12},       // below the picture: held to the bottom
      {51, 29, 5, 9, 6},         // 29 of 120 down: 9.1 quarter tones, 6.2 of the bar
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.x);
    BendCurve b{};
    SetBendPointAt(b, c.x, c.y, 250, 120);
    EXPECT_EQ(b[std::min<size_t>(c.point, 25)], c.bend);
    TremoloCurve t{};
    SetTremoloPointAt(t, c.x, c.y, 250, 120);
    const size_t ti = static_cast<size_t>(std::lround(c.x / (250.0 / 24)));
    EXPECT_EQ(t[std::min<size_t>(ti, 24)], c.tremolo);
  }
}

TEST(EffectCommands, PresetsRandomCurvesAndLabels) {
  ASSERT_FALSE(BendPresetNames().empty());
  EXPECT_EQ(BendPresetNames()[0], "Full");
  const BendCurve full = BendPreset(0);
  EXPECT_EQ(full[0], 0);
  EXPECT_EQ(*std::max_element(full.begin(), full.end()), 4);  // a whole tone: printed "1"
  EXPECT_EQ(BendPreset(99), BendCurve{});
  EXPECT_EQ(TremoloPresetNames().size(), 6u);  // one per kind of the stored record

  for (uint32_t seed : {1u, 2u, 77u}) {
    EXPECT_EQ(RandomBendCurve(seed), RandomBendCurve(seed));
    for (double v : RandomBendCurve(seed)) EXPECT_TRUE(v >= 0 && v <= kMaxBendHeight);
    for (double v : RandomTremoloCurve(seed)) EXPECT_TRUE(v >= -kMaxTremoloDepth && v <= kMaxTremoloDepth);
  }
  EXPECT_NE(RandomBendCurve(1), RandomBendCurve(2));

  const std::pair<double, const char*> labels[] = {{-4, "2"}, {-3, "1\xC2\xBD"}, {1, "\xC2\xBD"}, {0, "0"}, {-10, "5"}};
  for (auto [depth, text] : labels) {
    TremoloCurve c{};
    c[10] = depth;
    EXPECT_EQ(TremoloLabel(c), text) << depth;
  }
}

}  // namespace
}  // namespace plectaro
