// What has become of a catalogue, brought into a Jet file.
#pragma once

#include <cstdint>
#include <map>

#include "ambrelio/engine/embedded/storage/catalogue.h"
#include "ambrelio/engine/jetfile/jet_file.h"

namespace ambrelio::embedded {

// The pages of the tables' definitions, by the ids of the tables.
using DefinitionPages = std::map<int64_t, uint32_t>;

// What comes before the rows: drops what `after` no longer has, renames, adds tables and columns.
// `pages` follows. Raises what the file cannot hold.
void ChangeTables(jetfile::JetFile& file, const Catalogue& before, const Catalogue& after,
                  DefinitionPages& pages);

// What comes after the rows: the rules of columns, indexes and queries.
void ChangeKeysAndQueries(jetfile::JetFile& file, const Catalogue& before, const Catalogue& after,
                          const DefinitionPages& pages);

}  // namespace ambrelio::embedded
