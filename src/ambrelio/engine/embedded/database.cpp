#include "ambrelio/engine/embedded/database.h"

#include <utility>

namespace ambrelio::embedded {

Database::Database(std::shared_ptr<Connection> connection)
    : connection_(std::move(connection)), table_defs_(connection_), query_defs_(connection_) {}

Database::~Database() { connection_->Close(); }

std::string Database::Name() const { return connection_->storage().path(); }

void Database::Execute(const std::string& sql, int32_t options) {
  records_affected_ = 0;
  records_affected_ = connection_->executor().Execute(sql, (options & dao::kFailOnError) != 0);
}

int32_t Database::RecordsAffected() const {
  connection_->CheckOpen();
  return records_affected_;
}

std::unique_ptr<dao::Recordset> Database::OpenRecordset(const std::string& source,
                                                        dao::RecordsetType type) {
  return connection_->executor().Open(source, type, connection_->alive());
}

std::shared_ptr<dao::TableDef> Database::CreateTableDef(const std::string& name) {
  connection_->CheckOpen();
  return std::make_shared<TableDef>(connection_, name);
}

std::shared_ptr<dao::QueryDef> Database::CreateQueryDef(const std::string& name,
                                                        const std::string& sql) {
  connection_->CheckOpen();
  auto query = std::make_shared<QueryDef>(connection_, QueryInfo{name, sql});
  if (!name.empty()) query->Store(connection_);
  return query;
}

dao::Collection<dao::TableDef>& Database::TableDefs() {
  table_defs_.Refresh();
  return table_defs_;
}

dao::Collection<dao::QueryDef>& Database::QueryDefs() {
  query_defs_.Refresh();
  return query_defs_;
}

void Database::Close() {
  connection_->CheckOpen();
  connection_->Close();
}

Explanation Database::Explain(const std::string& source) {
  return connection_->executor().Explain(source);
}

}  // namespace ambrelio::embedded
