#include "ambrelio/engine/jetfile/usage_map.h"

#include <algorithm>
#include <functional>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/data_page.h"

namespace ambrelio::jetfile {
namespace {

// Is shown a page, and says whether it wants to see more.
using Visit = std::function<bool(uint64_t page)>;

bool VisitBits(ByteView view, uint64_t first, const Visit& visit) {
  const std::span<const uint8_t> bits = view.bytes();
  const auto is_set = [](uint8_t byte) { return byte != 0; };
  // Most bytes of most maps are zero.
  for (auto at = bits.begin(); (at = std::find_if(at, bits.end(), is_set)) != bits.end(); ++at) {
    const auto place = first + 8 * static_cast<uint64_t>(at - bits.begin());
    for (uint32_t bit = 0; *at >> bit != 0; ++bit) {
      if ((*at >> bit & 1) != 0 && !visit(place + bit)) return false;
    }
  }
  return true;
}

bool VisitInline(ByteView row, const Visit& visit) {
  return VisitBits(row.From(UsageMapLayout::kInlineBitsAt), row.U32(UsageMapLayout::kStartAt),
                   visit);
}

void VisitReferences(const JetFile& file, ByteView row, std::vector<uint32_t>& bitmap_pages,
                     const Visit& visit) {
  const uint64_t covered = UsageMapLayout::PagesOfBitmap(file.format());
  for (size_t at = UsageMapLayout::kPointersAt; at + 4 <= row.size(); at += 4) {
    const uint32_t number = row.U32(at);
    if (number == 0) continue;
    const Page page = ReadBitmapPage(file, number);
    bitmap_pages.push_back(number);
    const uint64_t first = covered * ((at - UsageMapLayout::kPointersAt) / 4);
    if (!VisitBits(ViewOf(page, number).From(UsageMapLayout::kBitmapBitsAt), first, visit)) return;
  }
}

void VisitMap(const JetFile& file, RowPointer row, std::vector<uint32_t>& bitmap_pages,
              const Visit& visit) {
  if (row.none()) return;
  const DataPage page(file.Read(row.page), row.page, file.format());
  if (page.SlotAt(row.row).deleted()) {
    throw Damage(page.PlaceOfSlot(row.row), "a usage map that is in use was deleted");
  }
  const ByteView bytes = page.Row(row.row);
  switch (bytes.U8(0)) {
    case UsageMapLayout::kInline:
      VisitInline(bytes, visit);
      break;
    case UsageMapLayout::kByReference:
      VisitReferences(file, bytes, bitmap_pages, visit);
      break;
    default:
      throw Damage(bytes.PlaceOf(0), "a usage map is expected here");
  }
}

}  // namespace

bool UsageMap::Contains(uint32_t page) const {
  return std::binary_search(pages.begin(), pages.end(), page);
}

UsageMap ReadUsageMap(const JetFile& file, RowPointer row) {
  UsageMap map;
  VisitMap(file, row, map.bitmap_pages, [&](uint64_t page) {
    if (page < file.page_count()) {
      map.pages.push_back(static_cast<uint32_t>(page));
    } else {
      ++map.beyond_end;
    }
    return true;
  });
  return map;
}

std::optional<uint32_t> FirstPageOf(const JetFile& file, RowPointer row) {
  std::optional<uint32_t> first;
  std::vector<uint32_t> bitmap_pages;
  VisitMap(file, row, bitmap_pages, [&](uint64_t page) {
    if (page < file.page_count()) first = static_cast<uint32_t>(page);
    return false;
  });
  return first;
}

std::vector<uint32_t> PagesOfInlineMap(ByteView row) {
  std::vector<uint32_t> pages;
  VisitInline(row, [&pages](uint64_t page) {
    pages.push_back(static_cast<uint32_t>(page));
    return true;
  });
  return pages;
}

Page ReadBitmapPage(const JetFile& file, uint32_t number) {
  Page page = file.Read(number);
  if (ViewOf(page, number).U16(0) != static_cast<uint16_t>(PageType::kUsageBitmap)) {
    throw Damage({number, 0}, "a usage bitmap is expected here");
  }
  return page;
}

}  // namespace ambrelio::jetfile
