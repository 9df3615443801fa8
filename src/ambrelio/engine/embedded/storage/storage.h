// One connection to a database file, with everything that makes SQLite speak Jet: functions and
// collation, transaction levels, the waiting for locks, error numbers.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/engine/embedded/storage/backing.h"
#include "ambrelio/engine/embedded/storage/log_state.h"
#include "ambrelio/engine/embedded/storage/open_reads.h"
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
  // Binds to parameter 1, 2, ... what of it the statement has parameters for. What BindAll has
  // bound before is left alone: SQLite prepares a statement anew when a value is bound on which the
  // choice of an index with a condition depended.
  void BindAll(const std::vector<Variant>& values);
  // True while there is a row.
  bool Step();
  void Reset();  // keeps the bindings
  int ColumnCount() const;
  bool IsNull(int column) const;
  int64_t Integer(int column) const;
  double Real(int column) const;
  std::string_view Text(int column) const;  // valid until the next Step or Reset
  sqlite3_stmt* raw() const { return statement_; }

 private:
  sqlite3* db_ = nullptr;
  sqlite3_stmt* statement_ = nullptr;
  std::vector<Variant> bound_;  // by BindAll
};

class Storage {
 public:
  enum class Access : uint8_t { kShared, kReadOnly, kExclusive, kExclusiveReadOnly };

  // Opens an existing file: 3005 no name, 3024 missing, 3044 no such folder, 3343 not a database of
  // this engine, 3049 damaged, 3051 not permitted, 3045 held by others. A file that may not be
  // written is opened for reading.
  static std::unique_ptr<Storage> Open(const std::string& path, Access access);
  // Makes a new file with an empty catalogue and opens it; 3204 when it exists. The file appears
  // under its name only once it is complete, with what `fill` wrote into it.
  static std::unique_ptr<Storage> Create(const std::string& path,
                                         const std::function<void(Storage&)>& fill = {});
  // An empty catalogue in memory, for the file `path` of another format. Back gives it that file,
  // before it is used.
  static std::unique_ptr<Storage> InMemory(const std::string& path, bool read_only);
  void Back(std::unique_ptr<Backing> backing);
  ~Storage();
  Storage(const Storage&) = delete;
  Storage& operator=(const Storage&) = delete;

  sqlite3* raw() const { return db_; }
  const std::string& path() const { return path_; }
  bool read_only() const { return read_only_; }

  // Whether another file is behind the storage. Then every write belongs into a transaction level.
  bool backed() const { return backing_ != nullptr; }
  // The tables of the statements that `prepare` prepares; none where no other file is behind them.
  TablesTouched TouchedBy(const std::function<void()>& prepare);
  // Has the tables at hand, as they are in the file; see Backing.
  void Need(const TablesTouched& tables);

  // Runs storage SQL that gives no rows.
  void Run(const std::string& sql);
  // Rows changed by the last finished statement.
  int64_t Changes() const;

  // Transaction levels, 0 when none is open. Level 1 takes the write lock (3218 when another
  // process keeps it for longer than two seconds), the others are savepoints.
  //
  // A full disk or a failing one can undo the whole transaction at once. The levels stay until each
  // is rolled back; until then every write and every commit raises 3034, so that nothing is stored
  // that its caller takes for a part of the transaction.
  int level() const { return level_; }
  bool transaction_lost() const;
  void Begin();
  void Commit();
  void Rollback();
  void RollbackAll();

  // Commits wait for the disk one by one, unless that is put off, which has to happen outside of
  // transactions; then WaitForAll waits for all of them at one stroke. It raises what the disk does
  // (3026, 3043), and does nothing where nothing was committed. Where a transaction is open, its
  // end waits.
  void PutOffWaiting();
  void WaitForAll();

  // Recordsets read as far as they are looked at, from statements that stay open. What such a
  // statement will deliver is certain as long as this connection writes nothing and ends no
  // transaction: whoever is about to has all of them read to their end first. Begin, Commit and
  // Rollback do so themselves.
  //
  // A statement that stays open holds its moment of the file, and the log grows meanwhile, as no
  // checkpoint gets past that moment. Recordsets are short-lived, and the next write here, or the
  // next look at what others have written, ends the holding.
  void Register(const std::shared_ptr<OpenRead>& read);
  void SettleReads() noexcept { reads_.Settle(); }
  // For whoever is to see the file as it is now: outside of transactions, an open read would keep
  // the connection at an older moment. Settles the reads if anybody has committed since theirs.
  // Tells whether nobody has committed since ChangedByOthers last looked.
  bool CatchUp() noexcept;
  // The same, of an open read's moment of the file too: nothing is settled.
  bool IsAsLookedAt();

  // Whether another connection has committed anything since the last call.
  bool ChangedByOthers();
  // How often this connection has rolled back, savepoints included; for whoever keeps something in
  // memory that a rollback makes untrue.
  int64_t rollbacks() const { return rollbacks_; }

 private:
  Storage(const std::string& path, int flags);
  void Configure(Access access);
  // The same as Run for what is run again and again: prepared once.
  void RunKept(const std::string& sql);
  // Nothing where commits of others cannot be noticed while a read is open.
  std::optional<LogState> SharedState() noexcept;
  // What SQLite asks about a statement that is being prepared, be it for the first time or anew.
  int NoteTable(int action, const char* table);
  void RefreshBacking() noexcept;

  sqlite3* db_ = nullptr;
  std::string path_;
  bool read_only_ = false;
  int level_ = 0;
  bool committing_ = false;
  int64_t rollbacks_ = 0;
  int64_t data_version_ = -1;
  std::unique_ptr<StorageStatement> data_version_query_;
  std::map<std::string, StorageStatement> kept_;
  OpenReads reads_;
  std::unique_ptr<Backing> backing_;
  TablesTouched* touched_ = nullptr;  // while somebody wants to know
  std::string dropped_;               // the table of the statement that is being prepared
  std::optional<LogWatch> log_;       // of a file that has one
  bool alone_ = false;                // nobody else can write
  bool waiting_put_off_ = false;
  bool unwaited_ = false;     // something was committed since
  bool wait_at_end_ = false;  // of the transaction that is open
  // No newer than what the open reads outside of transactions see.
  LogState read_state_ = {};
  // At the last look of ChangedByOthers, which saw this or newer; nothing when it is not known.
  std::optional<LogState> looked_at_;
};

// The rules of a column stand in its storage table as named checks, `<rule>:<field>`; a broken one
// is told apart by its name. A column of a key refuses Null by `not null`.
inline constexpr std::string_view kRequiredRule = "required";       // 3314
inline constexpr std::string_view kZeroLengthRule = "zero length";  // 3315

// An error of SQLite as an AutomationError: `code` is the extended result code. An error raised by
// one of the registered functions comes out as it was raised.
[[noreturn]] void RaiseStorageError(sqlite3* db, int code);

// `"name"`, with quotes doubled.
std::string QuoteName(std::string_view name);
// `'text'`, with apostrophes doubled.
std::string QuoteText(std::string_view text);

}  // namespace ambrelio::embedded
