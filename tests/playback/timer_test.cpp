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

}  // namespace
}  // namespace plectaro
