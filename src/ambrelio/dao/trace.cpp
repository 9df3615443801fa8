#include "ambrelio/dao/trace.h"

#include <chrono>
#include <cstdio>
#include <deque>
#include <utility>

#include "ambrelio/value/automation_error.h"

namespace ambrelio::dao {
namespace {

using SteadyClock = std::chrono::steady_clock;

// A statement on its way to the sink.
struct Pending {
  TraceEntry entry;
  bool done = false;
};

// Keeps the order of sending: a finished entry waits for those sent before it.
class TraceLog {
 public:
  explicit TraceLog(TraceSink sink) : sink_(std::move(sink)) {}

  std::shared_ptr<Pending> Begin(const std::string& sql) {
    queue_.push_back(std::make_shared<Pending>());
    queue_.back()->entry.sql = sql;
    queue_.back()->entry.level = level_;
    return queue_.back();
  }

  void Finish(Pending& pending) {
    pending.done = true;
    while (!queue_.empty() && queue_.front()->done) {
      sink_(queue_.front()->entry);
      queue_.pop_front();
    }
  }

  void EnterLevel() { ++level_; }
  void LeaveLevel() { --level_; }
  void LeaveAllLevels() { level_ = 0; }

 private:
  TraceSink sink_;
  std::deque<std::shared_ptr<Pending>> queue_;
  int level_ = 0;
};

// Carries out `work` for a statement, adding its time, and its error if it fails.
template <class Work>
auto Timed(TraceEntry& entry, Work work) {
  struct Stopwatch {
    TraceEntry& entry;
    SteadyClock::time_point start = SteadyClock::now();
    ~Stopwatch() {
      const auto spent = SteadyClock::now() - start;
      entry.microseconds += std::chrono::duration_cast<std::chrono::microseconds>(spent).count();
    }
  } stopwatch{entry};
  try {
    return work();
  } catch (const AutomationError& error) {
    entry.error = error.number();
    throw;
  }
}

class TracedRecordset : public Recordset {
 public:
  TracedRecordset(std::unique_ptr<Recordset> inner, std::shared_ptr<TraceLog> log,
                  std::shared_ptr<Pending> pending)
      : inner_(std::move(inner)), log_(std::move(log)), pending_(std::move(pending)) {
    pending_->entry.rows = inner_->AtEnd() ? 0 : 1;
  }
  ~TracedRecordset() override { Finish(); }
  TracedRecordset(const TracedRecordset&) = delete;
  TracedRecordset& operator=(const TracedRecordset&) = delete;

  bool AtEnd() const override { return inner_->AtEnd(); }
  bool AtStart() const override { return inner_->AtStart(); }
  void MoveFirst() override { Move(&Recordset::MoveFirst); }
  void MoveLast() override { Move(&Recordset::MoveLast); }
  void MoveNext() override { Move(&Recordset::MoveNext); }
  void MovePrevious() override { Move(&Recordset::MovePrevious); }
  Collection<Field>& Fields() override { return inner_->Fields(); }
  void Close() override {
    inner_->Close();
    Finish();
  }

 private:
  void Move(void (Recordset::*move)()) {
    Timed(pending_->entry, [&] { (inner_.get()->*move)(); });
    if (!inner_->AtEnd() && !inner_->AtStart()) ++*pending_->entry.rows;
  }

  void Finish() {
    if (!pending_->done) log_->Finish(*pending_);
  }

  std::unique_ptr<Recordset> inner_;
  std::shared_ptr<TraceLog> log_;
  std::shared_ptr<Pending> pending_;
};

class TracedDatabase : public Database {
 public:
  TracedDatabase(std::shared_ptr<Database> inner, std::shared_ptr<TraceLog> log)
      : inner_(std::move(inner)), log_(std::move(log)) {}

  std::string Name() const override { return inner_->Name(); }

  void Execute(const std::string& sql, int32_t options) override {
    const auto pending = log_->Begin(sql);
    try {
      Timed(pending->entry, [&] { inner_->Execute(sql, options); });
      pending->entry.affected = inner_->RecordsAffected();
    } catch (const AutomationError&) {
      log_->Finish(*pending);
      throw;
    }
    log_->Finish(*pending);
  }

