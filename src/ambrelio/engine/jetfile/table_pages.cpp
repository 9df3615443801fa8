#include "ambrelio/engine/jetfile/table_pages.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/index_writer.h"
#include "ambrelio/engine/jetfile/page_allocator.h"
#include "ambrelio/engine/jetfile/usage_map.h"
#include "ambrelio/engine/jetfile/usage_map_writer.h"

namespace ambrelio::jetfile {
namespace {

// Gives back the pages that a map names, and the map.
void FreeMapped(JetFile& file, RowPointer map) {
  if (map.none()) return;
  const UsageMap pages = ReadUsageMap(file, map);
  DropMap(file, map);
  for (const uint32_t page : pages.pages) FreePage(file, page);
}

void Free(JetFile& file, const LongValueMaps& maps) {
  FreeMapped(file, maps.owned);
  if (!maps.free_space.none()) DropMap(file, maps.free_space);
}

}  // namespace

void PlaceTable(JetFile& file, TableDefinition& definition) {
  definition.owned_map = NewMap(file);
  definition.free_space_map = NewMap(file);
  // The maps follow the columns' numbers, while the definition lists them as it does the columns.
  std::vector<uint16_t> listed;
  for (const ColumnDefinition& column : definition.columns) {
    if (column.long_value()) listed.push_back(column.number);
  }
  std::vector<uint16_t> numbers = listed;
  std::sort(numbers.begin(), numbers.end());
  std::vector<LongValueMaps> maps;
  for (const uint16_t number : numbers) maps.push_back(PlaceLongValues(file, number));
  for (const uint16_t number : listed) {
    definition.long_values.push_back(*std::find_if(
        maps.begin(), maps.end(), [number](const auto& map) { return map.column == number; }));
  }
  for (IndexDefinition& index : definition.indexes) PlaceIndex(file, definition.page(), index);
}

void FreeTable(JetFile& file, const TableDefinition& definition) {
  FreeMapped(file, definition.owned_map);
  DropMap(file, definition.free_space_map);
  for (const LongValueMaps& maps : definition.long_values) Free(file, maps);
  for (const IndexDefinition& index : definition.indexes) FreeIndex(file, index);
  for (const uint32_t page : definition.pages) FreePage(file, page);
}

LongValueMaps PlaceLongValues(JetFile& file, uint16_t column) {
  const RowPointer owned = NewMap(file);
  return {column, owned, NewMap(file)};
}

void FreeLongValues(JetFile& file, TableDefinition& definition, uint16_t column) {
  const auto found =
      std::find_if(definition.long_values.begin(), definition.long_values.end(),
                   [column](const LongValueMaps& maps) { return maps.column == column; });
  if (found == definition.long_values.end()) return;
  Free(file, *found);
  definition.long_values.erase(found);
}

void PlaceIndex(JetFile& file, uint32_t table_page, IndexDefinition& index) {
  index.map = NewMap(file);
  index.root = NewIndexRoot(file, table_page, index.map);
}

void FreeIndex(JetFile& file, const IndexDefinition& index) {
  FreeIndexPages(file, index);
  DropMap(file, index.map);
}

}  // namespace ambrelio::jetfile
