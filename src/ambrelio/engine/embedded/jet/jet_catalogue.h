// What the catalogue of a Jet file is to the storage: tables with the fields and indexes that can
// be shown, and queries as texts.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "ambrelio/engine/embedded/jet/relationships.h"
#include "ambrelio/engine/embedded/storage/catalogue.h"
#include "ambrelio/engine/jetfile/jet_file.h"

namespace ambrelio::embedded {

// What tells a table from others that have, or had, its name.
struct StoredTable {
  uint32_t definition = 0;  // the first page
  OleDate created;

  friend bool operator==(const StoredTable&, const StoredTable&) = default;
};

struct JetCatalogue {
  Catalogue catalogue;                        // without ids
  std::map<std::string, StoredTable> stored;  // the tables, by name
  std::vector<Relationship> relationships;    // that the file enforces
};

// Tables of the system, linked ones, columns of types that no field has and the indexes over them,
// and the indexes of relationships are left out. A query whose parts make no statement has the text
// "". Raises Damage.
JetCatalogue ReadJetCatalogue(const jetfile::JetFile& file);

// What ReadJetCatalogue leaves out, each a phrase for engineers.
std::vector<std::string> NotShown(const jetfile::JetFile& file);

// The same text for the same catalogue.
std::string DigestOf(const JetCatalogue& catalogue);

}  // namespace ambrelio::embedded
