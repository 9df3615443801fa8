// The functions of numbers, and the conversions, which alone refuse a Null.
#include <cmath>

#include "ambrelio/dao/definitions.h"
#include "ambrelio/engine/embedded/functions/format.h"
#include "ambrelio/engine/embedded/functions/function_support.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::embedded {

namespace {

bool IsWhole(sqlite3_value* value) { return sqlite3_value_type(value) == SQLITE_INTEGER; }

// A function that leaves whole numbers as they are.
template <double (*Change)(double)>
void ChangeFraction(sqlite3_context* context, Arguments arguments) {
  if (IsWhole(arguments[0])) return sqlite3_result_value(context, arguments[0]);
  SetNumber(context, Change(NumberOf(arguments[0])));
}

void Abs(sqlite3_context* context, Arguments arguments) {
  const double number = std::abs(NumberOf(arguments[0]));
  if (IsWhole(arguments[0])) return sqlite3_result_int64(context, static_cast<int64_t>(number));
  SetNumber(context, number);
}

void Sgn(sqlite3_context* context, Arguments arguments) {
  const double number = NumberOf(arguments[0]);
  sqlite3_result_int(context, number > 0 ? 1 : (number < 0 ? -1 : 0));
}

void Round(sqlite3_context* context, Arguments arguments) {
  const int32_t decimals = arguments.size() > 1 ? LongOf(arguments[1]) : 0;
  if (decimals < 0) Raise(RuntimeError::kInvalidCall);
  if (IsWhole(arguments[0])) return sqlite3_result_value(context, arguments[0]);
  SetNumber(context, RoundHalfEven(NumberOf(arguments[0]), decimals));
}

void Val(sqlite3_context* context, Arguments arguments) {
  std::string buffer;
  SetNumber(context, LeadingNumber(TextOf(arguments[0], buffer)));
}

// The conversions.

sqlite3_value* Known(Arguments arguments) {
  if (IsNull(arguments[0])) Raise(RuntimeError::kInvalidUseOfNull);
  return arguments[0];
}

template <int32_t (*Convert)(sqlite3_value*)>
void ToWhole(sqlite3_context* context, Arguments arguments) {
  sqlite3_result_int(context, Convert(Known(arguments)));
}

template <double (*Convert)(sqlite3_value*)>
void ToNumber(sqlite3_context* context, Arguments arguments) {
  SetNumber(context, Convert(Known(arguments)));
}

void ToBool(sqlite3_context* context, Arguments arguments) {
  SetBoolean(context, BooleanOf(Known(arguments)));
}

void ToMoment(sqlite3_context* context, Arguments arguments) {
  SetDate(context, DateOf(Known(arguments)));
}

dao::FieldType TypeOf(sqlite3_value* value) {
  return static_cast<dao::FieldType>(sqlite3_value_int(value));
}

void Text(sqlite3_context* context, Arguments arguments) {
  if (sqlite3_value_type(arguments[0]) == SQLITE_TEXT) {
    return sqlite3_result_value(context, arguments[0]);
  }
  SetText(context, TextOfType(VariantOf(arguments[0]), TypeOf(arguments[1])));
}

void Format(sqlite3_context* context, Arguments arguments) {
  const Variant value = VariantOf(arguments[0]);
  SetText(context, FormatValue(value, TextOf(arguments[1]), TypeOf(arguments[2])));
}

constexpr Function kNumberFunctions[] = {
    {"jet_int", 1, 1, ChangeFraction<std::floor>},
    {"jet_fix", 1, 1, ChangeFraction<std::trunc>},
    {"jet_abs", 1, 1, Abs},
    {"jet_sgn", 1, 1, Sgn},
    {"jet_round", 1, 2, Round},
    {"jet_val", 1, 1, Val},
    {"jet_cint", 1, 1, ToWhole<IntegerOf>, Nulls::kAreTaken},
    {"jet_clng", 1, 1, ToWhole<LongOf>, Nulls::kAreTaken},
    {"jet_cbyte", 1, 1, ToWhole<ByteOf>, Nulls::kAreTaken},
    {"jet_cdbl", 1, 1, ToNumber<NumberOf>, Nulls::kAreTaken},
    {"jet_csng", 1, 1, ToNumber<SingleOf>, Nulls::kAreTaken},
    {"jet_ccur", 1, 1, ToNumber<CurrencyOf>, Nulls::kAreTaken},
    {"jet_cbool", 1, 1, ToBool, Nulls::kAreTaken},
    {"jet_cdate", 1, 1, ToMoment, Nulls::kAreTaken},
    {"jet_cvdate", 1, 1, ToMoment, Nulls::kAreTaken},
    {"jet_text", 2, 2, Text},
    {"jet_format", 3, 3, Format, Nulls::kAreTaken},
};

}  // namespace

void RegisterNumberFunctions(sqlite3* db) { RegisterScalars(db, kNumberFunctions); }

}  // namespace ambrelio::embedded
