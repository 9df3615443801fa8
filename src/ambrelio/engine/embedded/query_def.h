// A stored query, or a temporary one without a name, and their collection.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "ambrelio/dao/definitions.h"
#include "ambrelio/engine/embedded/connection.h"
#include "ambrelio/engine/embedded/definition_list.h"

namespace ambrelio::embedded {

class QueryDef final : public dao::QueryDef {
 public:
  // One in memory; an empty text may be set later, any other must parse.
  QueryDef(std::shared_ptr<Connection> connection, QueryInfo draft);
  QueryDef(std::shared_ptr<Connection> connection, int64_t query);

  std::string Name() const override { return Info().name; }
  std::string Sql() const override { return Info().sql; }
  void SetSql(const std::string& sql) override;

  bool appended() const { return query_ != 0; }
  // Stores a query that is in memory; 3012 when the name is taken.
  void Store(const std::shared_ptr<Connection>& connection);

 private:
  // 3420 when the database is closed or the query is deleted.
  const QueryInfo& Info() const;

  std::shared_ptr<Connection> connection_;
  QueryInfo draft_;
  int64_t query_ = 0;
};

// The stored queries, by name.
class QueryDefs final : public DefinitionList<dao::QueryDef> {
 public:
  explicit QueryDefs(std::shared_ptr<Connection> connection)
      : DefinitionList(dao::source::kQueryDefs), connection_(std::move(connection)) {}
  int Count() const override;
  void Append(const std::shared_ptr<dao::QueryDef>& item) override;
  void Delete(std::string_view name) override;
  void Refresh() override;

 private:
  std::string NameAt(int place) const override;
  std::shared_ptr<dao::QueryDef> At(int place) const override;

  std::shared_ptr<Connection> connection_;
};

}  // namespace ambrelio::embedded
