#include "ambrelio/kestro/timer.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace ambrelio::kestro {
namespace {

class TimerTest : public ::testing::Test {
 protected:
  void Run(int milliseconds) { loop.RunFor(Milliseconds(milliseconds)); }

  ManualTicks ticks;
  EventLoop loop{ticks};
  int tics = 0;
  Timer timer{loop, [this] { ++tics; }};
};

TEST_F(TimerTest, RestsUntilStarted) {
  timer.SetInterval(100);
  EXPECT_FALSE(timer.Enabled());
  Run(1000);
  EXPECT_EQ(tics, 0);
}

TEST_F(TimerTest, TicksAfterEachInterval) {
  timer.SetInterval(100);
  timer.Start();
  EXPECT_TRUE(timer.Enabled());
  Run(99);
  EXPECT_EQ(tics, 0);
  Run(1);
  EXPECT_EQ(tics, 1);
  Run(100);
  EXPECT_EQ(tics, 2);
  EXPECT_TRUE(timer.Enabled());
}

TEST_F(TimerTest, TicksNoMoreOnceStopped) {
  timer.SetInterval(100);
  timer.Start();
  Run(50);
  timer.Stop();
  timer.Stop();
  EXPECT_FALSE(timer.Enabled());
  Run(1000);
  EXPECT_EQ(tics, 0);
}

TEST_F(TimerTest, StartingAgainStartsAnew) {
  timer.SetInterval(100);
  timer.Start();
  Run(60);
  timer.Start();
  Run(99);
  EXPECT_EQ(tics, 0);
  Run(1);
  EXPECT_EQ(tics, 1);
}

TEST_F(TimerTest, AnIntervalCountsFromTheNextStart) {
  timer.SetInterval(100);
  timer.Start();
  timer.SetInterval(30);
  Run(100);
  EXPECT_EQ(tics, 1);
  Run(99);
  EXPECT_EQ(tics, 1);
  timer.Start();
  Run(30);
  EXPECT_EQ(tics, 2);
}

TEST_F(TimerTest, TenMillisecondsAreTheLeast) {
  for (const int interval : {9, 0, -5}) {
    tics = 0;
    timer.SetInterval(interval);
    timer.Start();
    Run(9);
    EXPECT_EQ(tics, 0) << interval;
    Run(1);
    EXPECT_EQ(tics, 1) << interval;
  }
}

TEST_F(TimerTest, MayBeStoppedByItsTick) {
  int count = 0;
  Timer once(loop, [&] {
    ++count;
    once.Stop();
  });
  once.Start();
  Run(1000);
  EXPECT_EQ(count, 1);
}

TEST_F(TimerTest, MayBeStartedAnewByItsTick) {
  int count = 0;
  Timer slower(loop, [&] {
    ++count;
    slower.Stop();
    slower.SetInterval(count * 100);
    slower.Start();
  });
  slower.Start();
  Run(10 + 100 + 200);
  EXPECT_EQ(count, 3);
}

TEST_F(TimerTest, MayBeDestroyedByItsTick) {
  const std::string note = "a text too long to be kept within the function object";
  std::string seen;
  std::unique_ptr<Timer> passing;
  passing = std::make_unique<Timer>(loop, [&, note] {
    passing.reset();
    seen = note;
  });
  passing->Start();
  Run(1000);
  EXPECT_EQ(seen, note);
}

TEST_F(TimerTest, IsStoppedByItsDestruction) {
  int count = 0;
  {
    Timer passing(loop, [&count] { ++count; });
    passing.Start();
  }
  Run(1000);
  EXPECT_EQ(count, 0);
}

TEST_F(TimerTest, GoesOnAfterATickThatRaised) {
  int count = 0;
  Timer failing(loop, [&count] {
    if (++count == 1) throw std::runtime_error("broken");
  });
  failing.Start();
  EXPECT_THROW(Run(100), std::runtime_error);
  Run(10);
  EXPECT_EQ(count, 2);
}

}  // namespace
}  // namespace ambrelio::kestro
