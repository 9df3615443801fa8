// A number as its decimal digits: the form between a double and its text, in both directions.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ambrelio {

// sign 0.d1d2d3... x 10^exponent; d1 is not 0, and zero has no digits.
struct Decimal {
  bool negative = false;
  std::string digits;
  int exponent = 0;

  // The value to that many significant digits, without trailing zeros. A finite value.
  static Decimal FromDouble(double value, int significant_digits);

  // Reads an unsigned number with `point` as decimal sign off the front of `text`, characters of
  // `skipped` before the decimal sign being passed over. Nothing, and `text` as it was, when no
  // digit is there.
  static std::optional<Decimal> Take(std::string_view& text, char point,
                                     std::string_view skipped = {});

  // The nearest double; nothing when it is too large for one.
  std::optional<double> ToDouble() const;

  // Rounds to that many decimals, half away from zero.
  void Round(int decimals);

  // Without exponent, with exactly that many decimals. There must not be more digits than these.
  std::string Fixed(int decimals, char point) const;
  // As 1.25E+16, exponents with at least two digits.
  std::string Scientific(char point) const;
  // How many decimals all its digits take.
  int Decimals() const;
};

}  // namespace ambrelio
