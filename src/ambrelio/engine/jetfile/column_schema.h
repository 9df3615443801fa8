// Adding, dropping and changing the columns of a table. `now` is what the catalogue gets as the
// date of the change. A change that raises leaves the file as it was.
#pragma once

#include <string_view>

#include "ambrelio/engine/jetfile/table_design.h"
#include "ambrelio/value/ole_date.h"

namespace ambrelio::jetfile {

// Gives the column's number. Rows that are there have Null in it, or False; an autonumber counts
// them. Raises what designing a column raises (see table_design.h).
uint16_t AddColumn(JetFile& file, uint32_t table, const NewColumn& column, OleDate now);

// Drops the column with its properties. Raises 3265 when there is none of that number, 3280 for one
// in an index, 3281 for one in a relationship, 3264 for the last one.
void DropColumn(JetFile& file, uint32_t table, uint16_t number, OleDate now);

// Gives the column another name and place; its properties and relationships follow, stored queries
// do not. Raises 3265 when there is none of that number, 3125 and 3191 for the name.
void ChangeColumn(JetFile& file, uint32_t table, uint16_t number, std::string_view name,
                  uint16_t ordinal, OleDate now);

}  // namespace ambrelio::jetfile
