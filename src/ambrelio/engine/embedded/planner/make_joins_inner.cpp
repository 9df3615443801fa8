#include <algorithm>
#include <vector>

#include "ambrelio/engine/embedded/planner/nulls.h"
#include "ambrelio/engine/embedded/planner/rewrites.h"
#include "ambrelio/engine/embedded/planner/tree_walk.h"

namespace ambrelio::embedded::planner {

using bound::Expr;
using bound::Source;
using sql::JoinKind;

namespace {

// Conditions that every row of a source has to meet in the end.
using Filters = std::vector<const Expr*>;

bool RefusesMissing(const Filters& filters, const Source& side) {
  std::vector<int> sources;
  bound::ForEachLeaf(side, [&](const Source& leaf) { sources.push_back(leaf.id); });
  const ReadsNull missing = [&](const bound::ColumnRef& column) {
    return std::find(sources.begin(), sources.end(), column.source) != sources.end();
  };
  return std::any_of(filters.begin(), filters.end(),
                     [&](const Expr* filter) { return IsNeverTrue(*filter, missing); });
}

Filters With(Filters filters, const bound::ExprPtr& condition) {
  for (const Expr* term : Terms(condition)) filters.push_back(term);
  return filters;
}

int Visit(Source& source, const Filters& filters) {
  if (source.kind != Source::Kind::kJoin) return 0;
  int made = 0;
  const Source& optional = source.join == JoinKind::kRight ? *source.left : *source.right;
  if (source.join != JoinKind::kInner && RefusesMissing(filters, optional)) {
    source.join = JoinKind::kInner;
    made = 1;
  }
  // The join's own condition decides which rows of its optional side are met at all, and of both
  // sides when it is an inner one; what is outside decides about the sides that are always there.
  const Filters met = With({}, source.on);
  const Filters all = With(filters, source.on);
  const auto filters_of = [&](JoinKind optional_in) -> const Filters& {
    if (source.join == JoinKind::kInner) return all;
    return source.join == optional_in ? met : filters;
  };
  made += Visit(*source.left, filters_of(JoinKind::kRight));
  made += Visit(*source.right, filters_of(JoinKind::kLeft));
  return made;
}

}  // namespace

int MakeJoinsInner(std::vector<Source>& from, const bound::ExprPtr& where) {
  const Filters filters = With({}, where);
  int made = 0;
  for (Source& source : from) made += Visit(source, filters);
  return made;
}

}  // namespace ambrelio::embedded::planner
