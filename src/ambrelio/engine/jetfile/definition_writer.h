// Putting the definition of a table where it stands.
#pragma once

#include "ambrelio/engine/jetfile/table_definition.h"

namespace ambrelio::jetfile {

// Writes a definition over its pages, and brings `pages`, `next_page`, `length` and `free_bytes` up
// to date. The first page stays for ever, as it is what the table is known by; further ones are
// taken and given back as its length needs. Raises 3026 when the file cannot grow.
void WriteDefinition(JetFile& file, TableDefinition& definition);

}  // namespace ambrelio::jetfile
