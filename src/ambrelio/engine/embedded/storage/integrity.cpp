#include "ambrelio/engine/embedded/storage/integrity.h"

#include <algorithm>
#include <set>

#include "ambrelio/dao/errors.h"

namespace ambrelio::embedded {
namespace {

constexpr std::string_view kSound = "ok";

void CheckStructures(Storage& storage, std::vector<std::string>& findings) {
  StorageStatement row(storage.raw(), "pragma integrity_check");
  while (row.Step()) {
    if (row.Text(0) != kSound) findings.emplace_back(row.Text(0));
  }
}

// Rows of the catalogue that belong to nothing.
void CheckOrphans(Storage& storage, std::vector<std::string>& findings) {
  StorageStatement row(
      storage.raw(),
      "select 'the field ' || name || ' is of no table' from \"jet.fields\""
      " where table_id not in (select id from \"jet.tables\")"
      " union all select 'the index ' || name || ' is of no table' from \"jet.indexes\""
      " where table_id not in (select id from \"jet.tables\")"
      " union all select 'an index of the number ' || index_id || ' is over no field'"
      " from \"jet.index_columns\" where index_id not in (select id from \"jet.indexes\")"
      " or field_id not in (select id from \"jet.fields\")");
  while (row.Step()) findings.emplace_back(row.Text(0));
}

std::set<std::string> StoredColumns(Storage& storage, const std::string& table) {
  StorageStatement row(storage.raw(), "select name from pragma_table_info(?)");
  row.Bind(1, Variant(table));
  std::set<std::string> columns;
  while (row.Step()) columns.emplace(row.Text(0));
  return columns;
}

void CheckTable(Storage& storage, const TableInfo& table, std::vector<std::string>& findings) {
  std::set<std::string> stored = StoredColumns(storage, table.name);
  if (stored.empty()) {
    findings.push_back("the table " + table.name + " is not stored");
    return;
  }
  for (const FieldInfo& field : table.fields) {
    if (stored.erase(field.name) > 0) continue;
    findings.push_back("the field " + field.name + " of table " + table.name + " is not stored");
  }
  for (const std::string& name : stored) {
    findings.push_back("the column " + name + " of table " + table.name + " is no field");
  }
}

// A name with a dot is the catalogue's own.
void CheckUnknownTables(Storage& storage, const Catalogue& catalogue,
                        std::vector<std::string>& findings) {
  StorageStatement row(storage.raw(),
                       "select name from sqlite_master where type = 'table'"
                       " and name not like 'sqlite~_%' escape '~' and instr(name, '.') = 0");
  while (row.Step()) {
    if (catalogue.FindTable(row.Text(0)) != nullptr) continue;
    findings.push_back("the catalogue does not know the table " + std::string(row.Text(0)));
  }
}

}  // namespace

std::vector<std::string> CheckIntegrity(Storage& storage, CatalogueStore& catalogue) {
  std::vector<std::string> findings;
  try {
    CheckStructures(storage, findings);
    CheckOrphans(storage, findings);
    const Catalogue& known = catalogue.Current();
    for (const TableInfo& table : known.tables) CheckTable(storage, table, findings);
    CheckUnknownTables(storage, known, findings);
  } catch (const AutomationError& error) {
    if (error.number() != static_cast<int>(dao::DaoError::kNotADatabaseOrDamaged)) throw;
    findings.push_back(error.description());
  }
  return findings;
}

}  // namespace ambrelio::embedded
