// Numbers from and to text.
#include <cmath>

#include "ambrelio/value/ascii.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"
#include "ambrelio/value/decimal.h"
#include "ambrelio/value/locale.h"

namespace ambrelio {
namespace {

constexpr int kSignificantDigits = 15;
// From here on a number is written with an exponent, and so is one that takes more decimals.
constexpr int kWidestFixed = 15;

// Takes one of the sign characters off the front; whether it was "-".
bool TakeSign(std::string_view& text) {
  if (text.empty() || (text.front() != '-' && text.front() != '+')) return false;
  bool negative = text.front() == '-';
  text.remove_prefix(1);
  return negative;
}

int DigitValue(char c) {
  c = AsciiLower(c);
  if (IsDigit(c)) return c - '0';
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : 16;
}

// Takes &H or &O (or & alone) with its digits off the front; nothing when there are none or they
// do not fit in 32 bits.
std::optional<uint32_t> TakeRadixNumber(std::string_view& text) {
  if (text.empty() || text.front() != '&') return std::nullopt;
  std::string_view rest = text.substr(1);
  int bits = 3;
  if (!rest.empty() && !IsDigit(rest.front())) {
    char mark = AsciiLower(rest.front());
    if (mark != 'h' && mark != 'o') return std::nullopt;
    if (mark == 'h') bits = 4;
    rest.remove_prefix(1);
  }
  uint64_t value = 0;
  bool any = false;
  for (; !rest.empty() && DigitValue(rest.front()) < 1 << bits; rest.remove_prefix(1)) {
    any = true;
    value = (value << bits) + static_cast<uint64_t>(DigitValue(rest.front()));
    if (value > UINT32_MAX) return std::nullopt;
  }
  if (!any) return std::nullopt;
  text = rest;
  return static_cast<uint32_t>(value);
}

// Takes the outer parentheses away that mean a negative number; whether they were there.
bool TakeParentheses(std::string_view& text) {
  if (text.size() < 2 || text.front() != '(' || text.back() != ')') return false;
  text = TrimWhiteSpace(text.substr(1, text.size() - 2));
  return true;
}

}  // namespace

std::optional<double> ParseNumber(std::string_view text) {
  const Locale& locale = Locale::Current();
  text = TrimWhiteSpace(text);
  if (std::string_view rest = text; auto radix = TakeRadixNumber(rest)) {
    if (!rest.empty()) return std::nullopt;
    return *radix;
  }
  bool negative = TakeParentheses(text);
  bool may_have_sign = !negative;
  if (may_have_sign && !text.empty() && !IsDigit(text.front())) {
    size_t before = text.size();
    negative = TakeSign(text);
    may_have_sign = text.size() == before;
    text = TrimWhiteSpace(text);
  }
  std::optional<Decimal> decimal =
      Decimal::Take(text, locale.decimal, std::string_view(&locale.thousands, 1));
  if (!decimal) return std::nullopt;
  text = TrimWhiteSpace(text);
  if (may_have_sign) negative = TakeSign(text);
  if (!text.empty()) return std::nullopt;
  decimal->negative = negative;
  return decimal->ToDouble();
}

double LeadingNumber(std::string_view text) {
  std::string dense;
  for (char c : text) {
    if (!IsWhiteSpace(c)) dense += c;
  }
  std::string_view rest = dense;
  if (auto radix = TakeRadixNumber(rest)) {
    // As in the language's own constants: four digits are a signed 16-bit number.
    if (*radix <= UINT16_MAX) return static_cast<int16_t>(*radix);
    return static_cast<int32_t>(*radix);
  }
  bool negative = TakeSign(rest);
  std::optional<Decimal> decimal = Decimal::Take(rest, '.');
  if (!decimal) return 0;
  decimal->negative = negative && !decimal->digits.empty();
  std::optional<double> value = decimal->ToDouble();
  if (!value) Raise(RuntimeError::kOverflow);
  return *value;
}

std::string NumberText(double value, char decimal) {
  if (std::isnan(value)) return "1.#QNAN";
  if (std::isinf(value)) return value < 0 ? "-1.#INF" : "1.#INF";
  Decimal number = Decimal::FromDouble(value, kSignificantDigits);
  if (number.digits.empty()) return "0";
  if (number.exponent > kWidestFixed || number.Decimals() > kWidestFixed) {
    return number.Scientific(decimal);
  }
  return number.Fixed(number.Decimals(), decimal);
}

std::string FixedText(double value, int decimals) {
  if (!std::isfinite(value)) Raise(RuntimeError::kOverflow);
  Decimal number = Decimal::FromDouble(value, kSignificantDigits);
  number.Round(decimals);
  return number.Fixed(decimals, '.');
}

}  // namespace ambrelio
