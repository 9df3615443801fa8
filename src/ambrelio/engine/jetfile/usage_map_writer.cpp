#include "ambrelio/engine/jetfile/usage_map_writer.h"

#include <optional>
#include <set>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/data_page_editor.h"
#include "ambrelio/engine/jetfile/page_allocator.h"
#include "ambrelio/engine/jetfile/system_table.h"
#include "ambrelio/engine/jetfile/usage_map.h"
#include "ambrelio/engine/jetfile/usage_map_extension.h"

namespace ambrelio::jetfile {
namespace {

// The bit that says whether a page is in a map.
struct BitPlace {
  Place byte;
  uint8_t mask = 0;
};

// Nothing when the map's bits do not reach the page.
std::optional<BitPlace> FindBit(const JetFile& file, RowPointer map, uint32_t number) {
  const DataPage page(file.Read(map.page), map.page, file.format());
  const ByteView row = page.Row(map.row);
  const auto mask = static_cast<uint8_t>(1U << (number % 8));
  if (row.U8(0) == UsageMapLayout::kInline) {
    const uint32_t start = row.U32(UsageMapLayout::kStartAt);
    const size_t bit = number - start;
    if (number < start || bit / 8 >= row.size() - UsageMapLayout::kInlineBitsAt) {
      return std::nullopt;
    }
    return BitPlace{row.PlaceOf(UsageMapLayout::kInlineBitsAt + bit / 8),
                    static_cast<uint8_t>(1U << (bit % 8))};
  }
  const uint32_t covered = UsageMapLayout::PagesOfBitmap(file.format());
  const size_t at =
      UsageMapLayout::kPointersAt + UsageMapLayout::kPointerBytes * (number / covered);
  const uint32_t bitmap = at + UsageMapLayout::kPointerBytes <= row.size() ? row.U32(at) : 0;
  if (bitmap == 0) return std::nullopt;
  ReadBitmapPage(file, bitmap);
  return BitPlace{{bitmap, UsageMapLayout::kBitmapBitsAt + number % covered / 8}, mask};
}

void ChangeBit(JetFile& file, const BitPlace& place, bool value) {
  const Page page = file.Read(place.byte.page);
  if (((*page)[place.byte.offset] & place.mask) == (value ? place.mask : 0)) return;
  Bytes bytes = *page;
  bytes[place.byte.offset] ^= place.mask;
  file.Write(place.byte.page, std::move(bytes));
}

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
  const Bytes row(UsageMapLayout::kInlineBitsAt + file.format().inline_map_bytes);
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
  if (!FindBit(file, map, page)) UsageMapExtension(file, map).Reach(page);
  ChangeBit(file, *FindBit(file, map, page), true);
}

void RemoveFromMap(JetFile& file, RowPointer map, uint32_t page) {
  if (const auto bit = FindBit(file, map, page)) ChangeBit(file, *bit, false);
}

}  // namespace ambrelio::jetfile
