// A trace of everything sent to an engine: an engine that passes every call on to another one and
// reports each statement, exactly as sent.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "ambrelio/dao/database.h"

namespace ambrelio::dao {

// One statement; `sql` is the exact text. Transaction steps are no statements: they show in
// `level`.
struct TraceEntry {
  std::string sql;
  std::optional<int32_t> affected;  // rows written, for Execute
  std::optional<int32_t> rows;      // rows that became current, for OpenRecordset
  int64_t microseconds = 0;         // spent inside the engine, moves included
  int level = 0;                    // transaction level at which the statement ran
  int error = 0;                    // number of the error that ended it, 0 for none
};

// Called once for each statement, in the order they were sent; a statement that opened a recordset
// is reported when the recordset is closed, and holds back those behind it until then.
using TraceSink = std::function<void(const TraceEntry&)>;

std::shared_ptr<DBEngine> Traced(std::shared_ptr<DBEngine> engine, TraceSink sink);

// The entry as one line of JSON: {"sql":"...","affected":n,"us":t,"level":k} and the like.
std::string TraceLine(const TraceEntry& entry);

}  // namespace ambrelio::dao
