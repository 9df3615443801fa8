// From a bound tree to one that costs less, with the same rows in the same order.
//
// Each rewrite is general: it holds for any tables and any data, and none knows the statements that
// it is met with. What it needs to know of the data it reads from the catalogue's rules, as that
// the columns of a primary key are never Null.
#pragma once

#include <string_view>

#include "ambrelio/engine/embedded/binder/bound_tree.h"

namespace ambrelio::embedded {

// The rewrites, by the names under which they are turned off and told of.
inline constexpr std::string_view kInnerJoins = "inner_joins";
inline constexpr std::string_view kMergedQueries = "merged_queries";
inline constexpr std::string_view kSplitJoins = "split_joins";
inline constexpr std::string_view kShorterKeys = "shorter_keys";

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

// How often each rewrite was made: joins that became inner ones, queries that were merged, joins
// that were split, calls of `first` and `last` that compare fewer keys. What stands in both
// branches of a split join counts in each.
struct RewritesMade {
  int inner_joins = 0;
  int merged_queries = 0;
  int split_joins = 0;
  int shorter_keys = 0;
};

// Plans the query with all queries below it.
RewritesMade Plan(bound::Query& query, const PlanOptions& options);
// The same for what a statement reads; what it writes, and in which order, stays.
RewritesMade Plan(bound::Statement& statement, const PlanOptions& options);

}  // namespace ambrelio::embedded
