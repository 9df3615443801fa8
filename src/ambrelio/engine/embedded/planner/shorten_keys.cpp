#include <algorithm>
#include <set>

#include "ambrelio/engine/embedded/planner/rewrites.h"
#include "ambrelio/engine/embedded/planner/tree_walk.h"

namespace ambrelio::embedded::planner {

using bound::ColumnPart;
using bound::ColumnRef;
using bound::Expr;
using bound::ExprKind;
using bound::ExprPtr;

namespace {

bool IsOfTable(const Expr& expr) {
  return expr.kind == ExprKind::kColumn &&
         (expr.column.part == ColumnPart::kField || expr.column.part == ColumnPart::kRowId);
}

// A column of the table that is all that the expression reads; null when it reads more, or nothing.
const ColumnRef* OnlyTable(const Expr& expr) {
  const ColumnRef* only = nullptr;
  bool reads_more = false;
  bound::ForEachExpr(expr, [&](const Expr& part) {
    if (IsOfTable(part) && (only == nullptr || only->source == part.column.source)) {
      only = &part.column;
    } else if (part.kind == ExprKind::kColumn || part.query) {
      reads_more = true;
    }
  });
  return reads_more ? nullptr : only;
}

// How many of the keys, which begin at `first`, tell all rows of the table apart.
ptrdiff_t KeysOfOneRow(const ColumnRef& table, std::vector<ExprPtr>::const_iterator first,
                       std::vector<ExprPtr>::const_iterator end) {
  const IndexInfo* primary = table.table->PrimaryKey();
  std::set<int> found;
  for (auto key = first; key != end; ++key) {
    if (!IsOfTable(**key) || (*key)->column.source != table.source) continue;
    const ColumnRef& column = (*key)->column;
    if (column.part == ColumnPart::kRowId) return key - first + 1;
    if (primary == nullptr) continue;
    const auto names = [&](const IndexColumn& part) {
      return SameName(part.name, column.field->name);
    };
    if (std::any_of(primary->columns.begin(), primary->columns.end(), names)) {
      found.insert(column.index);
    }
    if (found.size() == primary->columns.size()) return key - first + 1;
  }
  return end - first;
}

}  // namespace

int ShortenKeys(bound::Query& query) {
  int shortened = 0;
  RewriteAll(query, [&](ExprPtr& expr) {
    if (expr->kind != ExprKind::kAggregate) return;
    if (expr->aggregate != Aggregate::kFirst && expr->aggregate != Aggregate::kLast) return;
    const ColumnRef* table = OnlyTable(*expr->args[0]);
    if (table == nullptr) return;
    const auto first = expr->args.begin() + 1;
    const auto rest = first + KeysOfOneRow(*table, first, expr->args.end());
    if (rest == expr->args.end()) return;
    expr->args.erase(rest, expr->args.end());
    ++shortened;
  });
  return shortened;
}

}  // namespace ambrelio::embedded::planner
