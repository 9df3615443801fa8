// Sets of pages: which are free, which a table, an index or a column of long values owns.
#pragma once

#include <cstdint>
#include <vector>

#include "ambrelio/engine/jetfile/jet_file.h"

namespace ambrelio::jetfile {

struct UsageMap {
  std::vector<uint32_t> pages;         // that the file has, ascending
  std::vector<uint32_t> bitmap_pages;  // that hold the map itself, when it does not fit its row
  size_t beyond_end = 0;               // pages set that the file does not have

  bool Contains(uint32_t page) const;
};

// The map of a row. A pointer to no row is the empty map.
UsageMap ReadUsageMap(const JetFile& file, RowPointer row);

}  // namespace ambrelio::jetfile
