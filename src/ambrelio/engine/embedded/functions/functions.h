// The functions and the collation that the translator's SQL calls, registered with each connection.
//
// Scalar functions follow Jet: Null in gives Null out unless said otherwise, text is compared and
// searched without regard to case. A value that has no answer raises the language's run-time error
// (5, 6, 11, 13), which comes out of StorageStatement::Step as that AutomationError.
#pragma once

#include <sqlite3.h>

#include <optional>
#include <string_view>

#include "ambrelio/engine/embedded/functions/general_order.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio::embedded {

// The collation of all text, named JET: CompareText.
inline constexpr const char* kCollation = "JET";

// Jet's `like`: ? one character, * any, # a digit, [abc], [a-z], [!abc]; without regard to case.
// Trailing blanks count. A bracket without its end stands for itself.
bool MatchesLike(std::string_view text, std::string_view pattern);

// Registers the collation and, under these names, on `db`:
//
//   stored values, for a column of a type (a value that does not convert or is out of range gives
//   Null; with `strict` true it raises 3421):
//     jet_to_boolean(x, strict)  what is Null or does not convert gives 0, any other number than 0
//     gives -1
//     jet_to_byte, jet_to_integer, jet_to_long, jet_to_currency, jet_to_single, jet_to_double,
//     jet_to_date(x, strict)
//     jet_to_text(x, size, strict)  cut to `size` characters (0: no limit); strict raises 3163
//   operators:
//     jet_divide(a, b), jet_int_divide(a, b), jet_mod(a, b), jet_power(a, b)
//     jet_concat(a, b)  Null counts as "", two Nulls give Null
//     jet_like(text, pattern)  0 or 1
//   functions of the dialect:
//     jet_int, jet_fix, jet_abs, jet_sgn (x), jet_round(x [, digits])  half to even
//     jet_cint, jet_clng, jet_cdbl, jet_csng, jet_cbool, jet_cbyte, jet_ccur, jet_cdate, jet_cvdate
//     (x)  Null raises 94
//     jet_text(x, type)  the text of a value whose dao::FieldType number is `type` (`&`, CStr, and
//     numbers stored in text columns): TextOfType of format.h
//     jet_format(x, pattern, type)  FormatValue of format.h
//     jet_left(s, n), jet_right(s, n), jet_mid(s, start [, n]), jet_len(s), jet_trim, jet_ltrim,
//     jet_rtrim, jet_ucase, jet_lcase (s), jet_space(n), jet_string(n, s), jet_val(s)
//     jet_instr([start,] s, find)  without regard to case
//     jet_instr(start, s, find, compare)  minds case when `compare` is 0
//     jet_replace(s, find, by)  minds case
//     jet_chr(n), jet_asc(s)  codes of Windows-1252
//     jet_now(), jet_date(), jet_time()  by Clock::Current()
//     jet_year, jet_month, jet_day, jet_hour, jet_minute, jet_second (d), jet_weekday(d)
//     jet_date_add(interval, n, d), jet_date_diff(interval, a, b), jet_date_part(interval, d),
//     jet_date_serial(y, m, d)  see date_arithmetic.h
//     jet_time_serial(h, m, s), jet_date_value(x)
//   aggregates:
//     jet_first(value, key...), jet_last(value, key...)  the value of the row with the lowest or
//     highest key, keys compared left to right, Null lowest, text by JET; without keys the first
//     or last row met
//     jet_sum(x), jet_avg(x)  always Double, Null without rows
void RegisterFunctions(sqlite3* db);

// How an AutomationError passes through SQLite: encoded in the message of the function's error, and
// read back from the connection's error message; nothing when the message is SQLite's own.
void ResultError(sqlite3_context* context, const AutomationError& error);
std::optional<AutomationError> DecodeFunctionError(const char* message);

}  // namespace ambrelio::embedded
