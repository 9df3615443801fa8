// Changing the tree of an index.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "ambrelio/engine/jetfile/index_builder.h"

namespace ambrelio::jetfile {

// One tree, for the changes of one commit. Its root keeps its page for ever. What raises may have
// changed a part of it.
class IndexWriter {
 public:
  // The file must outlive the writer. `table_page` is that of the table's definition.
  IndexWriter(JetFile& file, uint32_t table_page, const IndexDefinition& index)
      : pages_(file, table_page, index.map), root_(index.root) {}

  // Raises Damage when an entry is there already. Those that belong side by side come into their
  // leaf at one stroke.
  void Insert(std::span<const IndexEntry> entries);
  void Insert(const IndexEntry& entry) { Insert({&entry, 1}); }
  // Raises Damage when the entry is not there.
  void Remove(const IndexEntry& entry);
  // Whether there is an entry of exactly this key. Raises Damage.
  bool Contains(std::span<const uint8_t> key) const;
  // Fills an index that is empty, its leaves to the brim.
  void Build(const std::vector<IndexEntry>& entries);

 private:
  // Changes the entries of the leaf where an entry belongs. Behind `bound` none does; it is empty
  // for the last leaf.
  using Change = std::function<void(IndexPage& leaf, std::span<const uint8_t> bound)>;

  void ChangeTree(const Bytes& entry, const Change& change);
  IndexItems ChangeBelow(const Bytes& at, const Bytes& entry, const Change& change, int depth);
  IndexItems ChangeLeaf(const Bytes& at, const Change& change);
  IndexItems ReplaceChild(const Bytes& at, size_t position, IndexItems now);
  IndexItems DropNode(IndexPage node);
  void GiveAwayOnlyChild(IndexItems& children, size_t position);
  IndexItems Store(IndexPage page, IndexItems items, bool append);
  bool HasOneChild(uint32_t number) const;
  void GrowRoot(IndexItems children);
  void ShrinkRoot();

  IndexPages pages_;
  uint32_t root_;
};

}  // namespace ambrelio::jetfile
