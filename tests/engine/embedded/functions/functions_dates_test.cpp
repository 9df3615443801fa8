#include <gtest/gtest.h>

#include "ambrelio/platform/clock.h"
#include "ambrelio/value/locale.h"
#include "support/function_db.h"

namespace ambrelio::embedded {
namespace {

class DateFunctions : public testing::Test {
 protected:
  // DateAdd(interval, n, moment) as a moment.
  std::string Add(const std::string& interval, int count, const std::string& moment) {
    return db_.Date("jet_date_add('" + interval + "', " + std::to_string(count) + ", " +
                    DaysOf(moment) + ")");
  }
  std::string Diff(const std::string& interval, const std::string& from, const std::string& to) {
    return db_.Eval("jet_date_diff('" + interval + "', " + DaysOf(from) + ", " + DaysOf(to) + ")");
  }
  std::string Part(const std::string& interval, const std::string& moment) {
    return db_.Eval("jet_date_part('" + interval + "', " + DaysOf(moment) + ")");
  }

  FunctionDb db_;
  ScopedLocale locale_{Locale()};
};

TEST_F(DateFunctions, TellTheMomentOfTheClock) {
  const ManualClock clock(OleDate::FromIso("2024-01-17 13:45:10").value());
  const ScopedClock scope(clock);
  EXPECT_EQ(db_.Date("jet_now()"), "2024-01-17 13:45:10");
  EXPECT_EQ(db_.Date("jet_date()"), "2024-01-17 00:00:00");
  EXPECT_EQ(db_.Date("jet_time()"), "1899-12-30 13:45:10");
}

TEST_F(DateFunctions, GiveTheParts) {
  const std::string moment = DaysOf("2024-02-29 13:45:10");
  EXPECT_EQ(db_.Eval("jet_year(" + moment + ")"), "2024");
  EXPECT_EQ(db_.Eval("jet_month(" + moment + ")"), "2");
  EXPECT_EQ(db_.Eval("jet_day(" + moment + ")"), "29");
  EXPECT_EQ(db_.Eval("jet_hour(" + moment + ")"), "13");
  EXPECT_EQ(db_.Eval("jet_minute(" + moment + ")"), "45");
  EXPECT_EQ(db_.Eval("jet_second(" + moment + ")"), "10");
}

TEST_F(DateFunctions, RoundTheMomentToTheSecondFirst) {
  EXPECT_EQ(db_.Eval("jet_year(0.9999999)"), "1899");
  EXPECT_EQ(db_.Eval("jet_day(0.9999999)"), "31");
  EXPECT_EQ(db_.Eval("jet_hour(0.9999999)"), "0");
}

TEST_F(DateFunctions, ReadDatesOutOfText) {
  EXPECT_EQ(db_.Eval("jet_month('3/14/2024')"), "3");
  EXPECT_EQ(db_.ErrorOf("jet_month('soon')"), 13);
}

TEST_F(DateFunctions, RefuseDaysOutsideTheCalendar) {
  EXPECT_EQ(db_.ErrorOf("jet_year(1e9)"), 6);
  EXPECT_EQ(db_.ErrorOf("jet_year(-1e9)"), 6);
}

TEST_F(DateFunctions, WeekdayCountsFromSunday) {
  EXPECT_EQ(db_.Eval("jet_weekday(" + DaysOf("2024-03-03 10:00:00") + ")"), "1");
  EXPECT_EQ(db_.Eval("jet_weekday(" + DaysOf("2024-03-09 10:00:00") + ")"), "7");
}

TEST_F(DateFunctions, DateAddKnowsEveryInterval) {
  const std::string moment = "2024-01-15 10:20:30";
  EXPECT_EQ(Add("yyyy", 2, moment), "2026-01-15 10:20:30");
  EXPECT_EQ(Add("q", 1, moment), "2024-04-15 10:20:30");
  EXPECT_EQ(Add("m", -1, moment), "2023-12-15 10:20:30");
  EXPECT_EQ(Add("y", 1, moment), "2024-01-16 10:20:30");
  EXPECT_EQ(Add("d", -15, moment), "2023-12-31 10:20:30");
  EXPECT_EQ(Add("w", 1, moment), "2024-01-16 10:20:30");
  EXPECT_EQ(Add("ww", 1, moment), "2024-01-22 10:20:30");
  EXPECT_EQ(Add("h", 14, moment), "2024-01-16 00:20:30");
  EXPECT_EQ(Add("n", -21, moment), "2024-01-15 09:59:30");
  EXPECT_EQ(Add("S", 30, moment), "2024-01-15 10:21:00");
}

TEST_F(DateFunctions, DateAddKeepsWithinTheMonth) {
  EXPECT_EQ(Add("m", 1, "2024-01-31 00:00:00"), "2024-02-29 00:00:00");
  EXPECT_EQ(Add("m", 1, "2023-01-31 00:00:00"), "2023-02-28 00:00:00");
  EXPECT_EQ(Add("yyyy", 1, "2024-02-29 00:00:00"), "2025-02-28 00:00:00");
  EXPECT_EQ(Add("q", -1, "2024-05-31 00:00:00"), "2024-02-29 00:00:00");
}

TEST_F(DateFunctions, DateAddCrossesTheZeroDate) {
  EXPECT_EQ(Add("h", -6, "1899-12-30 00:00:00"), "1899-12-29 18:00:00");
  EXPECT_EQ(Add("h", 12, "1899-12-29 18:00:00"), "1899-12-30 06:00:00");
}

TEST_F(DateFunctions, DateAddRefusesTheEndsOfTheCalendar) {
  EXPECT_EQ(db_.ErrorOf("jet_date_add('yyyy', 8101, 0)"), 5);
  EXPECT_EQ(db_.ErrorOf("jet_date_add('m', -2147483648, 0)"), 5);
  EXPECT_EQ(db_.ErrorOf("jet_date_add('ww', 2147483647, 0)"), 5);
}

TEST_F(DateFunctions, DateDiffCountsBoundaries) {
  EXPECT_EQ(Diff("yyyy", "2023-12-31 23:59:59", "2024-01-01 00:00:00"), "1");
  EXPECT_EQ(Diff("q", "2024-03-31 00:00:00", "2024-04-01 00:00:00"), "1");
  EXPECT_EQ(Diff("m", "2024-01-31 00:00:00", "2024-02-01 00:00:00"), "1");
  EXPECT_EQ(Diff("d", "2024-01-31 23:00:00", "2024-02-01 01:00:00"), "1");
  EXPECT_EQ(Diff("y", "2024-01-31 23:00:00", "2024-02-01 01:00:00"), "1");
  EXPECT_EQ(Diff("h", "2024-01-31 10:59:59", "2024-01-31 11:00:00"), "1");
  EXPECT_EQ(Diff("n", "2024-01-31 10:59:59", "2024-01-31 11:00:00"), "1");
  EXPECT_EQ(Diff("s", "2024-01-31 10:00:00", "2024-01-31 11:00:00"), "3600");
}

TEST_F(DateFunctions, DateDiffCountsBackwards) {
  EXPECT_EQ(Diff("d", "2024-02-01 01:00:00", "2024-01-31 23:00:00"), "-1");
  EXPECT_EQ(Diff("m", "2024-02-01 00:00:00", "2023-12-01 00:00:00"), "-2");
  EXPECT_EQ(Diff("h", "1899-12-30 06:00:00", "1899-12-29 18:00:00"), "-12");
}

TEST_F(DateFunctions, DateDiffOfWeeksCountsSundays) {
  // The 3rd of March 2024 is a Sunday.
  EXPECT_EQ(Diff("ww", "2024-03-02 00:00:00", "2024-03-03 00:00:00"), "1");
  EXPECT_EQ(Diff("ww", "2024-03-03 00:00:00", "2024-03-09 00:00:00"), "0");
  EXPECT_EQ(Diff("ww", "2024-03-10 00:00:00", "2024-03-02 00:00:00"), "-2");
}

TEST_F(DateFunctions, DateDiffOfWeekdaysCountsSpansOfSevenDays) {
  EXPECT_EQ(Diff("w", "2024-03-02 00:00:00", "2024-03-08 00:00:00"), "0");
  EXPECT_EQ(Diff("w", "2024-03-02 00:00:00", "2024-03-09 00:00:00"), "1");
  EXPECT_EQ(Diff("w", "2024-03-09 00:00:00", "2024-03-03 00:00:00"), "0");
}

TEST_F(DateFunctions, DatePartKnowsEveryInterval) {
  const std::string moment = "2024-12-31 13:45:10";
  EXPECT_EQ(Part("yyyy", moment), "2024");
  EXPECT_EQ(Part("q", moment), "4");
  EXPECT_EQ(Part("m", moment), "12");
  EXPECT_EQ(Part("y", moment), "366");
  EXPECT_EQ(Part("d", moment), "31");
  EXPECT_EQ(Part("w", moment), "3");
  EXPECT_EQ(Part("ww", moment), "53");
  EXPECT_EQ(Part("h", moment), "13");
  EXPECT_EQ(Part("n", moment), "45");
  EXPECT_EQ(Part("s", moment), "10");
}

TEST_F(DateFunctions, DatePartBeginsWeeksOnSunday) {
  // 2023 begins on a Sunday, 2022 on a Saturday.
  EXPECT_EQ(Part("ww", "2023-01-07 00:00:00"), "1");
  EXPECT_EQ(Part("ww", "2023-01-08 00:00:00"), "2");
  EXPECT_EQ(Part("ww", "2022-01-01 00:00:00"), "1");
  EXPECT_EQ(Part("ww", "2022-01-02 00:00:00"), "2");
}

TEST_F(DateFunctions, RefuseOtherIntervals) {
  EXPECT_EQ(db_.ErrorOf("jet_date_add('x', 1, 0)"), 5);
  EXPECT_EQ(db_.ErrorOf("jet_date_diff('', 1, 0)"), 5);
  EXPECT_EQ(db_.ErrorOf("jet_date_part('yy', 0)"), 5);
}

TEST_F(DateFunctions, DateSerialCarriesPartsOver) {
  EXPECT_EQ(db_.Date("jet_date_serial(2024, 1, 17)"), "2024-01-17 00:00:00");
  EXPECT_EQ(db_.Date("jet_date_serial(2024, 13, 1)"), "2025-01-01 00:00:00");
  EXPECT_EQ(db_.Date("jet_date_serial(2024, 0, 1)"), "2023-12-01 00:00:00");
  EXPECT_EQ(db_.Date("jet_date_serial(2024, 3, 0)"), "2024-02-29 00:00:00");
  EXPECT_EQ(db_.Date("jet_date_serial(2024, 1, 367)"), "2025-01-01 00:00:00");
  EXPECT_EQ(db_.Date("jet_date_serial(2024, -11, -30)"), "2022-12-01 00:00:00");
}

TEST_F(DateFunctions, DateSerialCompletesShortYears) {
  EXPECT_EQ(db_.Date("jet_date_serial(0, 1, 1)"), "2000-01-01 00:00:00");
  EXPECT_EQ(db_.Date("jet_date_serial(29, 1, 1)"), "2029-01-01 00:00:00");
  EXPECT_EQ(db_.Date("jet_date_serial(30, 1, 1)"), "1930-01-01 00:00:00");
  EXPECT_EQ(db_.Date("jet_date_serial(99, 1, 1)"), "1999-01-01 00:00:00");
  EXPECT_EQ(db_.Date("jet_date_serial(100, 1, 1)"), "0100-01-01 00:00:00");
}

TEST_F(DateFunctions, DateSerialRefusesTheEndsOfTheCalendar) {
  EXPECT_EQ(db_.ErrorOf("jet_date_serial(10000, 1, 1)"), 5);
  EXPECT_EQ(db_.ErrorOf("jet_date_serial(9999, 12, 32)"), 5);
  EXPECT_EQ(db_.ErrorOf("jet_date_serial(100, 1, 0)"), 5);
  EXPECT_EQ(db_.ErrorOf("jet_date_serial(-5, 1, 1)"), 5);
  EXPECT_EQ(db_.ErrorOf("jet_date_serial(2024, 2147483647, 2147483647)"), 5);
}

TEST_F(DateFunctions, TimeSerialCarriesPartsOver) {
  EXPECT_EQ(db_.Date("jet_time_serial(13, 45, 10)"), "1899-12-30 13:45:10");
  EXPECT_EQ(db_.Date("jet_time_serial(12, -15, 70)"), "1899-12-30 11:46:10");
  EXPECT_EQ(db_.Date("jet_time_serial(25, 0, 0)"), "1899-12-31 01:00:00");
}

TEST_F(DateFunctions, DateValueDropsTheTime) {
  EXPECT_EQ(db_.Date("jet_date_value('3/14/2024 15:09')"), "2024-03-14 00:00:00");
  EXPECT_EQ(db_.Date("jet_date_value(" + DaysOf("2024-03-14 23:59:59") + ")"),
            "2024-03-14 00:00:00");
}

TEST_F(DateFunctions, GiveNullForNull) {
  for (const char* call :
       {"year(null)", "weekday(null)", "date_add('d', null, 0)", "date_diff('d', 0, null)",
        "date_part(null, 0)", "date_serial(2024, null, 1)", "time_serial(null, 1, 1)",
        "date_value(null)"}) {
    EXPECT_EQ(db_.Eval(std::string("jet_") + call), "NULL") << call;
  }
}

}  // namespace
}  // namespace ambrelio::embedded
