#include "ambrelio/engine/jetfile/table_definition.h"

#include <algorithm>
#include <set>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/definition_fields.h"
#include "ambrelio/platform/characters.h"

namespace ambrelio::jetfile {
namespace {

constexpr size_t kNextPageAt = 4;
constexpr size_t kLengthAt = 8;
constexpr uint16_t kNoMoreLongValues = 0xFFFF;
// 255 columns, 32 indexes and all their names take a tenth of it.
constexpr size_t kLongestDefinition = 1 << 20;

void RequireRoom(const FieldReader& reader, size_t count, size_t least) {
  if (count <= reader.left() / least) return;
  throw Damage(reader.Ahead().PlaceOf(0), "the definition is too short for what it counts");
}

void ReadLongValues(FieldReader& reader, TableDefinition& definition) {
  while (reader.Ahead().U16(0) != kNoMoreLongValues) {
    LongValueFields(reader, definition.long_values.emplace_back());
  }
}

// The values of a row are told by the numbers of their columns.
void RequireDistinctNumbers(const TableDefinition& definition) {
  std::set<uint16_t> numbers;
  for (const ColumnDefinition& column : definition.columns) {
    if (numbers.insert(column.number).second) continue;
    throw Damage({definition.page(), 0},
                 "two columns have the number " + std::to_string(column.number));
  }
}

}  // namespace

std::vector<KeyColumn> IndexDefinition::Columns() const {
  std::vector<KeyColumn> columns;
  std::copy_if(slots.begin(), slots.end(), std::back_inserter(columns),
               [](KeyColumn slot) { return slot.column != KeyColumn::kNone; });
  return columns;
}

const ColumnDefinition* TableDefinition::FindColumn(std::string_view name) const {
  // Nearly always it is spelt as it is stored.
  auto found = std::find_if(columns.begin(), columns.end(),
                            [name](const auto& column) { return column.name == name; });
  if (found != columns.end()) return &*found;
  const std::string wanted = UpperCase(name);
  found = std::find_if(columns.begin(), columns.end(),
                       [&wanted](const auto& column) { return UpperCase(column.name) == wanted; });
  return found == columns.end() ? nullptr : &*found;
}

const ColumnDefinition* TableDefinition::FindColumn(uint16_t number) const {
  const auto found = std::find_if(columns.begin(), columns.end(),
                                  [number](const auto& column) { return column.number == number; });
  return found == columns.end() ? nullptr : &*found;
}

DefinitionString ReadDefinitionString(const JetFile& file, uint32_t page) {
  DefinitionString string;
  size_t length = 0;
  for (uint32_t number = page; number != 0;) {
    const Page bytes = file.Read(number);
    const ByteView view = ViewOf(bytes, number);
    if (view.U16(0) != static_cast<uint16_t>(PageType::kDefinition)) {
      throw Damage({number, 0}, "a table definition is expected here");
    }
    if (string.pages.empty()) {
      length = view.U32(kLengthAt);
      if (length > kLongestDefinition) {
        throw Damage({number, kLengthAt}, "no table definition is as long as this one says");
      }
    }
    const ByteView content =
        string.pages.empty() ? view : view.From(DefinitionLayout::kPageHeaderBytes);
    string.pages.push_back(number);
    Append(string.bytes, content.bytes());
    number = view.U32(kNextPageAt);
    // A definition that all but fills its pages has one more, with nothing in it.
    if (string.bytes.size() >= length + (number == 0 ? 0 : DefinitionLayout::kPageHeaderBytes)) {
      string.bytes.resize(length);
      return string;
    }
  }
  throw Damage({string.pages.empty() ? page : string.pages.back(), kNextPageAt},
               "the table definition has no page behind this one");
}

TableDefinition ReadDefinition(const JetFile& file, uint32_t page) {
  return ParseDefinition(file, ReadDefinitionString(file, page));
}

TableDefinition ParseDefinition(const JetFile& file, const DefinitionString& string) {
  const bool jet4 = file.format().jet4;
  TableDefinition definition;
  definition.pages = string.pages;
  FieldReader reader(file, {string.bytes, {definition.page(), 0}});
  DefinitionCounts counts;
  HeaderFields(reader, definition, counts, jet4);
  RequireRoom(reader, counts.columns, kLeastColumnBytes);
  RequireRoom(reader, counts.indexes, kLeastIndexBytes);
  RequireRoom(reader, counts.index_names, kLeastIndexNameBytes);
  definition.indexes.resize(counts.indexes);
  definition.columns.resize(counts.columns);
  definition.index_names.resize(counts.index_names);

  for (auto& index : definition.indexes) CounterFields(reader, index, jet4);
  for (auto& column : definition.columns) ColumnFields(reader, column, jet4);
  for (auto& column : definition.columns) reader.Name(column.name);
  for (auto& index : definition.indexes) IndexFields(reader, index, jet4);
  for (auto& name : definition.index_names) IndexNameFields(reader, name, jet4);
  for (auto& name : definition.index_names) reader.Name(name.name);
  ReadLongValues(reader, definition);
  RequireDistinctNumbers(definition);
  return definition;
}

Bytes SerialiseDefinition(const JetFile& file, const TableDefinition& definition) {
  const bool jet4 = file.format().jet4;
  FieldWriter writer(file);
  DefinitionCounts counts{static_cast<uint16_t>(definition.columns.size()),
                          static_cast<uint32_t>(definition.index_names.size()),
                          static_cast<uint32_t>(definition.indexes.size())};
  HeaderFields(writer, definition, counts, jet4);
  for (const auto& index : definition.indexes) CounterFields(writer, index, jet4);
  for (const auto& column : definition.columns) ColumnFields(writer, column, jet4);
  for (const auto& column : definition.columns) writer.Name(column.name);
  for (const auto& index : definition.indexes) IndexFields(writer, index, jet4);
  for (const auto& name : definition.index_names) IndexNameFields(writer, name, jet4);
  for (const auto& name : definition.index_names) writer.Name(name.name);
  for (const auto& maps : definition.long_values) LongValueFields(writer, maps);
  writer.Number(kNoMoreLongValues);
  Bytes bytes = std::move(writer.bytes());
  Put(bytes, kLengthAt, bytes.size(), sizeof definition.length);
  return bytes;
}

}  // namespace ambrelio::jetfile
