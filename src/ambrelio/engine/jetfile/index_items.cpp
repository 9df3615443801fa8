#include "ambrelio/engine/jetfile/index_items.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/damage.h"

namespace ambrelio::jetfile {
namespace {

constexpr size_t kPointerBytes = IndexPage::kPointerBytes;

size_t CommonBytes(const Bytes& a, const Bytes& b, size_t most) {
  const size_t length = std::min({a.size(), b.size(), most});
  const auto end = a.begin() + static_cast<std::ptrdiff_t>(length);
  return static_cast<size_t>(std::mismatch(a.begin(), end, b.begin()).first - a.begin());
}

// How many bytes all entries have in common, short of a whole entry.
size_t CommonPrefix(const IndexItems& entries) {
  size_t prefix = entries.front().size() - 1;
  for (const Bytes& entry : entries) {
    prefix = std::min(CommonBytes(entries.front(), entry, prefix), entry.size() - 1);
  }
  return prefix;
}

size_t SumOfSizes(const IndexItems& entries) {
  size_t sum = 0;
  for (const Bytes& entry : entries) sum += entry.size();
  return sum;
}

void PutHeader(Bytes& bytes, const IndexPage& page, size_t prefix, size_t used) {
  const PageType type = page.leaf ? PageType::kIndexLeaf : PageType::kIndexNode;
  Put(bytes, 0, static_cast<uint16_t>(type), sizeof(uint16_t));
  Put(bytes, IndexPage::kFreeBytesAt, kJet4.entry_space() - used, sizeof(uint16_t));
  Put(bytes, IndexPage::kTableAt, page.table, sizeof page.table);
  Put(bytes, kJet4.previous_at, page.previous, sizeof page.previous);
  Put(bytes, kJet4.previous_at + 4, page.next, sizeof page.next);
  Put(bytes, kJet4.previous_at + 8, page.tail, sizeof page.tail);
  Put(bytes, kJet4.prefix_at, prefix, kJet4.prefix_size);
  bytes[kJet4.level_at] = page.leaf ? 0 : 1;
}

}  // namespace

Bytes ChildItem(std::span<const uint8_t> bound, uint32_t page) {
  Bytes item(bound.begin(), bound.end());
  for (const int shift : {24, 16, 8, 0}) item.push_back(static_cast<uint8_t>(page >> shift));
  return item;
}

std::span<const uint8_t> BoundOfChild(const Bytes& child) {
  return std::span(child).first(child.size() - kPointerBytes);
}

uint32_t PageOfChild(const Bytes& child) {
  uint32_t page = 0;
  for (const uint8_t byte : std::span(child).last(kPointerBytes)) page = page << 8 | byte;
  return page;
}

IndexItems TakeItems(IndexPage& page, std::span<const uint8_t> bound) {
  IndexItems items = std::move(page.entries);
  if (!page.leaf && page.tail != 0) items.push_back(ChildItem(bound, page.tail));
  return items;
}

Bytes PutItems(IndexPage& page, IndexItems items) {
  page.entries = std::move(items);
  if (page.leaf) {
    page.tail = 0;
    return ChildItem(page.entries.back(), page.number);
  }
  const Bytes last = std::move(page.entries.back());
  page.entries.pop_back();
  page.tail = PageOfChild(last);
  return ChildItem(BoundOfChild(last), page.number);
}

IndexFit::IndexFit(const IndexItems& items, bool leaf) : items_(items), leaf_(leaf), sums_{0} {
  for (const Bytes& item : items) sums_.push_back(sums_.back() + item.size());
}

// The last child of a node takes no room among its entries.
bool IndexFit::Fits(size_t first, size_t end) const {
  if (!leaf_) --end;
  if (end <= first) return true;
  const size_t sum = sums_[end] - sums_[first];
  if (sum <= kJet4.entry_space()) return true;
  const Bytes& last = items_[end - 1];
  const size_t most = std::min(items_[first].size(), last.size()) - 1;
  const size_t shared = CommonBytes(items_[first], last, most);
  return sum - (end - first - 1) * shared <= kJet4.entry_space();
}

size_t IndexFit::SplitPoint(bool append) const {
  const size_t count = items_.size();
  const size_t half = append ? sums_.back() : sums_.back() / 2;
  size_t best = least();
  size_t best_distance = sums_.back() + 1;
  for (size_t point = least(); point + least() <= count && Fits(0, point); ++point) {
    const size_t distance = half > sums_[point] ? half - sums_[point] : sums_[point] - half;
    // Should no split in two do, the first page is filled, and what is left is split again.
    if (!Fits(point, count)) {
      if (best_distance > sums_.back()) best = point;
    } else if (distance < best_distance) {
      best = point;
      best_distance = distance;
    }
  }
  return best;
}

size_t IndexFit::Fill(size_t first) const {
  size_t end = std::min(first + least(), items_.size());
  while (end < items_.size() && Fits(first, end + 1)) ++end;
  // The page behind it must not be left with too few.
  const size_t left = items_.size() - end;
  if (left > 0 && left < least()) end -= least() - left;
  return end - first;
}

Bytes EncodeIndexPage(const IndexPage& page) {
  size_t used = SumOfSizes(page.entries);
  size_t prefix = 0;
  if (used > kJet4.entry_space()) {
    prefix = CommonPrefix(page.entries);
    used -= (page.entries.size() - 1) * prefix;
  }
  if (used > kJet4.entry_space()) {
    throw Damage({page.number, kJet4.entries_at}, "the entries of an index are not in their order");
  }
  Bytes bytes(kJet4.page_size);
  PutHeader(bytes, page, prefix, used);
  size_t end = 0;
  for (const Bytes& entry : page.entries) {
    const size_t skip = end == 0 ? 0 : prefix;
    std::copy(entry.begin() + static_cast<std::ptrdiff_t>(skip), entry.end(),
              bytes.begin() + static_cast<std::ptrdiff_t>(kJet4.entries_at + end));
    end += entry.size() - skip;
    bytes[kJet4.mask_at + end / 8] |= static_cast<uint8_t>(1U << (end % 8));
  }
  return bytes;
}

}  // namespace ambrelio::jetfile
