// The from clause of a stored query, whose nesting is not stored.
#pragma once

#include <string>
#include <vector>

#include "ambrelio/engine/jetfile/stored_query.h"

namespace ambrelio::jetfile {

// A name as SQL has it: in brackets unless it is a plain one, or a piece of SQL already.
std::string SqlName(const std::string& name);

// What stands behind FROM, of the rows of inputs and joins in their order; "" without inputs.
// Raises Damage for a join of what is no input.
std::string FromClause(const std::vector<const QueryRow*>& inputs,
                       const std::vector<const QueryRow*>& joins);

}  // namespace ambrelio::jetfile
