#include "ambrelio/engine/jetfile/index_writer.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/damage.h"

namespace ambrelio::jetfile {
namespace {

// Of a node, the child below which an entry belongs.
size_t ChildFor(const IndexPage& node, std::span<const uint8_t> entry) {
  const auto found = std::lower_bound(
      node.entries.begin(), node.entries.end(), entry,
      [](const Bytes& child, auto wanted) { return Precedes(BoundOfChild(child), wanted); });
  return static_cast<size_t>(found - node.entries.begin());
}

size_t PlaceInLeaf(const IndexPage& leaf, std::span<const uint8_t> entry) {
  const auto found =
      std::lower_bound(leaf.entries.begin(), leaf.entries.end(), entry,
                       [](const Bytes& a, auto wanted) { return Precedes(a, wanted); });
  return static_cast<size_t>(found - leaf.entries.begin());
}

bool HasEntryAt(const IndexPage& leaf, size_t place, const Bytes& entry) {
  return place < leaf.entries.size() && leaf.entries[place] == entry;
}

void InsertInLeaf(IndexPage& leaf, const Bytes& entry) {
  const size_t place = PlaceInLeaf(leaf, entry);
  if (HasEntryAt(leaf, place, entry)) {
    throw Damage({leaf.number, kJet4.entries_at}, "the index has an entry already");
  }
  leaf.entries.insert(leaf.entries.begin() + static_cast<std::ptrdiff_t>(place), entry);
}

// Of entries the first of which belongs into a leaf, inserts those that do as well, but no more
// than fill a page, so that few pages come of it. Gives the first that is left.
IndexItems::const_iterator InsertSome(IndexPage& leaf, std::span<const uint8_t> bound,
                                      IndexItems::const_iterator next,
                                      IndexItems::const_iterator end) {
  size_t size = 0;
  do {
    InsertInLeaf(leaf, *next);
    size += next->size();
    ++next;
  } while (next != end && size + next->size() <= kJet4.entry_space() &&
           (bound.empty() || !Precedes(bound, *next)));
  return next;
}

Bytes ChildAt(const IndexPage& node, size_t position, const Bytes& at) {
  if (position < node.entries.size()) return node.entries[position];
  if (node.tail == 0) throw Damage({node.number, 0}, "a node of the index has no last child");
  return ChildItem(BoundOfChild(at), node.tail);
}

}  // namespace

void IndexWriter::Insert(std::span<const IndexEntry> entries) {
  IndexItems items;
  items.reserve(entries.size());
  for (const IndexEntry& entry : entries) items.push_back(BytesOfEntry(entry));
  std::sort(items.begin(), items.end());
  for (auto next = items.cbegin(); next != items.cend();) {
    ChangeTree(*next, [&](IndexPage& leaf, std::span<const uint8_t> bound) {
      next = InsertSome(leaf, bound, next, items.cend());
    });
  }
}

void IndexWriter::Remove(const IndexEntry& entry) {
  const Bytes bytes = BytesOfEntry(entry);
  ChangeTree(bytes, [&bytes](IndexPage& leaf, auto /*bound*/) {
    const size_t place = PlaceInLeaf(leaf, bytes);
    if (!HasEntryAt(leaf, place, bytes)) {
      throw Damage({leaf.number, kJet4.entries_at}, "the index lacks the entry of a row");
    }
    leaf.entries.erase(leaf.entries.begin() + static_cast<std::ptrdiff_t>(place));
  });
}

bool IndexWriter::Contains(std::span<const uint8_t> key) const {
  uint32_t number = root_;
  for (int depth = 0; !pages_.Read(number).leaf; ++depth) {
    const IndexPage& node = pages_.Read(number);
    if (depth == kMostIndexLevels) FailIndexCircle(number);
    number = PageOfChild(ChildAt(node, ChildFor(node, key), ChildItem({}, number)));
  }
  // The first entry that is not less may be that of the next leaf.
  for (uint32_t steps = 0; number != 0; ++steps) {
    const IndexPage& leaf = pages_.Read(number);
    if (steps == pages_.file().page_count()) FailIndexCircle(number);
    const size_t place = PlaceInLeaf(leaf, key);
    if (place < leaf.entries.size()) {
      return std::ranges::equal(BoundOfChild(leaf.entries[place]), key);
    }
    number = leaf.next;
  }
  return false;
}

void IndexWriter::ChangeTree(const Bytes& entry, const Change& change) {
  pages_.ForgetSome();
  IndexItems now = ChangeBelow(ChildItem({}, root_), entry, change, 0);
  if (now.size() > 1) GrowRoot(std::move(now));
  while (HasOneChild(root_)) ShrinkRoot();
}

// Gives what has to stand in the place of `at`, a child, in its node.
IndexItems IndexWriter::ChangeBelow(const Bytes& at, const Bytes& entry, const Change& change,
                                    int depth) {
  const IndexPage& page = pages_.Read(PageOfChild(at));
  if (page.leaf) return ChangeLeaf(at, change);
  if (depth == kMostIndexLevels) FailIndexCircle(page.number);
  const size_t position = ChildFor(page, entry);
  const bool last = position == page.entries.size();
  const Bytes child = ChildAt(page, position, at);
  IndexItems now = ChangeBelow(child, entry, change, depth + 1);
  if (now.size() == 1 && PageOfChild(now[0]) == PageOfChild(child) &&
      !HasOneChild(PageOfChild(child))) {
    if (now[0] == child) return {at};
    // A node does not hold the bound of its last child.
    if (last) return {ChildItem(BoundOfChild(now[0]), PageOfChild(at))};
  }
  return ReplaceChild(at, position, std::move(now));
}

IndexItems IndexWriter::ChangeLeaf(const Bytes& at, const Change& change) {
  IndexPage leaf = pages_.Take(PageOfChild(at));
  const Bytes last = leaf.entries.empty() ? Bytes() : leaf.entries.back();
  change(leaf, BoundOfChild(at));
  if (leaf.entries.empty()) {
    if (leaf.number != root_) {
      pages_.Free(leaf.number);
      return {};
    }
    pages_.Save(std::move(leaf));
    return {at};
  }
  const bool append = leaf.next == 0 && leaf.entries.back() != last;
  const bool ends_level = BoundOfChild(at).empty();
  IndexItems items = TakeItems(leaf, {});
  IndexItems now = Store(std::move(leaf), std::move(items), append);
  if (ends_level) now.back() = ChildItem({}, PageOfChild(now.back()));
  return now;
}

IndexItems IndexWriter::ReplaceChild(const Bytes& at, size_t position, IndexItems now) {
  IndexPage node = pages_.Take(PageOfChild(at));
  IndexItems children = TakeItems(node, BoundOfChild(at));
  const bool append = node.next == 0 && position + 1 == children.size();
  const auto place = children.erase(children.begin() + static_cast<std::ptrdiff_t>(position));
  children.insert(place, now.begin(), now.end());
  if (children.empty()) return DropNode(std::move(node));
  if (now.size() == 1) GiveAwayOnlyChild(children, position);
  return Store(std::move(node), std::move(children), append);
}

// Others may have written nodes of one child, below which nothing is left now.
IndexItems IndexWriter::DropNode(IndexPage node) {
  if (node.number != root_) {
    pages_.Free(node.number);
    return {};
  }
  node.leaf = true;
  node.tail = 0;
  pages_.Save(std::move(node));
  return {ChildItem({}, root_)};
}

// A node that is left with one child gives it to the node beside it, if there is one.
void IndexWriter::GiveAwayOnlyChild(IndexItems& children, size_t position) {
  const uint32_t number = PageOfChild(children[position]);
  if (children.size() == 1 || !HasOneChild(number)) return;
  const Bytes child = ChildItem(BoundOfChild(children[position]), pages_.Read(number).tail);
  pages_.Free(number);
  const size_t neighbour = position > 0 ? position - 1 : 1;
  IndexPage page = pages_.Take(PageOfChild(children[neighbour]));
  IndexItems items = TakeItems(page, BoundOfChild(children[neighbour]));
  items.insert(position > 0 ? items.end() : items.begin(), child);
  const IndexItems now = Store(std::move(page), std::move(items), false);
  const auto first = children.begin() + static_cast<std::ptrdiff_t>(std::min(position, neighbour));
  children.insert(children.erase(first, first + 2), now.begin(), now.end());
}

// Puts items into a page, and what does not fit into new ones behind it. Gives the pages as
// children of a node.
IndexItems IndexWriter::Store(IndexPage page, IndexItems items, bool append) {
  IndexItems stored;
  for (;;) {
    const IndexFit fit(items, page.leaf);
    if (fit.Fits(0, items.size())) break;
    const auto split = items.begin() + static_cast<std::ptrdiff_t>(fit.SplitPoint(append));
    IndexItems rest(std::make_move_iterator(split), std::make_move_iterator(items.end()));
    items.erase(split, items.end());
    IndexPage next = pages_.NewBehind(page);
    stored.push_back(PutItems(page, std::move(items)));
    pages_.Save(std::move(page));
    page = std::move(next);
    items = std::move(rest);
  }
  stored.push_back(PutItems(page, std::move(items)));
  pages_.Save(std::move(page));
  return stored;
}

bool IndexWriter::HasOneChild(uint32_t number) const {
  const IndexPage& page = pages_.Read(number);
  return !page.leaf && page.entries.empty();
}

// What the root held goes to a new page; the root becomes the node above it and its new neighbours.
void IndexWriter::GrowRoot(IndexItems children) {
  IndexPage first = pages_.Take(root_);
  IndexPage root = pages_.NewPage(false);
  std::swap(first.number, root.number);
  pages_.LinkNext(first);
  children.front() = ChildItem(BoundOfChild(children.front()), first.number);
  pages_.Save(std::move(first));
  PutItems(root, std::move(children));
  pages_.Save(std::move(root));
}

// The only child of the root becomes the root.
void IndexWriter::ShrinkRoot() {
  const uint32_t number = pages_.Read(root_).tail;
  IndexPage root = pages_.Read(number);
  pages_.Free(number);
  root.number = root_;
  root.previous = 0;
  root.next = 0;
  pages_.Save(std::move(root));
}

void IndexWriter::Build(const std::vector<IndexEntry>& entries) {
  BuildIndex(pages_, root_, entries);
}

}  // namespace ambrelio::jetfile
