// The rules of one table definition.
#pragma once

#include "ambrelio/engine/jetfile/findings.h"
#include "ambrelio/engine/jetfile/table_definition.h"

namespace ambrelio::jetfile {

// `name` is the table's, for people.
void CheckDefinition(const JetFile& file, const std::string& name,
                     const TableDefinition& definition, Findings& findings);

}  // namespace ambrelio::jetfile
