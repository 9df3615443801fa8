// The address of a row, which is its identity as long as it lives.
#pragma once

#include "ambrelio/engine/jetfile/bytes.h"

namespace ambrelio::jetfile {

struct RowPointer {
  uint32_t page = 0;
  uint8_t row = 0;

  // As the format writes "no row".
  bool none() const { return page == 0; }
  friend bool operator==(RowPointer, RowPointer) = default;
  friend bool operator<(RowPointer a, RowPointer b) {
    return a.page != b.page ? a.page < b.page : a.row < b.row;
  }
};

// As it stands everywhere but in indexes: the row, then the page, the lowest byte first.
inline RowPointer ReadRowPointer(ByteView bytes, size_t at) {
  return {bytes.U24(at + 1), bytes.U8(at)};
}
inline uint32_t RowPointerBits(RowPointer pointer) { return pointer.page << 8 | pointer.row; }

}  // namespace ambrelio::jetfile
