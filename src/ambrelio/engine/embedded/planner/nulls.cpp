#include "ambrelio/engine/embedded/planner/nulls.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "ambrelio/engine/embedded/planner/tree_walk.h"

namespace ambrelio::embedded::planner {

using bound::Expr;
using bound::ExprKind;
using bound::ExprPtr;
using sql::BinaryOp;

namespace {

// Operators that give Null for a Null on either side.
bool PassesNullOn(BinaryOp op) {
  switch (op) {
    case BinaryOp::kAdd:
    case BinaryOp::kSubtract:
    case BinaryOp::kMultiply:
    case BinaryOp::kEqual:
    case BinaryOp::kNotEqual:
    case BinaryOp::kLess:
    case BinaryOp::kLessEqual:
    case BinaryOp::kGreater:
    case BinaryOp::kGreaterEqual:
      return true;
    default:
      return false;
  }
}

bool IsAlwaysTrue(const Expr& condition, const ReadsNull& reads_null) {
  return condition.kind == ExprKind::kIsNull && !condition.negated &&
         IsNull(*condition.args[0], reads_null);
}

// The truth of a constant; nothing for a parameter, for Null and for all that is no literal.
std::optional<bool> TruthOf(const Expr& expr) {
  if (expr.kind != ExprKind::kLiteral || expr.slot >= 0) return std::nullopt;
  if (expr.literal.type() != VariantType::kBoolean) return std::nullopt;
  return expr.literal.as<bool>();
}

bool IsNullLiteral(const Expr& expr) {
  return expr.kind == ExprKind::kLiteral && expr.slot < 0 && expr.literal.is_null();
}

void BecomeTruth(ExprPtr& expr, bool truth) {
  expr = bound::MakeLiteral(truth, ValueType::kBoolean);
}

void ResolveNullTest(ExprPtr& expr, const NeverReadsNull& never_null) {
  const Expr& tested = *expr->args[0];
  if (IsNullLiteral(tested)) {
    BecomeTruth(expr, !expr->negated);
  } else if (tested.kind == ExprKind::kColumn && never_null(tested.column)) {
    BecomeTruth(expr, expr->negated);
  }
}

// The chosen side takes the place of the choice, with the choice's type. Text and other types
// convert differently, so that such a choice stays as it is.
void ResolveChoice(ExprPtr& expr) {
  const std::optional<bool> truth = TruthOf(*expr->args[0]);
  if (!truth) return;
  ExprPtr& chosen = expr->args[*truth ? 1 : 2];
  const bool same_kind =
      chosen->type == expr->type ||
      (IsNumber(chosen->type) && IsNumber(expr->type) && chosen->type != ValueType::kBoolean);
  if (!same_kind || chosen->slot >= 0) return;
  ExprPtr result = std::move(chosen);
  result->type = expr->type;
  expr = std::move(result);
}

void ResolveConnective(ExprPtr& expr) {
  for (size_t i = 0; i < 2; ++i) {
    const std::optional<bool> truth = TruthOf(*expr->args[i]);
    if (!truth) continue;
    if (*truth == (expr->op == BinaryOp::kOr)) return BecomeTruth(expr, *truth);
    // The other side says it all; a number has still to become True or False.
    if (expr->args[1 - i]->type != ValueType::kBoolean) return;
    ExprPtr other = std::move(expr->args[1 - i]);
    expr = std::move(other);
    return;
  }
}

void ResolveOne(ExprPtr& expr, const NeverReadsNull& never_null) {
  switch (expr->kind) {
    case ExprKind::kIsNull:
      return ResolveNullTest(expr, never_null);
    case ExprKind::kIif:
      return ResolveChoice(expr);
    case ExprKind::kNot:
      if (const std::optional<bool> truth = TruthOf(*expr->args[0])) BecomeTruth(expr, !*truth);
      return;
    case ExprKind::kBinary:
      if (expr->op == BinaryOp::kAnd || expr->op == BinaryOp::kOr) ResolveConnective(expr);
      return;
    default:
      return;
  }
}

}  // namespace

bool IsNull(const Expr& expr, const ReadsNull& reads_null) {
  const auto arg_is_null = [&](size_t i) { return IsNull(*expr.args[i], reads_null); };
  switch (expr.kind) {
    case ExprKind::kLiteral:
      return IsNullLiteral(expr);
    case ExprKind::kColumn:
      return reads_null(expr.column);
    case ExprKind::kNegate:
    case ExprKind::kNot:
    case ExprKind::kBetween:
    case ExprKind::kIn:
      return arg_is_null(0);
    case ExprKind::kBinary:
      return PassesNullOn(expr.op) && (arg_is_null(0) || arg_is_null(1));
    default:
      return false;
  }
}

bool IsNeverTrue(const Expr& condition, const ReadsNull& reads_null) {
  const auto never = [&](size_t i) { return IsNeverTrue(*condition.args[i], reads_null); };
  if (IsNull(condition, reads_null)) return true;
  if (const std::optional<bool> truth = TruthOf(condition)) return !*truth;
  switch (condition.kind) {
    case ExprKind::kIsNull:
      return condition.negated && IsNull(*condition.args[0], reads_null);
    case ExprKind::kNot:
      return IsAlwaysTrue(*condition.args[0], reads_null);
    case ExprKind::kBinary:
      if (condition.op == BinaryOp::kAnd) return never(0) || never(1);
      if (condition.op == BinaryOp::kOr) return never(0) && never(1);
      return false;
    default:
      return false;
  }
}

bool HoldsNoNull(const bound::ColumnRef& column) {
  if (column.part == bound::ColumnPart::kRowId) return true;
  if (column.part != bound::ColumnPart::kField) return false;
  if (column.field->required || column.field->type == dao::FieldType::kBoolean) return true;
  const IndexInfo* key = column.table->PrimaryKey();
  return key != nullptr &&
         std::any_of(key->columns.begin(), key->columns.end(), [&](const IndexColumn& part) {
           return SameName(part.name, column.field->name);
         });
}

void Resolve(ExprPtr& expr, const NeverReadsNull& never_null) {
  RewriteAll(expr, [&](ExprPtr& part) { ResolveOne(part, never_null); });
}

}  // namespace ambrelio::embedded::planner
