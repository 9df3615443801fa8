#include "ambrelio/value/date_text.h"

#include <array>
#include <cstdio>
#include <utility>

#include "ambrelio/value/ascii.h"
#include "ambrelio/value/convert.h"
#include "ambrelio/value/locale.h"

namespace ambrelio {
namespace {

// Up to three numbers of a date or a time, with how many digits each was written.
struct Numbers {
  std::array<int, 3> value{};
  std::array<size_t, 3> digits{};
  size_t count = 0;
};

// Reads the whole text as two or three numbers of at most four digits, with one and the same of the
// `separators` between them.
std::optional<Numbers> SplitNumbers(std::string_view text, std::string_view separators) {
  Numbers numbers;
  char separator = '\0';
  while (numbers.count < 3) {
    size_t length = 0;
    while (length < text.size() && IsDigit(text[length])) ++length;
    if (length == 0 || length > 4) return std::nullopt;
    for (char c : text.substr(0, length)) {
      numbers.value[numbers.count] = numbers.value[numbers.count] * 10 + (c - '0');
    }
    numbers.digits[numbers.count++] = length;
    text.remove_prefix(length);
    if (text.empty()) return numbers;
    if (separator == '\0' && separators.find(text.front()) != std::string_view::npos) {
      separator = text.front();
    }
    if (text.front() != separator) return std::nullopt;
    text.remove_prefix(1);
  }
  return std::nullopt;
}

int FullYear(int year, size_t digits) {
  if (digits > 2) return year;
  return year < 30 ? 2000 + year : 1900 + year;
}

// Sets the date in `civil`; false when the text is none.
bool ReadDate(std::string_view text, CivilTime& civil) {
  std::optional<Numbers> numbers = SplitNumbers(text, "/-.");
  if (!numbers || numbers->count != 3) return false;
  const auto& [value, digits, count] = *numbers;
  DateOrder order = Locale::Current().date_order;
  // A year written in full says where it stands.
  bool year_first = digits[0] > 2 || (digits[2] <= 2 && order == DateOrder::kYearMonthDay);
  size_t year = year_first ? 0 : 2;
  civil.year = FullYear(value[year], digits[year]);
  civil.month = value[year_first ? 1 : 0];
  civil.day = value[year_first ? 2 : 1];
  if (!year_first && order == DateOrder::kDayMonthYear) std::swap(civil.month, civil.day);
  if (civil.month > 12) std::swap(civil.month, civil.day);
  return true;
}

enum class HalfOfDay { kNone, kMorning, kAfternoon };

// Takes "am", "pm", "a" or "p" off the end.
HalfOfDay TakeHalfOfDay(std::string_view& text) {
  for (std::string_view mark : {"am", "pm", "a", "p"}) {
    if (text.size() > mark.size() &&
        EqualsIgnoringAsciiCase(text.substr(text.size() - mark.size()), mark)) {
      text = TrimBlanks(text.substr(0, text.size() - mark.size()));
      return mark.front() == 'a' ? HalfOfDay::kMorning : HalfOfDay::kAfternoon;
    }
  }
  return HalfOfDay::kNone;
}

// Sets the time in `civil`; false when the text is none. An hour alone needs its half of the day.
bool ReadTime(std::string_view text, CivilTime& civil) {
  HalfOfDay half = TakeHalfOfDay(text);
  std::optional<Numbers> numbers = SplitNumbers(text, ":");
  if (!numbers || (numbers->count == 1 && half == HalfOfDay::kNone)) return false;
  for (size_t digits : numbers->digits) {
    if (digits > 2) return false;
  }
  civil.hour = numbers->value[0];
  civil.minute = numbers->value[1];
  civil.second = numbers->value[2];
  if (half == HalfOfDay::kNone) return true;
  if (civil.hour < 1 || civil.hour > 12) return false;
  civil.hour = civil.hour % 12 + (half == HalfOfDay::kAfternoon ? 12 : 0);
  return true;
}

}  // namespace

std::optional<OleDate> ParseDate(std::string_view text) {
  text = TrimBlanks(text);
  CivilTime civil;
  if (ReadDate(text, civil)) return OleDate::FromCivil(civil);
  civil = {};
  if (ReadTime(text, civil)) return OleDate::FromCivil(civil);
  size_t blank = text.find_first_of(" \t");
  if (blank == std::string_view::npos) return std::nullopt;
  civil = {};
  if (!ReadDate(text.substr(0, blank), civil) || !ReadTime(TrimBlanks(text.substr(blank)), civil)) {
    return std::nullopt;
  }
  return OleDate::FromCivil(civil);
}

std::string DateText(OleDate date) {
  CivilTime c = date.Civil();
  DateOrder order = Locale::Current().date_order;
  char day[48] = "";
  char time[48] = "";
  bool has_time = c.hour != 0 || c.minute != 0 || c.second != 0;
  bool has_day = c.year != 1899 || c.month != 12 || c.day != 30;
  if (has_day && order == DateOrder::kMonthDayYear) {
    std::snprintf(day, sizeof day, "%d/%d/%04d", c.month, c.day, c.year);
  } else if (has_day && order == DateOrder::kDayMonthYear) {
    std::snprintf(day, sizeof day, "%02d/%02d/%04d", c.day, c.month, c.year);
  } else if (has_day) {
    std::snprintf(day, sizeof day, "%04d-%02d-%02d", c.year, c.month, c.day);
  }
  if (has_time || !has_day) {
    bool halves = order == DateOrder::kMonthDayYear;
    int hour = halves ? (c.hour + 11) % 12 + 1 : c.hour;
    const char* half = !halves ? "" : c.hour < 12 ? " AM" : " PM";
    std::snprintf(time, sizeof time, "%d:%02d:%02d%s", hour, c.minute, c.second, half);
  }
  return std::string(day) + (has_day && has_time ? " " : "") + time;
}

}  // namespace ambrelio
