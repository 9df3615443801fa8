// A database in memory with the engine's functions, for asking what an expression gives.
#pragma once

#include <sqlite3.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "ambrelio/engine/embedded/functions/functions.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/locale.h"
#include "ambrelio/value/ole_date.h"

namespace ambrelio::embedded {

inline constexpr Locale kSpanish = {',', '.', DateOrder::kDayMonthYear};

class FunctionDb {
 public:
  FunctionDb() {
    sqlite3_open(":memory:", &db_);
    RegisterFunctions(db_);
  }
  ~FunctionDb() { sqlite3_close(db_); }
  FunctionDb(const FunctionDb&) = delete;
  FunctionDb& operator=(const FunctionDb&) = delete;

  // The first column of every row, errors of the functions as they were raised.
  std::vector<std::string> Rows(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) Fail();
    std::vector<std::string> rows;
    int code = SQLITE_ROW;
    while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
      const auto size = static_cast<size_t>(sqlite3_column_bytes(statement, 0));
      rows.push_back(text == nullptr ? "NULL" : std::string(text, size));
    }
    sqlite3_finalize(statement);
    if (code != SQLITE_DONE) Fail();
    return rows;
  }

  void Run(const std::string& sql) { Rows(sql); }

  // A value as SQLite writes it: NULL, 1, 1.0, 'text'.
  std::string Eval(const std::string& expression) {
    return Rows("select quote(" + expression + ")").at(0);
  }
  // The text itself.
  std::string Text(const std::string& expression) { return Rows("select " + expression).at(0); }
  // A date as YYYY-MM-DD HH:MM:SS.
  std::string Date(const std::string& expression) {
    return OleDate::FromDays(std::stod(Text(expression))).Iso();
  }
  // The number of the error that the expression raises, 0 for none.
  int ErrorOf(const std::string& expression) {
    try {
      Eval(expression);
      return 0;
    } catch (const AutomationError& error) {
      return error.number();
    }
  }

 private:
  [[noreturn]] void Fail() {
    const char* message = sqlite3_errmsg(db_);
    if (auto error = DecodeFunctionError(message)) throw AutomationError(*error);
    throw std::runtime_error(message);
  }

  sqlite3* db_ = nullptr;
};

// A moment written YYYY-MM-DD HH:MM:SS, as the expression of its day number.
inline std::string DaysOf(const std::string& iso) {
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", OleDate::FromIso(iso).value().days());
  return text;
}

}  // namespace ambrelio::embedded
