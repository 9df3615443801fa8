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

// Looks at the header for a connection, which must outlive the watch and keep its log.
class LogWatch {
 public:
  explicit LogWatch(sqlite3* db) : db_(db) {}

  // The header as it is now. One that is just being written can read as one that never was. Nothing
  // when it cannot be seen: the file has no such log, or the connection has not read from it yet.
  std::optional<LogState> Read();

 private:
  sqlite3* db_;
  // Shared memory, which stays where it is as long as the connection has the log open.
  const volatile uint32_t* header_ = nullptr;
};

}  // namespace ambrelio::embedded
