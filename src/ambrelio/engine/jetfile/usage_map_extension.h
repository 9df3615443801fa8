// Making a usage map reach a page that it has no bit for.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "ambrelio/engine/jetfile/data_page_editor.h"

namespace ambrelio::jetfile {

class UsageMapExtension {
 public:
  // The file must outlive this.
  UsageMapExtension(JetFile& file, RowPointer map)
      : file_(file), map_(map), global_(map == file.header().free_map) {}

  // Widens the map's row or, when its page has no room for that, moves its bits to pages of their
  // own. Raises Damage, and 3026 when the file cannot grow.
  void Reach(uint32_t page);

 private:
  // Of the pages to come, the map of free pages has the bits set.
  bool IsToCome(uint64_t page) const { return global_ && page >= file_.page_count(); }
  Bytes WiderRow(ByteView row, uint32_t page) const;
  void SetBits(std::span<uint8_t> bits, uint64_t first, const std::vector<uint32_t>& pages) const;
  void StartReferences(DataPageEditor& rows);
  void AddBitmap(uint32_t index, const std::vector<uint32_t>& pages);
  void SetPointer(uint32_t index, uint32_t bitmap);

  JetFile& file_;
  RowPointer map_;
  bool global_;
};

}  // namespace ambrelio::jetfile
