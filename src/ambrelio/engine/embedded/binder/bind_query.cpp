// Selects and unions.
#include <algorithm>

#include "ambrelio/engine/embedded/binder/binding.h"

namespace ambrelio::embedded {

using bound::Expr;
using bound::ExprKind;
using bound::ExprPtr;
using bound::Query;
using bound::Select;
using dao::DaoError;

namespace {

bool HoldsQuery(const Expr& expr) {
  bool found = false;
  bound::ForEachExpr(expr, [&](const Expr& part) { found = found || part.query != nullptr; });
  return found;
}

}  // namespace

std::unique_ptr<Query> Binding::BindQuery(const sql::Query& query) {
  return query.select ? BindSelect(query) : BindUnion(query);
}

std::unique_ptr<Query> Binding::BindSelect(const sql::Query& query) {
  const sql::Select& tree = *query.select;
  auto result = std::make_unique<Query>();
  result->select = std::make_unique<Select>();
  Select& select = *result->select;

  Scope scope;
  const Scope* outside = scope_;
  for (const sql::Source& source : tree.from) {
    scope_ = nullptr;  // a derived table sees nothing of what stands around it
    select.from.push_back(BindSource(source, scope));
  }
  scope.outer = outside;
  scope_ = &scope;
  for (const bound::Source& source : select.from) {
    bound::ForEachLeaf(source,
                       [&](const bound::Source& leaf) { AppendKeys(leaf, scope.row_keys); });
  }

  const bool aggregate_outside = saw_aggregate_;
  saw_aggregate_ = false;
  if (tree.where) select.where = BindExpr(*tree.where, Place::kWhere);
  BindItems(tree.items, scope, *result);
  for (const sql::ExprPtr& expr : tree.group_by) {
    select.group_by.push_back(BindExpr(*expr, Place::kGroupBy));
  }
  if (tree.having) select.having = BindExpr(*tree.having, Place::kSelect);
  select.top = tree.top;
  select.top_percent = tree.top_percent;
  select.grouped = saw_aggregate_ || !select.group_by.empty() || select.having;
  // `distinctrow` drops rows that stem from the same rows of all sources: there are none.
  const bool distinct_by_grouping = tree.distinct && !select.grouped;
  select.distinct = tree.distinct;
  if (distinct_by_grouping) GroupBySelectList(select);
  BindOrder(query, *result);
  if (saw_aggregate_ && !select.grouped) Fail(DaoError::kAggregateInExpression);
  saw_aggregate_ = aggregate_outside;

  const DaoError order_error = tree.distinct ? DaoError::kOrderByDistinct : DaoError::kNotGrouped;
  if (select.grouped) {
    for (const ExprPtr& item : select.items) {
      RequireGrouped(*item, select, scope, DaoError::kNotGrouped);
    }
    if (select.having) RequireGrouped(*select.having, select, scope, DaoError::kNotGrouped);
    for (const bound::OrderKey& key : result->order) {
      RequireGrouped(*key.expr, select, scope, order_error);
      if (select.distinct && !Contains(select.items, *key.expr)) Fail(order_error);
    }
  }
  const auto& groups = select.grouped ? select.group_by : scope.row_keys;
  for (const ExprPtr& key : select.distinct ? select.items : groups) {
    select.keys.push_back(bound::Clone(*key));
  }
  CompleteOrder(*result);
  if (select.grouped) {
    for (ExprPtr& item : select.items) ShowFirstSpelling(item, select, scope);
  }
  scope_ = outside;
  return result;
}

// `select distinct a, b` is the groups of a and b, shown in their first spelling. Where that cannot
// be said the storage engine drops the equal rows.
void Binding::GroupBySelectList(Select& select) {
  // Constants need no group, and what holds a query is never recognised as a group.
  const auto holds_query = [](const ExprPtr& item) { return HoldsQuery(*item); };
  if (std::any_of(select.items.begin(), select.items.end(), holds_query)) return;
  for (const ExprPtr& item : select.items) {
    if (item->kind != ExprKind::kLiteral) select.group_by.push_back(bound::Clone(*item));
  }
  if (select.group_by.empty()) return;
  select.grouped = true;
  select.distinct = false;
}

bool Binding::Same(const Expr& a, const Expr& b) { return bound::SameExpr(a, b, literals_matter_); }

bool Binding::Contains(const std::vector<ExprPtr>& exprs, const Expr& expr) {
  return std::any_of(exprs.begin(), exprs.end(),
                     [&](const ExprPtr& other) { return Same(*other, expr); });
}

void Binding::RequireGrouped(const Expr& expr, const Select& select, const Scope& scope,
                             DaoError error) {
  if (expr.kind == ExprKind::kAggregate || Contains(select.group_by, expr)) return;
  if (expr.kind == ExprKind::kColumn && scope.Has(expr.column.source)) {
    std::string name = expr.column.field != nullptr ? expr.column.field->name : std::string();
    for (const Relation& relation : scope.relations) {
      if (relation.source() == expr.column.source && name.empty()) {
        name = relation.ColumnName(expr.column.index);
      }
    }
    Fail(error, name);
  }
  for (const ExprPtr& arg : expr.args) RequireGrouped(*arg, select, scope, error);
}

// A group of texts that differ only in spelling shows the one of its first row.
void Binding::ShowFirstSpelling(ExprPtr& expr, const Select& select, const Scope& scope) {
  if (expr->kind == ExprKind::kAggregate) return;
  if (IsText(expr->type) && expr->kind != ExprKind::kLiteral) {
    if (Contains(select.group_by, *expr)) {
      auto first = std::make_unique<Expr>();
      first->kind = ExprKind::kAggregate;
      first->aggregate = Aggregate::kFirst;
      first->type = expr->type;
      first->args.push_back(std::move(expr));
      for (const ExprPtr& key : scope.row_keys) first->args.push_back(bound::Clone(*key));
      expr = std::move(first);
      return;
    }
  }
  for (ExprPtr& arg : expr->args) ShowFirstSpelling(arg, select, scope);
}

std::unique_ptr<Query> Binding::BindUnion(const sql::Query& query) {
  auto result = std::make_unique<Query>();
  result->left = BindQuery(*query.left);
  result->right = BindQuery(*query.right);
  result->union_all = query.union_all;
  const auto& others = result->right->columns;
  result->columns = result->left->columns;
  if (others.size() != result->columns.size()) Fail(DaoError::kUnionColumns);
  for (size_t i = 0; i < others.size(); ++i) {
    bound::Column& column = result->columns[i];
    column.type = Wider(column.type, others[i].type);
    column.size = IsText(column.type) ? std::max(column.size, others[i].size) : SizeOf(column.type);
  }
  BindOrder(query, *result);
  // The rows of a `union all` keep the order of its operands.
  if (!result->union_all || !result->order.empty()) CompleteOrder(*result);
  return result;
}

}  // namespace ambrelio::embedded
