// An index of a table.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ambrelio/dao/definitions.h"
#include "ambrelio/engine/embedded/connection.h"
#include "ambrelio/engine/embedded/definition_list.h"
#include "ambrelio/engine/embedded/field.h"

namespace ambrelio::embedded {

class Index;

class IndexFields final : public DefinitionList<dao::Field> {
 public:
  explicit IndexFields(const Index& index) : DefinitionList(dao::source::kFields), index_(index) {}
  int Count() const override;
  // 3268 once the index is stored.
  void Append(const std::shared_ptr<dao::Field>& item) override;
  void Delete(std::string_view name) override;

  const std::vector<std::shared_ptr<Field>>& drafts() const { return drafts_; }
  // Fixes the fields in memory as those of the index just stored.
  void BecomeStored();

 private:
  std::string NameAt(int place) const override;
  std::shared_ptr<dao::Field> At(int place) const override;

  const Index& index_;
  std::vector<std::shared_ptr<Field>> drafts_;  // until the index is stored
};

class Index final : public dao::Index {
 public:
  Index(std::shared_ptr<Connection> connection, const std::string& name);
  Index(std::shared_ptr<Connection> connection, int64_t table, int64_t index);

  std::string Name() const override { return Info().name; }
  void SetName(const std::string& name) override { Draft("Name").name = name; }
  bool Primary() const override { return Info().primary; }
  void SetPrimary(bool primary) override;
  bool Unique() const override { return Info().unique; }
  void SetUnique(bool unique) override { Draft("Unique").unique = unique; }
  bool IgnoreNulls() const override { return Info().ignore_nulls; }
  void SetIgnoreNulls(bool ignore) override { Draft("IgnoreNulls").ignore_nulls = ignore; }
  bool Required() const override { return Info().required; }
  void SetRequired(bool required) override { Draft("Required").required = required; }
  dao::Collection<dao::Field>& Fields() override;
  std::shared_ptr<dao::Field> CreateField(const std::string& name) override;

  // For the collections. Info raises 3420 when the database is closed or the index is deleted; its
  // columns are there only once it is stored.
  const IndexInfo& Info() const;
  const TableInfo& Table() const;  // of a stored index
  const IndexInfo& InfoIn(const TableInfo& table) const;
  const std::shared_ptr<Connection>& connection() const { return connection_; }
  bool stored() const { return index_ != 0; }
  bool appended() const { return kept_ || stored(); }
  void Keep() { kept_ = true; }
  void LetGo() { kept_ = false; }
  // What is to be stored, with the columns.
  IndexInfo Definition() const;
  void BecomeStored(std::shared_ptr<Connection> connection, int64_t table, int64_t index);

 private:
  // 3268 once the index is stored.
  IndexInfo& Draft(const char* property);

  std::shared_ptr<Connection> connection_;
  bool kept_ = false;  // in the list of a table in memory
  IndexInfo draft_;
  int64_t table_ = 0;
  int64_t index_ = 0;
  IndexFields fields_{*this};
};

}  // namespace ambrelio::embedded
