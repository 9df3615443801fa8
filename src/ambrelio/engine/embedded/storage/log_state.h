// Whether a file has changed since a reading of it began, told without ending the reading: SQLite
// itself answers that only to a connection that reads nothing.
#pragma once

#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <optional>

namespace ambrelio::embedded {

// The header of the write-ahead log's index, another one after every commit by anybody.
using LogState = std::array<uint32_t, 12>;

// The header as it is now, for a connection that is open on a file with such a log. A header that
// is just being written can read as one that never was. Nothing when it cannot be seen.
std::optional<LogState> ReadLogState(sqlite3* db);

}  // namespace ambrelio::embedded
