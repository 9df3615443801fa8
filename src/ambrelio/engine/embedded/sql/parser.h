// From a statement's text to its syntax tree.
#pragma once

#include <string_view>

#include "ambrelio/engine/embedded/sql/ast.h"

namespace ambrelio::embedded::sql {

// Parses one statement of the Jet dialect; a final semicolon is allowed. Literals get their slots
// in the order of the text, the same as ShapeOf gives.
//
// Raises DAO's number of the clause that is malformed (3075 expression, 3129 no statement, 3131
// from, 3134 insert, 3141 select list, 3144 update, ...), with the text near the fault.
Statement Parse(std::string_view text);

// Parses the text of a stored query: a select or union.
std::unique_ptr<Query> ParseQuery(std::string_view text);

// Parses a lone expression, as a column's default.
ExprPtr ParseExpression(std::string_view text);

}  // namespace ambrelio::embedded::sql
