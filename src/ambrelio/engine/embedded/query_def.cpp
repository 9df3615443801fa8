#include "ambrelio/engine/embedded/query_def.h"

#include <utility>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/sql/parser.h"

namespace ambrelio::embedded {

QueryDef::QueryDef(std::shared_ptr<Connection> connection, QueryInfo draft)
    : connection_(std::move(connection)), draft_(std::move(draft)) {
  if (!draft_.sql.empty()) sql::ParseQuery(draft_.sql);
}

QueryDef::QueryDef(std::shared_ptr<Connection> connection, int64_t query)
    : connection_(std::move(connection)), query_(query) {}

const QueryInfo& QueryDef::Info() const {
  connection_->CheckOpen();
  if (!appended()) return draft_;
  const QueryInfo* const query = connection_->catalogue().Known().FindQuery(query_);
  if (query == nullptr) dao::Raise(dao::DaoError::kObjectClosed, dao::source::kQueryDef);
  return *query;
}

void QueryDef::SetSql(const std::string& sql) {
  const std::string name = Name();
  sql::ParseQuery(sql);
  if (appended()) {
    connection_->catalogue().ChangeQuery(name, sql);
  } else {
    draft_.sql = sql;
  }
}

void QueryDef::Store(const std::shared_ptr<Connection>& connection) {
  connection->catalogue().CreateQuery(draft_);
  connection_ = connection;
  query_ = connection->catalogue().Known().FindQuery(draft_.name)->id;
}

int QueryDefs::Count() const {
  return static_cast<int>(connection_->catalogue().Known().queries.size());
}

void QueryDefs::Append(const std::shared_ptr<dao::QueryDef>& item) {
  connection_->CheckOpen();
  Owned<QueryDef>(item)->Store(connection_);
}

void QueryDefs::Delete(std::string_view name) { connection_->catalogue().DropQuery(name); }

void QueryDefs::Refresh() { connection_->catalogue().Current(); }

std::string QueryDefs::NameAt(int place) const {
  return InfoAt(connection_->catalogue().Known().queries, place).name;
}

std::shared_ptr<dao::QueryDef> QueryDefs::At(int place) const {
  const QueryInfo& query = InfoAt(connection_->catalogue().Known().queries, place);
  return std::make_shared<QueryDef>(connection_, query.id);
}

}  // namespace ambrelio::embedded
