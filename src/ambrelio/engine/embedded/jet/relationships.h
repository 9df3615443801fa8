// The relationships between tables that a Jet file enforces: a row of the child has a partner in
// the parent, if its columns of the relationship have values.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "ambrelio/engine/embedded/jet/table_copy.h"
#include "ambrelio/engine/embedded/storage/storage.h"
#include "ambrelio/engine/jetfile/catalogue.h"

namespace ambrelio::embedded {

struct Relationship {
  std::string child;
  std::string parent;
  std::vector<std::pair<std::string, std::string>> columns;  // the child's, the parent's
};

// Those of the catalogue that are enforced.
std::vector<Relationship> EnforcedRelationships(const jetfile::Catalogue& catalogue);

// Raises 3201 when a written row of the child lacks its partner, and 3200 when rows of the child
// have lost theirs by what was written in the parent; nothing is passed on to them. Both tables
// must have their rows in the storage; `child` is the one of that name.
void CheckRelationship(Storage& storage, const Relationship& relationship, const TableInfo& child,
                       const std::map<std::string, WrittenRows>& written);

}  // namespace ambrelio::embedded
