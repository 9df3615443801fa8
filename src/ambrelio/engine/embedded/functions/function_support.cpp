#include "ambrelio/engine/embedded/functions/function_support.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "ambrelio/value/arithmetic.h"
#include "ambrelio/value/convert.h"
#include "ambrelio/value/decimal.h"

namespace ambrelio::embedded {

namespace {

void Call(sqlite3_context* context, int count, sqlite3_value** values) {
  const auto& function = *static_cast<const Function*>(sqlite3_user_data(context));
  const Arguments arguments(values, static_cast<size_t>(count));
  // A result that nobody sets is Null.
  if (function.nulls == Nulls::kGiveNull && std::ranges::any_of(arguments, IsNull)) return;
  Guarded(context, [&] { function.body(context, arguments); });
}

}  // namespace

void RegisterScalars(sqlite3* db, std::span<const Function> functions) {
  for (const Function& function : functions) {
    const int flags =
        SQLITE_UTF8 | SQLITE_INNOCUOUS | (function.constant ? SQLITE_DETERMINISTIC : 0);
    for (int count = function.least; count <= function.most; ++count) {
      const int code = sqlite3_create_function_v2(db, function.name, count, flags,
                                                  const_cast<Function*>(&function),  // NOLINT
                                                  Call, nullptr, nullptr, nullptr);
      if (code != SQLITE_OK) throw std::bad_alloc();
    }
  }
}

std::string_view StoredText(sqlite3_value* value) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  if (text == nullptr) return {};
  return {text, static_cast<size_t>(sqlite3_value_bytes(value))};
}

std::string_view TextOf(sqlite3_value* value, std::string& buffer) {
  if (sqlite3_value_type(value) != SQLITE_FLOAT) return StoredText(value);
  buffer = NumberText(sqlite3_value_double(value), '.');
  return buffer;
}

std::string TextOf(sqlite3_value* value) {
  std::string buffer;
  return std::string(TextOf(value, buffer));
}

double NumberOf(sqlite3_value* value) {
  if (sqlite3_value_type(value) != SQLITE_TEXT) return sqlite3_value_double(value);
  const auto number = ParseNumber(StoredText(value));
  if (!number) Raise(RuntimeError::kTypeMismatch);
  return *number;
}

int32_t LongOf(sqlite3_value* value) { return RoundToLong(NumberOf(value)); }

int32_t IntegerOf(sqlite3_value* value) { return RoundToInteger(NumberOf(value)); }

int32_t ByteOf(sqlite3_value* value) {
  const int32_t number = LongOf(value);
  if (number < 0 || number > 255) Raise(RuntimeError::kOverflow);
  return number;
}

double SingleOf(sqlite3_value* value) {
  const double number = NumberOf(value);
  if (std::abs(number) > std::numeric_limits<float>::max()) Raise(RuntimeError::kOverflow);
  return static_cast<float>(number);
}

double CurrencyOf(sqlite3_value* value) {
  constexpr double kLimit = 922337203685477.5807;
  const double amount = RoundHalfEven(NumberOf(value), 4);
  if (std::abs(amount) > kLimit) Raise(RuntimeError::kOverflow);
  return amount;
}

bool BooleanOf(sqlite3_value* value) { return ToBoolean(VariantOf(value)); }

OleDate DateOf(sqlite3_value* value) { return ToDate(VariantOf(value)); }

Variant VariantOf(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_NULL:
      return Variant::Null();
    case SQLITE_TEXT:
      return Variant(StoredText(value));
    default:
      return Variant(sqlite3_value_double(value));
  }
}

double RoundHalfEven(double value, int decimals) {
  Decimal decimal = Decimal::FromDouble(value, 15);
  const auto digits = static_cast<int64_t>(decimal.digits.size());
  const int64_t kept = int64_t{decimal.exponent} + decimals;
  if (kept >= digits) return value;
  const auto digit = [&decimal](int64_t place) {
    return decimal.digits[static_cast<size_t>(place)];
  };
  const bool half = kept >= 0 && digits == kept + 1 && digit(kept) == '5';
  const bool even = kept <= 0 || (digit(kept - 1) - '0') % 2 == 0;
  if (half && even) {
    decimal.digits.pop_back();
  } else {
    decimal.Round(decimals);
  }
  return decimal.ToDouble().value_or(value);
}

void SetText(sqlite3_context* context, std::string_view text) {
  sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void SetNumber(sqlite3_context* context, double number) {
  sqlite3_result_double(context, Checked(number));
}

void SetDate(sqlite3_context* context, OleDate date) {
  sqlite3_result_double(context, date.days());
}

void SetBoolean(sqlite3_context* context, bool truth) {
  sqlite3_result_int(context, truth ? -1 : 0);
}

}  // namespace ambrelio::embedded
