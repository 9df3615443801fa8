#include "ambrelio/engine/embedded/functions/format.h"

#include <algorithm>
#include <optional>

#include "ambrelio/engine/embedded/functions/format_pattern.h"
#include "ambrelio/platform/characters.h"
#include "ambrelio/value/convert.h"
#include "ambrelio/value/decimal.h"
#include "ambrelio/value/locale.h"

namespace ambrelio::embedded {

namespace {

// The digits of a Single that count; with more its binary remainder would show.
constexpr int kSingleDigits = 7;

// The patterns that have names.
struct NamedPattern {
  std::string_view name;  // in small letters
  std::string_view pattern;
};

constexpr NamedPattern kNamedPatterns[] = {
    {"fixed", "0.00"},
    {"standard", "#,##0.00"},
    {"currency", "#,##0.00"},
    {"percent", "0.00%"},
    {"scientific", "0.00E+00"},
    {"yes/no", R"("Yes";"Yes";"No")"},
    {"true/false", R"("True";"True";"False")"},
    {"on/off", R"("On";"On";"Off")"},
    {"general date", "c"},
    {"long date", "dddd, d mmmm yyyy"},
    {"medium date", "dd-mmm-yy"},
    {"short date", "ddddd"},
    {"long time", "ttttt"},
    {"medium time", "hh:nn AM/PM"},
    {"short time", "hh:nn"},
};
constexpr std::string_view kGeneralNumber = "general number";

std::string_view Unnamed(std::string_view pattern, std::string_view lower) {
  for (const NamedPattern& named : kNamedPatterns) {
    if (named.name == lower) return named.pattern;
  }
  return pattern;
}

bool HasAny(const Pattern& pattern, std::string_view characters) {
  return std::ranges::any_of(
      pattern, [characters](const PatternPart& part) { return part.IsOneOf(characters); });
}

std::optional<double> NumberIn(const Variant& value) {
  return value.is_text() ? ParseNumber(value.as<std::string>()) : ToDouble(value);
}

std::optional<OleDate> DateIn(const Variant& value) {
  if (!value.is_text()) return ToDate(value);
  const auto& text = value.as<std::string>();
  if (const auto date = ParseDate(text)) return date;
  const auto number = ParseNumber(text);
  return number ? std::optional(ToDate(Variant(*number))) : std::nullopt;
}

std::string FormatNull(const std::vector<Pattern>& sections) {
  constexpr size_t kNullSection = 3;
  return sections.size() > kNullSection ? Literal(sections[kNullSection]) : std::string();
}

}  // namespace

std::string TextOfType(const Variant& value, dao::FieldType type) {
  if (value.is_null()) return {};
  if (value.is_text()) return value.as<std::string>();
  if (type == dao::FieldType::kDate) return ToText(Variant(ToDate(value)));
  const double number = ToDouble(value);
  if (type != dao::FieldType::kSingle) return NumberText(number, '.');
  return NumberText(Decimal::FromDouble(number, kSingleDigits).ToDouble().value_or(number), '.');
}

std::string FormatValue(const Variant& value, std::string_view pattern_text, dao::FieldType type) {
  std::string plain = TextOfType(value, type);
  const std::string lower = LowerCase(pattern_text);
  if (pattern_text.empty()) return plain;
  if (lower == kGeneralNumber) {
    const auto number = value.is_null() ? std::nullopt : NumberIn(value);
    return number ? NumberText(*number, Locale::Current().decimal) : plain;
  }
  const Pattern pattern = ReadPattern(Unnamed(pattern_text, lower));
  const std::vector<Pattern> sections = Sections(pattern);
  // What a pattern is for shows in its characters: places of digits, places of characters, letters
  // of a date. One of literals only is a number's.
  if (HasAny(pattern, "@&<>")) return FormatText(plain, sections);
  if (value.is_null()) return FormatNull(sections);
  if (!HasAny(pattern, "0#") && HasAny(pattern, "cdmyhnswqtCDMYHNSWQT/:")) {
    const auto date = DateIn(value);
    return date ? FormatDate(*date, pattern) : plain;
  }
  const auto number = NumberIn(value);
  return number ? FormatNumber(*number, sections) : plain;
}

}  // namespace ambrelio::embedded
