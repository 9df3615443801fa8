// Who owns each page of a file.
#pragma once

#include <string>
#include <vector>

#include "ambrelio/engine/jetfile/findings.h"
#include "ambrelio/engine/jetfile/usage_map.h"

namespace ambrelio::jetfile {

class PageOwners {
 public:
  PageOwners(const JetFile& file, Findings& findings);

  // Gives a page an owner, named for people. One that has an owner already is a finding.
  void Claim(uint32_t page, const std::string& owner);
  // The same for a page that several things of one owner may share, as rows of usage maps do.
  void ClaimShared(uint32_t page, const std::string& owner);
  // Reads a map, claims its pages for `owner`, and those that hold the map itself. A map that names
  // pages behind the end is a finding.
  UsageMap ClaimMap(RowPointer row, const std::string& owner);
  // Reads a map that is a hint to pages owned already: only those that hold it are claimed.
  UsageMap ClaimHint(RowPointer row, const std::string& owner);
  // The global free map has a bit for each page to come.
  void ClaimFreePages(RowPointer row);
  // Finds the pages that nobody has claimed.
  void Finish();

 private:
  UsageMap Read(RowPointer row, const std::string& owner, bool may_reach_beyond);

  const JetFile& file_;
  Findings& findings_;
  std::vector<std::string> owners_;  // by page; "" for none
};

}  // namespace ambrelio::jetfile
