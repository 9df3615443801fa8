#include "ambrelio/engine/embedded/planner/tree_walk.h"

#include <map>

namespace ambrelio::embedded::planner {

using bound::Expr;
using bound::ExprKind;
using bound::ExprPtr;
using bound::Query;
using bound::Source;

void RewriteAll(ExprPtr& expr, const Rewrite& rewrite) {
  for (ExprPtr& arg : expr->args) RewriteAll(arg, rewrite);
  if (expr->query) RewriteAll(*expr->query, rewrite);
  rewrite(expr);
}

void RewriteAll(Source& source, const Rewrite& rewrite) {
  if (source.query) RewriteAll(*source.query, rewrite);
  if (source.left) RewriteAll(*source.left, rewrite);
  if (source.right) RewriteAll(*source.right, rewrite);
  if (source.on) RewriteAll(source.on, rewrite);
}

void RewriteAll(Query& query, const Rewrite& rewrite) {
  if (!query.select) {
    RewriteAll(*query.left, rewrite);
    RewriteAll(*query.right, rewrite);
    for (bound::OrderKey& key : query.order) RewriteAll(key.expr, rewrite);
    return;
  }
  ForEachDelivered(query, [&](ExprPtr& expr) { RewriteAll(expr, rewrite); });
  for (Source& source : query.select->from) RewriteAll(source, rewrite);
  if (query.select->where) RewriteAll(query.select->where, rewrite);
}

void ForEachQueryIn(Expr& expr, const std::function<void(Query&)>& visit) {
  bound::ForEachExpr(expr, [&](Expr& part) {
    if (part.query) visit(*part.query);
  });
}

namespace {

void ForEachQueryInSource(Source& source, const std::function<void(Query&)>& visit) {
  if (source.query) visit(*source.query);
  if (source.left) ForEachQueryInSource(*source.left, visit);
  if (source.right) ForEachQueryInSource(*source.right, visit);
  if (source.on) ForEachQueryIn(*source.on, visit);
}

void CollectTerms(const Expr& condition, std::vector<const Expr*>& terms) {
  if (condition.kind == ExprKind::kBinary && condition.op == sql::BinaryOp::kAnd) {
    CollectTerms(*condition.args[0], terms);
    CollectTerms(*condition.args[1], terms);
  } else {
    terms.push_back(&condition);
  }
}

}  // namespace

void ForEachQueryBelow(Query& query, const std::function<void(Query&)>& visit) {
  if (!query.select) {
    visit(*query.left);
    visit(*query.right);
    return;
  }
  ForEachDelivered(query, [&](ExprPtr& expr) { ForEachQueryIn(*expr, visit); });
  for (Source& source : query.select->from) ForEachQueryInSource(source, visit);
  if (query.select->where) ForEachQueryIn(*query.select->where, visit);
}

namespace {

using NewNumbers = std::map<int, int>;

void RenumberSources(Query& query, int& next_source, NewNumbers& numbers) {
  if (query.select) {
    for (Source& source : query.select->from) {
      bound::ForEachLeaf(source, [&](Source& leaf) {
        const auto [number, added] = numbers.try_emplace(leaf.id, next_source);
        if (added) ++next_source;
        leaf.id = number->second;
      });
    }
  }
  ForEachQueryBelow(query, [&](Query& below) { RenumberSources(below, next_source, numbers); });
}

Rewrite ReferTo(const NewNumbers& numbers) {
  return [&numbers](const ExprPtr& expr) {
    if (expr->kind != ExprKind::kColumn) return;
    const auto number = numbers.find(expr->column.source);
    if (number != numbers.end()) expr->column.source = number->second;
  };
}

}  // namespace

void Renumber(Query& query, int& next_source) {
  NewNumbers numbers;
  RenumberSources(query, next_source, numbers);
  RewriteAll(query, ReferTo(numbers));
}

void Renumber(ExprPtr& expr, int& next_source) {
  NewNumbers numbers;
  ForEachQueryIn(*expr, [&](Query& below) { RenumberSources(below, next_source, numbers); });
  if (!numbers.empty()) RewriteAll(expr, ReferTo(numbers));
}

std::vector<const Expr*> Terms(const ExprPtr& condition) {
  std::vector<const Expr*> terms;
  if (condition) CollectTerms(*condition, terms);
  return terms;
}

}  // namespace ambrelio::embedded::planner
