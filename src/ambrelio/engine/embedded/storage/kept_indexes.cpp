#include "ambrelio/engine/embedded/storage/kept_indexes.h"

#include <algorithm>

namespace ambrelio::embedded {
namespace {

// "kept.Descargas.Deposito": with two dots, no name of an index of the catalogue.
std::string NameOf(const TableInfo& table, const KeptIndex& index) {
  std::string name = "kept." + table.name;
  for (const std::string& column : index.columns) name += "." + column;
  return index.where.empty() ? name : name + ".some";
}

bool HasColumns(const TableInfo& table, const KeptIndex& index) {
  return std::all_of(index.columns.begin(), index.columns.end(),
                     [&](const std::string& column) { return table.FindField(column) != nullptr; });
}

bool StartsWith(const IndexInfo& index, const std::vector<std::string>& columns) {
  return index.columns.size() >= columns.size() &&
         std::equal(columns.begin(), columns.end(), index.columns.begin(),
                    [](const std::string& wanted, const IndexColumn& column) {
                      return !column.descending && SameName(column.name, wanted);
                    });
}

bool IsServed(const TableInfo& table, const KeptIndex& index) {
  return index.where.empty() &&
         std::any_of(table.indexes.begin(), table.indexes.end(),
                     [&](const IndexInfo& own) { return StartsWith(own, index.columns); });
}

std::string Form(const TableInfo& table, const KeptIndex& index) {
  std::string columns;
  for (const std::string& column : index.columns) {
    columns += (columns.empty() ? "" : ", ") + QuoteName(column);
  }
  std::string form = "CREATE INDEX " + QuoteName(NameOf(table, index)) + " ON " +
                     QuoteName(table.name) + "(" + columns + ")";
  return index.where.empty() ? form : form + " WHERE " + index.where;
}

// What makes each of those that are missing.
std::vector<std::string> MissingForms(Storage& storage, const Catalogue& catalogue,
                                      const KeptIndexes& indexes) {
  std::vector<std::string> forms;
  if (indexes.empty()) return forms;
  StorageStatement find(storage.raw(),
                        "select 1 from sqlite_master where type = 'index' and name = ?1");
  for (const KeptIndex& index : indexes) {
    const TableInfo* table = catalogue.FindTable(index.table);
    if (table == nullptr || !HasColumns(*table, index) || IsServed(*table, index)) continue;
    find.Reset();
    find.Bind(1, NameOf(*table, index));
    if (!find.Step()) forms.push_back(Form(*table, index));
  }
  return forms;
}

}  // namespace

void MakeMissing(Storage& storage, const Catalogue& catalogue, const KeptIndexes& indexes) {
  for (const std::string& form : MissingForms(storage, catalogue, indexes)) storage.Run(form);
}

bool IsAnyMissing(Storage& storage, const Catalogue& catalogue, const KeptIndexes& indexes) {
  return !MissingForms(storage, catalogue, indexes).empty();
}

}  // namespace ambrelio::embedded
