#include "ambrelio/engine/embedded/binder/bound_tree.h"

#include <algorithm>

namespace ambrelio::embedded::bound {

namespace {

std::vector<ExprPtr> CloneAll(const std::vector<ExprPtr>& exprs) {
  std::vector<ExprPtr> copies;
  copies.reserve(exprs.size());
  for (const ExprPtr& expr : exprs) copies.push_back(Clone(*expr));
  return copies;
}

ExprPtr CloneIfAny(const ExprPtr& expr) { return expr ? Clone(*expr) : nullptr; }

std::unique_ptr<Select> Clone(const Select& select) {
  auto copy = std::make_unique<Select>();
  copy->items = CloneAll(select.items);
  for (const Source& source : select.from) copy->from.push_back(bound::Clone(source));
  copy->where = CloneIfAny(select.where);
  copy->grouped = select.grouped;
  copy->group_by = CloneAll(select.group_by);
  copy->having = CloneIfAny(select.having);
  copy->distinct = select.distinct;
  copy->top = select.top;
  copy->top_percent = select.top_percent;
  copy->keys = CloneAll(select.keys);
  return copy;
}

}  // namespace

ExprPtr Clone(const Expr& expr) {
  auto copy = std::make_unique<Expr>();
  copy->kind = expr.kind;
  copy->type = expr.type;
  copy->literal = expr.literal;
  copy->slot = expr.slot;
  copy->column = expr.column;
  copy->op = expr.op;
  copy->negated = expr.negated;
  copy->star = expr.star;
  copy->distinct = expr.distinct;
  copy->aggregate = expr.aggregate;
  copy->function = expr.function;
  copy->args = CloneAll(expr.args);
  if (expr.query) copy->query = Clone(*expr.query);
  return copy;
}

Source Clone(const Source& source) {
  Source copy;
  copy.kind = source.kind;
  copy.id = source.id;
  copy.name = source.name;
  copy.table = source.table;
  if (source.query) copy.query = Clone(*source.query);
  copy.join = source.join;
  if (source.left) copy.left = std::make_unique<Source>(Clone(*source.left));
  if (source.right) copy.right = std::make_unique<Source>(Clone(*source.right));
  copy.on = CloneIfAny(source.on);
  return copy;
}

std::unique_ptr<Query> Clone(const Query& query) {
  auto copy = std::make_unique<Query>();
  if (query.select) copy->select = Clone(*query.select);
  if (query.left) copy->left = Clone(*query.left);
  if (query.right) copy->right = Clone(*query.right);
  copy->union_all = query.union_all;
  copy->columns = query.columns;
  for (const OrderKey& key : query.order) {
    copy->order.push_back({Clone(*key.expr), key.descending});
  }
  copy->stated_order = query.stated_order;
  return copy;
}

bool SameExpr(const Expr& a, const Expr& b, bool& literals_compared) {
  if (a.kind != b.kind || a.type != b.type || a.args.size() != b.args.size() || a.op != b.op ||
      a.negated != b.negated || a.star != b.star || a.distinct != b.distinct ||
      a.aggregate != b.aggregate || a.function != b.function) {
    return false;
  }
  if (a.kind == ExprKind::kLiteral) {
    if (a.slot >= 0 && a.slot == b.slot) return true;
    if (a.slot >= 0 || b.slot >= 0) literals_compared = true;
    return a.literal == b.literal;
  }
  if (a.kind == ExprKind::kColumn) {
    return a.column.source == b.column.source && a.column.part == b.column.part &&
           a.column.index == b.column.index && a.column.field == b.column.field;
  }
  // Queries inside expressions are never taken for one another.
  if (a.query || b.query) return false;
  return std::equal(
      a.args.begin(), a.args.end(), b.args.begin(),
      [&](const ExprPtr& x, const ExprPtr& y) { return SameExpr(*x, *y, literals_compared); });
}

ExprPtr MakeLiteral(Variant value, ValueType type) {
  auto expr = std::make_unique<Expr>();
  expr->literal = std::move(value);
  expr->type = type;
  return expr;
}

ExprPtr MakeColumn(const ColumnRef& column, ValueType type) {
  auto expr = std::make_unique<Expr>();
  expr->kind = ExprKind::kColumn;
  expr->column = column;
  expr->type = type;
  return expr;
}

ExprPtr MakeAnd(ExprPtr a, ExprPtr b) {
  if (!a) return b;
  if (!b) return a;
  auto expr = std::make_unique<Expr>();
  expr->kind = ExprKind::kBinary;
  expr->op = sql::BinaryOp::kAnd;
  expr->type = ValueType::kBoolean;
  expr->args.push_back(std::move(a));
  expr->args.push_back(std::move(b));
  return expr;
}

}  // namespace ambrelio::embedded::bound
