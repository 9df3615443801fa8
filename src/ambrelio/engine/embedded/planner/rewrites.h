// The rewrites, each on one select; those below it are planned by themselves.
#pragma once

#include <vector>

#include "ambrelio/engine/embedded/binder/bound_tree.h"

namespace ambrelio::embedded::planner {

// An outer join becomes an inner one when no row that it completes with Nulls can pass the
// conditions around it. Returns how many did.
int MakeJoinsInner(std::vector<bound::Source>& from, const bound::ExprPtr& where);

// A query in the from clause that only chooses rows and computes columns gives way to its own
// sources. Within the optional side of an outer join that goes for queries whose columns are plain:
// computed ones need not be Null where there is no partner. Copies of what it computes take numbers
// for their sources from `next_source` on. Returns how many queries gave way.
int MergeQueries(bound::Query& query, int& next_source);

// A left join with one table on its right, whose columns stand under null-tests, is taken apart:
// into the rows with a partner and those without. In each the tests are known; a branch whose
// conditions cannot hold goes, and the rows of two branches come together in a union. New sources
// take numbers from `next_source` on. False when there was nothing to split.
bool SplitJoin(bound::Query& query, int& next_source);

// `first` and `last` of what is read from one table compare no keys behind those that tell the rows
// of the table apart: rows that tie in those hold the same value.
// Returns how many were shortened.
int ShortenKeys(bound::Query& query);

// What a rewrite has made the same in every row neither orders nor groups any longer. (A number
// there would be taken for the place of a column.)
void DropConstantKeys(bound::Query& query);

}  // namespace ambrelio::embedded::planner
