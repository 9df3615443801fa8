#include "ambrelio/engine/embedded/storage/catalogue_store.h"

#include <algorithm>
#include <utility>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/storage/catalogue_rows.h"
#include "ambrelio/engine/embedded/storage/catalogue_rules.h"
#include "ambrelio/engine/embedded/storage/table_form.h"
#include "ambrelio/engine/embedded/storage/transaction_level.h"

namespace ambrelio::embedded {
namespace {

using dao::DaoError;

// `item`, which is not null when it is there.
template <class T>
const T& There(const T* item, DaoError missing, const std::string& source, std::string_view name) {
  if (item == nullptr) dao::Raise(missing, source, std::string(name));
  return *item;
}

// A read transaction: what is read in it belongs to one moment.
class OneMoment {
 public:
  explicit OneMoment(Storage& storage) : storage_(storage) {
    storage_.Run("savepoint \"jet.read\"");
  }
  ~OneMoment() { sqlite3_exec(storage_.raw(), "release \"jet.read\"", nullptr, nullptr, nullptr); }
  OneMoment(const OneMoment&) = delete;
  OneMoment& operator=(const OneMoment&) = delete;

 private:
  Storage& storage_;
};

}  // namespace

CatalogueStore::CatalogueStore(Storage& storage, KeptIndexes kept)
    : storage_(storage), kept_(std::move(kept)) {}

const Catalogue& CatalogueStore::Current() { return Reread(storage_.ChangedByOthers()); }

const Catalogue& CatalogueStore::Known() { return Reread(false); }

const Catalogue& CatalogueStore::Reread(bool changed) {
  const bool undone = storage_.rollbacks() != rollbacks_;
  rollbacks_ = storage_.rollbacks();
  if (loaded_ && (changed || undone)) {
    loaded_ = false;  // should the reading fail
    loaded_ = ReadStamp(storage_) == stamp_;
  }
  if (!loaded_) Load();
  return catalogue_;
}

void CatalogueStore::Load() {
  loaded_ = false;
  const OneMoment moment(storage_);
  catalogue_ = ReadCatalogue(storage_);
  // In memory they are nobody else's, and gone with the tables that another file brings anew.
  if (storage_.backed()) MakeMissing(storage_, catalogue_, kept_);
  stamp_ = ReadStamp(storage_);
  ++version_;
  loaded_ = true;
}

void CatalogueStore::Change(const std::function<void()>& change) {
  TransactionLevel level(storage_);
  Current();
  loaded_ = false;  // until the change is complete
  change();
  if (!kept_.empty()) MakeMissing(storage_, ReadCatalogue(storage_), kept_);
  Restamp(storage_);
  level.Complete();
}

void CatalogueStore::ChangeTable(std::string_view name,
                                 const std::function<void(const TableInfo&)>& change_rows) {
  Change([&] {
    const TableInfo before =
        There(catalogue_.FindTable(name), DaoError::kUnknownTable, dao::source::kDatabase, name);
    storage_.Need({.read = {before.name}, .written = {}});
    change_rows(before);
    Reshape(storage_, before, *ReadCatalogue(storage_).FindTable(before.id));
  });
}

void CatalogueStore::MakeKeptIndexes() {
  if (storage_.read_only() || storage_.backed() || !IsAnyMissing(storage_, Current(), kept_)) {
    return;
  }
  try {
    TransactionLevel level(storage_);
    MakeMissing(storage_, Current(), kept_);
    level.Complete();
  } catch (const AutomationError&) {
    // Others are writing, or there is no room.
  }
}

void CatalogueStore::CheckTableNameFree(const std::string& name) {
  if (catalogue_.FindTable(name) != nullptr) {
    dao::Raise(DaoError::kTableExists, dao::source::kTableDefs, name);
  }
  if (catalogue_.FindQuery(name) != nullptr) {
    dao::Raise(DaoError::kObjectExists, dao::source::kTableDefs, name);
  }
}

void CatalogueStore::CreateTable(const TableInfo& table) {
  Change([&] {
    TableInfo made = CheckedTable(table);
    CheckTableNameFree(made.name);
    InsertTable(storage_, made);
    CreateStored(storage_, made);
  });
}

void CatalogueStore::RenameTable(std::string_view name, const std::string& new_name) {
  CheckName(new_name);
  ChangeTable(name, [&](const TableInfo& before) {
    if (!SameName(name, new_name)) CheckTableNameFree(new_name);
    UpdateTableRow(storage_, before.id, new_name);
  });
}

void CatalogueStore::DropTable(std::string_view name) {
  Change([&] {
    const TableInfo& table = There(catalogue_.FindTable(name), DaoError::kNotInCollection,
                                   dao::source::kTableDefs, name);
    DeleteTableRows(storage_, table.id);
    storage_.Run("DROP TABLE " + QuoteName(table.name));
  });
}

void CatalogueStore::AddField(std::string_view table, const FieldInfo& field) {
  ChangeTable(table, [&](const TableInfo& before) {
    FieldInfo made = CheckedField(before, field);
    made.id = 0;
    InsertFieldRow(storage_, before.id, made);
  });
}

void CatalogueStore::DropField(std::string_view table, std::string_view field) {
  ChangeTable(table, [&](const TableInfo& before) {
    const FieldInfo& found =
        There(before.FindField(field), DaoError::kNotInCollection, dao::source::kFields, field);
    for (const IndexInfo& index : before.indexes) {
      for (const IndexColumn& column : index.columns) {
        if (column.name == found.name) {
          dao::Raise(DaoError::kFieldInIndex, dao::source::kFields, found.name);
        }
      }
    }
    if (before.fields.size() == 1) {
      dao::Raise(DaoError::kNothingDefined, dao::source::kFields, before.name);
    }
    DeleteFieldRow(storage_, found.id);
  });
}

void CatalogueStore::ChangeField(std::string_view table, std::string_view field,
                                 const FieldInfo& changed) {
  ChangeTable(table, [&](const TableInfo& before) {
    const FieldInfo& found =
        There(before.FindField(field), DaoError::kNotInCollection, dao::source::kFields, field);
    UpdateFieldRow(storage_, CheckedChange(before, found, changed));
  });
}

void CatalogueStore::CreateIndex(std::string_view table, const IndexInfo& index) {
  ChangeTable(table, [&](const TableInfo& before) {
    IndexInfo made = CheckedIndex(before, index);
    made.id = 0;
    InsertIndexRows(storage_, before, made);
  });
}

void CatalogueStore::DropIndex(std::string_view table, std::string_view index) {
  ChangeTable(table, [&](const TableInfo& before) {
    DeleteIndexRows(storage_, There(before.FindIndex(index), DaoError::kNotInCollection,
                                    dao::source::kIndexes, index)
                                  .id);
  });
}

void CatalogueStore::CreateQuery(const QueryInfo& query) {
  CheckName(query.name);
  Change([&] {
    if (catalogue_.FindQuery(query.name) != nullptr ||
        catalogue_.FindTable(query.name) != nullptr) {
      dao::Raise(DaoError::kObjectExists, dao::source::kQueryDefs, query.name);
    }
    InsertQueryRow(storage_, query);
  });
}

void CatalogueStore::ChangeQuery(std::string_view name, const std::string& sql) {
  Change([&] {
    const QueryInfo& query = There(catalogue_.FindQuery(name), DaoError::kNotInCollection,
                                   dao::source::kQueryDefs, name);
    UpdateQueryRow(storage_, query.id, sql);
  });
}

void CatalogueStore::DropQuery(std::string_view name) {
  Change([&] {
    DeleteQueryRow(storage_, There(catalogue_.FindQuery(name), DaoError::kNotInCollection,
                                   dao::source::kQueryDefs, name)
                                 .id);
  });
}

std::string CatalogueStore::Setting(std::string_view key) { return ReadSetting(storage_, key); }

void CatalogueStore::SetSetting(std::string_view key, const std::string& value) {
  WriteSetting(storage_, key, value);
}

}  // namespace ambrelio::embedded
