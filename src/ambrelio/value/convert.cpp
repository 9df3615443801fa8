#include "ambrelio/value/convert.h"

#include <cmath>
#include <limits>

#include "ambrelio/value/ascii.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/date_text.h"
#include "ambrelio/value/decimal.h"
#include "ambrelio/value/locale.h"

namespace ambrelio {
namespace {

constexpr double kCurrencyUnit = 10000;

// The nearest whole number, an exact half to the even neighbour, whatever the processor's rounding
// mode is in the process that loaded the library.
template <class T>
T RoundTo(double value) {
  double below = std::floor(value);
  double over = value - below;
  bool up = over > 0.5 || (over == 0.5 && std::fmod(below, 2) != 0);
  double rounded = up ? below + 1 : below;
  if (!(rounded >= std::numeric_limits<T>::min() && rounded <= std::numeric_limits<T>::max())) {
    Raise(RuntimeError::kOverflow);
  }
  return static_cast<T>(rounded);
}

// Single has 7 digits that count; written with 15 its binary remainder would show.
constexpr int kSingleDigits = 7;
std::string SingleText(float value, char decimal) {
  if (!std::isfinite(value)) return NumberText(value, decimal);
  std::optional<double> rounded = Decimal::FromDouble(value, kSingleDigits).ToDouble();
  return NumberText(rounded.value_or(value), decimal);
}

}  // namespace

int16_t RoundToInteger(double value) { return RoundTo<int16_t>(value); }
int32_t RoundToLong(double value) { return RoundTo<int32_t>(value); }

double ToDouble(const Variant& value) {
  switch (value.type()) {
    case VariantType::kEmpty:
      return 0;
    case VariantType::kNull:
      Raise(RuntimeError::kInvalidUseOfNull);
    case VariantType::kBoolean:
      return value.as<bool>() ? -1 : 0;
    case VariantType::kByte:
      return value.as<uint8_t>();
    case VariantType::kInteger:
      return value.as<int16_t>();
    case VariantType::kLong:
      return value.as<int32_t>();
    case VariantType::kSingle:
      return static_cast<double>(value.as<float>());
    case VariantType::kDouble:
      return value.as<double>();
    case VariantType::kCurrency:
      return static_cast<double>(value.as<Currency>().ten_thousandths) / kCurrencyUnit;
    case VariantType::kDate:
      return value.as<OleDate>().days();
    case VariantType::kText:
      if (auto number = ParseNumber(value.as<std::string>())) return *number;
      break;
    case VariantType::kArray:
    case VariantType::kObject:
      break;
  }
  Raise(RuntimeError::kTypeMismatch);
}

bool ToBoolean(const Variant& value) {
  if (value.is_text()) {
    const auto& text = value.as<std::string>();
    if (EqualsIgnoringAsciiCase(text, "True")) return true;
    if (EqualsIgnoringAsciiCase(text, "False")) return false;
  }
  return ToDouble(value) != 0;
}

uint8_t ToByte(const Variant& value) {
  if (value.type() == VariantType::kBoolean) return value.as<bool>() ? 255 : 0;
  return RoundTo<uint8_t>(ToDouble(value));
}

int16_t ToInteger(const Variant& value) { return RoundToInteger(ToDouble(value)); }
int32_t ToLong(const Variant& value) { return RoundToLong(ToDouble(value)); }

OleDate ToDate(const Variant& value) {
  if (value.is_date()) return value.as<OleDate>();
  if (value.is_text()) {
    auto date = ParseDate(value.as<std::string>());
    if (!date) Raise(RuntimeError::kTypeMismatch);
    return *date;
  }
  double days = ToDouble(value);
  if (!OleDate::IsMoment(days)) Raise(RuntimeError::kOverflow);
  return OleDate::FromDays(days);
}

std::string ToText(const Variant& value) {
  char decimal = Locale::Current().decimal;
  switch (value.type()) {
    case VariantType::kEmpty:
      return "";
    case VariantType::kNull:
      Raise(RuntimeError::kInvalidUseOfNull);
    case VariantType::kBoolean:
      return value.as<bool>() ? "True" : "False";
    case VariantType::kSingle:
      return SingleText(value.as<float>(), decimal);
    case VariantType::kDate:
      return DateText(value.as<OleDate>());
    case VariantType::kText:
      return value.as<std::string>();
    case VariantType::kByte:
    case VariantType::kInteger:
    case VariantType::kLong:
    case VariantType::kDouble:
    case VariantType::kCurrency:
      return NumberText(ToDouble(value), decimal);
    case VariantType::kArray:
    case VariantType::kObject:
      break;
  }
  Raise(RuntimeError::kTypeMismatch);
}

bool IsDate(const Variant& value) {
  return value.is_date() || (value.is_text() && ParseDate(value.as<std::string>()));
}

bool IsNumeric(const Variant& value) {
  switch (value.type()) {
    case VariantType::kNull:
    case VariantType::kDate:
    case VariantType::kArray:
    case VariantType::kObject:
      return false;
    case VariantType::kText:
      return ParseNumber(value.as<std::string>()).has_value();
    default:
      return true;
  }
}

}  // namespace ambrelio
