// The rules of what the database says it holds.
#pragma once

#include <map>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/findings.h"

namespace ambrelio::jetfile {

// The definitions that could be read, by the page they start on.
using Definitions = std::map<uint32_t, TableDefinition>;

void CheckCatalogue(const JetFile& file, const Catalogue& catalogue, const Definitions& definitions,
                    Findings& findings);

}  // namespace ambrelio::jetfile
