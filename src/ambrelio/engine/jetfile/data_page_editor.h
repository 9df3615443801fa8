// A page of rows that is being changed, for Jet 4. The file has nothing of it before Save.
#pragma once

#include "ambrelio/engine/jetfile/data_page.h"
#include "ambrelio/engine/jetfile/jet_file.h"

namespace ambrelio::jetfile {

class DataPageEditor {
 public:
  // What a slot says of its row.
  enum class Mark : uint16_t {
    kNone = 0,
    kMoved = DataPageLayout::kMovedBit,
    kPointedTo = DataPageLayout::kPointedToBit,
    kDeleted = kMoved | kPointedTo,
  };

  // An empty page.
  DataPageEditor(uint32_t number, uint32_t owner);
  // A page of the file; what deleted rows left behind there is free from now on. Raises Damage.
  DataPageEditor(const JetFile& file, uint32_t number);

  uint32_t number() const { return number_; }
  uint32_t owner() const;
  const std::vector<Slot>& slots() const { return slots_; }
  // Free bytes, of which a new slot takes two.
  size_t room() const;
  // Whether there is a row that is not deleted.
  bool HasRows() const;

  // Raises Damage when there is no such slot. The bytes live until the page is changed.
  const Slot& SlotAt(uint8_t row) const;
  ByteView Row(uint8_t row) const;

  bool HasFreeSlot() const;
  bool CanAppend(size_t size) const;
  bool CanReplace(uint8_t row, size_t size) const;
  // Only what fits: see above.
  uint8_t Append(std::span<const uint8_t> bytes, Mark mark = Mark::kNone);
  void Replace(uint8_t row, std::span<const uint8_t> bytes, Mark mark = Mark::kNone);
  // The slot stays, so that no other row gets its number.
  void Delete(uint8_t row) { Replace(row, {}, Mark::kDeleted); }

  void Save(JetFile& file);

 private:
  size_t lowest_start() const;
  // Gives a row another size, moving those that lie below it.
  void Resize(uint8_t row, size_t size);

  uint32_t number_;
  Bytes bytes_;
  std::vector<Slot> slots_;
};

}  // namespace ambrelio::jetfile
