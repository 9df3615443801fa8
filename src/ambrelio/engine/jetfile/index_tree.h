// The pages of an index, and walking and searching them.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "ambrelio/engine/jetfile/jet_file.h"
#include "ambrelio/engine/jetfile/table_definition.h"

namespace ambrelio::jetfile {

// An entry of a leaf: the key, and the row it is of.
struct IndexEntry {
  Bytes key;
  RowPointer row;
};

// A page of an index, its entries taken out of their shared prefix.
struct IndexPage {
  static constexpr size_t kPointerBytes = 4;
  static constexpr size_t kFreeBytesAt = 2;
  static constexpr size_t kTableAt = 4;

  uint32_t number = 0;
  bool leaf = true;
  size_t free_bytes = 0;  // as the page says
  uint32_t table = 0;     // the page of its table's definition
  uint32_t previous = 0;
  uint32_t next = 0;
  uint32_t tail = 0;  // of a node, the child behind all entries
  size_t prefix = 0;
  uint8_t level = 0;
  size_t used_bytes = 0;  // that the entries take
  // Of a leaf: key and row pointer. Of a node: the last of these below a child, and the child.
  std::vector<Bytes> entries;

  IndexEntry EntryAt(size_t i) const;
  uint32_t ChildAt(size_t i) const;
  // What a node's entry says to be the last entry below its child.
  std::span<const uint8_t> BoundAt(size_t i) const;
  // A node's children, the tail included if there is one.
  std::vector<uint32_t> Children() const;
};

// Two entries a page would be enough for all that a file can hold.
inline constexpr int kMostIndexLevels = 32;

// The order of the entries of a page.
bool Precedes(std::span<const uint8_t> a, std::span<const uint8_t> b);
[[noreturn]] void FailIndexCircle(uint32_t page);

// What a leaf keeps of an entry.
Bytes BytesOfEntry(const IndexEntry& entry);

// Raises Damage.
IndexPage ReadIndexPage(const JetFile& file, uint32_t number);

class IndexTree {
 public:
  // Both must outlive the tree.
  IndexTree(const JetFile& file, const IndexDefinition& index) : file_(file), index_(index) {}

  // Every entry in the order of the leaves. Raises Damage, also for leaves that go in a circle.
  void Walk(const std::function<void(const IndexEntry&)>& visit) const;
  // The rows whose key starts with these bytes: whole parts of it. Raises Damage.
  std::vector<RowPointer> Search(std::span<const uint8_t> key) const;

 private:
  // The leaf where `key` stands or would stand.
  IndexPage LeafOf(std::span<const uint8_t> key) const;
  // Visits the entries of a leaf and of those behind it, until `visit` gives false.
  void WalkFrom(IndexPage leaf, const std::function<bool(const IndexEntry&)>& visit) const;

  const JetFile& file_;
  const IndexDefinition& index_;
};

}  // namespace ambrelio::jetfile