  int32_t RecordsAffected() const override { return inner_->RecordsAffected(); }

  std::unique_ptr<Recordset> OpenRecordset(const std::string& source, RecordsetType type) override {
    auto pending = log_->Begin(source);
    try {
      auto rows = Timed(pending->entry, [&] { return inner_->OpenRecordset(source, type); });
      return std::make_unique<TracedRecordset>(std::move(rows), log_, pending);
    } catch (const AutomationError&) {
      log_->Finish(*pending);
      throw;
    }
  }

  std::shared_ptr<TableDef> CreateTableDef(const std::string& name) override {
    return inner_->CreateTableDef(name);
  }
  std::shared_ptr<QueryDef> CreateQueryDef(const std::string& name,
                                           const std::string& sql) override {
    return inner_->CreateQueryDef(name, sql);
  }
  Collection<TableDef>& TableDefs() override { return inner_->TableDefs(); }
  Collection<QueryDef>& QueryDefs() override { return inner_->QueryDefs(); }
  void Close() override {
    inner_->Close();
    log_->LeaveAllLevels();
  }

 private:
  std::shared_ptr<Database> inner_;
  std::shared_ptr<TraceLog> log_;
};

class TracedWorkspace : public Workspace {
 public:
  TracedWorkspace(Workspace& inner, std::shared_ptr<TraceLog> log)
      : inner_(inner), log_(std::move(log)) {}

  std::shared_ptr<Database> OpenDatabase(const std::string& path, bool exclusive, bool read_only,
                                         const std::string& connect) override {
    return std::make_shared<TracedDatabase>(
        inner_.OpenDatabase(path, exclusive, read_only, connect), log_);
  }
  std::shared_ptr<Database> CreateDatabase(const std::string& path,
                                           const std::string& connect) override {
    return std::make_shared<TracedDatabase>(inner_.CreateDatabase(path, connect), log_);
  }
  void BeginTrans() override {
    inner_.BeginTrans();
    log_->EnterLevel();
  }
  void CommitTrans() override {
    inner_.CommitTrans();
    log_->LeaveLevel();
  }
  void Rollback() override {
    inner_.Rollback();
    log_->LeaveLevel();
  }
  void BeginStretch() override { inner_.BeginStretch(); }
  void EndStretch() override { inner_.EndStretch(); }

 private:
  Workspace& inner_;
  std::shared_ptr<TraceLog> log_;
};

class TracedEngine : public DBEngine {
 public:
  TracedEngine(std::shared_ptr<DBEngine> inner, const std::shared_ptr<TraceLog>& log)
      : inner_(std::move(inner)), workspace_(inner_->DefaultWorkspace(), log) {}

  std::string Version() const override { return inner_->Version(); }
  Workspace& DefaultWorkspace() override { return workspace_; }

 private:
  std::shared_ptr<DBEngine> inner_;
  TracedWorkspace workspace_;
};

std::string JsonText(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      quoted += '\\';
      quoted += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
      quoted += escape;
    } else {
      quoted += c;
    }
  }
  return quoted + "\"";
}

}  // namespace

std::shared_ptr<DBEngine> Traced(std::shared_ptr<DBEngine> engine, TraceSink sink) {
  return std::make_shared<TracedEngine>(std::move(engine),
                                        std::make_shared<TraceLog>(std::move(sink)));
}

std::string TraceLine(const TraceEntry& entry) {
  std::string line = "{\"sql\":" + JsonText(entry.sql);
  if (entry.affected) line += ",\"affected\":" + std::to_string(*entry.affected);
  if (entry.rows) line += ",\"rows\":" + std::to_string(*entry.rows);
  line += ",\"us\":" + std::to_string(entry.microseconds);
  line += ",\"level\":" + std::to_string(entry.level);
  if (entry.error != 0) line += ",\"error\":" + std::to_string(entry.error);
  return line + "}";
}

}  // namespace ambrelio::dao
