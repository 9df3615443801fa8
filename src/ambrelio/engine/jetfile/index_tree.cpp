#include "ambrelio/engine/jetfile/index_tree.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/damage.h"

namespace ambrelio::jetfile {
namespace {

uint32_t BigEndian(std::span<const uint8_t> bytes) {
  uint32_t number = 0;
  for (const uint8_t byte : bytes) number = number << 8 | byte;
  return number;
}

// Where the entries end, from the bits of the mask: bit i for an entry that ends at offset i.
std::vector<size_t> EntryEnds(ByteView page, const Format& format) {
  std::vector<size_t> ends;
  const ByteView mask = page.Part(format.mask_at, format.entries_at - format.mask_at);
  for (size_t i = 0; i < mask.size(); ++i) {
    for (size_t bit = 0; mask.U8(i) >> bit != 0; ++bit) {
      if ((mask.U8(i) >> bit & 1) != 0) ends.push_back(8 * i + bit);
    }
  }
  return ends;
}

void ReadEntries(ByteView view, const Format& format, IndexPage& page) {
  const size_t least = page.leaf ? IndexPage::kPointerBytes + 1 : 2 * IndexPage::kPointerBytes + 1;
  size_t start = 0;
  for (const size_t end : EntryEnds(view, format)) {
    const ByteView stored = view.Part(format.entries_at + start, end - start);
    Bytes entry;
    if (!page.entries.empty()) {
      const Bytes& first = page.entries.front();
      if (page.prefix > first.size()) {
        throw Damage({page.number, format.prefix_at},
                     "the entries share more than the first of them has");
      }
      entry.assign(first.begin(), first.begin() + static_cast<std::ptrdiff_t>(page.prefix));
    }
    Append(entry, stored.bytes());
    if (entry.size() < least) {
      throw Damage(stored.PlaceOf(0), "an index entry of " + std::to_string(entry.size()) +
                                          " bytes holds no key and pointer");
    }
    page.entries.push_back(std::move(entry));
    start = end;
  }
  page.used_bytes = start;
}

bool StartsWith(std::span<const uint8_t> bytes, std::span<const uint8_t> start) {
  return bytes.size() >= start.size() && std::equal(start.begin(), start.end(), bytes.begin());
}

}  // namespace

bool Precedes(std::span<const uint8_t> a, std::span<const uint8_t> b) {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
}

void FailIndexCircle(uint32_t page) {
  throw Damage({page, 0}, "the pages of the index go in a circle");
}

IndexEntry IndexPage::EntryAt(size_t i) const {
  const Bytes& entry = entries[i];
  const std::span<const uint8_t> all(entry);
  const auto key = all.first(entry.size() - kPointerBytes);
  const auto pointer = all.last(kPointerBytes);
  return {{key.begin(), key.end()}, {BigEndian(pointer.first(3)), pointer.back()}};
}

uint32_t IndexPage::ChildAt(size_t i) const {
  return BigEndian(std::span<const uint8_t>(entries[i]).last(kPointerBytes));
}

std::span<const uint8_t> IndexPage::BoundAt(size_t i) const {
  return std::span<const uint8_t>(entries[i]).first(entries[i].size() - kPointerBytes);
}

std::vector<uint32_t> IndexPage::Children() const {
  std::vector<uint32_t> children;
  for (size_t i = 0; i < entries.size(); ++i) children.push_back(ChildAt(i));
  if (tail != 0) children.push_back(tail);
  return children;
}

Bytes BytesOfEntry(const IndexEntry& entry) {
  Bytes bytes = entry.key;
  for (const int shift : {16, 8, 0}) bytes.push_back(static_cast<uint8_t>(entry.row.page >> shift));
  bytes.push_back(entry.row.row);
  return bytes;
}

IndexPage ReadIndexPage(const JetFile& file, uint32_t number) {
  const Format& format = file.format();
  const Page bytes = file.Read(number);
  const ByteView view = ViewOf(bytes, number);
  const auto type = static_cast<PageType>(view.U16(0));
  if (type != PageType::kIndexLeaf && type != PageType::kIndexNode) {
    throw Damage({number, 0}, "a page of an index is expected here");
  }
  IndexPage page;
  page.number = number;
  page.leaf = type == PageType::kIndexLeaf;
  page.free_bytes = view.U16(IndexPage::kFreeBytesAt);
  page.table = view.U32(IndexPage::kTableAt);
  page.previous = view.U32(format.previous_at);
  page.next = view.U32(format.previous_at + 4);
  page.tail = view.U32(format.previous_at + 8);
  page.prefix = format.prefix_size == 1 ? view.U8(format.prefix_at) : view.U16(format.prefix_at);
  page.level = view.U8(format.level_at);
  ReadEntries(view, format, page);
  return page;
}

void IndexTree::Walk(const std::function<void(const IndexEntry&)>& visit) const {
  WalkFrom(LeafOf({}), [&visit](const IndexEntry& entry) {
    visit(entry);
    return true;
  });
}

std::vector<RowPointer> IndexTree::Search(std::span<const uint8_t> key) const {
  std::vector<RowPointer> rows;
  WalkFrom(LeafOf(key), [&](const IndexEntry& entry) {
    if (StartsWith(entry.key, key)) {
      rows.push_back(entry.row);
    } else if (!Precedes(entry.key, key)) {
      return false;
    }
    return true;
  });
  return rows;
}

IndexPage IndexTree::LeafOf(std::span<const uint8_t> key) const {
  uint32_t number = index_.root;
  for (uint32_t steps = 0; steps < file_.page_count(); ++steps) {
    IndexPage page = ReadIndexPage(file_, number);
    if (page.leaf) return page;
    number = page.tail;
    for (size_t i = 0; i < page.entries.size(); ++i) {
      if (Precedes(page.BoundAt(i), key)) continue;
      number = page.ChildAt(i);
      break;
    }
    if (number == 0) throw Damage({page.number, 0}, "a node of the index has no last child");
  }
  FailIndexCircle(number);
}

void IndexTree::WalkFrom(IndexPage leaf,
                         const std::function<bool(const IndexEntry&)>& visit) const {
  for (uint32_t steps = 0; steps < file_.page_count(); ++steps) {
    for (size_t i = 0; i < leaf.entries.size(); ++i) {
      if (!visit(leaf.EntryAt(i))) return;
    }
    if (leaf.next == 0) return;
    const uint32_t before = leaf.number;
    leaf = ReadIndexPage(file_, leaf.next);
    if (!leaf.leaf) {
      throw Damage({leaf.number, 0}, "a leaf is expected behind page " + std::to_string(before));
    }
  }
  FailIndexCircle(leaf.number);
}

}  // namespace ambrelio::jetfile
