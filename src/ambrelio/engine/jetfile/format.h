// What differs between the two formats, in numbers. Offsets are from the start of the page.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ambrelio::jetfile {

inline constexpr size_t kCommitTableBytes = 512;

struct Format {
  bool jet4;
  size_t page_size;
  // Data pages.
  size_t row_count_at;
  size_t slots_at;
  // Index pages.
  size_t previous_at;  // followed by the next page and the tail, 4 bytes each
  size_t prefix_at;
  size_t prefix_size;
  size_t level_at;
  size_t mask_at;
  size_t entries_at;
  // Usage maps.
  size_t inline_map_bytes;
  // Page 0.
  size_t masked_bytes;
  size_t commit_table_at;
  size_t created_at;  // 0 where it is not kept

  size_t entry_space() const { return page_size - entries_at; }
};

inline constexpr Format kJet3 = {.jet4 = false,
                                 .page_size = 2048,
                                 .row_count_at = 8,
                                 .slots_at = 10,
                                 .previous_at = 8,
                                 .prefix_at = 20,
                                 .prefix_size = 1,
                                 .level_at = 21,
                                 .mask_at = 22,
                                 .entries_at = 248,
                                 .inline_map_bytes = 128,
                                 .masked_bytes = 126,
                                 .commit_table_at = 0x600,
                                 .created_at = 0};
inline constexpr Format kJet4 = {.jet4 = true,
                                 .page_size = 4096,
                                 .row_count_at = 12,
                                 .slots_at = 14,
                                 .previous_at = 12,
                                 .prefix_at = 24,
                                 .prefix_size = 2,
                                 .level_at = 26,
                                 .mask_at = 27,
                                 .entries_at = 480,
                                 .inline_map_bytes = 64,
                                 .masked_bytes = 128,
                                 .commit_table_at = 0xE00,
                                 .created_at = 0x72};

// The first 16 bits of a page.
enum class PageType : uint16_t {
  kHeader = 0x0100,
  kData = 0x0101,
  kDefinition = 0x0102,
  kIndexNode = 0x0103,
  kIndexLeaf = 0x0104,
  kUsageBitmap = 0x0105,
  kDroppedDefinition = 0x0108,
  kReleasedData = 0x0109,
};

// The owners of data pages that hold no rows of a table.
inline constexpr uint32_t kOwnerUsageMaps = 0;
inline constexpr uint32_t kOwnerGlobalMaps = 1;
inline constexpr uint32_t kOwnerLongValues = 0x4C41564C;  // "LVAL"

// The page of the two global usage maps, and that of the definition of MSysObjects.
inline constexpr uint32_t kGlobalMapPage = 1;
inline constexpr uint32_t kObjectsPage = 2;

}  // namespace ambrelio::jetfile
