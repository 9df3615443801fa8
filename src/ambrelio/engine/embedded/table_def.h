// The definition of a table, and the collections in it and around it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ambrelio/dao/definitions.h"
#include "ambrelio/engine/embedded/connection.h"
#include "ambrelio/engine/embedded/definition_list.h"
#include "ambrelio/engine/embedded/field.h"
#include "ambrelio/engine/embedded/index.h"

namespace ambrelio::embedded {

class TableDef;

// The fields of a table, in the order of their positions once the table is stored. Appending raises
// 3191 for a name that a stored table has, 3367 for one that a table in memory has.
class TableFields final : public DefinitionList<dao::Field> {
 public:
  explicit TableFields(const TableDef& table)
      : DefinitionList(dao::source::kFields), table_(table) {}
  int Count() const override;
  void Append(const std::shared_ptr<dao::Field>& item) override;
  void Delete(std::string_view name) override;
  void Refresh() override;

  const std::vector<std::shared_ptr<Field>>& drafts() const { return drafts_; }
  // Makes the fields in memory those of the table just stored.
  void BecomeStored();

 private:
  std::string NameAt(int place) const override;
  std::shared_ptr<dao::Field> At(int place) const override;

  const TableDef& table_;
  std::vector<std::shared_ptr<Field>> drafts_;  // until the table is stored
};

class TableIndexes final : public DefinitionList<dao::Index> {
 public:
  explicit TableIndexes(const TableDef& table)
      : DefinitionList(dao::source::kIndexes), table_(table) {}
  int Count() const override;
  void Append(const std::shared_ptr<dao::Index>& item) override;
  void Delete(std::string_view name) override;
  void Refresh() override;

  const std::vector<std::shared_ptr<Index>>& drafts() const { return drafts_; }
  void BecomeStored();

 private:
  std::string NameAt(int place) const override;
  std::shared_ptr<dao::Index> At(int place) const override;

  const TableDef& table_;
  std::vector<std::shared_ptr<Index>> drafts_;  // until the table is stored
};

class TableDef final : public dao::TableDef {
 public:
  TableDef(std::shared_ptr<Connection> connection, std::string name);
  TableDef(std::shared_ptr<Connection> connection, int64_t table);

  std::string Name() const override;
  void SetName(const std::string& name) override;
  dao::Collection<dao::Field>& Fields() override;
  dao::Collection<dao::Index>& Indexes() override;
  std::shared_ptr<dao::Field> CreateField(const std::string& name, dao::FieldType type,
                                          int32_t size) override;
  std::shared_ptr<dao::Index> CreateIndex(const std::string& name) override;

  // For the collections.
  const std::shared_ptr<Connection>& connection() const { return connection_; }
  bool stored() const { return table_ != 0; }
  bool appended() const { return stored(); }
  // Of a stored table: 3420 when the database is closed or the table is deleted.
  const TableInfo& Info() const;
  // Stores a table that is in memory.
  void Store(const std::shared_ptr<Connection>& connection);

 private:
  std::shared_ptr<Connection> connection_;
  std::string draft_name_;
  int64_t table_ = 0;
  TableFields fields_{*this};
  TableIndexes indexes_{*this};
};

// The user's tables, by name.
class TableDefs final : public DefinitionList<dao::TableDef> {
 public:
  explicit TableDefs(std::shared_ptr<Connection> connection)
      : DefinitionList(dao::source::kTableDefs), connection_(std::move(connection)) {}
  int Count() const override;
  void Append(const std::shared_ptr<dao::TableDef>& item) override;
  void Delete(std::string_view name) override;
  void Refresh() override;

 private:
  std::string NameAt(int place) const override;
  std::shared_ptr<dao::TableDef> At(int place) const override;

  std::shared_ptr<Connection> connection_;
};

}  // namespace ambrelio::embedded
