#include "ambrelio/engine/jetfile/data_page_editor.h"

#include <algorithm>
#include <cstring>

#include "ambrelio/engine/jetfile/damage.h"

namespace ambrelio::jetfile {
namespace {

constexpr size_t kSlotBytes = 2;
// One less than row numbers there are.
constexpr size_t kMostSlots = 255;

}  // namespace

DataPageEditor::DataPageEditor(uint32_t number, uint32_t owner)
    : number_(number), bytes_(kJet4.page_size) {
  Put(bytes_, 0, static_cast<uint16_t>(PageType::kData), sizeof(uint16_t));
  Put(bytes_, DataPageLayout::kOwnerAt, owner, sizeof owner);
}

DataPageEditor::DataPageEditor(const JetFile& file, uint32_t number) : number_(number) {
  const Page page = file.Read(number);
  slots_ = DataPage(page, number, kJet4).slots();
  bytes_ = *page;
  for (size_t i = 0; i < slots_.size(); ++i) {
    if (slots_[i].deleted()) Resize(static_cast<uint8_t>(i), 0);
  }
}

uint32_t DataPageEditor::owner() const {
  return ByteView(bytes_, {}).U32(DataPageLayout::kOwnerAt);
}

size_t DataPageEditor::lowest_start() const {
  return slots_.empty() ? kJet4.page_size : slots_.back().start;
}

size_t DataPageEditor::room() const {
  return lowest_start() - kJet4.slots_at - kSlotBytes * slots_.size();
}

bool DataPageEditor::HasRows() const {
  return !std::all_of(slots_.begin(), slots_.end(),
                      [](const Slot& slot) { return slot.deleted(); });
}

const Slot& DataPageEditor::SlotAt(uint8_t row) const {
  return SlotOf(slots_, number_, row, kJet4);
}

ByteView DataPageEditor::Row(uint8_t row) const {
  const Slot& slot = SlotAt(row);
  return ByteView(bytes_, {number_, 0}).Part(slot.start, slot.end - slot.start);
}

bool DataPageEditor::HasFreeSlot() const { return slots_.size() < kMostSlots; }

bool DataPageEditor::CanAppend(size_t size) const {
  return HasFreeSlot() && size + kSlotBytes <= room();
}

bool DataPageEditor::CanReplace(uint8_t row, size_t size) const {
  const Slot& slot = SlotAt(row);
  return size <= room() + (slot.end - slot.start);
}

void DataPageEditor::Resize(uint8_t row, size_t size) {
  const size_t start = slots_[row].start;
  const size_t new_start = slots_[row].end - size;
  const size_t lowest = lowest_start();
  const auto shift = static_cast<std::ptrdiff_t>(new_start) - static_cast<std::ptrdiff_t>(start);
  if (shift == 0) return;
  std::memmove(bytes_.data() + static_cast<std::ptrdiff_t>(lowest) + shift, bytes_.data() + lowest,
               start - lowest);
  for (size_t i = row; i < slots_.size(); ++i) {
    slots_[i].start += static_cast<size_t>(shift);
    if (i > row) slots_[i].end += static_cast<size_t>(shift);
  }
}

uint8_t DataPageEditor::Append(std::span<const uint8_t> bytes, Mark mark) {
  const size_t end = lowest_start();
  const auto row = static_cast<uint8_t>(slots_.size());
  slots_.push_back({end, end});
  Replace(row, bytes, mark);
  return row;
}

void DataPageEditor::Replace(uint8_t row, std::span<const uint8_t> bytes, Mark mark) {
  Resize(row, bytes.size());
  Slot& slot = slots_[row];
  std::copy(bytes.begin(), bytes.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(slot.start));
  slot.pointed_to = (static_cast<uint16_t>(mark) & DataPageLayout::kPointedToBit) != 0;
  slot.moved = (static_cast<uint16_t>(mark) & DataPageLayout::kMovedBit) != 0;
}

void DataPageEditor::Save(JetFile& file) {
  Put(bytes_, DataPageLayout::kFreeBytesAt, room(), sizeof(uint16_t));
  Put(bytes_, kJet4.row_count_at, slots_.size(), sizeof(uint16_t));
  size_t at = kJet4.slots_at;
  for (const Slot& slot : slots_) {
    const uint32_t bits = static_cast<uint32_t>(slot.start) |
                          (slot.pointed_to ? DataPageLayout::kPointedToBit : 0U) |
                          (slot.moved ? DataPageLayout::kMovedBit : 0U);
    Put(bytes_, at, bits, kSlotBytes);
    at += kSlotBytes;
  }
  std::fill(bytes_.begin() + static_cast<std::ptrdiff_t>(at),
            bytes_.begin() + static_cast<std::ptrdiff_t>(lowest_start()), uint8_t{0});
  file.Write(number_, bytes_);
}

}  // namespace ambrelio::jetfile
