#include "ambrelio/value/ole_date.h"

#include <chrono>
#include <cmath>
#include <cstdio>

#include "ambrelio/value/ascii.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio {
namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr int kSecondsOfDay = 86400;
constexpr sys_days kZeroDay{std::chrono::year(1899) / 12 / 30};

// The one place where a moment becomes a number of days: equal moments are then equal doubles,
// wherever they came from.
double Days(int day, int second_of_day) {
  double time = second_of_day / static_cast<double>(kSecondsOfDay);
  return day < 0 ? day - time : day + time;
}

struct DayAndSecond {
  int day;
  int second;
};

DayAndSecond Split(double days) {
  if (!OleDate::IsMoment(days)) Raise(RuntimeError::kOverflow);
  double whole = std::trunc(days);
  DayAndSecond parts = {static_cast<int>(whole),
                        static_cast<int>(std::lround(std::abs(days - whole) * kSecondsOfDay))};
  if (parts.second == kSecondsOfDay) {
    if (parts.day == OleDate::kLastDay) Raise(RuntimeError::kOverflow);
    parts = {parts.day + 1, 0};
  }
  return parts;
}

bool InRange(int value, int low, int high) { return value >= low && value <= high; }

}  // namespace

std::optional<OleDate> OleDate::FromCivil(const CivilTime& civil) {
  year_month_day date = std::chrono::year(civil.year) /
                        std::chrono::month(static_cast<unsigned>(civil.month)) /
                        std::chrono::day(static_cast<unsigned>(civil.day));
  if (!InRange(civil.year, 100, 9999) || !InRange(civil.month, 1, 12) ||
      !InRange(civil.day, 1, 31) || !date.ok()) {
    return std::nullopt;
  }
  if (!InRange(civil.hour, 0, 23) || !InRange(civil.minute, 0, 59) ||
      !InRange(civil.second, 0, 59)) {
    return std::nullopt;
  }
  auto day = static_cast<int>((sys_days(date) - kZeroDay).count());
  return OleDate(Days(day, civil.hour * 3600 + civil.minute * 60 + civil.second));
}

std::optional<OleDate> OleDate::FromIso(std::string_view text) {
  constexpr std::string_view kShape = "0000-00-00 00:00:00";
  if (text.size() != kShape.size()) return std::nullopt;
  for (size_t i = 0; i < kShape.size(); ++i) {
    if (kShape[i] == '0' ? !IsDigit(text[i]) : text[i] != kShape[i]) return std::nullopt;
  }
  auto number = [text](size_t at, size_t length) {
    int value = 0;
    for (char c : text.substr(at, length)) value = value * 10 + (c - '0');
    return value;
  };
  return FromCivil(
      {number(0, 4), number(5, 2), number(8, 2), number(11, 2), number(14, 2), number(17, 2)});
}

CivilTime OleDate::Civil() const {
  DayAndSecond parts = Split(days_);
  year_month_day date(kZeroDay + std::chrono::days(parts.day));
  return {static_cast<int>(date.year()),
          static_cast<int>(static_cast<unsigned>(date.month())),
          static_cast<int>(static_cast<unsigned>(date.day())),
          parts.second / 3600,
          parts.second / 60 % 60,
          parts.second % 60};
}

std::string OleDate::Iso() const {
  CivilTime c = Civil();
  char text[80];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", c.year, c.month, c.day, c.hour,
                c.minute, c.second);
  return text;
}

OleDate OleDate::NextDay() const { return OleDate(Days(Split(days_).day + 1, 0)); }

}  // namespace ambrelio
