#include "ambrelio/platform/event_loop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace ambrelio {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class EventLoopTest : public ::testing::Test {
 protected:
  EventLoop::Handler Log(const std::string& event) {
    return [this, event] { log.push_back(event); };
  }

  ManualTicks ticks;
  EventLoop loop{ticks};
  std::vector<std::string> log;
};

// --- timers

TEST_F(EventLoopTest, DeliversATimerWhenItsDelayHasPassed) {
  loop.StartTimer(Milliseconds(100), Log("tick"));
  loop.RunFor(Milliseconds(99));
  EXPECT_THAT(log, IsEmpty());
  loop.RunFor(Milliseconds(1));
  EXPECT_THAT(log, ElementsAre("tick"));
}

TEST_F(EventLoopTest, DeliversATimerOnce) {
  loop.StartTimer(Milliseconds(100), Log("tick"));
  loop.RunFor(Milliseconds(1000));
  EXPECT_THAT(log, ElementsAre("tick"));
}

TEST_F(EventLoopTest, DeliversNothingBetweenRuns) {
  loop.StartTimer(Milliseconds(0), Log("tick"));
  ticks.Pass(Milliseconds(50));
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(EventLoopTest, DeliversTimersInTheOrderOfTheirMoments) {
  loop.StartTimer(Milliseconds(30), Log("third"));
  loop.StartTimer(Milliseconds(10), Log("first"));
  loop.StartTimer(Milliseconds(20), Log("second"));
  loop.RunFor(Milliseconds(30));
  EXPECT_THAT(log, ElementsAre("first", "second", "third"));
}

TEST_F(EventLoopTest, DeliversTimersOfOneMomentInTheOrderOfTheirStarts) {
  loop.StartTimer(Milliseconds(20), Log("early"));
  ticks.Pass(Milliseconds(10));
  loop.StartTimer(Milliseconds(10), Log("late"));
  loop.StartTimer(Milliseconds(10), Log("last"));
  loop.RunFor(Milliseconds(10));
  EXPECT_THAT(log, ElementsAre("early", "late", "last"));
}

TEST_F(EventLoopTest, TakesANegativeDelayForNone) {
  loop.StartTimer(Milliseconds(0), Log("none"));
  loop.StartTimer(Milliseconds(-50), Log("negative"));
  loop.RunUntilIdle();
  EXPECT_THAT(log, ElementsAre("none", "negative"));
}

TEST_F(EventLoopTest, NeverReachesTheEndOfTime) {
  ticks.Pass(Milliseconds(5));
  loop.StartTimer(Milliseconds::max(), Log("never"));
  loop.RunFor(Milliseconds(1'000'000'000));
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(EventLoopTest, DeliversWhatAHandlerMakesDueAtOnce) {
  loop.StartTimer(Milliseconds(10), [this] {
    log.push_back("outer");
    loop.StartTimer(Milliseconds(0), Log("inner"));
  });
  loop.RunFor(Milliseconds(10));
  EXPECT_THAT(log, ElementsAre("outer", "inner"));
}

TEST_F(EventLoopTest, DoesNotDeliverAStoppedTimer) {
  const auto timer = loop.StartTimer(Milliseconds(10), Log("tick"));
  loop.StopTimer(timer);
  loop.RunFor(Milliseconds(100));
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(EventLoopTest, StoppingADeliveredOrUnknownTimerDoesNothing) {
  const auto timer = loop.StartTimer(Milliseconds(10), Log("tick"));
  loop.StartTimer(Milliseconds(20), Log("other"));
  loop.RunFor(Milliseconds(10));
  loop.StopTimer(timer);
  loop.StopTimer(timer + 1000);
  loop.StopTimer(0);
  loop.RunFor(Milliseconds(10));
  EXPECT_THAT(log, ElementsAre("tick", "other"));
}

TEST_F(EventLoopTest, AHandlerMayStopATimerThatIsDueToo) {
  EventLoop::TimerId other = 0;
  loop.StartTimer(Milliseconds(10), [&] { loop.StopTimer(other); });
  other = loop.StartTimer(Milliseconds(10), Log("tick"));
  loop.RunFor(Milliseconds(10));
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(EventLoopTest, AHandlerMayStopItsOwnTimer) {
  EventLoop::TimerId own = 0;
  const std::string text = "still there";
  own = loop.StartTimer(Milliseconds(10), [&, text] {
    loop.StopTimer(own);
    log.push_back(text);
  });
  loop.RunFor(Milliseconds(10));
  EXPECT_THAT(log, ElementsAre("still there"));
}

TEST_F(EventLoopTest, WhatAStoppedHandlerHeldMayStopAnotherTimer) {
  const auto other = loop.StartTimer(Milliseconds(10), Log("tick"));
  std::shared_ptr<void> held(nullptr, [&](void*) { loop.StopTimer(other); });
  const auto timer = loop.StartTimer(Milliseconds(10), [kept = std::move(held)] {});
  loop.StopTimer(timer);
  loop.RunFor(Milliseconds(10));
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(EventLoopTest, AHandlerMayRunTheLoop) {
  loop.StartTimer(Milliseconds(10), [this] {
    log.push_back("begin");
    loop.RunFor(Milliseconds(20));
    log.push_back("end");
  });
  loop.StartTimer(Milliseconds(20), Log("within"));
  loop.RunFor(Milliseconds(10));
  EXPECT_THAT(log, ElementsAre("begin", "within", "end"));
}

// --- errors

TEST_F(EventLoopTest, WhatAHandlerRaisesComesOutOfTheRun) {
  loop.StartTimer(Milliseconds(10), [] { throw std::runtime_error("broken"); });
  loop.StartTimer(Milliseconds(10), Log("kept"));
  EXPECT_THROW(loop.RunFor(Milliseconds(100)), std::runtime_error);
  EXPECT_THAT(log, IsEmpty());
  EXPECT_EQ(ticks.Now(), Milliseconds(10));
  loop.RunUntilIdle();
  EXPECT_THAT(log, ElementsAre("kept"));
}

TEST_F(EventLoopTest, AnErrorComesOutOfEveryKindOfRun) {
  const auto fail = [] { throw std::runtime_error("broken"); };
  loop.StartTimer(Milliseconds(0), fail);
  EXPECT_THROW(loop.RunUntilIdle(), std::runtime_error);
  loop.StartTimer(Milliseconds(0), fail);
  EXPECT_THROW(loop.RunUntil([] { return false; }, Milliseconds(1)), std::runtime_error);
  loop.RunFor(Milliseconds(100));
}

// --- RunFor

TEST_F(EventLoopTest, RunForLetsItsDurationPass) {
  loop.RunFor(Milliseconds(70));
  EXPECT_EQ(ticks.Now(), Milliseconds(70));
  loop.StartTimer(Milliseconds(10), Log("tick"));
  loop.RunFor(Milliseconds(30));
  EXPECT_EQ(ticks.Now(), Milliseconds(100));
}

TEST_F(EventLoopTest, RunForANegativeDurationDeliversWhatIsDue) {
  loop.StartTimer(Milliseconds(0), Log("due"));
  loop.StartTimer(Milliseconds(1), Log("later"));
  loop.RunFor(Milliseconds(-10));
  EXPECT_THAT(log, ElementsAre("due"));
  EXPECT_EQ(ticks.Now(), Milliseconds(0));
}

// Time that passes with every look at it.
class BusyTicks : public TickClock {
 public:
  Milliseconds Now() const override { return ++now_; }
  Milliseconds Pass(Milliseconds) override { return Milliseconds(0); }

 private:
  mutable Milliseconds now_{0};
};

TEST(EventLoop, RunForEndsAlthoughEventsGoOn) {
  BusyTicks ticks;
  EventLoop loop(ticks);
  int delivered = 0;
  const EventLoop::Handler again = [&] {
    ++delivered;
    loop.StartTimer(Milliseconds(0), again);
  };
  loop.StartTimer(Milliseconds(0), again);
  loop.RunFor(Milliseconds(100));
  EXPECT_GT(delivered, 1);
}

// --- RunUntil

TEST(EventLoop, RunUntilCountsAnEventThatTookLongerThanItsLimit) {
  BusyTicks ticks;
  EventLoop loop(ticks);
  bool ticked = false;
  loop.StartTimer(Milliseconds(0), [&] {
    for (int i = 0; i < 100; ++i) ticks.Now();
    ticked = true;
  });
  EXPECT_TRUE(loop.RunUntil([&ticked] { return ticked; }, Milliseconds(50)));
}

TEST_F(EventLoopTest, RunUntilDeliversNothingWhenItIsDoneAlready) {
  loop.StartTimer(Milliseconds(0), Log("due"));
  EXPECT_TRUE(loop.RunUntil([] { return true; }, Milliseconds(100)));
  EXPECT_THAT(log, IsEmpty());
  EXPECT_EQ(ticks.Now(), Milliseconds(0));
}

TEST_F(EventLoopTest, RunUntilAsksAfterEveryEvent) {
  for (int i = 0; i < 3; ++i) loop.StartTimer(Milliseconds(10), Log("tick"));
  EXPECT_TRUE(loop.RunUntil([this] { return log.size() == 2; }, Milliseconds(100)));
  EXPECT_EQ(log.size(), 2);
  EXPECT_EQ(ticks.Now(), Milliseconds(10));
}

TEST_F(EventLoopTest, RunUntilCountsAnEventAtItsLimit) {
  loop.StartTimer(Milliseconds(100), Log("tick"));
  EXPECT_TRUE(loop.RunUntil([this] { return !log.empty(); }, Milliseconds(100)));
}

TEST_F(EventLoopTest, RunUntilGivesUpAtItsLimit) {
  loop.StartTimer(Milliseconds(101), Log("tick"));
  EXPECT_FALSE(loop.RunUntil([this] { return !log.empty(); }, Milliseconds(100)));
  EXPECT_EQ(ticks.Now(), Milliseconds(100));
}

TEST_F(EventLoopTest, RunUntilTakesTheLongestLimit) {
  ticks.Pass(Milliseconds(5));
  loop.StartTimer(Milliseconds(100), Log("tick"));
  EXPECT_TRUE(loop.RunUntil([this] { return !log.empty(); }, Milliseconds::max()));
  EXPECT_EQ(ticks.Now(), Milliseconds(105));
}

// --- RunUntilIdle

TEST_F(EventLoopTest, RunUntilIdleDoesNotWait) {
  loop.StartTimer(Milliseconds(0), Log("due"));
  loop.StartTimer(Milliseconds(1), Log("later"));
  loop.RunUntilIdle();
  EXPECT_THAT(log, ElementsAre("due"));
  EXPECT_EQ(ticks.Now(), Milliseconds(0));
}

// --- the system's clock

// --- a waiter in the loop's place

class LoggingWaiter : public EventLoop::Waiter {
 public:
  void TimersChanged() override { log.push_back("timers"); }
  void Watching(EventLoop::SocketHandle socket) override {
    log.push_back("watching " + std::to_string(socket));
  }
  void StoppedWatching(EventLoop::SocketHandle socket) override {
    log.push_back("stopped " + std::to_string(socket));
  }
  std::vector<std::string> log;
};

TEST_F(EventLoopTest, TellsItsWaiterOfTimersAndWatches) {
  LoggingWaiter waiter;
  loop.SetWaiter(&waiter);
  const auto timer = loop.StartTimer(Milliseconds(10), Log("tick"));
  loop.StopTimer(timer);
  loop.StopTimer(timer);
  loop.Watch(5, Log("readable"));
  loop.StopWatching(5);
  loop.StopWatching(5);
  EXPECT_THAT(waiter.log, ElementsAre("timers", "timers", "timers", "watching 5", "stopped 5"));
}

TEST_F(EventLoopTest, TellsANewWaiterOfWhatIsThere) {
  loop.Watch(5, Log("readable"));
  LoggingWaiter waiter;
  loop.SetWaiter(&waiter);
  EXPECT_THAT(waiter.log, ElementsAre("timers", "watching 5"));
  loop.SetWaiter(nullptr);
  loop.StopWatching(5);
  EXPECT_THAT(waiter.log, ::testing::SizeIs(2));
}

TEST_F(EventLoopTest, KnowsTheTimeUntilTheNextTimer) {
  EXPECT_EQ(loop.UntilNextTimer(), std::nullopt);
  loop.StartTimer(Milliseconds(30), Log("later"));
  loop.StartTimer(Milliseconds(20), Log("next"));
  ticks.Pass(Milliseconds(5));
  EXPECT_EQ(loop.UntilNextTimer(), Milliseconds(15));
  ticks.Pass(Milliseconds(50));
  EXPECT_EQ(loop.UntilNextTimer(), Milliseconds(0));
}

TEST_F(EventLoopTest, RunNextDeliversOneEvent) {
  loop.StartTimer(Milliseconds(0), Log("first"));
  loop.StartTimer(Milliseconds(0), Log("second"));
  EXPECT_TRUE(loop.RunNext());
  EXPECT_THAT(log, ElementsAre("first"));
  EXPECT_TRUE(loop.RunNext());
  EXPECT_FALSE(loop.RunNext());
}

TEST(SystemTicks, NeverGoBack) {
  const Milliseconds before = TickClock::System().Now();
  EXPECT_GE(TickClock::System().Now(), before);
}

TEST(SystemTicks, LeaveTheWaitingToTheLoop) {
  EXPECT_EQ(TickClock::System().Pass(Milliseconds(70)), Milliseconds(70));
}

TEST(SystemTicks, PassWhileALoopRuns) {
  EventLoop loop;
  bool ticked = false;
  loop.StartTimer(Milliseconds(5), [&ticked] { ticked = true; });
  const Milliseconds before = TickClock::System().Now();
  EXPECT_TRUE(loop.RunUntil([&ticked] { return ticked; }, Milliseconds(60000)));
  EXPECT_GE(TickClock::System().Now(), before + Milliseconds(5));
}

TEST(SystemTicks, RunForWaitsForItsDuration) {
  EventLoop loop;
  const Milliseconds before = TickClock::System().Now();
  loop.RunFor(Milliseconds(5));
  EXPECT_GE(TickClock::System().Now(), before + Milliseconds(5));
}

}  // namespace
}  // namespace ambrelio
