// The catalogue in its file: read, kept current, and changed together with the tables it describes.
//
// User tables are storage tables of the same name and hidden rowid; the catalogue's own tables have
// a dot in their names ("jet.tables", "jet.fields", "jet.indexes", "jet.queries", "jet.settings"),
// which no name of Jet can have.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ambrelio/engine/embedded/catalogue.h"
#include "ambrelio/engine/embedded/storage.h"

namespace ambrelio::embedded {

class CatalogueStore {
 public:
  explicit CatalogueStore(Storage& storage);

  // The catalogue as it is now: read again when another connection, or a rollback, changed it.
  const Catalogue& Current();
  // Another number whenever Current() has changed.
  int64_t version() const { return version_; }

  // Each change is one transaction (or part of the open one) and raises DAO's numbers: 3010, 3012
  // name taken; 3078, 3265 not there; 3191 field exists; 3284, 3283 index exists, second primary
  // key; 3409 unknown field of an index; 3022, 3058 the data breaks a new index; 3264 nothing
  // defined.
  void CreateTable(const TableInfo& table);
  void DropTable(std::string_view name);
  void AddField(std::string_view table, const FieldInfo& field);
  void DropField(std::string_view table, std::string_view field);
  // Replaces the properties of a field: name, position, required, zero length, default.
  void ChangeField(std::string_view table, std::string_view field, const FieldInfo& changed);
  void CreateIndex(std::string_view table, const IndexInfo& index);
  void DropIndex(std::string_view table, std::string_view index);
  void CreateQuery(const QueryInfo& query);
  void ChangeQuery(std::string_view name, const std::string& sql);
  void DropQuery(std::string_view name);

  std::string Setting(std::string_view key);
  void SetSetting(std::string_view key, const std::string& value);

 private:
  Storage& storage_;
  Catalogue catalogue_;
  int64_t version_ = 0;
};

}  // namespace ambrelio::embedded
