#include "ambrelio/engine/embedded/jet/schema_changes.h"

#include <vector>

#include "ambrelio/engine/embedded/jet/query_parts.h"
#include "ambrelio/engine/jetfile/schema_writer.h"
#include "ambrelio/engine/jetfile/table_definition.h"

namespace ambrelio::embedded {
namespace {

using jetfile::JetFile;
using jetfile::NewColumn;
using jetfile::NewIndex;

NewColumn ColumnOf(const FieldInfo& field) {
  return {.name = field.name,
          .type = static_cast<jetfile::ColumnType>(field.type),
          .length = static_cast<uint16_t>(field.size),
          .autonumber = (field.attributes & dao::kAutoIncrement) != 0,
          .ordinal = static_cast<uint16_t>(field.position)};
}

NewIndex IndexOf(const IndexInfo& index) {
  NewIndex made{.name = index.name,
                .primary = index.primary,
                .unique = index.unique,
                .ignore_nulls = index.ignore_nulls,
                .required = index.required,
                .columns = {}};
  for (const IndexColumn& column : index.columns) {
    made.columns.emplace_back(column.name, !column.descending);
  }
  return made;
}

uint16_t NumberOf(const JetFile& file, uint32_t page, const std::string& column) {
  return jetfile::ReadDefinition(file, page).FindColumn(column)->number;
}

void DropParts(JetFile& file, uint32_t page, const TableInfo& before, const TableInfo& after) {
  for (const IndexInfo& index : before.indexes) {
    if (after.FindIndex(index.id) == nullptr) jetfile::DropIndex(file, page, index.name);
  }
  for (const FieldInfo& field : before.fields) {
    if (after.FindField(field.id) != nullptr) continue;
    jetfile::DropColumn(file, page, NumberOf(file, page, field.name));
  }
}

void ChangeColumns(JetFile& file, uint32_t page, const TableInfo& before, const TableInfo& after) {
  for (const FieldInfo& field : after.fields) {
    const FieldInfo* const old = before.FindField(field.id);
    if (old == nullptr) {
      jetfile::AddColumn(file, page, ColumnOf(field));
    } else if (old->name != field.name || old->position != field.position) {
      jetfile::ChangeColumn(file, page, NumberOf(file, page, old->name), field.name,
                            static_cast<uint16_t>(field.position));
    }
  }
}

void ChangeRules(JetFile& file, uint32_t page, const TableInfo& before, const TableInfo& after) {
  const auto rules = [](const FieldInfo& field) {
    return jetfile::ColumnRules{field.required, field.allow_zero_length, field.default_value};
  };
  for (const FieldInfo& field : after.fields) {
    const FieldInfo* const old = before.FindField(field.id);
    const jetfile::ColumnRules was = old == nullptr ? jetfile::ColumnRules{} : rules(*old);
    if (rules(field) != was) jetfile::SetRules(file, page, field.name, rules(field));
  }
}

}  // namespace

void ChangeTables(JetFile& file, const Catalogue& before, const Catalogue& after,
                  DefinitionPages& pages) {
  for (const QueryInfo& query : before.queries) {
    const QueryInfo* const now = after.FindQuery(query.id);
    const bool same = now != nullptr && now->name == query.name && now->sql == query.sql;
    if (!same) jetfile::DropQuery(file, query.name);
  }
  for (const TableInfo& table : before.tables) {
    if (after.FindTable(table.id) != nullptr) continue;
    jetfile::DropTable(file, pages.at(table.id));
    pages.erase(table.id);
  }
  for (const TableInfo& table : after.tables) {
    const TableInfo* const old = before.FindTable(table.id);
    if (old == nullptr) {
      std::vector<NewColumn> columns;
      for (const FieldInfo& field : table.fields) columns.push_back(ColumnOf(field));
      pages[table.id] = jetfile::CreateTable(file, table.name, columns, {});
      continue;
    }
    const uint32_t page = pages.at(table.id);
    if (old->name != table.name) jetfile::RenameTable(file, page, table.name);
    DropParts(file, page, *old, table);
    ChangeColumns(file, page, *old, table);
  }
}

void ChangeKeysAndQueries(JetFile& file, const Catalogue& before, const Catalogue& after,
                          const DefinitionPages& pages) {
  for (const TableInfo& table : after.tables) {
    const TableInfo* const known = before.FindTable(table.id);
    const TableInfo& old = known == nullptr ? TableInfo{} : *known;
    const uint32_t page = pages.at(table.id);
    ChangeRules(file, page, old, table);
    for (const IndexInfo& index : table.indexes) {
      if (old.FindIndex(index.id) == nullptr) jetfile::CreateIndex(file, page, IndexOf(index));
    }
  }
  for (const QueryInfo& query : after.queries) {
    const QueryInfo* const old = before.FindQuery(query.id);
    const bool same = old != nullptr && old->name == query.name && old->sql == query.sql;
    if (!same) jetfile::CreateQuery(file, query.name, QueryParts(query.sql));
  }
}

}  // namespace ambrelio::embedded
