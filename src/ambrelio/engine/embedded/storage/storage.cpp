#include "ambrelio/engine/embedded/storage/storage.h"

#include <utility>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/functions/functions.h"
#include "ambrelio/engine/embedded/storage/catalogue_schema.h"
#include "ambrelio/engine/embedded/storage/storage_file.h"

namespace ambrelio::embedded {
namespace {

using dao::DaoError;

constexpr int kLockWaitMilliseconds = 2000;
// A committed statement survives the process and the power; nothing in a file that somebody
// tampered with may run code. The last connection that closes moves the log into the file; within a
// call only one of 64 MB is moved, which most of a season makes when nobody ever closes. What has
// to be sorted goes into a temporary file where it is more than the cache holds.
constexpr const char* kSettings =
    "pragma foreign_keys = off; pragma trusted_schema = off; pragma cell_size_check = on;"
    "pragma synchronous = full; pragma wal_autocheckpoint = 16384;"
    "pragma temp_store = file; pragma cache_size = -16384;";
// SQLITE_BloomFilter and SQLITE_SimplifyJoin among the optimizations of SQLite, which its header
// does not publish.
constexpr int kBloomFilter = 0x00080000;
constexpr int kSimplifyJoin = 0x00002000;

// Failures at the opening have other numbers than those of an open database.
[[noreturn]] void RaiseOpenError(sqlite3* db, int code, const std::string& path) {
  switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      dao::Raise(DaoError::kFileInUse, dao::source::kWorkspace, path);
    case SQLITE_READONLY:
    case SQLITE_CANTOPEN:
      dao::Raise(DaoError::kAccessDenied, dao::source::kWorkspace, path);
    case SQLITE_ERROR:  // a header with a format that there is not
      dao::Raise(DaoError::kNotADatabaseOrDamaged, dao::source::kWorkspace, path);
    default:
      RaiseStorageError(db, code);
  }
}

// No name of Jet has a dot, and none begins as SQLite's own tables do.
bool IsTableOfUsers(std::string_view name) {
  return name.find('.') == std::string_view::npos && !name.starts_with("sqlite_");
}

std::string Savepoint(int level) { return "level" + std::to_string(level); }

std::string Quoted(std::string_view text, char quote) {
  std::string quoted(1, quote);
  for (const char c : text) {
    quoted.append(c == quote ? 2 : 1, c);
  }
  return quoted + quote;
}

}  // namespace

