// Ways through a bound tree that a rewrite takes.
#pragma once

#include <functional>
#include <vector>

#include "ambrelio/engine/embedded/binder/bound_tree.h"

namespace ambrelio::embedded::planner {

using Rewrite = std::function<void(bound::ExprPtr&)>;

// Calls `rewrite` for the expression and all below it, innermost first, those of queries within it
// included.
void RewriteAll(bound::ExprPtr& expr, const Rewrite& rewrite);
void RewriteAll(bound::Query& query, const Rewrite& rewrite);
// The conditions of the joins of a source, and what its queries hold.
void RewriteAll(bound::Source& source, const Rewrite& rewrite);

// Calls `visit` for everything in the query that says what is delivered, in which groups and which
// order: all expressions but the conditions of its rows.
template <class Visit>
void ForEachDelivered(bound::Query& query, const Visit& visit) {
  bound::Select& select = *query.select;
  for (bound::ExprPtr& item : select.items) visit(item);
  for (bound::ExprPtr& group : select.group_by) visit(group);
  if (select.having) visit(select.having);
  for (bound::ExprPtr& key : select.keys) visit(key);
  for (bound::OrderKey& key : query.order) visit(key.expr);
}

// Calls `visit` for every query that stands right below this one: in its sources, in its
// expressions, and the sides of a union.
void ForEachQueryBelow(bound::Query& query, const std::function<void(bound::Query&)>& visit);
// The same for an expression.
void ForEachQueryIn(bound::Expr& expr, const std::function<void(bound::Query&)>& visit);

// Gives the sources of the queries, of copies of others that stand in the tree too, numbers of
// their own from `next_source` on.
void Renumber(bound::Query& query, int& next_source);
void Renumber(bound::ExprPtr& expr, int& next_source);

// The terms that are joined by `and`.
std::vector<const bound::Expr*> Terms(const bound::ExprPtr& condition);

}  // namespace ambrelio::embedded::planner
