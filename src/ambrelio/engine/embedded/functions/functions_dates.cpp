// The functions of dates. A date is a day number, or a text that reads as a date.
#include "ambrelio/engine/embedded/functions/date_arithmetic.h"
#include "ambrelio/engine/embedded/functions/function_support.h"
#include "ambrelio/platform/clock.h"

namespace ambrelio::embedded {

namespace {

// The same day at midnight.
OleDate DayOf(OleDate date) {
  CivilTime civil = date.Civil();
  civil.hour = civil.minute = civil.second = 0;
  return OleDate::FromCivil(civil).value_or(date);
}

// The same time on the day of the zero date.
OleDate TimeOf(OleDate date) {
  const CivilTime civil = date.Civil();
  const CivilTime time{.hour = civil.hour, .minute = civil.minute, .second = civil.second};
  return OleDate::FromCivil(time).value_or(date);
}

void Now(sqlite3_context* context, Arguments /*none*/) { SetDate(context, Clock::Current().Now()); }

void Today(sqlite3_context* context, Arguments /*none*/) {
  SetDate(context, DayOf(Clock::Current().Now()));
}

void Time(sqlite3_context* context, Arguments /*none*/) {
  SetDate(context, TimeOf(Clock::Current().Now()));
}

template <Interval kInterval>
void Part(sqlite3_context* context, Arguments arguments) {
  sqlite3_result_int(context, PartOf(kInterval, DateOf(arguments[0])));
}

Interval IntervalIn(sqlite3_value* value) { return IntervalOf(TextOf(value)); }

void DatePart(sqlite3_context* context, Arguments arguments) {
  sqlite3_result_int(context, PartOf(IntervalIn(arguments[0]), DateOf(arguments[1])));
}

void DateAdd(sqlite3_context* context, Arguments arguments) {
  SetDate(context,
          AddIntervals(IntervalIn(arguments[0]), LongOf(arguments[1]), DateOf(arguments[2])));
}

void DateDiff(sqlite3_context* context, Arguments arguments) {
  sqlite3_result_int64(context, CountIntervals(IntervalIn(arguments[0]), DateOf(arguments[1]),
                                               DateOf(arguments[2])));
}

void DateSerial(sqlite3_context* context, Arguments arguments) {
  SetDate(context, DateFromParts(LongOf(arguments[0]), LongOf(arguments[1]), LongOf(arguments[2])));
}

// Parts outside their range carry over, also into the days around the zero date.
void TimeSerial(sqlite3_context* context, Arguments arguments) {
  const OleDate hours = AddIntervals(Interval::kHour, LongOf(arguments[0]), OleDate());
  const OleDate minutes = AddIntervals(Interval::kMinute, LongOf(arguments[1]), hours);
  SetDate(context, AddIntervals(Interval::kSecond, LongOf(arguments[2]), minutes));
}

void DateValue(sqlite3_context* context, Arguments arguments) {
  SetDate(context, DayOf(DateOf(arguments[0])));
}

constexpr bool kChanging = false;

constexpr Function kDateFunctions[] = {
    {"jet_now", 0, 0, Now, Nulls::kGiveNull, kChanging},
    {"jet_date", 0, 0, Today, Nulls::kGiveNull, kChanging},
    {"jet_time", 0, 0, Time, Nulls::kGiveNull, kChanging},
    {"jet_year", 1, 1, Part<Interval::kYear>},
    {"jet_month", 1, 1, Part<Interval::kMonth>},
    {"jet_day", 1, 1, Part<Interval::kDay>},
    {"jet_hour", 1, 1, Part<Interval::kHour>},
    {"jet_minute", 1, 1, Part<Interval::kMinute>},
    {"jet_second", 1, 1, Part<Interval::kSecond>},
    {"jet_weekday", 1, 1, Part<Interval::kWeekday>},
    {"jet_date_part", 2, 2, DatePart},
    {"jet_date_add", 3, 3, DateAdd},
    {"jet_date_diff", 3, 3, DateDiff},
    {"jet_date_serial", 3, 3, DateSerial},
    {"jet_time_serial", 3, 3, TimeSerial},
    {"jet_date_value", 1, 1, DateValue},
};

}  // namespace

void RegisterDateFunctions(sqlite3* db) { RegisterScalars(db, kDateFunctions); }

}  // namespace ambrelio::embedded
