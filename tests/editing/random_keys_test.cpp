// Long runs of random keys on scores holding the odd values a file may bring (lengths and
// tuplets out of range, a zero denominator, one and seven strings, a drum track): no key may
// crash, hang, or leave the score or the cursor in a shape the rest of the program cannot read.
#include <gtest/gtest.h>

#include <random>

#include "edit_fixture.h"
#include "score/music_file.h"
#include "score/settings_store.h"

namespace plectaro::test {
namespace {

void expectWellFormed(const Editor& e, int step) {
  const Score& s = e.doc.score;
  ASSERT_FALSE(s.Tracks.empty());
  for (const Track& t : s.Tracks) {
    ASSERT_EQ(t.Bars.size(), s.BarInfos.size()) << "step " << step;
    for (const auto& b : t.Bars) {
      ASSERT_FALSE(b->Beats.empty()) << "step " << step;
      for (const Beat& beat : b->Beats)
        for (int str = std::max<int>(t.Tuning.NumStrings, 0); str < kMaxStrings; ++str)
          ASSERT_FALSE(beat.Notes[static_cast<size_t>(str)].hasNote()) << "a note beyond the strings, step " << step;
    }
  }
  const Document& d = e.doc;
  ASSERT_GE(d.CursorTrack, 0);
  ASSERT_LE(d.CursorTrack, s.LastTrack());
  ASSERT_GE(d.CursorBar, 0);
  ASSERT_LE(d.CursorBar, s.GetLastBar(d.CursorTrack));
  ASSERT_GE(d.CursorBeat, 0);
  ASSERT_LE(d.CursorBeat, s.GetLastBeat(d.CursorTrack, d.CursorBar));
  ASSERT_GE(d.CursorString, 0);
  ASSERT_LT(d.CursorString, s.track(d.CursorTrack).Tuning.NumStrings);
}

TEST(RandomKeys, NeverBreakTheScore) {
  const char* names[] = {"0", "1", "2", "5", "9", "Num3", "x", "r", "g", "h", "s", "l", "v", "t",
                         "u", "d", "c", "b", "o", "f", "z", "+", "-", ".", "Left", "Right",
                         "Right", "Right", "Up", "Down", "Del", "Ins", "Enter", "Home", "End",
                         "PgUp", "PgDn", "Backspace", "Shift+Del", "Shift+Ins", "Shift+Up",
                         "Shift+Down", "Shift++", "Shift+-", "Shift+r", "Shift+m", "Shift+n",
                         "Shift+o", "Shift+3", "Shift+5", "Shift+9", "Ctrl+Home", "Ctrl+End"};
  std::vector<KeyPress> keys;
  for (const char* n : names) keys.push_back(*ParseKeyPress(n));

  using Prepare = void (*)(Editor&);
  const Prepare starts[] = {
      [](Editor&) {},
      [](Editor& e) {
        e.doc.score.Tracks[0].Tuning.NumStrings = 1;
        e.addTrack(7);
      },
      [](Editor& e) {
        e.doc.score.beatMut(0, 0, 0).Length = 9;
        e.doc.score.SetBarCount(2);
        e.doc.score.beatMut(0, 1, 0).IsTuplet = true;
        e.doc.score.beatMut(0, 1, 0).Tuplet = 40;
        e.doc.score.SetTimeSignature(2, 3, 0);
      },
      [](Editor& e) {
        e.doc.score.Tracks[0].DrumTrack = true;
        e.doc.score.SetTimeSignature(0, 0, 4);
      },
      [](Editor& e) {  // a real song: several tracks, repeats, a coda
        MemorySettingsStore settings;
        ASSERT_EQ(OpenMusicFile(e.doc, PLECTARO_SOURCE_DIR "/data/examples/band.plm", settings),
                  OpenOutcome::Opened);
      },
  };
  std::mt19937 rng(20261123);
  for (size_t i = 0; i < std::size(starts); ++i) {
    Editor e;
    e.ctx.setUndoLevels(8);
    starts[i](e);
    for (int step = 0; step < 3000; ++step) {
      if (step % 250 == 249) SetCursorTrack(e.ctx, static_cast<int>(rng() % e.doc.score.Tracks.size()));
      const KeyPress& k = keys[rng() % keys.size()];
      picDocument_KeyDown(e.ctx, k.key, k.mods);
      expectWellFormed(e, step);
      if (HasFatalFailure()) {
        ADD_FAILURE() << "start " << i;
        return;
      }
    }
    EXPECT_EQ(e.prompter.pending(), 0u);
  }
}

}  // namespace
}  // namespace plectaro::test
