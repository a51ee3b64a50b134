// The track's name at the head of each page: its text, and that every page shows it once in
// the same place whether the page was laid out afresh or redrawn from the stored layout.
#include <gtest/gtest.h>

#include <map>

#include "rendering/draw_document.h"
#include "rendering/recording_surface.h"
#include "rendering/track_head.h"
#include "test_scores.h"

namespace plectaro {
namespace {

using test::MakeDoc;

TEST(TrackHead, NamesTrackInstrumentAndAnUnusualTuning) {
  struct Case {
    const char* what;
    std::string name, instrument;
    std::vector<int> offsets;  // string 0 (highest) first
    bool drums;
    int strings;
    std::string expected;
  };
  const Case cases[] = {
      {"standard tuning is not spelled out", "Lead", "Distortion Guitar", {}, false, 6, "2. Lead - Distortion Guitar"},
      {"drop D", "Rhythm", "Steel Guitar", {0, 0, 0, 0, 0, -2}, false, 6, "2. Rhythm - Steel Guitar (D A D G B E)"},
      {"open G, low string first", "Slide", "Steel Guitar", {-2, 0, 0, 0, -2, -2}, false, 6,
       "2. Slide - Steel Guitar (D G D G B D)"},
      {"four strings a tone down", "Mandola", "Steel Guitar", {-2, -2, -2, -2}, false, 4,
       "2. Mandola - Steel Guitar (C F A D)"},
      {"seven strings, standard", "Metal", "Distortion Guitar", {}, false, 7, "2. Metal - Distortion Guitar"},
      {"drums have no tuning", "Kit", "Drums", {5, 5, 5, 5, 5, 5}, true, 6, "2. Kit - Drums"},
      {"instrument equal to the name once", "Piano", "Piano", {}, false, 6, "2. Piano"},
      {"no name", "", "Nylon Guitar", {}, false, 6, "2. Nylon Guitar"},
  };
  for (const Case& c : cases) {
    Score s;
    s.Tracks.resize(2);
    Track& t = s.Tracks[1];
    t.Name = c.name;
    t.InstrumentName = c.instrument;
    t.DrumTrack = c.drums;
    t.Tuning.NumStrings = static_cast<int16_t>(c.strings);
    for (size_t k = 0; k < c.offsets.size(); ++k) t.Tuning.Offset[k] = static_cast<int16_t>(c.offsets[k]);
    EXPECT_EQ(TrackHeadText(s, 1), c.expected) << c.what;
  }
  EXPECT_EQ(TrackHeadText(Score{}, 3), "");
}

// The head's text calls of a recording, by text.
std::vector<DrawCall> headCalls(const RecordingSurface& s, const std::string& head) {
  std::vector<DrawCall> out;
  for (const DrawCall& c : s.calls())
    if (c.kind == DrawCall::Kind::Text && c.text == head) out.push_back(c);
  return out;
}

TEST(TrackHead, EveryPageShowsItOnceAboveItsFirstRow) {
  Document doc = MakeDoc(90, 8, true);
  doc.score.Tracks[0].Name = "Lead";
  doc.score.Tracks[0].InstrumentName = "Overdriven Guitar";
  const std::string head = TrackHeadText(doc.score, 0);
  LayoutSettings st;
  std::map<int, RecordingSurface> pages;
  const DrawResult r = RenderPages(doc, 0, st, DrawTexts{}, [&](int page, int) { return &pages[page]; });
  ASSERT_TRUE(r.Ok) << r.Error;
  ASSERT_GE(r.LastPage, 2);
  for (auto& [page, surface] : pages) {
    const auto calls = headCalls(surface, head);
    ASSERT_EQ(calls.size(), 1u) << "page " << page;
    // Left-aligned with the staves, between the top margin's title block and the first staff.
    EXPECT_EQ(calls[0].points[0].x, st.PageLeftMargin) << "page " << page;
    EXPECT_LT(calls[0].points[0].y, st.PageTopMargin) << "page " << page;
    EXPECT_GT(calls[0].points[0].y, st.PageTopMargin - 80) << "page " << page;
  }

  // On screen: a scroll to the second page lays it out, a further draw at the same place
  // redraws it from the stored positions; both show the head in the same place.
  ViewState view;
  view.VScroll = 140;
  doc.FullRelayout = true;
  RecordingSurface fresh, stored;
  ASSERT_TRUE(DrawDocument(doc, st, view, DrawTexts{}, fresh).Ok);
  ASSERT_FALSE(doc.FullRelayout);
  ASSERT_TRUE(DrawDocument(doc, st, view, DrawTexts{}, stored).Ok);
  const auto a = headCalls(fresh, head);
  ASSERT_EQ(a.size(), 1u);
  EXPECT_EQ(headCalls(stored, head), a);
}

}  // namespace
}  // namespace plectaro
