#include "ambrelio/data/queries.h"

namespace ambrelio::data {

bool HasRows(Session& session, const std::string& sql) {
  return !session.Database().OpenRecordset(sql)->AtEnd();
}

std::optional<Variant> FirstValue(Session& session, const std::string& sql) {
  const auto rows = session.Database().OpenRecordset(sql);
  if (rows->AtEnd()) return std::nullopt;
  return rows->Value(0);
}

std::optional<Variant> LastValue(Session& session, const std::string& sql) {
  const auto rows = session.Database().OpenRecordset(sql);
  if (rows->AtEnd()) return std::nullopt;
  rows->MoveLast();
  return rows->Value(0);
}

Variant Aggregate(Session& session, const std::string& sql) {
  return session.Database().OpenRecordset(sql)->Value(0);
}

int32_t Execute(Session& session, const std::string& sql) {
  dao::Database& database = session.Database();
  database.Execute(sql);
  return database.RecordsAffected();
}

}  // namespace ambrelio::data
