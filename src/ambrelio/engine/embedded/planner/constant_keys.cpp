#include <algorithm>
#include <cstdint>

#include "ambrelio/engine/embedded/planner/rewrites.h"

namespace ambrelio::embedded::planner {

using bound::Expr;
using bound::ExprKind;
using bound::ExprPtr;
using bound::OrderKey;

namespace {

bool IsConstant(const Expr& expr) {
  bool constant = true;
  bound::ForEachExpr(expr, [&](const Expr& part) {
    const bool reads = part.kind == ExprKind::kColumn || part.kind == ExprKind::kFunction ||
                       part.kind == ExprKind::kAggregate || part.query;
    constant = constant && !reads;
  });
  return constant;
}

}  // namespace

void DropConstantKeys(bound::Query& query) {
  bound::Select& select = *query.select;
  for (ExprPtr& group : select.group_by) {
    if (IsConstant(*group)) group = bound::MakeLiteral(Variant::Null(), group->type);
  }
  // All rows tie in a constant, and `top` takes them all then.
  if (select.top) return;
  const auto stated = query.order.begin() + static_cast<ptrdiff_t>(query.stated_order);
  const auto is_constant = [](const OrderKey& key) { return IsConstant(*key.expr); };
  query.stated_order -=
      static_cast<size_t>(std::count_if(query.order.begin(), stated, is_constant));
  std::erase_if(query.order, is_constant);
}

}  // namespace ambrelio::embedded::planner
