// What conditions say of rows in which some sources hold nothing but Null.
#pragma once

#include <functional>

#include "ambrelio/engine/embedded/binder/bound_tree.h"

namespace ambrelio::embedded::planner {

// Whether a column reads Null.
using ReadsNull = std::function<bool(const bound::ColumnRef&)>;

// Whether the expression is sure to be Null when those columns are. (A literal Null is, always.)
bool IsNull(const bound::Expr& expr, const ReadsNull& reads_null);
// Whether the condition is sure not to be true: it is false, or Null.
bool IsNeverTrue(const bound::Expr& condition, const ReadsNull& reads_null);

// Whether the column of a row that exists is never Null: a row's identity, a column of its primary
// key, a required one, a Boolean.
bool HoldsNoNull(const bound::ColumnRef& column);

// Resolves what is decided before any row is read: null-tests of Null and of columns of which
// `never_null` holds, choices whose condition is known, and what follows from them.
using NeverReadsNull = std::function<bool(const bound::ColumnRef&)>;
void Resolve(bound::ExprPtr& expr, const NeverReadsNull& never_null);

}  // namespace ambrelio::embedded::planner
