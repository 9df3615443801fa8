#include "ambrelio/engine/dao_com/database.h"

#include <vector>

#include "ambrelio/engine/dao_com/recordset.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::dao_com {

std::string Database::Name() const { return ToText(dao().Call("Name")); }

void Database::Execute(const std::string& sql, int32_t options) {
  std::vector<Variant> arguments = {sql};
  if (options != 0) arguments.emplace_back(options);
  dao().Call("Execute", arguments);
}

int32_t Database::RecordsAffected() const { return ToLong(dao().Call("RecordsAffected")); }

std::unique_ptr<dao::Recordset> Database::OpenRecordset(const std::string& source,
                                                        dao::RecordsetType type) {
  std::vector<Variant> arguments = {source};
  if (type != dao::RecordsetType::kDefault) arguments.emplace_back(static_cast<int32_t>(type));
  return std::make_unique<Recordset>(dao().ObjectFrom("OpenRecordset", arguments));
}

std::shared_ptr<dao::TableDef> Database::CreateTableDef(const std::string& name) {
  return std::make_shared<TableDef>(dao().ObjectFrom("CreateTableDef", {name}));
}

std::shared_ptr<dao::QueryDef> Database::CreateQueryDef(const std::string& name,
                                                        const std::string& sql) {
  return std::make_shared<QueryDef>(dao().ObjectFrom("CreateQueryDef", {name, sql}));
}

dao::Collection<dao::TableDef>& Database::TableDefs() {
  table_defs_ = Collection<dao::TableDef, TableDef>(dao().ObjectFrom("TableDefs"));
  return table_defs_;
}

dao::Collection<dao::QueryDef>& Database::QueryDefs() {
  query_defs_ = Collection<dao::QueryDef, QueryDef>(dao().ObjectFrom("QueryDefs"));
  return query_defs_;
}

void Database::Close() { dao().Call("Close"); }

}  // namespace ambrelio::dao_com
