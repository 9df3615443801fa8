// Whether a database file is sound: SQLite's own structures, and the catalogue beside the tables it
// describes.
#pragma once

#include <string>
#include <vector>

#include "ambrelio/engine/embedded/storage/catalogue_store.h"

namespace ambrelio::embedded {

// What is wrong, each a phrase for engineers; nothing for a sound file. Raises what reading raises,
// but for damage, which is a finding.
std::vector<std::string> CheckIntegrity(Storage& storage, CatalogueStore& catalogue);

}  // namespace ambrelio::embedded