// Without mutexes: an engine belongs to one thread.
Storage::Storage(const std::string& path, int flags) : path_(path) {
  const int code = sqlite3_open_v2(path.c_str(), &db_, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  if (code == SQLITE_OK) return;
  const std::unique_ptr<sqlite3, int (*)(sqlite3*)> closing(db_, sqlite3_close_v2);
  RaiseOpenError(db_, code, path);
}

Storage::~Storage() {
  reads_.Abandon();
  data_version_query_.reset();
  kept_.clear();
  // Whoever still holds a statement keeps the connection alive, but it shall hold no lock.
  for (sqlite3_stmt* rest = sqlite3_next_stmt(db_, nullptr); rest != nullptr;
       rest = sqlite3_next_stmt(db_, rest)) {
    sqlite3_reset(rest);
  }
  RollbackAll();
  backing_.reset();
  sqlite3_commit_hook(db_, nullptr, nullptr);
  sqlite3_rollback_hook(db_, nullptr, nullptr);
  sqlite3_close_v2(db_);
}

// Sets the connection up and touches the file for the first time.
void Storage::Configure(Access access) {
  sqlite3_extended_result_codes(db_, 1);
  sqlite3_busy_timeout(db_, kLockWaitMilliseconds);
  for (const int misfeature : {SQLITE_DBCONFIG_DQS_DML, SQLITE_DBCONFIG_DQS_DDL}) {
    sqlite3_db_config(db_, misfeature, 0, nullptr);
  }
  sqlite3_db_config(db_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  // Either loses rows of a join (SQLite 3.38 to 3.40): a Bloom filter takes texts of different
  // length for different, even where the collation makes them equal, and of left joins one within
  // the other too many can become inner ones. The planner sees to those itself.
  sqlite3_test_control(SQLITE_TESTCTRL_OPTIMIZATIONS, db_, kBloomFilter | kSimplifyJoin);
  RegisterFunctions(db_);
  sqlite3_commit_hook(
      db_,
      [](void* self) {
        auto* const storage = static_cast<Storage*>(self);
        if (storage->level_ > 0 && !storage->committing_) return 1;
        storage->unwaited_ = storage->waiting_put_off_;
        return 0;
      },
      this);
  sqlite3_rollback_hook(
      db_, [](void* self) { ++static_cast<Storage*>(self)->rollbacks_; }, this);

  std::string sql = kSettings;
  if (access == Access::kExclusive || access == Access::kExclusiveReadOnly) {
    sql += "pragma locking_mode = exclusive; begin exclusive; commit;";
  } else {
    sql += "select count(*) from sqlite_schema;";
  }
  if (access == Access::kExclusiveReadOnly) sql += "pragma query_only = on;";
  const int code = sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) RaiseOpenError(db_, sqlite3_extended_errcode(db_), path_);
  read_only_ = access == Access::kReadOnly || access == Access::kExclusiveReadOnly ||
               sqlite3_db_readonly(db_, "main") == 1;
  alone_ = access == Access::kExclusive || access == Access::kExclusiveReadOnly;
  StorageStatement journal(db_, "pragma journal_mode");
  if (journal.Step() && journal.Text(0) == "wal") log_.emplace(db_);
}

std::unique_ptr<Storage> Storage::Open(const std::string& path, Access access) {
  CheckDatabaseFile(path);
  const auto open = [&](const std::string& name, int flags) {
    std::unique_ptr<Storage> storage(new Storage(name, flags));
    storage->path_ = path;
    storage->Configure(access);
    if (name != path) storage->alone_ = true;
    return storage;
  };
  const bool exclusive = access == Access::kExclusive || access == Access::kExclusiveReadOnly;
  try {
    return open(path, access == Access::kReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE);
  } catch (const AutomationError& error) {
    // A folder that may not be written has no place for the log's index. Where there is no log
    // either, nobody is writing, and the file can be read as it is.
    const bool denied = error.number() == static_cast<int>(DaoError::kAccessDenied);
    if (!denied || exclusive || CompanionExists(path, "-wal")) throw;
    return open(ImmutableUri(path), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
  }
}

std::unique_ptr<Storage> Storage::Create(const std::string& path,
                                         const std::function<void(Storage&)>& fill) {
  CreateWhole(path, [&](const std::string& unfinished) {
    Storage storage(unfinished, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    storage.Configure(Access::kShared);
    // Nobody sees the file before it is complete: it needs no journal until then.
    storage.Run("pragma journal_mode = memory");
    storage.Begin();
    storage.Run("pragma application_id = " + std::to_string(kApplicationId) +
                "; pragma user_version = " + std::to_string(kFormatVersion) + ";" +
                kCatalogueSchema);
    if (fill) fill(storage);
    storage.Commit();
    storage.Run("pragma journal_mode = wal");
  });
  return Open(path, Access::kShared);
}

std::unique_ptr<Storage> Storage::InMemory(const std::string& path, bool read_only) {
  std::unique_ptr<Storage> storage(
      new Storage(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE));
  storage->path_ = path;
  storage->Configure(Access::kShared);
  storage->read_only_ = read_only;
  storage->Run(kCatalogueSchema);
  return storage;
}

void Storage::Back(std::unique_ptr<Backing> backing) {
  backing_ = std::move(backing);
  sqlite3_set_authorizer(
      db_,
      [](void* self, int action, const char* table, const char*, const char*, const char*) {
        return static_cast<Storage*>(self)->NoteTable(action, table);
      },
      this);
}

int Storage::NoteTable(int action, const char* table) {
  if (table == nullptr) return SQLITE_OK;
  const std::string name = table;
  if (action == SQLITE_DROP_TABLE) dropped_ = name;
  const bool writes = action == SQLITE_INSERT || action == SQLITE_UPDATE || action == SQLITE_DELETE;
  if ((action != SQLITE_READ && !writes) || !IsTableOfUsers(name)) return SQLITE_OK;
  if (touched_ != nullptr) {
    touched_->read.insert(name);
    if (writes) touched_->written.insert(name);
  }
  if (action != SQLITE_DELETE) return SQLITE_OK;
  // The rows of a table that is dropped go at once, and this asks about them too. All others shall
  // go one by one, so that the backing is told which they were; to SQLite that is ignoring.
  return std::exchange(dropped_, {}) == name ? SQLITE_OK : SQLITE_IGNORE;
}

TablesTouched Storage::TouchedBy(const std::function<void()>& prepare) {
  TablesTouched touched;
  if (backing_) touched_ = &touched;
  try {
    prepare();
  } catch (...) {
    touched_ = nullptr;
    throw;
  }
  touched_ = nullptr;
  return touched;
}

void Storage::Need(const TablesTouched& tables) {
  if (backing_) backing_->Need(tables);
}

void Storage::Run(const std::string& sql) {
  if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    RaiseStorageError(db_, sqlite3_extended_errcode(db_));
  }
}

void Storage::RunKept(const std::string& sql) {
  const auto place = kept_.find(sql);
  StorageStatement& statement = place != kept_.end()
                                    ? place->second
                                    : kept_.emplace(sql, StorageStatement(db_, sql)).first->second;
  statement.Step();
  statement.Reset();
}

int64_t Storage::Changes() const { return sqlite3_changes64(db_); }

bool Storage::transaction_lost() const { return level_ > 0 && sqlite3_get_autocommit(db_) != 0; }

// Reads on a snapshot that is not the newest would keep level 1 from its lock; those on the newest
// would go on in the transaction and see its writes.
void Storage::Begin() {
  SettleReads();
  if (!transaction_lost()) {
    if (level_ > 0) {
      RunKept("savepoint " + Savepoint(level_ + 1));
    } else {
      if (backing_ && !read_only_) backing_->Lock();
      RunKept(read_only_ ? "begin" : "begin immediate");
    }
  }
  ++level_;
}

// Reads that were opened in the transaction would go on behind its end, at a moment that CatchUp
// knows nothing of.
void Storage::Commit() {
  SettleReads();
  if (level_ == 0 || transaction_lost()) {
    dao::Raise(DaoError::kNoTransaction, dao::source::kWorkspace);
  }
  if (level_ > 1) {
    RunKept("release " + Savepoint(level_));
  } else {
    if (backing_) backing_->Save();
    committing_ = true;
    try {
      RunKept("commit");
    } catch (...) {
      committing_ = false;
      throw;
    }
    committing_ = false;
  }
  if (--level_ == 0 && backing_) backing_->Unlock();
  if (wait_at_end_) WaitForAll();
}

// What was read in the level stays as it was read.
void Storage::Rollback() {
  SettleReads();
  if (level_ == 0) dao::Raise(DaoError::kNoTransaction, dao::source::kWorkspace);
  if (!transaction_lost()) {
    if (level_ > 1) {
      RunKept("rollback to " + Savepoint(level_));
      RunKept("release " + Savepoint(level_));
    } else {
      RunKept("rollback");
    }
  }
  ++rollbacks_;  // also of a savepoint, of which no hook tells
  --level_;
  if (backing_) {
    backing_->RolledBack();
    if (level_ == 0) backing_->Unlock();
  }
  if (wait_at_end_) WaitForAll();
}

void Storage::PutOffWaiting() {
  if (waiting_put_off_ || level_ > 0 || (!log_ && !backing_) || read_only_) return;
  if (backing_) {
    backing_->PutOffSaving();
  } else {
    Run("pragma synchronous = normal");
  }
  waiting_put_off_ = true;
}

void Storage::WaitForAll() {
  if (!waiting_put_off_) return;
  // An error has left a transaction open, and SQLite changes the setting in none.
  wait_at_end_ = level_ > 0;
  if (wait_at_end_) return;
  if (backing_) {
    waiting_put_off_ = false;
    return backing_->SaveAll();
  }
  Run("pragma synchronous = full");
  waiting_put_off_ = false;
  if (!std::exchange(unwaited_, false)) return;
  sqlite3_file* log = nullptr;
  sqlite3_file_control(db_, "main", SQLITE_FCNTL_JOURNAL_POINTER, static_cast<void*>(&log));
  if (log == nullptr || log->pMethods == nullptr) return;
  const int code = log->pMethods->xSync(log, SQLITE_SYNC_NORMAL);
  if (code != SQLITE_OK) RaiseStorageError(db_, SQLITE_IOERR_FSYNC);
}

void Storage::RollbackAll() {
  if (level_ == 0) return;
  if (!transaction_lost()) sqlite3_exec(db_, "rollback", nullptr, nullptr, nullptr);
  level_ = 0;
  if (backing_) backing_->Unlock();
}

std::optional<LogState> Storage::SharedState() noexcept {
  if (backing_) {
    try {
      return LogState{backing_->StateOfFile()};
    } catch (...) {
      return std::nullopt;  // whoever reads next will say why
    }
  }
  if (alone_) return LogState{};
  return log_ ? log_->Read() : std::nullopt;
}

void Storage::Register(const std::shared_ptr<OpenRead>& read) {
  reads_.Add(read);
  if (!SharedState()) SettleReads();
}

bool Storage::CatchUp() noexcept {
  const std::optional<LogState> now = SharedState();
  // A transaction sees one moment from its beginning to its end.
  if (sqlite3_get_autocommit(db_) != 0) {
    const bool reading = sqlite3_txn_state(db_, "main") != SQLITE_TXN_NONE;
    if (reading && now != read_state_) SettleReads();
    // Taken before the next reading begins: what that sees is this or newer.
    if (now) read_state_ = *now;
    if (backing_ && now != looked_at_) RefreshBacking();
  }
  return now && now == looked_at_;
}

void Storage::RefreshBacking() noexcept {
  try {
    backing_->Refresh();
  } catch (...) {
    // The next look at the catalogue tries again, and tells.
  }
}

bool Storage::IsAsLookedAt() {
  const std::optional<LogState> now = SharedState();
  return now && now == looked_at_;
}

bool Storage::ChangedByOthers() {
  // A transaction that only reads begins with its first question to the file: with this one.
  const bool only_reads = level_ > 0 && read_only_;
  if (CatchUp() && !only_reads) return false;
  if (backing_) {
    if (level_ == 0) backing_->Refresh();
    looked_at_ = SharedState();
    return true;
  }
  if (!data_version_query_) {
    data_version_query_ = std::make_unique<StorageStatement>(db_, "pragma data_version");
  }
  const std::optional<LogState> now = SharedState();
  data_version_query_->Step();
  const int64_t version = data_version_query_->Integer(0);
  data_version_query_->Reset();
  const bool changed = version != data_version_;
  data_version_ = version;
  if (!now || only_reads) {
    looked_at_.reset();
  } else {
    // A transaction that writes keeps all others from committing.
    looked_at_ = level_ > 0 ? *now : read_state_;
  }
  return changed;
}

std::string QuoteName(std::string_view name) { return Quoted(name, '"'); }

std::string QuoteText(std::string_view text) { return Quoted(text, '\''); }

}  // namespace ambrelio::embedded
