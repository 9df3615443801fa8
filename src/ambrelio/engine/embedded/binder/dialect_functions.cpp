#include "ambrelio/engine/embedded/binder/dialect_functions.h"

#include <algorithm>
#include <array>
#include <string>

#include "ambrelio/platform/characters.h"

namespace ambrelio::embedded {

namespace {

using enum ValueType;

constexpr uint8_t kFirstText = 1;
constexpr uint8_t kAllTexts = 0xFF;

// In the order of the names.
constexpr std::array kFunctions = {
    DialectFunction{"abs", "jet_abs", 1, 1, kNull},
    DialectFunction{"asc", "jet_asc", 1, 1, kInteger, kFirstText},
    DialectFunction{"cbool", "jet_cbool", 1, 1, kBoolean},
    DialectFunction{"cbyte", "jet_cbyte", 1, 1, kByte},
    DialectFunction{"ccur", "jet_ccur", 1, 1, kCurrency},
    DialectFunction{"cdate", "jet_cdate", 1, 1, kDate},
    DialectFunction{"cdbl", "jet_cdbl", 1, 1, kDouble},
    DialectFunction{"chr", "jet_chr", 1, 1, kText},
    DialectFunction{"cint", "jet_cint", 1, 1, kInteger},
    DialectFunction{"clng", "jet_clng", 1, 1, kLong},
    DialectFunction{"csng", "jet_csng", 1, 1, kSingle},
    DialectFunction{"cstr", "jet_text", 1, 1, kText, 0, true},
    DialectFunction{"cvdate", "jet_cvdate", 1, 1, kDate},
    DialectFunction{"date", "jet_date", 0, 0, kDate},
    DialectFunction{"dateadd", "jet_date_add", 3, 3, kDate, kFirstText},
    DialectFunction{"datediff", "jet_date_diff", 3, 3, kLong, kFirstText},
    DialectFunction{"datepart", "jet_date_part", 2, 2, kInteger, kFirstText},
    DialectFunction{"dateserial", "jet_date_serial", 3, 3, kDate},
    DialectFunction{"datevalue", "jet_date_value", 1, 1, kDate},
    DialectFunction{"day", "jet_day", 1, 1, kInteger},
    DialectFunction{"fix", "jet_fix", 1, 1, kNull},
    DialectFunction{"format", "jet_format", 2, 2, kText, 0, true},
    DialectFunction{"hour", "jet_hour", 1, 1, kInteger},
    DialectFunction{"instr", "jet_instr", 2, 2, kLong, kAllTexts},
    DialectFunction{"int", "jet_int", 1, 1, kNull},
    DialectFunction{"lcase", "jet_lcase", 1, 1, kText, kFirstText},
    DialectFunction{"left", "jet_left", 2, 2, kText, kFirstText},
    DialectFunction{"len", "jet_len", 1, 1, kLong, kFirstText},
    DialectFunction{"ltrim", "jet_ltrim", 1, 1, kText, kFirstText},
    DialectFunction{"mid", "jet_mid", 2, 3, kText, kFirstText},
    DialectFunction{"minute", "jet_minute", 1, 1, kInteger},
    DialectFunction{"month", "jet_month", 1, 1, kInteger},
    DialectFunction{"now", "jet_now", 0, 0, kDate},
    DialectFunction{"replace", "jet_replace", 3, 3, kText, kAllTexts},
    DialectFunction{"right", "jet_right", 2, 2, kText, kFirstText},
    DialectFunction{"round", "jet_round", 1, 2, kNull},
    DialectFunction{"rtrim", "jet_rtrim", 1, 1, kText, kFirstText},
    DialectFunction{"second", "jet_second", 1, 1, kInteger},
    DialectFunction{"sgn", "jet_sgn", 1, 1, kInteger},
    DialectFunction{"space", "jet_space", 1, 1, kText},
    DialectFunction{"string", "jet_string", 2, 2, kText, 2},
    DialectFunction{"time", "jet_time", 0, 0, kDate},
    DialectFunction{"timeserial", "jet_time_serial", 3, 3, kDate},
    DialectFunction{"trim", "jet_trim", 1, 1, kText, kFirstText},
    DialectFunction{"ucase", "jet_ucase", 1, 1, kText, kFirstText},
    DialectFunction{"val", "jet_val", 1, 1, kDouble, kFirstText},
    DialectFunction{"weekday", "jet_weekday", 1, 1, kInteger},
    DialectFunction{"year", "jet_year", 1, 1, kInteger},
};

// With its place first, InStr is another function: its texts are elsewhere.
constexpr DialectFunction kInStrFrom{"instr", "jet_instr", 3, 3, kLong, 0b110};

struct NamedAggregate {
  const char* name;
  Aggregate aggregate;
};

constexpr std::array kAggregates = {
    NamedAggregate{"avg", Aggregate::kAverage}, NamedAggregate{"count", Aggregate::kCount},
    NamedAggregate{"first", Aggregate::kFirst}, NamedAggregate{"last", Aggregate::kLast},
    NamedAggregate{"max", Aggregate::kMaximum}, NamedAggregate{"min", Aggregate::kMinimum},
    NamedAggregate{"sum", Aggregate::kSum},
};

}  // namespace

std::optional<Aggregate> FindAggregate(std::string_view name) {
  const std::string lower = LowerCase(name);
  for (const NamedAggregate& entry : kAggregates) {
    if (lower == entry.name) return entry.aggregate;
  }
  return std::nullopt;
}

const DialectFunction* FindFunction(std::string_view name, size_t arguments) {
  const std::string lower = LowerCase(name);
  if (arguments == 3 && lower == kInStrFrom.name) return &kInStrFrom;
  const auto* found = std::lower_bound(
      kFunctions.begin(), kFunctions.end(), lower,
      [](const DialectFunction& function, const std::string& key) { return function.name < key; });
  return found != kFunctions.end() && lower == found->name ? found : nullptr;
}

ValueType ResultType(const DialectFunction& function, ValueType first) {
  if (function.result != kNull) return function.result;
  if (IsText(first)) return kDouble;
  return first == kBoolean ? kInteger : first;
}

}  // namespace ambrelio::embedded
