// Making, dropping and renaming tables. `now` is what the catalogue gets as the date of the change.
// A change that raises leaves the file as it was.
#pragma once

#include <string_view>
#include <vector>

#include "ambrelio/engine/jetfile/table_design.h"
#include "ambrelio/value/ole_date.h"

namespace ambrelio::jetfile {

// Gives the page of the table's definition, which is what it is known by. Raises 3010 or 3012 for a
// name that is taken, 3264 for a table without columns, and what designing its columns and indexes
// raises (see table_design.h).
uint32_t CreateTable(JetFile& file, std::string_view name, const std::vector<NewColumn>& columns,
                     const std::vector<NewIndex>& indexes, OleDate now);

// Gives back all that the table takes. Raises 3281 when it is in a relationship.
void DropTable(JetFile& file, uint32_t table);

// Raises 3010 or 3012 for a name that is taken. Relationships follow; stored queries do not.
void RenameTable(JetFile& file, uint32_t table, std::string_view name, OleDate now);

}  // namespace ambrelio::jetfile
