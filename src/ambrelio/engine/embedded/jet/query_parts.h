// The parts that a Jet file keeps of a stored query, taken from its text.
#pragma once

#include <string_view>
#include <vector>

#include "ambrelio/engine/jetfile/stored_query.h"

namespace ambrelio::embedded::jet {

// The parts of a select, a union, a crosstab, an append, update, delete or make-table query, with
// its parameters, or of a data definition. Expressions stay as they are written. The rows that
// begin and end every query, and the orders of all, are not among them: CreateQuery adds them.
//
// The text is taken apart, not checked: what stands within a clause may be in the dialect of
// another engine. Raises 3001 for a text that has no such parts, 3075 for one without sound words.
std::vector<jetfile::QueryRow> QueryParts(std::string_view sql);

}  // namespace ambrelio::embedded::jet
