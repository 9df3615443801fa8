#include "ambrelio/engine/jetfile/usage_map.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/data_page.h"

namespace ambrelio::jetfile {
namespace {

constexpr uint8_t kInline = 0;
constexpr uint8_t kByReference = 1;
constexpr size_t kStartAt = 1;
constexpr size_t kInlineBitsAt = 5;
constexpr size_t kPointersAt = 1;
constexpr size_t kBitmapBitsAt = 4;

void AddBits(UsageMap& map, ByteView bits, uint64_t first, uint32_t page_count) {
  for (size_t i = 0; i < bits.size(); ++i) {
    const uint8_t byte = bits.U8(i);
    for (uint32_t bit = 0; byte >> bit != 0; ++bit) {
      if ((byte >> bit & 1) == 0) continue;
      const uint64_t page = first + 8 * i + bit;
      if (page < page_count) {
        map.pages.push_back(static_cast<uint32_t>(page));
      } else {
        ++map.beyond_end;
      }
    }
  }
}

void AddReferences(UsageMap& map, ByteView row, const JetFile& file) {
  const uint64_t covered = 8 * (file.format().page_size - kBitmapBitsAt);
  for (size_t at = kPointersAt; at + 4 <= row.size(); at += 4) {
    const uint32_t number = row.U32(at);
    if (number == 0) continue;
    const Page page = file.Read(number);
    const ByteView view = ViewOf(page, number);
    if (view.U16(0) != static_cast<uint16_t>(PageType::kUsageBitmap)) {
      throw Damage({number, 0}, "a usage bitmap is expected here");
    }
    map.bitmap_pages.push_back(number);
    AddBits(map, view.From(kBitmapBitsAt), covered * ((at - kPointersAt) / 4), file.page_count());
  }
}

}  // namespace

bool UsageMap::Contains(uint32_t page) const {
  return std::binary_search(pages.begin(), pages.end(), page);
}

UsageMap ReadUsageMap(const JetFile& file, RowPointer row) {
  UsageMap map;
  if (row.none()) return map;
  const DataPage page(file.Read(row.page), row.page, file.format());
  if (page.SlotAt(row.row).deleted()) {
    throw Damage(page.PlaceOfSlot(row.row), "a usage map that is in use was deleted");
  }
  const ByteView bytes = page.Row(row.row);
  switch (bytes.U8(0)) {
    case kInline:
      AddBits(map, bytes.From(kInlineBitsAt), bytes.U32(kStartAt), file.page_count());
      break;
    case kByReference:
      AddReferences(map, bytes, file);
      break;
    default:
      throw Damage(bytes.PlaceOf(0), "a usage map is expected here");
  }
  return map;
}

}  // namespace ambrelio::jetfile
