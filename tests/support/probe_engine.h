// An engine between the library and the real one: it writes down, in order, everything the library
// asks for, and fails where a test tells it to.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ambrelio/dao/database.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio::test {

// What a probe has seen, and where it is to interfere. One per probe engine, shared with the test.
struct Probe {
  // SQL texts exactly as sent; transaction steps as "begin", "commit" and "rollback"; "close".
  std::vector<std::string> events;
  // Connect texts of the databases opened.
  std::vector<std::string> connects;
  // Levels of the workspace that are open.
  int level = 0;
  // What another process does to the real database just before a stored query is made; once.
  std::function<void(dao::Database&)> before_new_query;
  // Looks on before each request.
  std::function<void()> before_request;

  // Fails the `request`th of what `events` lists from now on (1 is the next) with error `number`;
  // the real engine never sees it.
  void FailAt(int request, int number) {
    countdown_ = request;
    error_ = number;
  }
  // Makes the `request`th one, a statement, write nothing: what a lock held by another process
  // looks like to the library.
  void SkipAt(int request) { FailAt(request, 0); }
  // Forgets an interference that has not happened.
  void Disarm() { countdown_ = 0; }

  // Takes note of a request; whether it is to reach the real engine.
  bool Meet(const std::string& event) {
    if (before_request) before_request();
    events.push_back(event);
    if (countdown_ == 0 || --countdown_ > 0) return true;
    if (error_ != 0) throw AutomationError(error_, "Test", "A failure made for the test.");
    return false;
  }

 private:
  int countdown_ = 0;
  int error_ = 0;
};

namespace probe_internal {

class Database final : public dao::Database {
 public:
  Database(std::shared_ptr<dao::Database> real, std::shared_ptr<Probe> probe)
      : real_(std::move(real)), probe_(std::move(probe)) {}

  std::string Name() const override { return real_->Name(); }
  void Execute(const std::string& sql, int32_t options) override {
    skipped_ = !probe_->Meet(sql);
    if (!skipped_) real_->Execute(sql, options);
  }
  int32_t RecordsAffected() const override { return skipped_ ? 0 : real_->RecordsAffected(); }
  std::unique_ptr<dao::Recordset> OpenRecordset(const std::string& source,
                                                dao::RecordsetType type) override {
    probe_->Meet(source);
    return real_->OpenRecordset(source, type);
  }
  std::shared_ptr<dao::TableDef> CreateTableDef(const std::string& name) override {
    return real_->CreateTableDef(name);
  }
  std::shared_ptr<dao::QueryDef> CreateQueryDef(const std::string& name,
                                                const std::string& sql) override {
    if (const auto interfere = std::exchange(probe_->before_new_query, nullptr)) interfere(*real_);
    return real_->CreateQueryDef(name, sql);
  }
  dao::Collection<dao::TableDef>& TableDefs() override { return real_->TableDefs(); }
  dao::Collection<dao::QueryDef>& QueryDefs() override { return real_->QueryDefs(); }
  void Close() override {
    probe_->Meet("close");
    real_->Close();
    probe_->level = 0;
  }

 private:
  std::shared_ptr<dao::Database> real_;
  std::shared_ptr<Probe> probe_;
  bool skipped_ = false;
};

class Workspace final : public dao::Workspace {
 public:
  Workspace(dao::DBEngine& real, std::shared_ptr<Probe> probe)
      : real_(real), probe_(std::move(probe)) {}

  std::shared_ptr<dao::Database> OpenDatabase(const std::string& path, bool exclusive,
                                              bool read_only, const std::string& connect) override {
    probe_->connects.push_back(connect);
    return Wrap(real().OpenDatabase(path, exclusive, read_only, connect));
  }
  std::shared_ptr<dao::Database> CreateDatabase(const std::string& path,
                                                const std::string& connect) override {
    return Wrap(real().CreateDatabase(path, connect));
  }
  void BeginTrans() override {
    probe_->Meet("begin");
    real().BeginTrans();
    ++probe_->level;
  }
  void CommitTrans() override {
    probe_->Meet("commit");
    real().CommitTrans();
    --probe_->level;
  }
  void Rollback() override {
    probe_->Meet("rollback");
    real().Rollback();
    --probe_->level;
  }
  void BeginStretch() override { real().BeginStretch(); }
  void EndStretch() override { real().EndStretch(); }

 private:
  dao::Workspace& real() { return real_.DefaultWorkspace(); }
  std::shared_ptr<dao::Database> Wrap(std::shared_ptr<dao::Database> database) {
    return std::make_shared<Database>(std::move(database), probe_);
  }

  dao::DBEngine& real_;
  std::shared_ptr<Probe> probe_;
};

}  // namespace probe_internal

class ProbeEngine final : public dao::DBEngine {
 public:
  ProbeEngine(std::shared_ptr<dao::DBEngine> real, std::shared_ptr<Probe> probe)
      : real_(std::move(real)), workspace_(*real_, std::move(probe)) {}

  std::string Version() const override { return real_->Version(); }
  dao::Workspace& DefaultWorkspace() override { return workspace_; }

 private:
  std::shared_ptr<dao::DBEngine> real_;
  probe_internal::Workspace workspace_;
};

}  // namespace ambrelio::test
