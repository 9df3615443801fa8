// From names to things: the syntax tree of a statement becomes a bound tree.
#pragma once

#include "ambrelio/engine/embedded/binder/bound_tree.h"
#include "ambrelio/engine/embedded/sql/ast.h"
#include "ambrelio/engine/embedded/storage/catalogue.h"

namespace ambrelio::embedded {

struct BoundStatement {
  bound::Statement statement;
  // Whether it holds only for the statement's own literals, not for every statement of its shape.
  bool literals_matter = false;
};

// Resolves the names of a select, insert, update or delete and types its expressions.
//
// Names of columns that nothing provides are gathered over the whole statement and raise 3061
// together. Other errors: 3062 two output columns of one name, 3063 a field assigned twice, 3073
// the target cannot be updated, 3078 unknown table, 3079 ambiguous column, 3085 unknown function,
// 3093 order by against distinct, 3095, 3096, 3098, 3099 misplaced aggregate, 3102 query that
// contains itself, 3103 alias that hides its own column, 3122 column that is not grouped, 3127
// unknown insert column, 3192 unknown insert table, 3296 join term without both sides, 3306, 3307
// number of columns of a subquery or of a union's operands, 3346 number of values, 3351 order by a
// name that the union lacks, 3464 text compared with a number.
BoundStatement Bind(const sql::Statement& statement, const Catalogue& catalogue);

}  // namespace ambrelio::embedded
