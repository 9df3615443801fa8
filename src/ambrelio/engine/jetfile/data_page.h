// A page of rows: of a table, of usage maps, or of long values.
#pragma once

#include <cstdint>
#include <vector>

#include "ambrelio/engine/jetfile/format.h"
#include "ambrelio/engine/jetfile/page_file.h"
#include "ambrelio/engine/jetfile/row_pointer.h"

namespace ambrelio::jetfile {

struct Slot {
  size_t start = 0;
  size_t end = 0;           // behind the last byte
  bool pointed_to = false;  // reached only through a pointer: the body of a row that moved
  bool moved = false;       // holds a pointer to where the row is now

  bool deleted() const { return pointed_to && moved; }
};

// Where a data page keeps what, beyond what the Format says.
struct DataPageLayout {
  static constexpr size_t kFreeBytesAt = 2;
  static constexpr size_t kOwnerAt = 4;
  static constexpr size_t kJet4StampAt = 8;
  static constexpr uint16_t kStartBits = 0x1FFF;
  static constexpr uint16_t kMovedBit = 0x4000;
  static constexpr uint16_t kPointedToBit = 0x8000;
};

// Raises Damage when a page has no such slot.
const Slot& SlotOf(const std::vector<Slot>& slots, uint32_t page, uint8_t row,
                   const Format& format);

class DataPage {
 public:
  // Raises Damage when the page is no data page or its slots do not lie within it.
  DataPage(Page page, uint32_t number, const Format& format);

  uint32_t number() const { return number_; }
  uint32_t owner() const { return owner_; }
  // The number of bytes that the page itself says are free.
  size_t free_bytes() const { return free_bytes_; }
  // The number that follows from its slots.
  size_t room() const;
  // Of a page of long values: what tells that a chain is the one that its column means.
  uint32_t stamp() const { return stamp_; }
  const std::vector<Slot>& slots() const { return slots_; }

  // Raises Damage when there is no such slot. The bytes live as long as this page.
  const Slot& SlotAt(uint8_t row) const;
  ByteView Row(uint8_t row) const;
  Place PlaceOfSlot(size_t row) const;

 private:
  Page page_;
  uint32_t number_;
  const Format* format_;
  uint32_t owner_ = 0;
  size_t free_bytes_ = 0;
  uint32_t stamp_ = 0;
  std::vector<Slot> slots_;
};

}  // namespace ambrelio::jetfile
