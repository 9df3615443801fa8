#include "engine/jetfile/made_table.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/page_allocator.h"
#include "ambrelio/engine/jetfile/usage_map_writer.h"
#include "engine/jetfile/table_model.h"

namespace ambrelio::jetfile {
namespace {

constexpr uint32_t kTableMarker = 1625;
constexpr uint32_t kIndexMarker = 1923;

// Bytes of a value of fixed size; 0 for others.
uint16_t FixedLength(ColumnType type) {
  switch (type) {
    case ColumnType::kBoolean:
    case ColumnType::kByte:
      return 1;
    case ColumnType::kInteger:
      return 2;
    case ColumnType::kLong:
      return 4;
    case ColumnType::kDouble:
      return 8;
    default:
      return 0;
  }
}

void AddColumn(JetFile& file, TableDefinition& table, const MadeColumn& made) {
  constexpr uint8_t kUpdatable = 0x02;
  ColumnDefinition& column = table.columns.emplace_back();
  column.name = made.name;
  column.type = made.type;
  column.marker = kTableMarker;
  column.number = table.column_mark++;
  column.ordinal = column.number;
  column.collation = 0x0409;
  column.extra_flags = made.extra_flags;
  column.variable_index = table.variable_mark;
  column.length = made.length;
  column.flags = kUpdatable;
  if (const uint16_t length = FixedLength(made.type); length > 0) {
    column.flags |= ColumnDefinition::kFixed;
    column.length = length;
    for (const ColumnDefinition& other : table.columns) {
      if (&other == &column || !other.fixed() || other.type == ColumnType::kBoolean) continue;
      column.fixed_offset = static_cast<uint16_t>(other.fixed_offset + other.length);
    }
    return;
  }
  ++table.variable_mark;
  if (column.long_value()) table.long_values.push_back({column.number, NewMap(file), NewMap(file)});
}

void AddIndex(JetFile& file, TableDefinition& table, const MadeIndex& made) {
  IndexDefinition& index = table.indexes.emplace_back();
  index.marker = kIndexMarker;
  for (size_t i = 0; i < made.columns.size(); ++i) index.slots[i] = {made.columns[i], 1};
  index.map = NewMap(file);
  index.root = NewIndexRoot(file, table.page(), index.map);
  index.flags = static_cast<uint8_t>(made.flags | 0x80);
  index.reserved.resize(5);
  IndexName& name = table.index_names.emplace_back();
  name.marker = kTableMarker;
  name.name = "index" + std::to_string(table.index_names.size());
  name.number = static_cast<uint32_t>(table.index_names.size() - 1);
  name.index = name.number;
  name.other_number = UINT32_MAX;
}

size_t PositionOf(const TableDefinition& definition, const std::string& column) {
  return static_cast<size_t>(definition.FindColumn(column) - definition.columns.data());
}

// Enters the table in a system table, like one that is there already.
void CopyRows(JetFile& file, const std::string& system_table, const std::string& id_column,
              uint32_t page, const std::string& name) {
  TableWriter writer(file, PageOfTable(file, system_table));
  const size_t id = PositionOf(writer.definition(), id_column);
  TableChanges changes;
  for (auto& [row, values] : ReadRows(file, writer.definition().page())) {
    if (values[id] != Variant(static_cast<int32_t>(kObjectsPage))) continue;
    values[id] = static_cast<int32_t>(page);
    if (id_column == "Id") {
      values[PositionOf(writer.definition(), "Name")] = name;
      values[PositionOf(writer.definition(), "Flags")] = int32_t{0};
    }
    changes.inserted.push_back(values);
  }
  writer.Apply(changes);
  writer.Finish();
}

}  // namespace

uint32_t MakeTable(JetFile& file, const std::string& name, const std::vector<MadeColumn>& columns,
                   const std::vector<MadeIndex>& indexes) {
  constexpr size_t kHeaderBytes = 8;
  TableDefinition table;
  table.pages = {AllocatePage(file)};
  table.page_type = static_cast<uint16_t>(PageType::kDefinition);
  table.marker = kTableMarker;
  table.increment = 1;
  table.owned_map = NewMap(file);
  table.free_space_map = NewMap(file);
  for (const MadeColumn& column : columns) AddColumn(file, table, column);
  for (const MadeIndex& index : indexes) AddIndex(file, table, index);
  const size_t page_size = file.format().page_size;
  const size_t length = SerialiseDefinition(file, table).size();
  table.free_bytes = static_cast<uint16_t>(page_size - kHeaderBytes - length);
  Bytes bytes = SerialiseDefinition(file, table);
  bytes.resize(page_size);
  file.Write(table.page(), std::move(bytes));
  CopyRows(file, "MSysObjects", "Id", table.page(), name);
  CopyRows(file, "MSysACEs", "ObjectId", table.page(), name);
  return table.page();
}

}  // namespace ambrelio::jetfile
