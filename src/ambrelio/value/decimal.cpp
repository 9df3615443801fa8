#include "ambrelio/value/decimal.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "ambrelio/value/ascii.h"

namespace ambrelio {
namespace {

// Beyond any double, however many digits there are; keeps the arithmetic on exponents in range.
constexpr int kExponentLimit = 1'000'000;

// Reads "E+12", "d-3", "e5" off the front of `text`; 0 and nothing read when it is none.
int TakeExponent(std::string_view& text) {
  std::string_view rest = text;
  if (rest.empty() || (AsciiLower(rest.front()) != 'e' && AsciiLower(rest.front()) != 'd')) {
    return 0;
  }
  rest.remove_prefix(1);
  bool negative = !rest.empty() && rest.front() == '-';
  if (!rest.empty() && (rest.front() == '-' || rest.front() == '+')) rest.remove_prefix(1);
  if (rest.empty() || !IsDigit(rest.front())) return 0;
  int exponent = 0;
  for (; !rest.empty() && IsDigit(rest.front()); rest.remove_prefix(1)) {
    exponent = std::min(exponent * 10 + (rest.front() - '0'), kExponentLimit);
  }
  text = rest;
  return negative ? -exponent : exponent;
}

}  // namespace

Decimal Decimal::FromDouble(double value, int significant_digits) {
  char text[64];
  auto end = std::to_chars(text, text + sizeof text, std::abs(value), std::chars_format::scientific,
                           significant_digits - 1);
  std::string_view written(text, static_cast<size_t>(end.ptr - text));
  Decimal decimal = Take(written, '.').value_or(Decimal());
  decimal.negative = std::signbit(value);
  return decimal;
}

std::optional<Decimal> Decimal::Take(std::string_view& text, char point, std::string_view skipped) {
  Decimal decimal;
  bool any = false;
  bool fraction = false;
  size_t i = 0;
  for (; i < text.size(); ++i) {
    char c = text[i];
    if (IsDigit(c)) {
      any = true;
      if (c != '0' || !decimal.digits.empty()) {
        decimal.digits += c;
        if (!fraction) ++decimal.exponent;
      } else if (fraction) {
        --decimal.exponent;
      }
    } else if (c == point && !fraction) {
      fraction = true;
    } else if (fraction || !any || skipped.find(c) == std::string_view::npos) {
      break;
    }
  }
  if (!any) return std::nullopt;
  text.remove_prefix(i);
  decimal.exponent =
      std::clamp(decimal.exponent, -kExponentLimit, kExponentLimit) + TakeExponent(text);
  while (!decimal.digits.empty() && decimal.digits.back() == '0') decimal.digits.pop_back();
  if (decimal.digits.empty()) decimal.exponent = 0;
  return decimal;
}

std::optional<double> Decimal::ToDouble() const {
  if (digits.empty()) return negative ? -0.0 : 0.0;
  std::string text = "0." + digits + "e" + std::to_string(exponent);
  double value = 0;
  auto read = std::from_chars(text.data(), text.data() + text.size(), value);
  if (read.ec == std::errc::result_out_of_range) {
    if (exponent > 0) return std::nullopt;
    value = 0;  // too small to be told from zero
  }
  return negative ? -value : value;
}

void Decimal::Round(int decimals) {
  int kept = exponent + decimals;
  if (kept >= static_cast<int>(digits.size())) return;
  bool up = kept >= 0 && digits[static_cast<size_t>(kept)] >= '5';
  digits.resize(static_cast<size_t>(std::max(kept, 0)));
  if (up) {
    while (!digits.empty() && digits.back() == '9') digits.pop_back();
    if (digits.empty()) {
      digits.assign(1, '1');
      ++exponent;
    } else {
      ++digits.back();
    }
  }
  while (!digits.empty() && digits.back() == '0') digits.pop_back();
  if (digits.empty()) exponent = 0;
}

std::string Decimal::Fixed(int decimals, char point) const {
  const int leading_zeros = std::max(1 - exponent, 0);
  const int whole_digits = std::max(exponent, 1);
  const int width = whole_digits + decimals;
  std::string text(static_cast<size_t>(leading_zeros), '0');
  text += digits;
  text.resize(static_cast<size_t>(width), '0');
  if (decimals > 0) text.insert(static_cast<size_t>(whole_digits), 1, point);
  return negative ? "-" + text : text;
}

std::string Decimal::Scientific(char point) const {
  std::string text = digits.substr(0, 1);
  if (digits.size() > 1) text += point + digits.substr(1);
  int power = exponent - 1;
  std::string power_text = std::to_string(std::abs(power));
  text += power < 0 ? "E-" : "E+";
  if (power_text.size() < 2) text += '0';
  text += power_text;
  return negative ? "-" + text : text;
}

int Decimal::Decimals() const { return std::max(static_cast<int>(digits.size()) - exponent, 0); }

}  // namespace ambrelio
