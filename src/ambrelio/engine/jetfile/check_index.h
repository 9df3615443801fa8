// The rules of one index: its tree, and that it says what the rows say.
#pragma once

#include "ambrelio/engine/jetfile/check_rows.h"
#include "ambrelio/engine/jetfile/index_tree.h"

namespace ambrelio::jetfile {

class IndexCheck {
 public:
  // All must outlive the check. `name` is the index's, with its table's.
  IndexCheck(const JetFile& file, const std::string& name, const TableDefinition& definition,
             const IndexDefinition& index, PageOwners& owners, Findings& findings)
      : file_(file),
        name_(name),
        definition_(definition),
        index_(index),
        owners_(owners),
        findings_(findings) {}

  // `rows` are null when not all of the table's could be read.
  void Run(const std::vector<KeyedRow>* rows);

 private:
  void Say(Place place, const std::string& text);
  // Visits a page and all below it; gives the last entry there, nothing for an empty leaf.
  std::optional<Bytes> Visit(uint32_t number, size_t level);
  void CheckPage(const IndexPage& page);
  void CheckLeaf(const IndexPage& page);
  std::optional<Bytes> VisitChildren(const IndexPage& page, size_t level);
  void CheckLinks();
  void CheckMap(const UsageMap& map);
  void CheckRows(const std::vector<KeyedRow>& rows);

  const JetFile& file_;
  const std::string& name_;
  const TableDefinition& definition_;
  const IndexDefinition& index_;
  PageOwners& owners_;
  Findings& findings_;
  struct Links {
    uint32_t number;
    uint32_t previous;
    uint32_t next;
  };
  std::vector<std::vector<Links>> levels_;  // the root's first
  std::set<uint32_t> pages_;
  std::vector<IndexEntry> entries_;
  Bytes last_entry_;
};

}  // namespace ambrelio::jetfile
