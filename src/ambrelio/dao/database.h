// The data-access port: engine, workspace, database and recordset, with the names and meanings of
// DAO. Everything the library asks of a database goes through these classes, whatever engine is
// behind them; all failures are AutomationError with DAO's numbers.
//
// An engine and all that came out of it belong to one thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ambrelio/dao/collection.h"
#include "ambrelio/dao/definitions.h"

namespace ambrelio::dao {

// Options of Database::Execute.
inline constexpr int32_t kFailOnError = 128;

enum class RecordsetType : int {
  kDefault = 0,  // a dynaset over one table, else a snapshot
  kDynaset = 2,
  kSnapshot = 4,
};

// Rows to walk. Just opened, the first row is current; an empty set has both ends.
//
// A dynaset keeps which rows belong to it from its opening and reads the values of a row when the
// row becomes current; a row deleted meanwhile raises 3167 when read. A snapshot never changes.
class Recordset {
 public:
  virtual ~Recordset() = default;

  virtual bool AtEnd() const = 0;    // EOF
  virtual bool AtStart() const = 0;  // BOF
  // All moves raise 3021 on an empty set; MoveNext also at the end, MovePrevious at the start.
  virtual void MoveFirst() = 0;
  virtual void MoveLast() = 0;
  virtual void MoveNext() = 0;
  virtual void MovePrevious() = 0;
  virtual Collection<Field>& Fields() = 0;
  virtual void Close() = 0;

  // Shorthands for Fields().Item(...)->Value(); an engine can do without the objects between.
  virtual Variant Value(std::string_view field) { return Fields().Item(field)->Value(); }
  virtual Variant Value(int field) { return Fields().Item(field)->Value(); }
};

class Database {
 public:
  virtual ~Database() = default;

  virtual std::string Name() const = 0;  // the file's path
  // Carries out an action query. Without kFailOnError, rows that would break a key, a required
  // value or a lock are skipped silently.
  virtual void Execute(const std::string& sql, int32_t options = 0) = 0;
  // Rows written by the last Execute, skipped ones not included.
  virtual int32_t RecordsAffected() const = 0;
  // `source` is a select or union, or the name of a table or stored query.
  virtual std::unique_ptr<Recordset> OpenRecordset(
      const std::string& source, RecordsetType type = RecordsetType::kDefault) = 0;

  virtual std::shared_ptr<TableDef> CreateTableDef(const std::string& name) = 0;
  // With a name, the query is stored at once (3012 when the name is taken).
  virtual std::shared_ptr<QueryDef> CreateQueryDef(const std::string& name,
                                                   const std::string& sql) = 0;
  // As they are now; what other connections change later shows after a Refresh.
  virtual Collection<TableDef>& TableDefs() = 0;
  virtual Collection<QueryDef>& QueryDefs() = 0;

  // Rolls back what is uncommitted. Every later use, also of its recordsets, raises 3420.
  virtual void Close() = 0;
};

// The scope of transactions: they cover every database opened in the workspace.
class Workspace {
 public:
  virtual ~Workspace() = default;

  // `exclusive` keeps other processes out; `connect` is ";pwd=" and the password.
  virtual std::shared_ptr<Database> OpenDatabase(const std::string& path, bool exclusive,
                                                 bool read_only, const std::string& connect) = 0;
  // A new, empty database with the password of `connect`; 3204 when the file exists.
  virtual std::shared_ptr<Database> CreateDatabase(const std::string& path,
                                                   const std::string& connect) = 0;

  // Levels nest, five deep (3003). Commit and roll back end the innermost one (3034 without one);
  // nothing is durable or seen by others before the outermost commit.
  virtual void BeginTrans() = 0;
  virtual void CommitTrans() = 0;
  virtual void Rollback() = 0;

  // What is written until EndStretch is waited for as a whole when that returns, and not statement
  // by statement; each is carried out, and seen by others, at once all the same. For an engine that
  // does not wait for the disk at each statement there is nothing to do.
  virtual void BeginStretch() {}
  virtual void EndStretch() {}
};

class DBEngine {
 public:
  virtual ~DBEngine() = default;

  virtual std::string Version() const = 0;
  // The default workspace, `Workspaces(0)`.
  virtual Workspace& DefaultWorkspace() = 0;
};

}  // namespace ambrelio::dao
