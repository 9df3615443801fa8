#include "ambrelio/engine/jetfile/check_rows.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/long_value.h"
#include "ambrelio/engine/jetfile/table_reader.h"
#include "ambrelio/engine/jetfile/values.h"

namespace ambrelio::jetfile {
namespace {

// Draws its numbers at random when that is its default; no counter follows those.
bool IsCounted(const ColumnDefinition& column) {
  return column.autonumber() && column.type == ColumnType::kLong;
}

std::string RowName(RowPointer row) {
  return "row " + std::to_string(row.row) + " of page " + std::to_string(row.page);
}

}  // namespace

std::optional<std::vector<std::vector<KeyedRow>>> RowsCheck::Run() {
  const UsageMap pages = owners_.ClaimMap(definition_.owned_map, "table " + name_);
  const UsageMap hint = owners_.ClaimHint(definition_.free_space_map, "table " + name_);
  for (const uint32_t page : hint.pages) {
    if (pages.Contains(page)) continue;
    findings_.Add(
        Rule::kOwnership, {page, 0},
        "the page is listed with free space for table " + name_ + ", which does not own it");
  }
  for (const LongValueMaps& maps : definition_.long_values) {
    const std::string owner =
        "the long values of column " + std::to_string(maps.column) + " of table " + name_;
    // The oldest engines left a column without maps.
    if (maps.owned.none()) continue;
    column_maps_[maps.column] = owners_.ClaimMap(maps.owned, owner);
    owners_.ClaimHint(maps.free_space, owner);
  }
  for (const uint32_t page : pages.pages) {
    findings_.Try(Rule::kDataPage, [&] { CheckPage(page); });
  }
  CheckMoves();
  std::vector<std::vector<KeyedRow>> keyed(definition_.indexes.size());
  const bool complete = CheckRows(keyed);
  CheckLongValuePages();
  return complete ? std::optional(std::move(keyed)) : std::nullopt;
}

void RowsCheck::CheckFreeBytes(const DataPage& page) {
  if (page.free_bytes() == page.room()) return;
  findings_.Add(Rule::kDataPage, {page.number(), 2},
                "the page says it has " + std::to_string(page.free_bytes()) +
                    " free bytes and has " + std::to_string(page.room()));
}

void RowsCheck::CheckPage(uint32_t number) {
  const DataPage page = ReadTablePage(file_, definition_, number);
  CheckFreeBytes(page);
  for (size_t i = 0; i < page.slots().size(); ++i) {
    const Slot& slot = page.slots()[i];
    const RowPointer row{number, static_cast<uint8_t>(i)};
    if (slot.deleted()) continue;
    if (slot.pointed_to) {
      bodies_.insert(row);
    } else if (slot.moved) {
      const RowPointer target = ReadRowPointer(page.Row(row.row), 0);
      if (heads_.emplace(target, row).second) continue;
      findings_.Add(Rule::kDataPage, page.PlaceOfSlot(i),
                    "two rows moved to " + RowName(target) + " in table " + name_);
    }
  }
}

void RowsCheck::CheckMoves() {
  for (const auto& [target, head] : heads_) {
    if (bodies_.erase(target) > 0) continue;
    findings_.Add(Rule::kDataPage, {head.page, 0},
                  RowName(head) + " moved to " + RowName(target) + ", which is no moved row");
  }
  for (const RowPointer body : bodies_) {
    findings_.Add(Rule::kDataPage, {body.page, 0},
                  RowName(body) + " has moved there from nowhere in table " + name_);
  }
}

bool RowsCheck::CheckRows(std::vector<std::vector<KeyedRow>>& keyed) {
  bool complete = true;
  size_t count = 0;
  std::optional<TableReader> reader;
  if (!findings_.Try(Rule::kRow, [&] { reader.emplace(file_, definition_); })) return false;
  for (bool more = true; more;) {
    const bool whole = findings_.Try(Rule::kRow, [&] {
      more = reader->Next();
      if (!more) return;
      ++count;
      std::map<uint16_t, Variant> values;
      for (const ColumnDefinition& column : definition_.columns) {
        CheckValue(reader->row(), column);
        values[column.number] = reader->Value(column);
      }
      for (size_t i = 0; i < keyed.size(); ++i) {
        KeyedRow row{reader->identity(), {}};
        for (const KeyColumn& key : definition_.indexes[i].Columns()) {
          row.values.push_back(values[key.column]);
        }
        keyed[i].push_back(std::move(row));
      }
    });
    complete = complete && whole;
  }
  if (complete) CheckCounters(count);
  return complete;
}

void RowsCheck::CheckValue(const Row& row, const ColumnDefinition& column) {
  if (column.type == ColumnType::kBoolean) return;
  const auto bytes = row.Value(column);
  if (!bytes) return;
  if (column.long_value()) return CheckLongValue(column, *bytes);
  const Variant value = DecodeValue(column, *bytes, file_.format().jet4);
  if (!IsCounted(column)) return;
  greatest_autonumber_ = std::max(greatest_autonumber_.value_or(INT32_MIN), value.as<int32_t>());
}

void RowsCheck::CheckLongValue(const ColumnDefinition& column, ByteView bytes) {
  const LongValueDefinition definition = ParseLongValue(bytes);
  const LongValue value = ReadLongValue(file_, bytes);
  const auto map = column_maps_.find(column.number);
  const bool has_map = map != column_maps_.end();
  for (const RowPointer row : value.rows) {
    ++references_[row];
    if (!has_map) {
      owners_.ClaimShared(row.page, "the long values of table " + name_);
    } else if (!map->second.Contains(row.page)) {
      findings_.Add(Rule::kRow, bytes.PlaceOf(4),
                    "a value of column " + column.name + " lies on page " +
                        std::to_string(row.page) + ", which its map does not have");
    }
  }
  if (definition.kind != LongValueKind::kChain || value.rows.empty() || !file_.format().jet4) {
    return;
  }
  const uint32_t first = value.rows.front().page;
  if (DataPage(file_.Read(first), first, file_.format()).stamp() != definition.stamp) {
    findings_.Add(Rule::kRow, bytes.PlaceOf(8),
                  "the stamp of a value of column " + column.name + " is not that of page " +
                      std::to_string(first));
  }
}

void RowsCheck::CheckLongValuePages() {
  for (const auto& [column, map] : column_maps_) {
    for (const uint32_t number : map.pages) {
      findings_.Try(Rule::kRow, [&, number] {
        const DataPage page(file_.Read(number), number, file_.format());
        if (page.owner() != kOwnerLongValues) {
          throw Damage({number, 4}, "a page of long values is expected here");
        }
        CheckFreeBytes(page);
        for (size_t i = 0; i < page.slots().size(); ++i) {
          if (page.slots()[i].deleted()) continue;
          const RowPointer row{number, static_cast<uint8_t>(i)};
          const auto found = references_.find(row);
          const int times = found == references_.end() ? 0 : found->second;
          if (times == 1) continue;
          findings_.Add(
              Rule::kRow, page.PlaceOfSlot(i),
              "a long value of table " + name_ + " is used " + std::to_string(times) + " times");
        }
      });
    }
  }
}

void RowsCheck::CheckCounters(size_t row_count) {
  const Place place{definition_.page(), file_.format().jet4 ? DefinitionLayout::kRowCountAt : 12};
  if (definition_.kind != TableDefinition::kSystemTable && definition_.row_count != row_count) {
    findings_.Add(Rule::kCount, place,
                  "the table " + name_ + " has " + std::to_string(row_count) + " rows and says " +
                      std::to_string(definition_.row_count));
  }
  const auto last = static_cast<int32_t>(definition_.last_autonumber);
  if (greatest_autonumber_ && last < *greatest_autonumber_) {
    findings_.Add(Rule::kCount,
                  {definition_.page(), file_.format().jet4 ? DefinitionLayout::kAutonumberAt : 16},
                  "the table " + name_ + " has the autonumber " +
                      std::to_string(*greatest_autonumber_) + " and says that the last is " +
                      std::to_string(last));
  }
}

}  // namespace ambrelio::jetfile
