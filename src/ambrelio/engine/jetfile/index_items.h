// What an index page holds, one kind for leaves and nodes: the entries of a leaf, or the children
// of a node. A child is the last entry below it, and the number of its page.
#pragma once

#include <span>
#include <vector>

#include "ambrelio/engine/jetfile/index_tree.h"

namespace ambrelio::jetfile {

using IndexItems = std::vector<Bytes>;

// A child, and its parts. A node that ends its level does not know the last entry of its last
// child; there the bound is empty.
Bytes ChildItem(std::span<const uint8_t> bound, uint32_t page);
std::span<const uint8_t> BoundOfChild(const Bytes& child);
uint32_t PageOfChild(const Bytes& child);

// Takes the items out of a page, of which `bound` is what its parent says to be its last entry.
IndexItems TakeItems(IndexPage& page, std::span<const uint8_t> bound);
// Puts items into a page that they fit; gives the page as a child of its parent.
Bytes PutItems(IndexPage& page, IndexItems items);

// Tells which runs of some items fit a page. The items must stay.
class IndexFit {
 public:
  IndexFit(const IndexItems& items, bool leaf);

  bool Fits(size_t first, size_t end) const;
  // How many of the items, of which there are more than fit one page, the first of two pages is to
  // have: about half the bytes, or as much as goes where others are going to be appended.
  size_t SplitPoint(bool append) const;
  // How many items from `first` on go into a page that is filled to the brim.
  size_t Fill(size_t first) const;

 private:
  // The fewest that a page may have.
  size_t least() const { return leaf_ ? 1 : 2; }

  const IndexItems& items_;
  bool leaf_;
  std::vector<size_t> sums_;  // the bytes of all items before each
};

// The bytes of a page in the file, with what its entries share left out when they do not fit
// otherwise. Raises Damage when they do not fit at all, which only happens if they were not sorted.
Bytes EncodeIndexPage(const IndexPage& page);

}  // namespace ambrelio::jetfile
