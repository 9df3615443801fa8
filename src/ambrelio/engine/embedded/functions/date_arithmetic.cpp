#include "ambrelio/engine/embedded/functions/date_arithmetic.h"

#include <algorithm>
#include <chrono>

#include "ambrelio/platform/characters.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio::embedded {

namespace {

using std::chrono::days;
using std::chrono::floor;
using std::chrono::sys_days;
using std::chrono::sys_seconds;
using std::chrono::year_month_day;

constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;
constexpr int64_t kMonthsOfYear = 12;

year_month_day DayOf(const CivilTime& civil) {
  return std::chrono::year(civil.year) / std::chrono::month(static_cast<unsigned>(civil.month)) /
         std::chrono::day(static_cast<unsigned>(civil.day));
}

sys_seconds SecondsOf(OleDate date) {
  const CivilTime civil = date.Civil();
  return sys_days(DayOf(civil)) + std::chrono::hours(civil.hour) +
         std::chrono::minutes(civil.minute) + std::chrono::seconds(civil.second);
}

sys_days DayNumberOf(OleDate date) { return floor<days>(SecondsOf(date)); }

OleDate DateOfCivil(const CivilTime& civil) {
  const auto date = OleDate::FromCivil(civil);
  if (!date) Raise(RuntimeError::kInvalidCall);
  return *date;
}

OleDate DateOfSeconds(sys_seconds moment) {
  constexpr sys_seconds kFirst = sys_days(std::chrono::year(kFirstYear) / 1 / 1);
  constexpr sys_seconds kEnd = sys_days(std::chrono::year(kLastYear + 1) / 1 / 1);
  if (moment < kFirst || moment >= kEnd) Raise(RuntimeError::kInvalidCall);
  const auto midnight = floor<days>(moment);
  const year_month_day day(midnight);
  const std::chrono::hh_mm_ss time(moment - midnight);
  return DateOfCivil(
      {static_cast<int>(day.year()), static_cast<int>(static_cast<unsigned>(day.month())),
       static_cast<int>(static_cast<unsigned>(day.day())), static_cast<int>(time.hours().count()),
       static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count())});
}

// Months since the year 0, January being the first.
int64_t MonthsOf(const CivilTime& civil) { return civil.year * kMonthsOfYear + civil.month - 1; }

// The year and month of a number of months; 5 outside the years that have dates.
std::chrono::year_month YearMonthOf(int64_t months) {
  if (months < kFirstYear * kMonthsOfYear || months >= (kLastYear + 1) * kMonthsOfYear) {
    Raise(RuntimeError::kInvalidCall);
  }
  return std::chrono::year(static_cast<int>(months / kMonthsOfYear)) /
         std::chrono::month(static_cast<unsigned>(months % kMonthsOfYear + 1));
}

OleDate AddMonths(int64_t count, OleDate date) {
  CivilTime civil = date.Civil();
  const auto month = YearMonthOf(MonthsOf(civil) + count);
  const auto last = (month / std::chrono::last).day();
  civil.year = static_cast<int>(month.year());
  civil.month = static_cast<int>(static_cast<unsigned>(month.month()));
  civil.day = std::min(civil.day, static_cast<int>(static_cast<unsigned>(last)));
  return DateOfCivil(civil);
}

int64_t QuarterOf(const CivilTime& civil) { return MonthsOf(civil) / 3; }

// Days from the Sunday before the year's first day, or that day itself.
int32_t DaysInWeeks(const CivilTime& civil) {
  const sys_days first = DayOf({.year = civil.year, .month = 1, .day = 1});
  const auto before = std::chrono::weekday(first).c_encoding();
  return static_cast<int32_t>((sys_days(DayOf(civil)) - first).count() + before);
}

}  // namespace

Interval IntervalOf(std::string_view name) {
  struct Named {
    std::string_view name;
    Interval interval;
  };
  static constexpr Named kNames[] = {
      {"yyyy", Interval::kYear},   {"q", Interval::kQuarter}, {"m", Interval::kMonth},
      {"y", Interval::kDayOfYear}, {"d", Interval::kDay},     {"w", Interval::kWeekday},
      {"ww", Interval::kWeek},     {"h", Interval::kHour},    {"n", Interval::kMinute},
      {"s", Interval::kSecond},
  };
  const std::string lower = LowerCase(name);
  for (const Named& named : kNames) {
    if (named.name == lower) return named.interval;
  }
  Raise(RuntimeError::kInvalidCall);
}

