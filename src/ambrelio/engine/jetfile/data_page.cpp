#include "ambrelio/engine/jetfile/data_page.h"

#include "ambrelio/engine/jetfile/damage.h"

namespace ambrelio::jetfile {
namespace {

// Row numbers are bytes in pointers.
constexpr size_t kMostRows = 256;

}  // namespace

const Slot& SlotOf(const std::vector<Slot>& slots, uint32_t page, uint8_t row,
                   const Format& format) {
  if (row < slots.size()) return slots[row];
  throw Damage({page, format.row_count_at}, "a row " + std::to_string(row) +
                                                " is pointed to where there are " +
                                                std::to_string(slots.size()));
}

DataPage::DataPage(Page page, uint32_t number, const Format& format)
    : page_(std::move(page)), number_(number), format_(&format) {
  const ByteView view = ViewOf(page_, number_);
  if (view.U16(0) != static_cast<uint16_t>(PageType::kData)) {
    throw Damage({number_, 0}, "a data page is expected here");
  }
  free_bytes_ = view.U16(DataPageLayout::kFreeBytesAt);
  owner_ = view.U32(DataPageLayout::kOwnerAt);
  if (format.jet4) stamp_ = view.U32(DataPageLayout::kJet4StampAt);
  const size_t count = view.U16(format.row_count_at);
  if (count > kMostRows) {
    throw Damage({number_, format.row_count_at},
                 "a data page cannot have " + std::to_string(count) + " rows");
  }
  const size_t lowest = format.slots_at + 2 * count;
  size_t end = format.page_size;
  for (size_t i = 0; i < count; ++i) {
    const uint16_t bits = view.U16(format.slots_at + 2 * i);
    const Slot slot{static_cast<size_t>(bits & DataPageLayout::kStartBits), end,
                    (bits & DataPageLayout::kPointedToBit) != 0,
                    (bits & DataPageLayout::kMovedBit) != 0};
    if (slot.start > end || slot.start < lowest) {
      throw Damage(PlaceOfSlot(i), "row " + std::to_string(i) + " does not lie within its page");
    }
    slots_.push_back(slot);
    end = slot.start;
  }
}

size_t DataPage::room() const {
  const size_t end = slots_.empty() ? format_->page_size : slots_.back().start;
  return end - format_->slots_at - 2 * slots_.size();
}

const Slot& DataPage::SlotAt(uint8_t row) const { return SlotOf(slots_, number_, row, *format_); }

ByteView DataPage::Row(uint8_t row) const {
  const Slot& slot = SlotAt(row);
  return ViewOf(page_, number_).Part(slot.start, slot.end - slot.start);
}

Place DataPage::PlaceOfSlot(size_t row) const { return {number_, format_->slots_at + 2 * row}; }

}  // namespace ambrelio::jetfile
