// One connection to a database file, with everything that makes SQLite speak Jet: functions and
// collation, transaction levels, the waiting for locks, error numbers.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "ambrelio/value/variant.h"

namespace ambrelio::embedded {

// A prepared statement of SQLite. Errors of Step are AutomationErrors with DAO's numbers.
class StorageStatement {
 public:
  StorageStatement(sqlite3* db, const std::string& sql);
  StorageStatement(StorageStatement&& other) noexcept;
  StorageStatement& operator=(StorageStatement&& other) noexcept;
  ~StorageStatement();

  // Parameters from 1. Booleans bind as 0 and -1, dates as days.
  void Bind(int parameter, const Variant& value);
  void Bind(int parameter, int64_t value);
  // True while there is a row.
  bool Step();
  void Reset();  // also forgets the bindings
  int ColumnCount() const;
  bool IsNull(int column) const;
  int64_t Integer(int column) const;
  double Real(int column) const;
  std::string_view Text(int column) const;  // valid until the next Step or Reset
  sqlite3_stmt* raw() const { return statement_; }

 private:
  sqlite3* db_ = nullptr;
  sqlite3_stmt* statement_ = nullptr;
};

class Storage {
 public:
  enum class Access : uint8_t { kShared, kReadOnly, kExclusive };

  // Opens an existing file: 3024 missing, 3044 no such folder, 3343 not a database, 3049 damaged,
  // 3051 not permitted, 3045 or 3356 held by others.
  static std::unique_ptr<Storage> Open(const std::string& path, Access access);
  // Makes a new file with an empty catalogue; 3204 when it exists.
  static std::unique_ptr<Storage> Create(const std::string& path);
  ~Storage();
  Storage(const Storage&) = delete;
  Storage& operator=(const Storage&) = delete;

  sqlite3* raw() const { return db_; }
  const std::string& path() const { return path_; }
  bool read_only() const { return read_only_; }

  // Runs storage SQL that gives no rows.
  void Run(const std::string& sql);
  // Rows changed by the last finished statement.
  int64_t Changes() const;

  // Transaction levels, 0 when none is open. Level 1 takes the write lock (3218 when another
  // process keeps it for longer than two seconds), the others are savepoints.
  int level() const { return level_; }
  void Begin();
  void Commit();
  void Rollback();
  void RollbackAll();

  // Whether another connection has committed anything since the last call.
  bool ChangedByOthers();

 private:
  Storage(sqlite3* db, std::string path, bool read_only);
  sqlite3* db_ = nullptr;
  std::string path_;
  bool read_only_ = false;
  int level_ = 0;
  int64_t data_version_ = -1;
};

// An error of SQLite as an AutomationError: `code` is the extended result code. An error raised by
// one of the registered functions comes out as it was raised.
[[noreturn]] void RaiseStorageError(sqlite3* db, int code);

// `"name"`, with quotes doubled.
std::string QuoteName(std::string_view name);
// `'text'`, with apostrophes doubled.
std::string QuoteText(std::string_view text);

}  // namespace ambrelio::embedded
