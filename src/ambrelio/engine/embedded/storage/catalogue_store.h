// The catalogue in its file: read, kept current, and changed together with the tables it describes.
//
// User tables are storage tables of the same name and hidden rowid (see RowIdName; table_form.h
// says how values are stored); the catalogue's own tables have a dot in their names ("jet.tables",
// "jet.fields", "jet.indexes", ...; see catalogue_schema.h), which no name of Jet can have.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "ambrelio/engine/embedded/storage/catalogue.h"
#include "ambrelio/engine/embedded/storage/kept_indexes.h"
#include "ambrelio/engine/embedded/storage/storage.h"

namespace ambrelio::embedded {

class CatalogueStore {
 public:
  // `kept` are the indexes that the storage keeps besides those of the catalogue.
  explicit CatalogueStore(Storage& storage, KeptIndexes kept = {});

  // The catalogue as it is now: read again when another connection, or a rollback, changed it.
  const Catalogue& Current();
  // The catalogue as this connection last saw it, its own changes and rollbacks included: what
  // definition objects show between two refreshes, without asking the file each time.
  const Catalogue& Known();
  // Another number whenever Current() has changed.
  int64_t version() const { return version_; }

  // Each change is one transaction (or part of the open one) and raises DAO's numbers: 3010, 3012
  // name taken; 3125 no name; 3265 not there, 3078 the table of the field or index; 3191 field
  // exists; 3190 more than 255 fields; 3259 no type or size; 3284, 3283 index exists, second
  // primary key; 3409 unknown field of an index; 3280 field of an index; 3022, 3058, 3314, 3315 the
  // data breaks the new index or property; 3264 nothing defined; 3218 locked.
  void CreateTable(const TableInfo& table);
  void RenameTable(std::string_view name, const std::string& new_name);
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

  // Makes kept indexes that are missing. They only save time: where the file cannot be written now
  // it is left to the next opening.
  void MakeKeptIndexes();

  std::string Setting(std::string_view key);
  void SetSetting(std::string_view key, const std::string& value);

 private:
  // Runs `change` as one transaction and makes the catalogue known as it is afterwards.
  void Change(const std::function<void()>& change);
  // The same for a change of the rows that describe one table, which the table itself then follows.
  void ChangeTable(std::string_view name,
                   const std::function<void(const TableInfo& before)>& change_rows);
  const Catalogue& Reread(bool changed);
  void Load();
  void CheckTableNameFree(const std::string& name);

  Storage& storage_;
  const KeptIndexes kept_;
  Catalogue catalogue_;
  int64_t version_ = 0;
  std::string stamp_;      // the setting of that name that belongs to catalogue_
  int64_t rollbacks_ = 0;  // of the storage, when it was last compared
  bool loaded_ = false;
};

}  // namespace ambrelio::embedded
