// Making and dropping the indexes of a table. `now` is what the catalogue gets as the date of the
// change. A change that raises leaves the file as it was.
#pragma once

#include <string_view>

#include "ambrelio/engine/jetfile/table_design.h"
#include "ambrelio/value/ole_date.h"

namespace ambrelio::jetfile {

// Of a table that may have rows. Raises 3022 when two of them would have one key, 3058 for a Null
// where the index needs values, 3251 for what cannot be in an index, and what designing an index
// raises (see table_design.h).
void CreateIndex(JetFile& file, uint32_t table, const NewIndex& index, OleDate now);

// The tree stays as long as another index of the table uses it. Raises 3265 when there is no such
// index, 3281 for one of a relationship.
void DropIndex(JetFile& file, uint32_t table, std::string_view name, OleDate now);

}  // namespace ambrelio::jetfile
