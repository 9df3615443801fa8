// An open database of the embedded engine.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ambrelio/dao/database.h"
#include "ambrelio/engine/embedded/connection.h"
#include "ambrelio/engine/embedded/query_def.h"
#include "ambrelio/engine/embedded/table_def.h"

namespace ambrelio::embedded {

class Database final : public dao::Database {
 public:
  explicit Database(std::shared_ptr<Connection> connection);
  // Releasing the last reference closes, whatever definition objects are still held.
  ~Database() override;
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  std::string Name() const override;
  void Execute(const std::string& sql, int32_t options) override;
  int32_t RecordsAffected() const override;
  std::unique_ptr<dao::Recordset> OpenRecordset(const std::string& source,
                                                dao::RecordsetType type) override;
  std::shared_ptr<dao::TableDef> CreateTableDef(const std::string& name) override;
  std::shared_ptr<dao::QueryDef> CreateQueryDef(const std::string& name,
                                                const std::string& sql) override;
  dao::Collection<dao::TableDef>& TableDefs() override;
  dao::Collection<dao::QueryDef>& QueryDefs() override;
  void Close() override;

  // How OpenRecordset or Execute would go about the statement; see Executor::Explain.
  Explanation Explain(const std::string& source);

 private:
  std::shared_ptr<Connection> connection_;
  int32_t records_affected_ = 0;
  embedded::TableDefs table_defs_;
  embedded::QueryDefs query_defs_;
};

}  // namespace ambrelio::embedded
