// How a function of the dialect is written: a body that takes its arguments and sets its result,
// in a table that names it. Errors are thrown; the one trampoline keeps them out of SQLite's
// frames.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <exception>
#include <new>
#include <span>
#include <string>
#include <string_view>

#include "ambrelio/engine/embedded/functions/functions.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/ole_date.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::embedded {

using Arguments = std::span<sqlite3_value*>;

// When a function has its answer without being asked.
enum class Nulls : uint8_t {
  kGiveNull,  // any Null argument gives Null
  kAreTaken,  // the body sees them
};

struct Function {
  const char* name;
  int least;  // the numbers of arguments that it takes
  int most;
  void (*body)(sqlite3_context* context, Arguments arguments);
  Nulls nulls = Nulls::kGiveNull;
  bool constant = true;  // the same arguments give the same answer
};

// Registers the functions of a table, which must outlive the connection.
void RegisterScalars(sqlite3* db, std::span<const Function> functions);

// Runs `body` and turns what it throws into an error of the function.
template <class Body>
void Guarded(sqlite3_context* context, const Body& body) {
  try {
    body();
  } catch (const AutomationError& error) {
    ResultError(context, error);
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context);
  } catch (const std::exception& error) {
    sqlite3_result_error(context, error.what(), -1);
  }
}

// The arguments, each by the conversion that its meaning asks for. Texts live as long as the call;
// what does not convert raises 13.
inline bool IsNull(sqlite3_value* value) { return sqlite3_value_type(value) == SQLITE_NULL; }
// The bytes of a text.
std::string_view StoredText(sqlite3_value* value);
// Text as it is; numbers in general format with a point, into `buffer`.
std::string_view TextOf(sqlite3_value* value, std::string& buffer);
std::string TextOf(sqlite3_value* value);
double NumberOf(sqlite3_value* value);
// To the nearest whole number, an exact half to the even neighbour; 6 beyond 32, 16 and 8 bits.
int32_t LongOf(sqlite3_value* value);
int32_t IntegerOf(sqlite3_value* value);
int32_t ByteOf(sqlite3_value* value);
double SingleOf(sqlite3_value* value);    // the nearest number of 32 bits
double CurrencyOf(sqlite3_value* value);  // to four decimals, an exact half to the even one
bool BooleanOf(sqlite3_value* value);
// A day number, or text that reads as a date; 6 outside the years 100 to 9999.
OleDate DateOf(sqlite3_value* value);
// Null, a Double or Text.
Variant VariantOf(sqlite3_value* value);

// To that many decimals of the value's 15 significant digits, an exact half to the even neighbour.
double RoundHalfEven(double value, int decimals);

void SetText(sqlite3_context* context, std::string_view text);
// Raises 6 when the number is infinite or none at all.
void SetNumber(sqlite3_context* context, double number);
void SetDate(sqlite3_context* context, OleDate date);
void SetBoolean(sqlite3_context* context, bool truth);  // True is -1

// The families of functions.
void RegisterStoring(sqlite3* db);
void RegisterOperators(sqlite3* db);
void RegisterNumberFunctions(sqlite3* db);
void RegisterTextFunctions(sqlite3* db);
void RegisterDateFunctions(sqlite3* db);
void RegisterAggregates(sqlite3* db);

}  // namespace ambrelio::embedded
