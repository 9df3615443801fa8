#include "ambrelio/platform/clock.h"

#include <gtest/gtest.h>

#include <ctime>
#include <thread>

namespace ambrelio {
namespace {

const OleDate kEarly = *OleDate::FromIso("2026-11-15 08:00:00");
const OleDate kLate = *OleDate::FromIso("2026-11-15 17:30:00");

OleDate LocalNow() {
  std::time_t now = std::time(nullptr);
  const std::tm parts = *std::localtime(&now);
  return *OleDate::FromCivil({parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour,
                              parts.tm_min, parts.tm_sec});
}

TEST(SystemClock, ShowsLocalTime) {
  OleDate before = LocalNow();
  OleDate shown = Clock::System().Now();
  EXPECT_LE(before, shown);
  EXPECT_LE(shown, LocalNow());
}

TEST(SystemClock, ShowsWholeSeconds) {
  OleDate shown = Clock::System().Now();
  EXPECT_EQ(OleDate::FromCivil(shown.Civil()), shown);
}

TEST(Clock, IsTheSystemsAtFirst) { EXPECT_EQ(&Clock::Current(), &Clock::System()); }

TEST(ManualClock, ShowsWhatItWasLastSetTo) {
  ManualClock clock(kEarly);
  EXPECT_EQ(clock.Now(), kEarly);
  clock.Set(kLate);
  EXPECT_EQ(clock.Now(), kLate);
}

TEST(ScopedClock, IsInForceForItsScope) {
  ManualClock outer(kEarly);
  ScopedClock outer_scope(outer);
  {
    ManualClock inner(kLate);
    ScopedClock inner_scope(inner);
    EXPECT_EQ(Clock::Current().Now(), kLate);
  }
  EXPECT_EQ(&Clock::Current(), &outer);
}

TEST(ScopedClock, IsOfItsThreadOnly) {
  ManualClock clock(kEarly);
  ScopedClock scope(clock);
  const Clock* elsewhere = nullptr;
  std::thread([&elsewhere] { elsewhere = &Clock::Current(); }).join();
  EXPECT_EQ(elsewhere, &Clock::System());
}

}  // namespace
}  // namespace ambrelio
