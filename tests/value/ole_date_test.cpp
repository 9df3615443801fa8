#include "ambrelio/value/ole_date.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/error_of.h"

namespace ambrelio {
namespace {

using test::ErrorOf;

TEST(OleDate, IsTheZeroDateWhenUnset) {
  EXPECT_EQ(OleDate().days(), 0);
  EXPECT_EQ(OleDate().Iso(), "1899-12-30 00:00:00");
}

TEST(OleDate, CountsDaysFromTheZeroDate) {
  EXPECT_EQ(OleDate::FromCivil({1899, 12, 31, 0, 0, 0})->days(), 1);
  EXPECT_EQ(OleDate::FromCivil({1900, 3, 1, 0, 0, 0})->days(), 61);
  EXPECT_EQ(OleDate::FromCivil({2003, 3, 5, 0, 0, 0})->days(), 37685);
  EXPECT_EQ(OleDate::FromCivil({2003, 3, 5, 12, 0, 0})->days(), 37685.5);
}

TEST(OleDate, CountsTheTimeForwardBeforeTheZeroDate) {
  EXPECT_EQ(OleDate::FromCivil({1899, 12, 29, 6, 0, 0})->days(), -1.25);
  EXPECT_EQ(OleDate::FromDays(-1.25).Iso(), "1899-12-29 06:00:00");
}

TEST(OleDate, GivesEveryCivilTimeOfADayBack) {
  for (int day : {29, 30, 31}) {
    for (int second = 0; second < 86400; ++second) {
      CivilTime civil{1899, 12, day, second / 3600, second / 60 % 60, second % 60};
      ASSERT_EQ(OleDate::FromCivil(civil)->Civil(), civil);
    }
  }
}

TEST(OleDate, IsOneNumberForOneMoment) {
  OleDate date = *OleDate::FromCivil({2026, 11, 15, 17, 30, 59});
  EXPECT_EQ(*OleDate::FromIso("2026-11-15 17:30:59"), date);
  EXPECT_EQ(date.days(), 46341 + 63059 / 86400.0);
}

TEST(OleDate, OrdersMoments) {
  OleDate earlier = *OleDate::FromIso("2026-11-15 17:30:58");
  OleDate later = *OleDate::FromIso("2026-11-15 17:30:59");
  EXPECT_LT(earlier, later);
  EXPECT_NE(earlier, later);
}

TEST(OleDate, ReachesFromTheYear100To9999) {
  EXPECT_EQ(OleDate::FromCivil({100, 1, 1, 0, 0, 0})->days(), -657434);
  EXPECT_EQ(OleDate::FromCivil({100, 1, 1, 23, 59, 59})->Iso(), "0100-01-01 23:59:59");
  EXPECT_EQ(OleDate::FromCivil({9999, 12, 31, 0, 0, 0})->days(), 2958465);
  EXPECT_EQ(OleDate::FromCivil({9999, 12, 31, 23, 59, 59})->Iso(), "9999-12-31 23:59:59");
}

TEST(OleDate, RefusesPartsThatAreNoMoment) {
  EXPECT_FALSE(OleDate::FromCivil({99, 12, 31, 0, 0, 0}));
  EXPECT_FALSE(OleDate::FromCivil({10000, 1, 1, 0, 0, 0}));
  EXPECT_FALSE(OleDate::FromCivil({2026, 0, 1, 0, 0, 0}));
  EXPECT_FALSE(OleDate::FromCivil({2026, 13, 1, 0, 0, 0}));
  EXPECT_FALSE(OleDate::FromCivil({2026, 1, 0, 0, 0, 0}));
  EXPECT_FALSE(OleDate::FromCivil({2026, 4, 31, 0, 0, 0}));
  EXPECT_FALSE(OleDate::FromCivil({2026, 1, 1, 24, 0, 0}));
  EXPECT_FALSE(OleDate::FromCivil({2026, 1, 1, 0, 60, 0}));
  EXPECT_FALSE(OleDate::FromCivil({2026, 1, 1, 0, 0, 60}));
  EXPECT_FALSE(OleDate::FromCivil({2026, 1, 1, -1, 0, 0}));
}

TEST(OleDate, KnowsLeapYears) {
  EXPECT_TRUE(OleDate::FromCivil({2024, 2, 29, 0, 0, 0}));
  EXPECT_TRUE(OleDate::FromCivil({2000, 2, 29, 0, 0, 0}));
  EXPECT_FALSE(OleDate::FromCivil({1900, 2, 29, 0, 0, 0}));
  EXPECT_FALSE(OleDate::FromCivil({2026, 2, 29, 0, 0, 0}));
}

TEST(OleDate, RoundsToTheNearestSecond) {
  EXPECT_EQ(OleDate::FromDays(1 + 10.4 / 86400).Iso(), "1899-12-31 00:00:10");
  EXPECT_EQ(OleDate::FromDays(1 + 10.6 / 86400).Iso(), "1899-12-31 00:00:11");
}

TEST(OleDate, CarriesTheRoundedSecondIntoTheNextDay) {
  EXPECT_EQ(OleDate::FromDays(2 - 0.4 / 86400).Iso(), "1900-01-01 00:00:00");
  EXPECT_EQ(OleDate::FromDays(-1 - 86399.6 / 86400).Iso(), "1899-12-30 00:00:00");
}

TEST(OleDate, RaisesOverflowOutsideTheCalendar) {
  for (double days : {1e300, -1e300, 2958466.0, -657435.0, 2958465 + 86399.9 / 86400,
                      std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(ErrorOf([days] { OleDate::FromDays(days).Civil(); }), 6) << days;
  }
}

TEST(OleDate, WritesAndReadsIsoText) {
  EXPECT_EQ(OleDate::FromIso("2003-03-05 08:04:09")->Civil(), (CivilTime{2003, 3, 5, 8, 4, 9}));
  EXPECT_EQ(OleDate::FromIso("2003-03-05 08:04:09")->Iso(), "2003-03-05 08:04:09");
}

TEST(OleDate, ReadsNoOtherTextAsIso) {
  for (const char* text : {"", "2003-03-05", "2003-03-05 08:04", "2003-03-05T08:04:09",
                           "2003/03/05 08:04:09", "2003-03-05 08:04:0x", "2003-03-05 08:04:09 ",
                           " 2003-03-05 08:04:09", "2003-13-05 08:04:09", "2003-02-30 08:04:09",
                           "2003-03-05 24:04:09", "-003-03-05 08:04:09"}) {
    EXPECT_FALSE(OleDate::FromIso(text)) << text;
  }
}

TEST(OleDate, EndsItsDayAtTheNextMidnight) {
  EXPECT_EQ(OleDate::FromIso("2026-11-15 17:30:00")->NextDay().Iso(), "2026-11-16 00:00:00");
  EXPECT_EQ(OleDate::FromIso("2026-11-15 00:00:00")->NextDay().Iso(), "2026-11-16 00:00:00");
  EXPECT_EQ(OleDate::FromIso("2024-02-28 23:59:59")->NextDay().Iso(), "2024-02-29 00:00:00");
  EXPECT_EQ(OleDate::FromIso("1899-12-29 06:00:00")->NextDay(), OleDate());
}

}  // namespace
}  // namespace ambrelio
