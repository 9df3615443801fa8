#include "ambrelio/engine/jetfile/column_schema.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/catalogue_writer.h"
#include "ambrelio/engine/jetfile/column_rules.h"
#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/definition_writer.h"
#include "ambrelio/engine/jetfile/index_key.h"
#include "ambrelio/engine/jetfile/relationship_rows.h"
#include "ambrelio/engine/jetfile/table_pages.h"
#include "ambrelio/engine/jetfile/table_reader.h"
#include "ambrelio/engine/jetfile/table_rows.h"
#include "ambrelio/engine/jetfile/values.h"
#include "ambrelio/engine/jetfile/whole_change.h"

namespace ambrelio::jetfile {
namespace {

using dao::DaoError;

// The file's own order when it is one that keys can be made of.
uint16_t LanguageOfNewColumns(const Header& header) {
  const bool known =
      header.sort_id == 0 && header.collation_version == 0 && IsKnownLanguage(header.language);
  return known ? header.language : kGeneralOrder;
}

const ColumnDefinition& ColumnOf(const TableDefinition& definition, uint16_t number) {
  const ColumnDefinition* column = definition.FindColumn(number);
  if (column == nullptr) {
    dao::Raise(DaoError::kNotInCollection, dao::source::kTableDef, std::to_string(number));
  }
  return *column;
}

// The stored values of a row in the order of the definition's columns.
RowValues StoredValues(const TableDefinition& definition, const Row& row) {
  RowValues values;
  for (const ColumnDefinition& column : definition.columns) {
    std::optional<Bytes>& value = values.emplace_back();
    if (column.type == ColumnType::kBoolean) {
      if (row.Flag(column)) value.emplace();
    } else if (const auto bytes = row.Value(column)) {
      value = bytes->Copy();
    }
  }
  return values;
}

// Writes every row as the definition is now. An autonumber that was added counts them.
void RewriteRows(JetFile& file, TableDefinition& definition, const ColumnDefinition& added) {
  const auto position =
      static_cast<size_t>(definition.FindColumn(added.number) - definition.columns.data());
  std::vector<std::pair<RowPointer, Bytes>> rows;
  TableReader reader(file, definition);
  while (reader.Next()) {
    RowValues values = StoredValues(definition, reader.row());
    if (added.autonumber()) {
      values[position] = EncodeValue(added, static_cast<int32_t>(++definition.last_autonumber));
    }
    rows.emplace_back(reader.identity(), EncodeRow(definition, values));
  }
  TableRows writer(file, definition);
  for (const auto& [row, bytes] : rows) writer.Replace(row, bytes);
}

}  // namespace

uint16_t AddColumn(JetFile& file, uint32_t table, const NewColumn& column, OleDate now) {
  const CatalogueObject object = UserTable(file, table);
  TableDefinition definition = ReadDefinition(file, table);
  const bool had_variable = definition.variable_mark > 0;
  const uint16_t number = DesignColumn(definition, column, LanguageOfNewColumns(file.header()));
  const ColumnDefinition added = ColumnOf(definition, number);
  return WholeOrNotAtAll(file, [&] {
    if (added.long_value()) definition.long_values.push_back(PlaceLongValues(file, number));
    // Rows of a table that never had a variable column lack the place for one, and once there are
    // some of either kind nobody could tell them apart.
    const bool first_variable = !had_variable && definition.variable_mark > 0;
    if (column.autonumber) definition.last_autonumber = 0;
    if (first_variable || column.autonumber) RewriteRows(file, definition, added);
    WriteDefinition(file, definition);
    UpdateObject(file, object, {}, now);
    return number;
  });
}

void DropColumn(JetFile& file, uint32_t table, uint16_t number, OleDate now) {
  const CatalogueObject object = UserTable(file, table);
  TableDefinition definition = ReadDefinition(file, table);
  const ColumnDefinition column = ColumnOf(definition, number);
  for (const IndexDefinition& index : definition.indexes) {
    const auto keys = index.Columns();
    const bool in_index = std::any_of(keys.begin(), keys.end(),
                                      [number](KeyColumn key) { return key.column == number; });
    if (in_index) dao::Raise(DaoError::kFieldInIndex, dao::source::kTableDef, column.name);
  }
  RequireNoRelationship(ReadCatalogue(file), object.name, column.name);
  if (definition.columns.size() == 1) {
    dao::Raise(DaoError::kNothingDefined, dao::source::kTableDef, object.name);
  }
  WholeOrNotAtAll(file, [&] {
    FreeLongValues(file, definition, number);
    std::erase_if(definition.columns,
                  [number](const ColumnDefinition& other) { return other.number == number; });
    WriteDefinition(file, definition);
    UpdateObject(file, object, PropertiesWithoutColumn(file, object, column.name), now);
  });
}

void ChangeColumn(JetFile& file, uint32_t table, uint16_t number, std::string_view name,
                  uint16_t ordinal, OleDate now) {
  const CatalogueObject object = UserTable(file, table);
  TableDefinition definition = ReadDefinition(file, table);
  const ColumnDefinition column = ColumnOf(definition, number);
  if (column.name == name && column.ordinal == ordinal) return;
  RedesignColumn(definition, number, name, ordinal);
  WholeOrNotAtAll(file, [&] {
    WriteDefinition(file, definition);
    RenameInRelationships(file, ReadCatalogue(file), object.name, column.name, name);
    UpdateObject(file, object, PropertiesWithColumnRenamed(file, object, column.name, name), now);
  });
}

}  // namespace ambrelio::jetfile
