// Making and dropping stored queries. A change that raises leaves the file as it was.
#pragma once

#include <string_view>
#include <vector>

#include "ambrelio/engine/jetfile/stored_query.h"

namespace ambrelio::jetfile {

// A query of these parts, of which each kind stands in its order; the rows that begin and end every
// query, and the numbers that order the parts, are added to them. `now` is when the catalogue says
// that it was made. Raises 3125 for its name, 3010 or 3012 for a name that is taken.
void CreateQuery(JetFile& file, std::string_view name, const std::vector<QueryRow>& parts,
                 OleDate now);

// Raises 3265 when there is no such query.
void DropQuery(JetFile& file, std::string_view name);

}  // namespace ambrelio::jetfile
