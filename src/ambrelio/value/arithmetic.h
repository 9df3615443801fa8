// Arithmetic with the run-time errors of Visual Basic in place of infinities and wrapped numbers.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "ambrelio/value/automation_error.h"

namespace ambrelio {

// The result of an operation on finite numbers, or 6 (overflow) when it left their range.
inline double Checked(double result) {
  if (!std::isfinite(result)) Raise(RuntimeError::kOverflow);
  return result;
}

// 11 (division by zero), but 6 (overflow) for 0/0.
inline double Quotient(double dividend, double divisor) {
  if (divisor == 0) {
    Raise(dividend == 0 ? RuntimeError::kOverflow : RuntimeError::kDivisionByZero);
  }
  return Checked(dividend / divisor);
}

// The next number of a series; 6 (overflow) behind the last one.
inline int32_t Successor(int32_t number) {
  if (number == std::numeric_limits<int32_t>::max()) Raise(RuntimeError::kOverflow);
  return number + 1;
}

}  // namespace ambrelio
