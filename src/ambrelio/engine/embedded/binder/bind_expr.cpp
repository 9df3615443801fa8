// Expressions: names, operators, functions, and the type of each.
#include <algorithm>

#include "ambrelio/engine/embedded/binder/binding.h"

namespace ambrelio::embedded {

using bound::Expr;
using bound::ExprKind;
using bound::ExprPtr;
using dao::DaoError;
using sql::BinaryOp;

namespace {

ValueType LiteralType(const Variant& value) {
  switch (value.type()) {
    case VariantType::kBoolean:
      return ValueType::kBoolean;
    case VariantType::kByte:
    case VariantType::kInteger:
    case VariantType::kLong:
      return ValueType::kLong;
    case VariantType::kSingle:
    case VariantType::kDouble:
      return ValueType::kDouble;
    case VariantType::kCurrency:
      return ValueType::kCurrency;
    case VariantType::kDate:
      return ValueType::kDate;
    case VariantType::kText:
      return ValueType::kText;
    default:
      return ValueType::kNull;
  }
}

ExprPtr MakeOperation(ExprKind kind, ValueType type) {
  auto expr = std::make_unique<Expr>();
  expr->kind = kind;
  expr->type = type;
  return expr;
}

bool Compares(BinaryOp op) { return op >= BinaryOp::kEqual && op <= BinaryOp::kGreaterEqual; }

// Text meets only text in a comparison.
bool Comparable(ValueType a, ValueType b) {
  return a == ValueType::kNull || b == ValueType::kNull || IsText(a) == IsText(b);
}

ValueType OperatorType(BinaryOp op, ValueType a, ValueType b) {
  switch (op) {
    case BinaryOp::kAdd:
      if (IsText(Wider(a, b)) && Comparable(a, b)) return ValueType::kText;
      return SumType(a, b, false);
    case BinaryOp::kSubtract:
      return SumType(a, b, true);
    case BinaryOp::kMultiply:
      return ProductType(a, b);
    case BinaryOp::kDivide:
    case BinaryOp::kPower:
      return ValueType::kDouble;
    case BinaryOp::kIntDivide:
    case BinaryOp::kMod:
      return ValueType::kLong;
    case BinaryOp::kConcat:
      return ValueType::kText;
    default:
      return ValueType::kBoolean;
  }
}

}  // namespace

void Binding::BindArgs(const sql::Expr& expr, Place place, Expr& result) {
  result.args.reserve(expr.args.size());
  for (const sql::ExprPtr& arg : expr.args) result.args.push_back(BindExpr(*arg, place));
}

ExprPtr Binding::BindExpr(const sql::Expr& expr, Place place) {
  switch (expr.kind) {
    case sql::ExprKind::kLiteral: {
      ExprPtr literal = bound::MakeLiteral(expr.literal, LiteralType(expr.literal));
      // The literals of a stored query are no literals of the statement.
      literal->slot = open_queries_.empty() ? expr.slot : -1;
      return literal;
    }
    case sql::ExprKind::kColumn:
      return BindColumn(expr, place);
    case sql::ExprKind::kInQuery:
    case sql::ExprKind::kExists:
    case sql::ExprKind::kScalar:
      return BindSubquery(expr, place);
    case sql::ExprKind::kCall:
      return BindCall(expr, place);
    default:
      return BindOperator(expr, place);
  }
}

ExprPtr Binding::BindColumn(const sql::Expr& expr, Place place) {
  if (expr.qualifier.empty() && items_ != nullptr && scope_ == items_scope_ &&
      item_ < items_->size() && SameName(expr.name, (*items_)[item_].alias)) {
    Fail(DaoError::kCircularAlias, expr.name);
  }
  for (const Scope* scope = scope_; scope != nullptr; scope = scope->outer) {
    if (ExprPtr column = scope->Find(expr.qualifier, expr.name)) return column;
  }
  // What no source has may be the alias of an earlier item of the list.
  if (expr.qualifier.empty() && items_ != nullptr && scope_ == items_scope_) {
    for (size_t i = 0; i < std::min(item_, items_->size()); ++i) {
      if (SameName((*items_)[i].alias, expr.name)) return BindExpr(*(*items_)[i].expr, place);
    }
  }
  std::string name = FirstName(expr);
  const bool known = std::any_of(unknown_names_.begin(), unknown_names_.end(),
                                 [&](const std::string& other) { return SameName(other, name); });
  if (!known) unknown_names_.push_back(std::move(name));
  return bound::MakeLiteral(Variant::Null(), ValueType::kNull);
}

std::string FirstName(const sql::Expr& expr) {
  if (expr.kind == sql::ExprKind::kColumn) {
    return expr.qualifier.empty() ? expr.name : expr.qualifier + "." + expr.name;
  }
  for (const auto& arg : expr.args) {
    if (std::string name = FirstName(*arg); !name.empty()) return name;
  }
  return expr.name;
}

ExprPtr Binding::BindOperator(const sql::Expr& expr, Place place) {
  ExprPtr result = MakeOperation(ExprKind::kNot, ValueType::kBoolean);
  BindArgs(expr, place, *result);
  result->negated = expr.negated;
  const auto type = [&](size_t i) { return result->args[i]->type; };
  const auto require_comparable = [&](size_t i) {
    if (!Comparable(type(0), type(i))) Fail(DaoError::kTypeMismatchInCondition, FirstName(expr));
  };
  switch (expr.kind) {
    case sql::ExprKind::kNegate:
      result->kind = ExprKind::kNegate;
      result->type = ProductType(type(0), type(0));
      if (type(0) == ValueType::kDate) result->type = ValueType::kDate;
      break;
    case sql::ExprKind::kIsNull:
      result->kind = ExprKind::kIsNull;
      break;
    case sql::ExprKind::kBetween:
      result->kind = ExprKind::kBetween;
      require_comparable(1);
      require_comparable(2);
      break;
    case sql::ExprKind::kIn:
      result->kind = ExprKind::kIn;
      for (size_t i = 1; i < result->args.size(); ++i) require_comparable(i);
      break;
    case sql::ExprKind::kBinary:
      result->kind = ExprKind::kBinary;
      result->op = expr.op;
      result->type = OperatorType(expr.op, type(0), type(1));
      if (Compares(expr.op)) require_comparable(1);
      break;
    default:
      break;
  }
  return result;
}

ExprPtr Binding::BindSubquery(const sql::Expr& expr, Place place) {
  ExprPtr result = MakeOperation(ExprKind::kExists, ValueType::kBoolean);
  BindArgs(expr, place, *result);
  result->negated = expr.negated;
  result->query = BindQuery(*expr.query);
  if (expr.kind == sql::ExprKind::kExists) return result;
  if (result->query->columns.size() != 1) Fail(DaoError::kSubqueryColumns);
  const ValueType type = result->query->columns[0].type;
  if (expr.kind == sql::ExprKind::kScalar) {
    result->kind = ExprKind::kScalar;
    result->type = type;
  } else {
    result->kind = ExprKind::kInQuery;
    if (!Comparable(result->args[0]->type, type)) {
      Fail(DaoError::kTypeMismatchInCondition, FirstName(expr));
    }
  }
  return result;
}

ExprPtr Binding::BindCall(const sql::Expr& expr, Place place) {
  if (const auto aggregate = FindAggregate(expr.name)) {
    return BindAggregate(expr, *aggregate, place);
  }
  ExprPtr result = MakeOperation(ExprKind::kFunction, ValueType::kNull);
  BindArgs(expr, place, *result);
  const size_t count = result->args.size();
  const auto require_count = [&](size_t least, size_t most) {
    if (count < least || count > most) Fail(DaoError::kExpressionSyntax, expr.name);
  };
  if (SameName(expr.name, "IsNull")) {
    require_count(1, 1);
    result->kind = ExprKind::kIsNull;
    result->type = ValueType::kBoolean;
    return result;
  }
  if (SameName(expr.name, "IIf")) {
    require_count(3, 3);
    result->kind = ExprKind::kIif;
    result->type = Wider(result->args[1]->type, result->args[2]->type);
    return result;
  }
  if (SameName(expr.name, "Nz")) {
    // Nz(x, y) is IIf(x is null, y, x).
    require_count(1, 2);
    const ValueType type = result->args[0]->type;
    if (count == 1) {
      result->args.push_back(IsText(type) ? bound::MakeLiteral("", ValueType::kText)
                                          : bound::MakeLiteral(int32_t{0}, ValueType::kLong));
      result->args.back()->type = type == ValueType::kNull ? ValueType::kLong : type;
    }
    ExprPtr is_null = MakeOperation(ExprKind::kIsNull, ValueType::kBoolean);
    is_null->args.push_back(bound::Clone(*result->args[0]));
    std::swap(result->args[0], result->args[1]);
    result->args.insert(result->args.begin(), std::move(is_null));
    result->kind = ExprKind::kIif;
    result->type = Wider(result->args[1]->type, result->args[2]->type);
    return result;
  }
  result->function = FindFunction(expr.name, count);
  if (result->function == nullptr) Fail(DaoError::kUndefinedFunction, expr.name);
  require_count(static_cast<size_t>(result->function->least),
                static_cast<size_t>(result->function->most));
  result->type =
      ResultType(*result->function, count == 0 ? ValueType::kNull : result->args[0]->type);
  return result;
}

ExprPtr Binding::BindAggregate(const sql::Expr& expr, Aggregate aggregate, Place place) {
  switch (place) {
    case Place::kWhere:
      Fail(DaoError::kAggregateInWhere, expr.name);
    case Place::kJoin:
      Fail(DaoError::kAggregateInJoin, expr.name);
    case Place::kGroupBy:
      Fail(DaoError::kAggregateInGroupBy, expr.name);
    case Place::kInAggregate:
    case Place::kValue:
      Fail(DaoError::kAggregateInExpression, expr.name);
    case Place::kSelect:
      break;
  }
  saw_aggregate_ = true;
  ExprPtr result = MakeOperation(ExprKind::kAggregate, ValueType::kLong);
  result->aggregate = aggregate;
  result->star = expr.star;
  result->distinct = expr.distinct;
  BindArgs(expr, Place::kInAggregate, *result);
  if (result->args.size() != (expr.star ? 0U : 1U)) Fail(DaoError::kExpressionSyntax, expr.name);
  switch (aggregate) {
    case Aggregate::kCount:
      break;
    case Aggregate::kSum:
    case Aggregate::kAverage:
      result->type = ValueType::kDouble;
      if (result->args[0]->type == ValueType::kCurrency) result->type = ValueType::kCurrency;
      break;
    case Aggregate::kMinimum:
    case Aggregate::kMaximum:
      result->type = result->args[0]->type;
      break;
    case Aggregate::kFirst:
    case Aggregate::kLast:
      result->type = result->args[0]->type;
      for (const ExprPtr& key : scope_->row_keys) result->args.push_back(bound::Clone(*key));
      break;
  }
  return result;
}

}  // namespace ambrelio::embedded
