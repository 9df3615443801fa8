#include "ambrelio/engine/jetfile/usage_map_writer.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/data_page_editor.h"
#include "ambrelio/engine/jetfile/page_allocator.h"
#include "ambrelio/engine/jetfile/system_table.h"
#include "ambrelio/engine/jetfile/usage_map.h"

namespace ambrelio::jetfile {
namespace {

using Layout = UsageMapLayout;

constexpr size_t kPointerBytes = 4;
constexpr size_t kMostBitmaps = 17;
constexpr size_t kReferenceBytes = Layout::kPointersAt + kPointerBytes * kMostBitmaps;
// Maps grow by so many bytes.
constexpr size_t kStep = 4;

void SetBit(std::span<uint8_t> bits, size_t bit) {
  bits[bit / 8] |= static_cast<uint8_t>(1U << (bit % 8));
}

// The bit that stands for a page.
struct BitPlace {
  Place byte;
  uint8_t mask = 0;
};

// Nothing when the map's bits do not reach the page.
std::optional<BitPlace> FindBit(const JetFile& file, RowPointer map, uint32_t number) {
  const DataPage page(file.Read(map.page), map.page, file.format());
  const ByteView row = page.Row(map.row);
  const auto mask = static_cast<uint8_t>(1U << (number % 8));
  if (row.U8(0) == Layout::kInline) {
    const uint32_t start = row.U32(Layout::kStartAt);
    const size_t bit = number - start;
    if (number < start || bit / 8 >= row.size() - Layout::kInlineBitsAt) return std::nullopt;
    return BitPlace{row.PlaceOf(Layout::kInlineBitsAt + bit / 8),
                    static_cast<uint8_t>(1U << (bit % 8))};
  }
  const uint32_t covered = Layout::PagesOfBitmap(file.format());
  const size_t at = Layout::kPointersAt + kPointerBytes * (number / covered);
  const uint32_t bitmap = at + kPointerBytes <= row.size() ? row.U32(at) : 0;
  if (bitmap == 0) return std::nullopt;
  ReadBitmapPage(file, bitmap);
  return BitPlace{{bitmap, Layout::kBitmapBitsAt + number % covered / 8}, mask};
}

void ChangeBit(JetFile& file, const BitPlace& place, bool value) {
  const Page page = file.Read(place.byte.page);
  if (((*page)[place.byte.offset] & place.mask) == (value ? place.mask : 0)) return;
  Bytes bytes = *page;
  bytes[place.byte.offset] ^= place.mask;
  file.Write(place.byte.page, std::move(bytes));
}

// Makes a map's bits reach a page that they do not reach.
class MapExtension {
 public:
  MapExtension(JetFile& file, RowPointer map)
      : file_(file), map_(map), global_(map == file.header().free_map) {}

  void Reach(uint32_t number) {
    DataPageEditor page(file_, map_.page);
    if (page.Row(map_.row).U8(0) == Layout::kInline) {
      const std::vector<uint32_t> pages = PagesOfInlineMap(page.Row(map_.row));
      if (const Bytes row = InlineRow(pages, number, page.Row(map_.row));
          page.CanReplace(map_.row, row.size())) {
        page.Replace(map_.row, row);
        page.Save(file_);
        return;
      }
      MoveToBitmaps(page, pages);
    }
    if (!FindBit(file_, map_, number)) AddBitmap(number / covered_, {});
  }

 private:
  // Of the pages to come, the map of free pages has the bits set.
  bool IsToCome(uint64_t page) const { return global_ && page >= file_.page_count(); }

  // A row of at least `size` bytes of bits that has `pages`, and reaches `number`. An owner's map
  // moves along with its pages; that of free pages goes on from where it starts.
  Bytes InlineRow(std::vector<uint32_t> pages, uint32_t number, ByteView row) const {
    pages.push_back(global_ ? std::min(number, row.U32(Layout::kStartAt)) : number);
    const auto [lowest, highest] = std::minmax_element(pages.begin(), pages.end());
    const uint32_t start = *lowest / 8 * 8;
    const size_t needed = (std::max(*highest, number) - start) / 8 + 1;
    const size_t size = row.size() - Layout::kInlineBitsAt;
    Bytes wider{Layout::kInline};
    Append(wider, start, sizeof start);
    wider.resize(wider.size() + std::max(size, (needed + kStep - 1) / kStep * kStep));
    pages.pop_back();
    SetBits(std::span(wider).subspan(Layout::kInlineBitsAt), start, pages);
    return wider;
  }

  void SetBits(std::span<uint8_t> bits, uint64_t first, const std::vector<uint32_t>& pages) const {
    for (const uint32_t page : pages) SetBit(bits, page - first);
    for (size_t bit = 0; bit < 8 * bits.size(); ++bit) {
      if (IsToCome(first + bit)) SetBit(bits, bit);
    }
  }

