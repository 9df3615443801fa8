// An open database of DAO's.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ambrelio/dao/database.h"
#include "ambrelio/engine/dao_com/collection.h"
#include "ambrelio/engine/dao_com/dao_object.h"
#include "ambrelio/engine/dao_com/query_def.h"
#include "ambrelio/engine/dao_com/table_def.h"

namespace ambrelio::dao_com {

class Database final : public dao::Database, public DaoObject {
 public:
  using DaoObject::DaoObject;

  std::string Name() const override;
  void Execute(const std::string& sql, int32_t options) override;
  int32_t RecordsAffected() const override;
  std::unique_ptr<dao::Recordset> OpenRecordset(const std::string& source,
                                                dao::RecordsetType type) override;
  std::shared_ptr<dao::TableDef> CreateTableDef(const std::string& name) override;
  std::shared_ptr<dao::QueryDef> CreateQueryDef(const std::string& name,
                                                const std::string& sql) override;
  // What other processes change shows after a Refresh: DAO keeps these lists.
  dao::Collection<dao::TableDef>& TableDefs() override;
  dao::Collection<dao::QueryDef>& QueryDefs() override;
  void Close() override;

 private:
  Collection<dao::TableDef, TableDef> table_defs_{com::LateBound()};
  Collection<dao::QueryDef, QueryDef> query_defs_{com::LateBound()};
};

}  // namespace ambrelio::dao_com
