#include "ambrelio/engine/jetfile/index_builder.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/page_allocator.h"
#include "ambrelio/engine/jetfile/usage_map.h"
#include "ambrelio/engine/jetfile/usage_map_writer.h"

namespace ambrelio::jetfile {
namespace {

// Gives the pages of a level as the items of the one above.
IndexItems BuildLevel(IndexPages& pages, IndexItems items, bool leaf) {
  const IndexFit fit(items, leaf);
  IndexItems above;
  IndexPage page = pages.NewPage(leaf);
  for (size_t first = 0, count = 0; first < items.size(); first += count) {
    count = fit.Fill(first);
    if (first > 0) {
      IndexPage next = pages.NewBehind(page);
      pages.Save(std::move(page));
      page = std::move(next);
    }
    const auto begin = items.begin() + static_cast<std::ptrdiff_t>(first);
    above.push_back(PutItems(page, {begin, begin + static_cast<std::ptrdiff_t>(count)}));
  }
  pages.Save(std::move(page));
  return above;
}

}  // namespace

uint32_t NewIndexRoot(JetFile& file, uint32_t table_page, RowPointer map) {
  IndexPages pages(file, table_page, map);
  IndexPage root = pages.NewPage(true);
  const uint32_t number = root.number;
  pages.Save(std::move(root));
  return number;
}

void BuildIndex(IndexPages& pages, uint32_t root, const std::vector<IndexEntry>& entries) {
  IndexPage top = pages.Take(root);
  if (!top.leaf || !top.entries.empty()) {
    throw Damage({root, kJet4.entries_at}, "an index without entries is expected here");
  }
  IndexItems items;
  items.reserve(entries.size());
  for (const IndexEntry& entry : entries) items.push_back(BytesOfEntry(entry));
  std::sort(items.begin(), items.end());
  while (!IndexFit(items, top.leaf).Fits(0, items.size())) {
    items = BuildLevel(pages, std::move(items), top.leaf);
    top.leaf = false;
  }
  if (items.empty()) return;
  PutItems(top, std::move(items));
  pages.Save(std::move(top));
}

void FreeIndexPages(JetFile& file, const IndexDefinition& index) {
  for (const uint32_t page : ReadUsageMap(file, index.map).pages) {
    RemoveFromMap(file, index.map, page);
    FreePage(file, page);
  }
}

}  // namespace ambrelio::jetfile