OleDate AddIntervals(Interval interval, int32_t count, OleDate date) {
  const auto later = [date](auto span) { return DateOfSeconds(SecondsOf(date) + span); };
  const int64_t number = count;
  switch (interval) {
    case Interval::kYear:
      return AddMonths(number * kMonthsOfYear, date);
    case Interval::kQuarter:
      return AddMonths(number * 3, date);
    case Interval::kMonth:
      return AddMonths(number, date);
    case Interval::kDayOfYear:
    case Interval::kDay:
    case Interval::kWeekday:
      return later(std::chrono::hours(number * 24));
    case Interval::kWeek:
      return later(std::chrono::hours(number * 24 * 7));
    case Interval::kHour:
      return later(std::chrono::hours(number));
    case Interval::kMinute:
      return later(std::chrono::minutes(number));
    case Interval::kSecond:
      break;
  }
  return later(std::chrono::seconds(number));
}

int64_t CountIntervals(Interval interval, OleDate from, OleDate to) {
  const CivilTime first = from.Civil();
  const CivilTime last = to.Civil();
  const auto counted = [from, to](auto unit) {
    using Unit = decltype(unit);
    return static_cast<int64_t>(
        (floor<Unit>(SecondsOf(to)) - floor<Unit>(SecondsOf(from))).count());
  };
  switch (interval) {
    case Interval::kYear:
      return int64_t{last.year} - first.year;
    case Interval::kQuarter:
      return QuarterOf(last) - QuarterOf(first);
    case Interval::kMonth:
      return MonthsOf(last) - MonthsOf(first);
    case Interval::kDayOfYear:
    case Interval::kDay:
      return counted(days());
    case Interval::kWeekday:
      return counted(days()) / 7;
    case Interval::kWeek: {
      // The Sunday that begins a date's week.
      const auto sunday = [](OleDate date) {
        const sys_days day = DayNumberOf(date);
        return day - (std::chrono::weekday(day) - std::chrono::Sunday);
      };
      return (sunday(to) - sunday(from)).count() / 7;
    }
    case Interval::kHour:
      return counted(std::chrono::hours());
    case Interval::kMinute:
      return counted(std::chrono::minutes());
    case Interval::kSecond:
      break;
  }
  return counted(std::chrono::seconds());
}

int32_t PartOf(Interval interval, OleDate date) {
  const CivilTime civil = date.Civil();
  switch (interval) {
    case Interval::kYear:
      return civil.year;
    case Interval::kQuarter:
      return (civil.month - 1) / 3 + 1;
    case Interval::kMonth:
      return civil.month;
    case Interval::kDayOfYear:
      return static_cast<int32_t>(
          (sys_days(DayOf(civil)) - sys_days(DayOf({.year = civil.year, .month = 1, .day = 1})))
              .count() +
          1);
    case Interval::kDay:
      return civil.day;
    case Interval::kWeekday:
      return WeekdayOf(date);
    case Interval::kWeek:
      return DaysInWeeks(civil) / 7 + 1;
    case Interval::kHour:
      return civil.hour;
    case Interval::kMinute:
      return civil.minute;
    case Interval::kSecond:
      break;
  }
  return civil.second;
}

OleDate DateFromParts(int32_t year, int32_t month, int32_t day) {
  if (year >= 0 && year < 100) year += year < 30 ? 2000 : 1900;
  const auto of_month = YearMonthOf(year * kMonthsOfYear + month - 1);
  return DateOfSeconds(sys_days(of_month / 1) + std::chrono::hours((int64_t{day} - 1) * 24));
}

int32_t WeekdayOf(OleDate date) {
  return static_cast<int32_t>(std::chrono::weekday(DayNumberOf(date)).c_encoding()) + 1;
}

}  // namespace ambrelio::embedded
