#include "ambrelio/engine/embedded/jet/schema_changes.h"

#include <vector>

#include "ambrelio/engine/embedded/jet/query_parts.h"
#include "ambrelio/engine/jetfile/column_rules.h"
#include "ambrelio/engine/jetfile/column_schema.h"
#include "ambrelio/engine/jetfile/index_schema.h"
#include "ambrelio/engine/jetfile/query_schema.h"
#include "ambrelio/engine/jetfile/table_definition.h"
#include "ambrelio/engine/jetfile/table_schema.h"

namespace ambrelio::embedded {
namespace {

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

bool SameRules(const FieldInfo& a, const FieldInfo& b) {
  return a.required == b.required && a.allow_zero_length == b.allow_zero_length &&
         a.default_value == b.default_value;
}

bool SameQuery(const QueryInfo* a, const QueryInfo& b) {
  return a != nullptr && a->name == b.name && a->sql == b.sql;
}

}  // namespace

uint16_t SchemaChanges::NumberOf(uint32_t page, const std::string& column) const {
  return jetfile::ReadDefinition(file_, page).FindColumn(column)->number;
}

void SchemaChanges::BeforeRows(DefinitionPages& pages) {
  for (const QueryInfo& query : before_.queries) {
    if (!SameQuery(after_.FindQuery(query.id), query)) jetfile::DropQuery(file_, query.name);
  }
  for (const TableInfo& table : before_.tables) {
    if (after_.FindTable(table.id) != nullptr) continue;
    jetfile::DropTable(file_, pages.at(table.id));
    pages.erase(table.id);
  }
  for (const TableInfo& table : after_.tables) {
    const TableInfo* const old = before_.FindTable(table.id);
    if (old == nullptr) {
      std::vector<NewColumn> columns;
      for (const FieldInfo& field : table.fields) columns.push_back(ColumnOf(field));
      pages[table.id] = jetfile::CreateTable(file_, table.name, columns, {}, now_);
      continue;
    }
    const uint32_t page = pages.at(table.id);
    if (old->name != table.name) jetfile::RenameTable(file_, page, table.name, now_);
    DropParts(page, *old, table);
    ChangeColumns(page, *old, table);
  }
}

void SchemaChanges::AfterRows(const DefinitionPages& pages) {
  for (const TableInfo& table : after_.tables) {
    const TableInfo* const known = before_.FindTable(table.id);
    const TableInfo old = known == nullptr ? TableInfo{} : *known;
    const uint32_t page = pages.at(table.id);
    ChangeRules(page, old, table);
    for (const IndexInfo& index : table.indexes) {
      if (old.FindIndex(index.id) != nullptr) continue;
      jetfile::CreateIndex(file_, page, IndexOf(index), now_);
    }
  }
  for (const QueryInfo& query : after_.queries) {
    if (SameQuery(before_.FindQuery(query.id), query)) continue;
    jetfile::CreateQuery(file_, query.name, jet::QueryParts(query.sql), now_);
  }
}

void SchemaChanges::DropParts(uint32_t page, const TableInfo& before, const TableInfo& after) {
  for (const IndexInfo& index : before.indexes) {
    if (after.FindIndex(index.id) == nullptr) jetfile::DropIndex(file_, page, index.name, now_);
  }
  for (const FieldInfo& field : before.fields) {
    if (after.FindField(field.id) != nullptr) continue;
    jetfile::DropColumn(file_, page, NumberOf(page, field.name), now_);
  }
}

void SchemaChanges::ChangeColumns(uint32_t page, const TableInfo& before, const TableInfo& after) {
  for (const FieldInfo& field : after.fields) {
    const FieldInfo* const old = before.FindField(field.id);
    if (old == nullptr) {
      jetfile::AddColumn(file_, page, ColumnOf(field), now_);
    } else if (old->name != field.name || old->position != field.position) {
      jetfile::ChangeColumn(file_, page, NumberOf(page, old->name), field.name,
                            static_cast<uint16_t>(field.position), now_);
    }
  }
}

void SchemaChanges::ChangeRules(uint32_t page, const TableInfo& before, const TableInfo& after) {
  std::vector<jetfile::RulesOfColumn> changed;
  for (const FieldInfo& field : after.fields) {
    const FieldInfo* const old = before.FindField(field.id);
    if (SameRules(old == nullptr ? FieldInfo{} : *old, field)) continue;
    changed.push_back({field.name, {field.required, field.allow_zero_length, field.default_value}});
  }
  if (!changed.empty()) jetfile::SetRules(file_, page, changed, now_);
}

}  // namespace ambrelio::embedded
