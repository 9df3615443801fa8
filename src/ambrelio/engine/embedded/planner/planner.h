// From a bound tree to one that costs less, with the same rows in the same order.
//
// Each rewrite is general: it holds for any tables and any data, and none knows the statements that
// it is met with. What it needs to know of the data it reads from the catalogue's rules, as that
// the columns of a primary key are never Null.
#pragma once

#include <string_view>

#include "ambrelio/engine/embedded/binder/bound_tree.h"

namespace ambrelio::embedded {

// Which rewrites are made; all, unless somebody looks for a fault.
struct PlanOptions {
  // Outer joins whose missing side the conditions cannot accept become inner joins.
  bool inner_joins = true;
  // Stored queries and derived tables without grouping become part of the query around them.
  bool merged_queries = true;
  // A left join whose right side stands under null-tests becomes two branches: rows with a partner,
  // and rows without.
  bool split_joins = true;
  // `first` and `last` compare only the keys that can decide.
  bool shorter_keys = true;

  // From a list of names as "inner_joins,split_joins": the rewrites that are not made; "all" turns
  // off each. Names that are none are passed over.
  static PlanOptions Without(std::string_view names);
  // What the environment variable AMBRELIO_WITHOUT_REWRITES turns off.
  static PlanOptions FromEnvironment();
};

// Plans the query with all queries below it.
void Plan(bound::Query& query, const PlanOptions& options);
// The same for what a statement reads; what it writes, and in which order, stays.
void Plan(bound::Statement& statement, const PlanOptions& options);

}  // namespace ambrelio::embedded
