#include "ambrelio/engine/jetfile/page_owners.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/data_page.h"

namespace ambrelio::jetfile {
namespace {

constexpr const char* kMapPage = "the usage maps";

bool IsZero(const Bytes& bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0; });
}

}  // namespace

PageOwners::PageOwners(const JetFile& file, Findings& findings)
    : file_(file), findings_(findings), owners_(file.page_count()) {
  Claim(0, "the header");
}

void PageOwners::Claim(uint32_t page, const std::string& owner) {
  if (page >= owners_.size()) {
    findings_.Add(Rule::kOwnership, {page, 0}, "the file has no such page for " + owner);
  } else if (!owners_[page].empty()) {
    findings_.Add(Rule::kOwnership, {page, 0},
                  "the page belongs to " + owners_[page] + " and to " + owner);
  } else {
    owners_[page] = owner;
  }
}

void PageOwners::ClaimShared(uint32_t page, const std::string& owner) {
  if (page < owners_.size() && owners_[page] == owner) return;
  Claim(page, owner);
}

UsageMap PageOwners::Read(RowPointer row, const std::string& owner, bool may_reach_beyond) {
  UsageMap map;
  if (row.none()) return map;
  findings_.Try(Rule::kOwnership, [&] {
    map = ReadUsageMap(file_, row);
    const DataPage page(file_.Read(row.page), row.page, file_.format());
    if (page.owner() != kOwnerUsageMaps && page.owner() != kOwnerGlobalMaps) {
      throw Damage({row.page, 4}, "a page of usage maps is expected here");
    }
    if (page.free_bytes() != page.room()) {
      findings_.Add(Rule::kDataPage, {row.page, 2},
                    "the page says it has " + std::to_string(page.free_bytes()) +
                        " free bytes and has " + std::to_string(page.room()));
    }
    ClaimShared(row.page, kMapPage);
    if (map.beyond_end > 0 && !may_reach_beyond) {
      findings_.Add(Rule::kOwnership, page.Row(row.row).PlaceOf(0),
                    "the map of " + owner + " names " + std::to_string(map.beyond_end) +
                        " pages behind the end of the file");
    }
  });
  for (const uint32_t page : map.bitmap_pages) Claim(page, "the bitmaps of " + owner);
  return map;
}

UsageMap PageOwners::ClaimMap(RowPointer row, const std::string& owner) {
  UsageMap map = Read(row, owner, false);
  for (const uint32_t page : map.pages) Claim(page, owner);
  return map;
}

UsageMap PageOwners::ClaimHint(RowPointer row, const std::string& owner) {
  return Read(row, owner, false);
}

void PageOwners::ClaimFreePages(RowPointer row) {
  const UsageMap map = Read(row, "the free pages", true);
  for (const uint32_t page : map.pages) Claim(page, "the free pages");
}

void PageOwners::Finish() {
  for (uint32_t page = 0; page < owners_.size(); ++page) {
    // A page of zeros was never used: whoever made the file longer did not get to it.
    if (!owners_[page].empty() || IsZero(*file_.Read(page))) continue;
    findings_.Add(Rule::kOwnership, {page, 0}, "the page is not free and belongs to nothing");
  }
}

}  // namespace ambrelio::jetfile
