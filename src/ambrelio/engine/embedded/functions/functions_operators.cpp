#include <cmath>
#include <limits>

#include "ambrelio/engine/embedded/functions/function_support.h"
#include "ambrelio/value/arithmetic.h"

namespace ambrelio::embedded {

namespace {

void Divide(sqlite3_context* context, Arguments arguments) {
  SetNumber(context, Quotient(NumberOf(arguments[0]), NumberOf(arguments[1])));
}

// The operands of `\` and `mod`, whole numbers both.
struct WholeOperands {
  int64_t dividend;
  int64_t divisor;
};

WholeOperands WholeOperandsOf(Arguments arguments) {
  const WholeOperands operands{LongOf(arguments[0]), LongOf(arguments[1])};
  if (operands.divisor == 0) Raise(RuntimeError::kDivisionByZero);
  return operands;
}

void DivideWhole(sqlite3_context* context, Arguments arguments) {
  const auto [dividend, divisor] = WholeOperandsOf(arguments);
  const int64_t quotient = dividend / divisor;
  if (quotient > std::numeric_limits<int32_t>::max()) Raise(RuntimeError::kOverflow);
  sqlite3_result_int64(context, quotient);
}

void Remainder(sqlite3_context* context, Arguments arguments) {
  const auto [dividend, divisor] = WholeOperandsOf(arguments);
  sqlite3_result_int64(context, dividend % divisor);
}

void Power(sqlite3_context* context, Arguments arguments) {
  const double base = NumberOf(arguments[0]);
  const double exponent = NumberOf(arguments[1]);
  const bool no_answer =
      (base == 0 && exponent < 0) || (base < 0 && exponent != std::trunc(exponent));
  if (no_answer) Raise(RuntimeError::kInvalidCall);
  SetNumber(context, std::pow(base, exponent));
}

void Concat(sqlite3_context* context, Arguments arguments) {
  if (IsNull(arguments[0]) && IsNull(arguments[1])) return;
  std::string text = TextOf(arguments[0]);
  std::string buffer;
  text += TextOf(arguments[1], buffer);
  SetText(context, text);
}

void Like(sqlite3_context* context, Arguments arguments) {
  std::string text_buffer;
  std::string pattern_buffer;
  const bool matches =
      MatchesLike(TextOf(arguments[0], text_buffer), TextOf(arguments[1], pattern_buffer));
  sqlite3_result_int(context, matches ? 1 : 0);
}

constexpr Function kOperatorFunctions[] = {
    {"jet_divide", 2, 2, Divide}, {"jet_int_divide", 2, 2, DivideWhole},
    {"jet_mod", 2, 2, Remainder}, {"jet_power", 2, 2, Power},
    {"jet_like", 2, 2, Like},     {"jet_concat", 2, 2, Concat, Nulls::kAreTaken},
};

}  // namespace

void RegisterOperators(sqlite3* db) { RegisterScalars(db, kOperatorFunctions); }

}  // namespace ambrelio::embedded
