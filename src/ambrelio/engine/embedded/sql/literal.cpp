// The values of literals: numbers, texts and dates.
#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "ambrelio/engine/embedded/sql/scanner.h"
#include "ambrelio/engine/embedded/sql/syntax_error.h"

namespace ambrelio::embedded::sql {
namespace {

// A whole number that fits is a Long; everything else is a Double.
std::optional<Variant> NumberValue(std::string_view text) {
  const char* end = text.data() + text.size();
  int32_t whole = 0;
  const auto as_whole = std::from_chars(text.data(), end, whole);
  if (as_whole.ec == std::errc() && as_whole.ptr == end) return Variant(whole);
  double number = 0;
  const auto as_double = std::from_chars(text.data(), end, number);
  if (as_double.ec == std::errc() && as_double.ptr == end) return Variant(number);
  return std::nullopt;
}

// `quoted` without its quotes, each doubled one made single.
std::string TextValue(std::string_view quoted) {
  const char quote = quoted.front();
  quoted = quoted.substr(1, quoted.size() - 2);
  std::string value;
  value.reserve(quoted.size());
  for (size_t i = 0; i < quoted.size(); ++i) {
    value += quoted[i];
    if (quoted[i] == quote) ++i;
  }
  return value;
}

// Reads a date literal piece by piece: numbers, separators and the marks of half days.
class DateReader {
 public:
  explicit DateReader(std::string_view text) : text_(text) {}

  std::optional<OleDate> Read() {
    SkipBlanks();
    CivilTime moment;
    if (AtEnd()) return std::nullopt;
    if (StartsDate() && !ReadDate(moment)) return std::nullopt;
    SkipBlanks();
    if (!AtEnd() && !ReadTime(moment)) return std::nullopt;
    SkipBlanks();
    if (!AtEnd()) return std::nullopt;
    return OleDate::FromCivil(moment);
  }

 private:
  bool AtEnd() const { return position_ == text_.size(); }
  char Current() const { return AtEnd() ? '\0' : text_[position_]; }
  void SkipBlanks() {
    while (Current() == ' ') ++position_;
  }
  bool Take(char c) {
    SkipBlanks();
    if (Current() != c) return false;
    ++position_;
    return true;
  }
  std::optional<int> Number() {
    SkipBlanks();
    if (Current() < '0' || Current() > '9') return std::nullopt;
    int number = 0;
    const char* end = text_.data() + text_.size();
    const auto read = std::from_chars(text_.data() + position_, end, number);
    if (read.ec != std::errc()) return std::nullopt;
    position_ = static_cast<size_t>(read.ptr - text_.data());
    return number;
  }
  bool StartsDate() const { return text_.find_first_of("/-") != std::string_view::npos; }

  // month/day/year, or year-month-day when the first number can only be a year.
  bool ReadDate(CivilTime& moment) {
    const std::optional<int> first = Number();
    const char separator = Take('/') ? '/' : '-';
    if (separator == '-' && !Take('-')) return false;
    const std::optional<int> second = Number();
    if (!Take(separator)) return false;
    const std::optional<int> third = Number();
    if (!first || !second || !third) return false;
    const bool year_first = *first >= 100;
    moment.year = year_first ? *first : FullYear(*third);
    moment.month = year_first ? *second : *first;
    moment.day = year_first ? *third : *second;
    if (moment.month > 12) std::swap(moment.month, moment.day);
    return true;
  }
  // Two digits mean the years 1930 to 2029.
  static int FullYear(int year) {
    if (year >= 100) return year;
    return year < 30 ? 2000 + year : 1900 + year;
  }

  // hour:minute[:second] [am|pm], or hour am|pm.
  bool ReadTime(CivilTime& moment) {
    const std::optional<int> hour = Number();
    if (!hour) return false;
    moment.hour = *hour;
    const bool has_minutes = Take(':');
    if (has_minutes) {
      const std::optional<int> minute = Number();
      if (!minute) return false;
      moment.minute = *minute;
      if (Take(':')) {
        const std::optional<int> second = Number();
        if (!second) return false;
        moment.second = *second;
      }
    }
    SkipBlanks();
    if (AtEnd()) return has_minutes;
    return ReadHalfDay(moment);
  }

  bool ReadHalfDay(CivilTime& moment) {
    const std::string_view mark = text_.substr(position_, 2);
    const bool after_noon = IsSameWord(mark, "pm");
    if (!after_noon && !IsSameWord(mark, "am")) return false;
    if (moment.hour < 1 || moment.hour > 12) return false;
    moment.hour = moment.hour % 12 + (after_noon ? 12 : 0);
    position_ += 2;
    return true;
  }

  std::string_view text_;
  size_t position_ = 0;
};

}  // namespace

Variant LiteralValue(std::string_view text, const Lexeme& lexeme) {
  switch (lexeme.text.front()) {
    case '\'':
    case '"':
      return Variant(TextValue(lexeme.text));
    case '#':
      if (const auto date = DateReader(lexeme.text.substr(1, lexeme.text.size() - 2)).Read()) {
        return Variant(*date);
      }
      break;
    default:
      if (auto number = NumberValue(lexeme.text)) return *std::move(number);
  }
  RaiseNear(dao::DaoError::kExpressionSyntax, text, lexeme.offset);
}

}  // namespace ambrelio::embedded::sql
