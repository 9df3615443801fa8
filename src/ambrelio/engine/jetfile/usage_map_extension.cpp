#include "ambrelio/engine/jetfile/usage_map_extension.h"

#include <algorithm>
#include <map>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/page_allocator.h"
#include "ambrelio/engine/jetfile/usage_map.h"
#include "ambrelio/engine/jetfile/usage_map_writer.h"

namespace ambrelio::jetfile {
namespace {

constexpr size_t kMostBitmaps = 17;
// Rows become longer by so many bytes.
constexpr size_t kStep = 4;

uint32_t BitmapOf(uint32_t page) { return page / UsageMapLayout::PagesOfBitmap(kJet4); }

void SetBit(std::span<uint8_t> bits, size_t bit) {
  bits[bit / 8] |= static_cast<uint8_t>(1U << (bit % 8));
}

}  // namespace

void UsageMapExtension::Reach(uint32_t page) {
  DataPageEditor rows(file_, map_.page);
  const ByteView row = rows.Row(map_.row);
  std::map<uint32_t, std::vector<uint32_t>> bitmaps;
  if (row.U8(0) == UsageMapLayout::kInline) {
    const Bytes wider = WiderRow(row, page);
    if (rows.CanReplace(map_.row, wider.size())) {
      rows.Replace(map_.row, wider);
      rows.Save(file_);
      return;
    }
    for (const uint32_t present : PagesOfInlineMap(row)) {
      bitmaps[BitmapOf(present)].push_back(present);
    }
    StartReferences(rows);
  }
  bitmaps[BitmapOf(page)];
  for (const auto& [index, pages] : bitmaps) AddBitmap(index, pages);
}

// An owner's map moves along with its pages; that of free pages goes on from where it starts.
Bytes UsageMapExtension::WiderRow(ByteView row, uint32_t page) const {
  const std::vector<uint32_t> pages = PagesOfInlineMap(row);
  uint32_t lowest = global_ ? std::min(page, row.U32(UsageMapLayout::kStartAt)) : page;
  uint32_t highest = page;
  if (!pages.empty()) {
    lowest = std::min(lowest, pages.front());
    highest = std::max(highest, pages.back());
  }
  const uint32_t start = lowest / 8 * 8;
  const size_t needed = (highest - start) / 8 + 1;
  const size_t size =
      std::max(row.size() - UsageMapLayout::kInlineBitsAt, (needed + kStep - 1) / kStep * kStep);
  Bytes wider{UsageMapLayout::kInline};
  Append(wider, start, sizeof start);
  wider.resize(wider.size() + size);
  SetBits(std::span(wider).subspan(UsageMapLayout::kInlineBitsAt), start, pages);
  return wider;
}

void UsageMapExtension::SetBits(std::span<uint8_t> bits, uint64_t first,
                                const std::vector<uint32_t>& pages) const {
  for (const uint32_t page : pages) SetBit(bits, static_cast<size_t>(page - first));
  for (size_t bit = 0; bit < 8 * bits.size(); ++bit) {
    if (IsToCome(first + bit)) SetBit(bits, bit);
  }
}

void UsageMapExtension::StartReferences(DataPageEditor& rows) {
  Bytes row(UsageMapLayout::kPointersAt + UsageMapLayout::kPointerBytes * kMostBitmaps);
  row[0] = UsageMapLayout::kByReference;
  if (!rows.CanReplace(map_.row, row.size())) {
    throw Damage({map_.page, 0}, "a usage map has no room to grow");
  }
  rows.Replace(map_.row, row);
  rows.Save(file_);
}

void UsageMapExtension::AddBitmap(uint32_t index, const std::vector<uint32_t>& pages) {
  // The map of free pages cannot be asked for one while it grows.
  const uint32_t number = global_ ? AppendPage(file_) : AllocatePage(file_);
  Bytes bitmap(file_.format().page_size);
  Put(bitmap, 0, static_cast<uint16_t>(PageType::kUsageBitmap), sizeof(uint16_t));
  const uint64_t first = uint64_t{index} * UsageMapLayout::PagesOfBitmap(kJet4);
  SetBits(std::span(bitmap).subspan(UsageMapLayout::kBitmapBitsAt), first, pages);
  file_.Write(number, std::move(bitmap));
  SetPointer(index, number);
  // To the map of free pages it was one to come.
  RemoveFromMap(file_, file_.header().free_map, number);
}

void UsageMapExtension::SetPointer(uint32_t index, uint32_t bitmap) {
  DataPageEditor rows(file_, map_.page);
  Bytes row = rows.Row(map_.row).Copy();
  const size_t at = UsageMapLayout::kPointersAt + UsageMapLayout::kPointerBytes * index;
  if (at + UsageMapLayout::kPointerBytes > row.size()) {
    throw Damage({map_.page, 0}, "a usage map is too short for the file");
  }
  Put(row, at, bitmap, UsageMapLayout::kPointerBytes);
  rows.Replace(map_.row, row);
  rows.Save(file_);
}

}  // namespace ambrelio::jetfile