  void MoveToBitmaps(DataPageEditor& page, const std::vector<uint32_t>& pages) {
    Bytes row(kReferenceBytes);
    row[0] = Layout::kByReference;
    if (!page.CanReplace(map_.row, row.size())) {
      throw Damage({map_.page, 0}, "a usage map has no room to grow");
    }
    page.Replace(map_.row, row);
    page.Save(file_);
    std::map<uint32_t, std::vector<uint32_t>> by_bitmap;
    for (const uint32_t number : pages) by_bitmap[number / covered_].push_back(number);
    for (const auto& [bitmap, numbers] : by_bitmap) AddBitmap(bitmap, numbers);
  }

  void AddBitmap(uint32_t index, const std::vector<uint32_t>& pages) {
    // The map of free pages cannot be asked for one while it grows.
    const uint32_t number = global_ ? AppendPage(file_) : AllocatePage(file_);
    Bytes bitmap(file_.format().page_size);
    Put(bitmap, 0, static_cast<uint16_t>(PageType::kUsageBitmap), sizeof(uint16_t));
    SetBits(std::span(bitmap).subspan(Layout::kBitmapBitsAt), uint64_t{index} * covered_, pages);
    file_.Write(number, std::move(bitmap));
    SetPointer(index, number);
    // To the map of free pages it was one to come.
    RemoveFromMap(file_, file_.header().free_map, number);
  }

  void SetPointer(uint32_t index, uint32_t bitmap) {
    DataPageEditor page(file_, map_.page);
    Bytes row = page.Row(map_.row).Copy();
    const size_t at = Layout::kPointersAt + kPointerBytes * index;
    if (at + kPointerBytes > row.size()) {
      throw Damage({map_.page, 0}, "a usage map is too short for the file");
    }
    Put(row, at, bitmap, kPointerBytes);
    page.Replace(map_.row, row);
    page.Save(file_);
  }

  JetFile& file_;
  RowPointer map_;
  bool global_;
  uint32_t covered_ = Layout::PagesOfBitmap(kJet4);
};

// Whether a page, if it is one in use of maps, has room for another row of them.
bool HasRoomForMap(const JetFile& file, uint32_t number, size_t size) {
  const Page bytes = file.Read(number);
  const ByteView view = ViewOf(bytes, number);
  if (view.U16(0) != static_cast<uint16_t>(PageType::kData)) return false;
  if (view.U32(DataPageLayout::kOwnerAt) != kOwnerUsageMaps) return false;
  return DataPageEditor(file, number).CanAppend(size);
}

// The pages that the tables' own maps are on, in the order of their definitions.
std::set<uint32_t> PagesOfTableMaps(const JetFile& file) {
  constexpr size_t kOwnedMapAt = 0x37;
  constexpr int16_t kTable = 1;
  std::set<uint32_t> pages;
  SystemTable objects(file, kObjectsPage);
  while (objects.Next()) {
    if (objects.Integer("Type") != kTable) continue;
    const uint32_t definition = static_cast<uint32_t>(objects.Long("Id")) & 0x00FFFFFF;
    const Page page = file.Read(definition);
    pages.insert(ReadRowPointer(ViewOf(page, definition), kOwnedMapAt).page);
  }
  return pages;
}

std::optional<uint32_t> FindPageForMap(const JetFile& file, size_t size) {
  // One that was just made is not known to any table yet.
  for (const auto& [number, page] : file.changes()) {
    if (HasRoomForMap(file, number, size)) return number;
  }
  for (const uint32_t number : PagesOfTableMaps(file)) {
    if (HasRoomForMap(file, number, size)) return number;
  }
  return std::nullopt;
}

}  // namespace

RowPointer NewMap(JetFile& file) {
  const Bytes row(Layout::kInlineBitsAt + file.format().inline_map_bytes);
  const auto found = FindPageForMap(file, row.size());
  DataPageEditor page =
      found ? DataPageEditor(file, *found) : DataPageEditor(AllocatePage(file), kOwnerUsageMaps);
  const RowPointer map{page.number(), page.Append(row)};
  page.Save(file);
  return map;
}

void DropMap(JetFile& file, RowPointer map) {
  for (const uint32_t bitmap : ReadUsageMap(file, map).bitmap_pages) FreePage(file, bitmap);
  DataPageEditor page(file, map.page);
  page.Delete(map.row);
  page.Save(file);
  if (!page.HasRows()) FreePage(file, map.page);
}

void AddToMap(JetFile& file, RowPointer map, uint32_t page) {
  if (!FindBit(file, map, page)) MapExtension(file, map).Reach(page);
  ChangeBit(file, *FindBit(file, map, page), true);
}

void RemoveFromMap(JetFile& file, RowPointer map, uint32_t page) {
  if (const auto bit = FindBit(file, map, page)) ChangeBit(file, *bit, false);
}

}  // namespace ambrelio::jetfile
