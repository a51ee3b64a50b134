#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSignalSpy>

#include "playback/qt/player.h"
#include "playback/qt/qt_clock.h"
#include "playback/recording_out.h"
#include "playback/virtual_clock.h"
#include "song_builder.h"

namespace plectaro {
namespace {

QCoreApplication& App() {
  static int argc = 1;
  static char name[] = "playback_qt_tests";
  static char* argv[] = {name, nullptr};
  static QCoreApplication app(argc, argv);
  return app;
}

// Runs the event loop until `done` or a generous time limit.
template <class Pred>
void Pump(Pred done, int limitMs = 5000) {
  QElapsedTimer t;
  t.start();
  while (!done() && t.elapsed() < limitMs) QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
}

TEST(QtClock, PeriodicTimerFiresInOrderAndStops) {
  App();
  QtPlaybackClock clock;
  auto timer = clock.createTimer();
  std::vector<double> fired;
  timer->setPeriodic(true);
  timer->setOnTimer([&] {
    fired.push_back(clock.nowMs());
    if (fired.size() == 20) timer->setEnabled(false);
    else timer->setInterval(5);  // restarting from its own handler, as the scheduler does
  });
  timer->setInterval(5);
  const double start = clock.nowMs();
  timer->setEnabled(true);
  Pump([&] { return !timer->armed(); });
  ASSERT_EQ(fired.size(), 20u);
  EXPECT_TRUE(std::is_sorted(fired.begin(), fired.end()));
  // Never early: each firing comes at or after its point on the grid of the start (late ones
  // are the machine's business, not this test's).
  for (size_t i = 0; i < fired.size(); ++i) EXPECT_GE(fired[i], start + 5.0 * static_cast<double>(i + 1));
}

TEST(Player, PlaysASnapshotAndReportsTheMarker) {
  VirtualClock clock;
  RecordingMidiOut out([&] { return clock.nowMs(); });
  Player player(out, clock);
  Document doc;
  doc.score = test::MakeSong(1, 2);
  test::FourQuarters(doc.score, 0, 0, 0, "0");
  test::FourQuarters(doc.score, 0, 1, 0, "2");
  doc.Layout = {{BarLayout{100, 400, 300, true, 0, 50, 1, 0}, BarLayout{400, 400, 300, false, 0, 60, 1, 1}}};
  doc.CursorBar = 1;

  QSignalSpy moved(&player, &Player::playMarkerMoved);
  QSignalSpy playing(&player, &Player::playingChanged);
  QSignalSpy follow(&player, &Player::followBar);
  player.playFromHere(doc);
  EXPECT_TRUE(player.isPlaying());
  doc.score = Score();  // editing the document does not disturb what plays
  clock.runUntilIdle(1e9);
  EXPECT_FALSE(player.isPlaying());

  std::vector<int> keys;
  for (const auto& n : test::NoteOns(out.messages)) keys.push_back(n.note);
  EXPECT_EQ(keys, (std::vector<int>{66, 66, 66, 66}));
  ASSERT_GE(moved.size(), 4);
  // Bar 1 has no signature: beat k stands at DrawX + k x spacing + 11, 20 below the row top.
  EXPECT_EQ(moved[0], (QList<QVariant>{411, 420, true}));
  EXPECT_EQ(moved[3], (QList<QVariant>{400 + 3 * 60 + 11, 420, true}));
  EXPECT_EQ(moved.back()[2].toBool(), false);  // hidden at the end
  ASSERT_EQ(follow.size(), 1);  // scrolled once, to bar 1
  EXPECT_EQ(follow[0][0].toInt(), 1);
  ASSERT_EQ(playing.size(), 2);
  EXPECT_EQ(playing[0][0].toBool(), true);
  EXPECT_EQ(playing[1][0].toBool(), false);
  EXPECT_TRUE(test::EveryNoteEnds(out.messages));
}

TEST(Player, TypedNotesSoundAndStopByThemselves) {
  VirtualClock clock;
  RecordingMidiOut out([&] { return clock.nowMs(); });
  Player player(out, clock);
  Document doc;
  doc.score = test::MakeSong(1, 1);
  test::AddBeat(doc.score, 0, 0, kQuarter, {{2, "7"}});
  player.soundBeat(doc, 0, 4, 0);  // no such bar: nothing, no crash
  player.soundBeat(doc, 0, 0, 0);
  const auto ons = test::NoteOns(out.messages);
  ASSERT_EQ(ons.size(), 1u);
  EXPECT_EQ(ons[0].note, 62);
  EXPECT_FALSE(test::EveryNoteEnds(out.messages));
  clock.advanceBy(2500);
  EXPECT_TRUE(test::EveryNoteEnds(out.messages));
}

}  // namespace
}  // namespace plectaro
