#include <gtest/gtest.h>

#include "playback/hi_pre_timer.h"
#include "playback/virtual_clock.h"

namespace plectaro {
namespace {

TEST(Timer, IntervalForTempoRoundsHalvesToEven) {
  const std::pair<double, int> cases[] = {{120, 31}, {60, 62}, {240, 16}, {100, 38}, {3750, 1},
                                          {7500, 1}, {0, 32767}, {-5, 32767}, {0.01, 32767}};
  for (auto [tempo, ms] : cases) EXPECT_EQ(IntervalForTempo(tempo), ms) << tempo;
}

TEST(Timer, PropertyWrites) {
  VirtualClock clock;
  auto t = clock.createTimer();
  t->setInterval(0);
  EXPECT_EQ(t->Interval(), 1);
  t->setInterval(-20);
  EXPECT_EQ(t->Interval(), 1);
  t->setResolution(10000);
  EXPECT_LE(t->Resolution(), t->PeriodMax());
  t->setResolution(0);
  EXPECT_EQ(t->Resolution(), t->PeriodMin());
  // Writing the interval of a stopped timer does not start it; stopping it again is harmless.
  t->setInterval(10);
  EXPECT_FALSE(t->Enabled());
  EXPECT_FALSE(t->armed());
  t->setEnabled(false);
  EXPECT_FALSE(t->armed());
}

TEST(Timer, PeriodicFiringsAreDueOnTheGridOfTheStart) {
  VirtualClock clock;
  auto t = clock.createTimer();
  std::vector<double> fired;
  t->setOnTimer([&] { fired.push_back(clock.nowMs()); });
  t->setPeriodic(true);
  t->setInterval(16);
  clock.advanceTo(5);
  t->setEnabled(true);
  clock.advanceTo(70);
  EXPECT_EQ(fired, (std::vector<double>{21, 37, 53, 69}));
}

TEST(Timer, OneShotFiresOnce) {
  VirtualClock clock;
  auto t = clock.createTimer();
  int n = 0;
  t->setOnTimer([&] { ++n; });
  t->setInterval(10);
  t->setEnabled(true);
  clock.advanceTo(100);
  EXPECT_EQ(n, 1);
  EXPECT_TRUE(t->Enabled());  // the property stays as written; only the event is spent
}

TEST(Timer, RestartFromItsOwnHandlerDoesNotDrift) {
  // The scheduler rewrites Interval on every step. Counted from the moment the firing was due,
  // the steps stay on the grid even when a step's own work takes time.
  VirtualClock clock;
  auto t = clock.createTimer();
  std::vector<double> fired;
  t->setPeriodic(true);
  t->setOnTimer([&] {
    fired.push_back(clock.nowMs());
    t->setInterval(t->Interval());
  });
  t->setInterval(31);
  t->setEnabled(true);
  clock.advanceTo(31 * 1000);
  ASSERT_EQ(fired.size(), 1000u);
  EXPECT_EQ(fired.back(), 31.0 * 1000);
}

TEST(Timer, RestartFromOutsideCountsFromNow) {
  VirtualClock clock;
  auto t = clock.createTimer();
  std::vector<double> fired;
  t->setOnTimer([&] { fired.push_back(clock.nowMs()); });
  t->setPeriodic(true);
  t->setInterval(10);
  t->setEnabled(true);
  clock.advanceTo(15);
  t->setInterval(10);  // restarts the period from 15
  clock.advanceTo(40);
  EXPECT_EQ(fired, (std::vector<double>{10, 25, 35}));
}

TEST(Timer, TimersFireInTimeOrderAcrossTimers) {
  VirtualClock clock;
  auto a = clock.createTimer();
  auto b = clock.createTimer();
  std::string order;
  a->setOnTimer([&] { order += 'a'; });
  b->setOnTimer([&] { order += 'b'; });
  a->setPeriodic(true);
  b->setPeriodic(true);
  a->setInterval(10);
  b->setInterval(15);
  a->setEnabled(true);
  b->setEnabled(true);
  clock.advanceTo(30);
  EXPECT_EQ(order, "ababa");  // 10a 15b 20a, then at 30 b first: it was armed for 30 earlier
}

TEST(Timer, StopwatchFormat) {
  clsTimer sw;
  sw.StartTimer();
  sw.StopTimer();
  const std::string text = sw.Elasped();
  EXPECT_NE(text.find('.'), std::string::npos);
  EXPECT_EQ(text.size() - text.find('.'), 3u);  // two decimals
  EXPECT_GE(sw.elapsedMs(), 0.0);
}

}  // namespace
}  // namespace plectaro
