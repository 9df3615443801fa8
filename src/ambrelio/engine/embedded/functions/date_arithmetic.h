// Calendar arithmetic by the intervals of DateAdd, DateDiff and DatePart.
#pragma once

#include <cstdint>
#include <string_view>

#include "ambrelio/value/ole_date.h"

namespace ambrelio::embedded {

enum class Interval : uint8_t {
  kYear,       // yyyy
  kQuarter,    // q
  kMonth,      // m
  kDayOfYear,  // y
  kDay,        // d
  kWeekday,    // w
  kWeek,       // ww
  kHour,       // h
  kMinute,     // n
  kSecond,     // s
};

// The interval of a name, without regard to case; 5 for another name.
Interval IntervalOf(std::string_view name);

// `count` intervals later; a day that the month reached does not have becomes its last one. 5
// outside the years 100 to 9999.
OleDate AddIntervals(Interval interval, int32_t count, OleDate date);
// The boundaries between the two: years, months, midnights, hours, ... begun after `from` up to
// `to`. kWeek counts Sundays, kWeekday whole spans of seven days.
int64_t CountIntervals(Interval interval, OleDate from, OleDate to);
// The number of the date's year, quarter, month, ...; Sunday is weekday 1, the week with 1 January
// is week 1 and weeks begin on Sunday.
int32_t PartOf(Interval interval, OleDate date);

// Parts may lie outside their range and carry over: month 13 is January of the next year, day 0 the
// last of the month before. Years 0 to 29 mean 2000 to 2029, 30 to 99 mean 1930 to 1999. 5 outside
// the years 100 to 9999.
OleDate DateFromParts(int32_t year, int32_t month, int32_t day);

// Sunday is 1.
int32_t WeekdayOf(OleDate date);

}  // namespace ambrelio::embedded
