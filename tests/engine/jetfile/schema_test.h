// What the tests of changes of the schema share.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/new_file.h"
#include "ambrelio/engine/jetfile/table_design.h"
#include "ambrelio/engine/jetfile/usage_map.h"
#include "engine/jetfile/samples.h"
#include "engine/jetfile/table_model.h"
#include "support/error_of.h"

namespace ambrelio::jetfile {

inline const OleDate kNow = OleDate::FromDays(38000.5);
inline const Variant kNull = Variant::Null();

inline JetFile NewJet() { return JetFile::FromBytes(NewFile("", kNow), ""); }
inline JetFile CopyOf(const char* sample) { return JetFile::FromBytes(SampleBytes(sample), ""); }

inline NewColumn Column(std::string name, ColumnType type, uint16_t length = 0) {
  NewColumn column;
  column.name = std::move(name);
  column.type = type;
  column.length = length;
  return column;
}

inline NewIndex IndexOver(std::string name, const std::vector<std::string>& columns) {
  NewIndex index;
  index.name = std::move(name);
  for (const std::string& column : columns) index.columns.emplace_back(column, true);
  return index;
}

inline NewIndex Unique(NewIndex index) {
  index.unique = true;
  return index;
}
inline NewIndex Primary(NewIndex index) {
  index.primary = true;
  return index;
}

// The rows are added as one commit would add them.
inline void AddRows(JetFile& file, uint32_t table, const std::vector<std::vector<Variant>>& rows) {
  TableWriter writer(file, table);
  writer.Apply({{}, {}, rows});
  writer.Finish();
}

// Those over tables that people made.
inline std::vector<RelationshipColumn> UserRelationships(const JetFile& file) {
  std::vector<RelationshipColumn> relationships = ReadCatalogue(file).relationships;
  const auto tables = UserTables(file);
  std::erase_if(relationships, [&tables](const RelationshipColumn& row) {
    return !tables.contains(row.table) || !tables.contains(row.referenced_table);
  });
  return relationships;
}

// The values of all rows without their pointers.
inline std::vector<std::vector<Variant>> RowsOf(const JetFile& file, uint32_t table) {
  std::vector<std::vector<Variant>> rows;
  for (const auto& [pointer, values] : ReadRows(file, table)) rows.push_back(values);
  return rows;
}

// The error of a change, which must leave the file as it was.
template <class Action>
int Refused(JetFile& file, Action action) {
  const auto before = file.changes();
  const int error = test::ErrorOf(action);
  EXPECT_TRUE(file.changes() == before);
  return error;
}

// All pages of user tables but one: their definitions, rows, long values and indexes.
inline std::map<uint32_t, Page> PagesOfOthers(const JetFile& file, uint32_t table) {
  std::map<uint32_t, Page> pages;
  const auto add = [&](const std::vector<uint32_t>& numbers) {
    for (const uint32_t number : numbers) pages[number] = file.Read(number);
  };
  for (const auto& [name, page] : UserTables(file)) {
    if (page == table) continue;
    const TableDefinition definition = ReadDefinition(file, page);
    add(definition.pages);
    add(ReadUsageMap(file, definition.owned_map).pages);
    for (const auto& maps : definition.long_values) add(ReadUsageMap(file, maps.owned).pages);
    for (const auto& index : definition.indexes) add(ReadUsageMap(file, index.map).pages);
  }
  return pages;
}

}  // namespace ambrelio::jetfile
