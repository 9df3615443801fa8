// Dates by the patterns of `Format`.
#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "ambrelio/engine/embedded/functions/date_arithmetic.h"
#include "ambrelio/engine/embedded/functions/format_pattern.h"
#include "ambrelio/platform/characters.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::embedded {

namespace {

using Names = std::array<std::string_view, 12>;

constexpr Names kMonths = {"January", "February", "March",     "April",   "May",      "June",
                           "July",    "August",   "September", "October", "November", "December"};
constexpr Names kDays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                         "Thursday", "Friday", "Saturday"};
constexpr size_t kShortName = 3;

std::string Padded(int number, size_t digits) {
  std::string text = std::to_string(number);
  if (text.size() < digits) text.insert(0, digits - text.size(), '0');
  return text;
}

// A number of a date by the length of its run of letters: d, dd, ddd (short name), dddd (name).
std::string NumberOrName(int number, size_t length, std::string_view name) {
  if (length > 3) return std::string(name);
  return length == 3 ? std::string(name.substr(0, kShortName)) : Padded(number, length);
}

// The marks of the halves of the day; one in a pattern makes its hours run to 12.
struct Halves {
  std::string_view mark;
  std::string_view morning;
  std::string_view afternoon;
};

constexpr Halves kHalves[] = {
    {"AM/PM", "AM", "PM"}, {"am/pm", "am", "pm"}, {"A/P", "A", "P"}, {"a/p", "a", "p"}};

class DatePrinter {
 public:
  DatePrinter(OleDate date, const Pattern& pattern)
      : date_(date), civil_(date.Civil()), pattern_(pattern) {
    for (size_t i = 0; i < pattern.size(); ++i) has_halves_ = has_halves_ || HalvesAt(i);
  }

  std::string Print() {
    std::string text;
    for (size_t i = 0; i < pattern_.size();) {
      if (const auto halves = HalvesAt(i)) {
        text += civil_.hour < 12 ? halves->morning : halves->afternoon;
        i += halves->mark.size();
      } else if (const std::string letters = RunAt(i); !letters.empty()) {
        text += Part(letters);
        i += letters.size();
      } else {
        text += pattern_[i++].text;
      }
    }
    return text;
  }

 private:
  std::optional<Halves> HalvesAt(size_t at) const {
    for (const Halves& halves : kHalves) {
      bool matches = at + halves.mark.size() <= pattern_.size();
      for (size_t i = 0; matches && i < halves.mark.size(); ++i) {
        matches = pattern_[at + i].Is(halves.mark[i]);
      }
      if (matches) return halves;
    }
    return std::nullopt;
  }

  // The same letter of a date as often as it follows itself, small.
  std::string RunAt(size_t at) const {
    std::string run;
    for (; at < pattern_.size() && pattern_[at].IsOneOf("cdmyhnswqtCDMYHNSWQT"); ++at) {
      const std::string letter = LowerCase(pattern_[at].text);
      if (!run.empty() && run.back() != letter[0]) break;
      run += letter;
    }
    return run;
  }

  std::string Part(const std::string& letters) {
    const size_t length = letters.size();
    const bool behind_hour = std::exchange(behind_hour_, letters[0] == 'h');
    switch (letters[0]) {
      case 'c':
        return ToText(Variant(date_));
      case 'd':
        return Day(length);
      case 'm':
        if (behind_hour && length <= 2) return Padded(civil_.minute, length);
        return NumberOrName(civil_.month, length, kMonths[Index(civil_.month)]);
      case 'y':
        return Year(length);
      case 'h':
        return Padded(has_halves_ ? (civil_.hour + 11) % 12 + 1 : civil_.hour, length);
      case 'n':
        return Padded(civil_.minute, length);
      case 's':
        return Padded(civil_.second, length);
      case 'w':
        return std::to_string(PartOf(length > 1 ? Interval::kWeek : Interval::kWeekday, date_));
      case 'q':
        return std::to_string(PartOf(Interval::kQuarter, date_));
      default:
        return Time();
    }
  }

  static size_t Index(int number) { return static_cast<size_t>(number - 1); }

  std::string Day(size_t length) const {
    constexpr size_t kShortDate = 5;
    if (length < kShortDate) {
      return NumberOrName(civil_.day, length, kDays[Index(WeekdayOf(date_))]);
    }
    CivilTime day = civil_;
    day.hour = day.minute = day.second = 0;
    return ToText(Variant(OleDate::FromCivil(day).value_or(date_)));
  }

  std::string Year(size_t length) const {
    if (length == 1) return std::to_string(PartOf(Interval::kDayOfYear, date_));
    return length == 2 ? Padded(civil_.year % 100, 2) : Padded(civil_.year, 4);
  }

  std::string Time() const {
    const CivilTime time{.hour = civil_.hour, .minute = civil_.minute, .second = civil_.second};
    return ToText(Variant(OleDate::FromCivil(time).value_or(date_)));
  }

  OleDate date_;
  CivilTime civil_;
  const Pattern& pattern_;
  bool has_halves_ = false;
  bool behind_hour_ = false;
};

}  // namespace

std::string FormatDate(OleDate date, const Pattern& pattern) {
  return DatePrinter(date, pattern).Print();
}

}  // namespace ambrelio::embedded
