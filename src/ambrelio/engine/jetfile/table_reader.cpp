#include "ambrelio/engine/jetfile/table_reader.h"

#include <utility>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/long_value.h"
#include "ambrelio/engine/jetfile/usage_map.h"
#include "ambrelio/engine/jetfile/values.h"

namespace ambrelio::jetfile {

TableReader::TableReader(const JetFile& file, const TableDefinition& definition)
    : TableReader(file, definition, ReadUsageMap(file, definition.owned_map).pages) {}

TableReader::TableReader(const JetFile& file, const TableDefinition& definition,
                         std::vector<uint32_t> pages)
    : file_(file), definition_(definition), pages_(std::move(pages)) {}

bool TableReader::Next() {
  row_.reset();
  for (;;) {
    if (page_ && next_slot_ < page_->slots().size()) {
      const auto slot = static_cast<uint8_t>(next_slot_++);
      if (page_->SlotAt(slot).pointed_to) continue;
      TakeRow(*page_, {page_->number(), slot});
      return true;
    }
    page_.reset();
    if (next_page_ == pages_.size()) return false;
    next_slot_ = 0;
    const uint32_t page = pages_[next_page_++];
    page_ = ReadTablePage(file_, definition_, page);
  }
}

void TableReader::MoveTo(RowPointer row) {
  row_.reset();
  body_page_ = ReadTablePage(file_, definition_, row.page);
  if (body_page_->SlotAt(row.row).pointed_to) {
    throw Damage(body_page_->PlaceOfSlot(row.row), "there is no row");
  }
  TakeRow(*body_page_, row);
}

// The page is one of the reader's own.
void TableReader::TakeRow(const DataPage& page, RowPointer identity) {
  identity_ = identity;
  body_ = identity;
  const DataPage* body_page = &page;
  if (page.SlotAt(identity.row).moved) {
    RowBody body = FollowRow(file_, definition_, page, identity.row);
    body_ = body.at;
    body_page = &body_page_.emplace(std::move(body.page));
  }
  row_.emplace(body_page->Row(body_.row), definition_, file_.format().jet4);
}

Variant TableReader::Value(const ColumnDefinition& column) const {
  return ReadValue(file_, *row_, column);
}

DataPage ReadTablePage(const JetFile& file, const TableDefinition& definition, uint32_t page) {
  return TablePage(file, definition, page, file.Read(page));
}

DataPage TablePage(const JetFile& file, const TableDefinition& definition, uint32_t page,
                   Page bytes) {
  DataPage data(std::move(bytes), page, file.format());
  if (data.owner() != definition.page()) {
    throw Damage({page, 4}, "a page of the table defined on page " +
                                std::to_string(definition.page()) + " is expected here");
  }
  return data;
}

RowBody FollowRow(const JetFile& file, const TableDefinition& definition, const DataPage& head,
                  uint8_t row) {
  if (!head.SlotAt(row).moved) return {head, {head.number(), row}};
  const RowPointer at = ReadRowPointer(head.Row(row), 0);
  DataPage page = ReadTablePage(file, definition, at.page);
  const Slot& target = page.SlotAt(at.row);
  if (!target.pointed_to || target.deleted()) {
    throw Damage(head.PlaceOfSlot(row), "the row moved to where it is not");
  }
  return {std::move(page), at};
}

std::optional<RowBody> FindRow(const JetFile& file, const TableDefinition& definition,
                               RowPointer row) {
  if (row.page >= file.page_count()) return std::nullopt;
  const Page bytes = file.Read(row.page);
  if (ViewOf(bytes, row.page).U16(0) != static_cast<uint16_t>(PageType::kData)) return std::nullopt;
  const DataPage page(bytes, row.page, file.format());
  if (page.owner() != definition.page() || row.row >= page.slots().size()) return std::nullopt;
  if (page.SlotAt(row.row).pointed_to) return std::nullopt;
  return FollowRow(file, definition, page, row.row);
}

Variant ReadValue(const JetFile& file, const Row& row, const ColumnDefinition& column) {
  if (column.type == ColumnType::kBoolean) return row.Flag(column);
  const auto bytes = row.Value(column);
  if (!bytes) return Variant::Null();
  if (!column.long_value()) return DecodeValue(column, *bytes, file.format().jet4);
  const LongValue value = ReadLongValue(file, *bytes);
  return DecodeValue(column, {value.bytes, bytes->PlaceOf(0)}, file.format().jet4);
}

}  // namespace ambrelio::jetfile
