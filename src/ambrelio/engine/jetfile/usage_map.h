// Sets of pages: which are free, which a table, an index or a column of long values owns.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "ambrelio/engine/jetfile/jet_file.h"

namespace ambrelio::jetfile {

// Where a map and a page of its bits keep what.
struct UsageMapLayout {
  static constexpr uint8_t kInline = 0;       // the first byte of a row: its bits follow
  static constexpr uint8_t kByReference = 1;  // or the pages that hold them
  static constexpr size_t kStartAt = 1;
  static constexpr size_t kInlineBitsAt = 5;
  static constexpr size_t kPointersAt = 1;
  static constexpr size_t kPointerBytes = 4;
  static constexpr size_t kBitmapBitsAt = 4;

  // The pages that one page of bits stands for.
  static uint32_t PagesOfBitmap(const Format& format) {
    return static_cast<uint32_t>(8 * (format.page_size - kBitmapBitsAt));
  }
};

struct UsageMap {
  std::vector<uint32_t> pages;         // that the file has, ascending
  std::vector<uint32_t> bitmap_pages;  // that hold the map itself, when it does not fit its row
  size_t beyond_end = 0;               // pages set that the file does not have

  bool Contains(uint32_t page) const;
};

// The map of a row. A pointer to no row is the empty map.
UsageMap ReadUsageMap(const JetFile& file, RowPointer row);

// The lowest page of a map that the file has; nothing when there is none.
std::optional<uint32_t> FirstPageOf(const JetFile& file, RowPointer row);

// All pages that a map with its bits in its row names, also those that the file does not have.
std::vector<uint32_t> PagesOfInlineMap(ByteView row);

// A page of a map's bits. Raises Damage when it is none.
Page ReadBitmapPage(const JetFile& file, uint32_t number);

}  // namespace ambrelio::jetfile
