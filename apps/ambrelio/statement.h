// Runs one SQL statement of the host on a database.
#pragma once

#include <string>
#include <vector>

#include "ambrelio/dao/database.h"
#include "json_value.h"

namespace ambrelio::cli {

struct StatementResult {
  bool has_rows = false;  // a query; else an action
  std::vector<std::string> columns;
  std::vector<std::vector<Variant>> rows;
  int32_t affected = 0;
};

// insert, update, delete and the statements of definition are carried out; all else is opened as a
// query: a select, a union, the name of a table or of a stored query.
StatementResult RunStatement(dao::Database& database, const std::string& sql);

// {"result":[[...],...]} for rows, {"result":n} for an action.
Json StatementJson(const StatementResult& result);

}  // namespace ambrelio::cli
