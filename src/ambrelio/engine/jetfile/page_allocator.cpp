#include "ambrelio/engine/jetfile/page_allocator.h"

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/usage_map.h"
#include "ambrelio/engine/jetfile/usage_map_writer.h"

namespace ambrelio::jetfile {
namespace {

constexpr uint64_t kMostBytes = uint64_t{1} << 31;

// What a page becomes when it is given up.
PageType TypeWhenFree(PageType type) {
  switch (type) {
    case PageType::kData:
      return PageType::kReleasedData;
    case PageType::kDefinition:
      return PageType::kDroppedDefinition;
    default:
      return type;
  }
}

}  // namespace

uint32_t AppendPage(JetFile& file) {
  const uint32_t number = file.page_count();
  const size_t size = file.format().page_size;
  if (number >= kMostBytes / size) {
    Refuse(dao::DaoError::kDiskFull, "The database has reached its largest size of 2 GiB.");
  }
  file.Write(number, Bytes(size));
  return number;
}

uint32_t AllocatePage(JetFile& file) {
  const RowPointer map = file.header().free_map;
  if (const auto page = FirstPageOf(file, map)) {
    RemoveFromMap(file, map, *page);
    return *page;
  }
  // The map is made to reach the page, so that it can be given back.
  const uint32_t page = AppendPage(file);
  AddToMap(file, map, page);
  RemoveFromMap(file, map, page);
  return page;
}

void FreePage(JetFile& file, uint32_t page) {
  AddToMap(file, file.header().free_map, page);
  const Page bytes = file.Read(page);
  const auto type = static_cast<PageType>(ViewOf(bytes, page).U16(0));
  if (TypeWhenFree(type) == type) return;
  Bytes given_up = *bytes;
  Put(given_up, 0, static_cast<uint16_t>(TypeWhenFree(type)), sizeof(uint16_t));
  file.Write(page, std::move(given_up));
}

}  // namespace ambrelio::jetfile
