// Expressions in the storage engine's SQL. Everything that consists of several parts is written in
// brackets: nothing depends on the two languages' orders of precedence.
#include <array>
#include <charconv>

#include "ambrelio/engine/embedded/functions/functions.h"
#include "ambrelio/engine/embedded/storage/storage.h"
#include "ambrelio/engine/embedded/translator/sql_writer.h"

namespace ambrelio::embedded {

using bound::ColumnPart;
using bound::Expr;
using bound::ExprKind;
using sql::BinaryOp;

namespace {

const std::string kCollate = std::string(" COLLATE ") + kCollation;

// The shortest text that reads back as the same number.
std::string RealText(double value) {
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  std::string text(digits.data(), end);
  if (text.find_first_of(".en") == std::string::npos) text += ".0";
  return text;
}

std::string LiteralText(const Variant& value) {
  switch (value.type()) {
    case VariantType::kBoolean:
      return value.as<bool>() ? "-1" : "0";
    case VariantType::kByte:
      return std::to_string(value.as<uint8_t>());
    case VariantType::kInteger:
      return std::to_string(value.as<int16_t>());
    case VariantType::kLong:
      return std::to_string(value.as<int32_t>());
    case VariantType::kSingle:
      return RealText(static_cast<double>(value.as<float>()));
    case VariantType::kDouble:
      return RealText(value.as<double>());
    case VariantType::kCurrency:
      return RealText(static_cast<double>(value.as<Currency>().ten_thousandths) / 10000);
    case VariantType::kDate:
      return RealText(value.as<OleDate>().days());
    case VariantType::kText:
      return QuoteText(value.as<std::string>());
    default:
      return "NULL";
  }
}

// What the storage engine answers with 0 and 1 instead of 0 and -1.
bool IsPredicate(const Expr& expr) {
  switch (expr.kind) {
    case ExprKind::kNot:
    case ExprKind::kBetween:
    case ExprKind::kIn:
    case ExprKind::kInQuery:
    case ExprKind::kExists:
    case ExprKind::kIsNull:
      return true;
    case ExprKind::kBinary:
      return expr.op >= BinaryOp::kEqual;
    default:
      return false;
  }
}

const char* Symbol(BinaryOp op) {
  switch (op) {
    case BinaryOp::kAdd:
      return " + ";
    case BinaryOp::kSubtract:
      return " - ";
    case BinaryOp::kMultiply:
      return " * ";
    case BinaryOp::kEqual:
      return " = ";
    case BinaryOp::kNotEqual:
      return " <> ";
    case BinaryOp::kLess:
      return " < ";
    case BinaryOp::kLessEqual:
      return " <= ";
    case BinaryOp::kGreater:
      return " > ";
    case BinaryOp::kGreaterEqual:
      return " >= ";
    case BinaryOp::kAnd:
      return " AND ";
    case BinaryOp::kOr:
      return " OR ";
    default:
      return "";
  }
}

std::string Bracketed(const std::string& a, const char* between, const std::string& b) {
  return "(" + a + between + b + ")";
}

std::string CallText(const std::string& name, const std::string& a, const std::string& b) {
  return name + "(" + a + ", " + b + ")";
}

std::string TypeNumber(ValueType type) { return std::to_string(static_cast<int>(type)); }

}  // namespace

std::string SqlWriter::Column(const bound::ColumnRef& column) {
  const std::string source =
      column.source == 0 ? std::string() : "t" + std::to_string(column.source) + ".";
  switch (column.part) {
    case ColumnPart::kField:
      return source + QuoteName(column.field->name);
    case ColumnPart::kRowId:
      row_ids_wanted_.insert(column.source);
      return source + QuoteName(RowIdName(*column.table));
    case ColumnPart::kOutput:
      return source + "c" + std::to_string(column.index);
    case ColumnPart::kKey:
      keys_wanted_.insert(column.source);
      return source + "k" + std::to_string(column.index);
  }
  return {};
}

std::string SqlWriter::Value(const Expr& expr) {
  // Not `-x`, which the storage engine takes for the place of a column in an order or a grouping
  // where it finds out that x is 0 or 1.
  if (IsPredicate(expr)) return "(0 - " + Predicate(expr) + ")";
  switch (expr.kind) {
    case ExprKind::kLiteral:
      return expr.slot >= 0 ? "?" + std::to_string(expr.slot + 1) : LiteralText(expr.literal);
    case ExprKind::kColumn:
      return Column(expr.column);
    case ExprKind::kNegate:
      return "(- " + Number(*expr.args[0]) + ")";
    case ExprKind::kScalar:
      return "(" + Ordered(*expr.query) + " LIMIT 1)";
    case ExprKind::kIif: {
      const bool as_text = IsText(expr.type);
      const auto branch = [&](size_t i) {
        return as_text ? Text(*expr.args[i]) : Value(*expr.args[i]);
      };
      return "iif(" + Condition(*expr.args[0]) + ", " + branch(1) + ", " + branch(2) + ")";
    }
    case ExprKind::kFunction:
      return Call(expr);
    case ExprKind::kAggregate:
      return AggregateCall(expr);
    default:
      return Operator(expr);
  }
}

std::string SqlWriter::Condition(const Expr& expr) {
  return IsPredicate(expr) ? Predicate(expr) : Value(expr);
}

std::string SqlWriter::Text(const Expr& expr) {
  if (IsText(expr.type) || expr.type == ValueType::kNull) return Value(expr);
  return CallText("jet_text", Value(expr), TypeNumber(expr.type));
}

std::string SqlWriter::Number(const Expr& expr) {
  return IsText(expr.type) ? CallText("jet_to_double", Value(expr), "1") : Value(expr);
}

std::string SqlWriter::Key(const Expr& expr) {
  return IsText(expr.type) ? Value(expr) + kCollate : Value(expr);
}

std::string SqlWriter::Operator(const Expr& expr) {
  const Expr& a = *expr.args[0];
  const Expr& b = *expr.args[1];
  switch (expr.op) {
    case BinaryOp::kAdd:
      if (IsText(expr.type)) return Bracketed(Value(a), " || ", Value(b));
      [[fallthrough]];
    case BinaryOp::kSubtract:
    case BinaryOp::kMultiply:
      return Bracketed(Number(a), Symbol(expr.op), Number(b));
    case BinaryOp::kDivide:
      return CallText("jet_divide", Number(a), Number(b));
    case BinaryOp::kIntDivide:
      return CallText("jet_int_divide", Number(a), Number(b));
    case BinaryOp::kMod:
      return CallText("jet_mod", Number(a), Number(b));
    case BinaryOp::kPower:
      return CallText("jet_power", Number(a), Number(b));
    default:
      return CallText("jet_concat", Text(a), Text(b));
  }
}

// The first operand with what follows it; by the text collation when texts are compared.
std::string SqlWriter::Comparison(const Expr& expr, const std::string& rest) {
  bool text = expr.query && IsText(expr.query->columns[0].type);
  for (const bound::ExprPtr& arg : expr.args) text = text || IsText(arg->type);
  return "(" + Value(*expr.args[0]) + (text ? kCollate : "") + rest + ")";
}

std::string SqlWriter::Predicate(const Expr& expr) {
  const std::string negation = expr.negated ? " NOT" : "";
  const auto condition = [&](size_t i) { return Condition(*expr.args[i]); };
  switch (expr.kind) {
    case ExprKind::kNot:
      return "(NOT " + condition(0) + ")";
    case ExprKind::kIsNull:
      return "(" + Value(*expr.args[0]) + " IS" + negation + " NULL)";
    case ExprKind::kBetween:
      return Comparison(
          expr, negation + " BETWEEN " + Value(*expr.args[1]) + " AND " + Value(*expr.args[2]));
    case ExprKind::kIn: {
      std::string list;
      for (size_t i = 1; i < expr.args.size(); ++i) {
        list += (i > 1 ? ", " : "") + Value(*expr.args[i]);
      }
      return Comparison(expr, negation + " IN (" + list + ")");
    }
    case ExprKind::kInQuery:
      return Comparison(expr, negation + " IN (" + Unordered(*expr.query) + ")");
    case ExprKind::kExists:
      return "(" + negation + " EXISTS (" + Unordered(*expr.query) + "))";
    default:
      break;
  }
  switch (expr.op) {
    case BinaryOp::kLike:
      return "(" + negation + " " + CallText("jet_like", Text(*expr.args[0]), Text(*expr.args[1])) +
             ")";
    case BinaryOp::kAnd:
    case BinaryOp::kOr:
      return Bracketed(condition(0), Symbol(expr.op), condition(1));
    case BinaryOp::kXor:
      return "((NOT " + condition(0) + ") <> (NOT " + condition(1) + "))";
    case BinaryOp::kEqv:
      return "((NOT " + condition(0) + ") = (NOT " + condition(1) + "))";
    case BinaryOp::kImp:
      return "((NOT " + condition(0) + ") OR " + condition(1) + ")";
    default:
      return Comparison(expr, Symbol(expr.op) + Value(*expr.args[1]));
  }
}

std::string SqlWriter::Call(const Expr& expr) {
  const DialectFunction& function = *expr.function;
  std::string text = std::string(function.storage) + "(";
  for (size_t i = 0; i < expr.args.size(); ++i) {
    if (i > 0) text += ", ";
    const bool as_text = (function.texts >> i & 1U) != 0;
    text += as_text ? Text(*expr.args[i]) : Value(*expr.args[i]);
  }
  if (function.type_follows) text += ", " + TypeNumber(expr.args[0]->type);
  return text + ")";
}

std::string SqlWriter::AggregateCall(const Expr& expr) {
  if (expr.star) return "count(*)";
  const Expr& value = *expr.args[0];
  const std::string distinct = expr.distinct ? "DISTINCT " : "";
  switch (expr.aggregate) {
    case Aggregate::kCount:
      return "count(" + distinct + Key(value) + ")";
    case Aggregate::kSum:
      return "jet_sum(" + distinct + Number(value) + ")";
    case Aggregate::kAverage:
      return "jet_avg(" + distinct + Number(value) + ")";
    case Aggregate::kMinimum:
      return "min(" + Key(value) + ")";
    case Aggregate::kMaximum:
      return "max(" + Key(value) + ")";
    case Aggregate::kFirst:
    case Aggregate::kLast:
      break;
  }
  std::string text = expr.aggregate == Aggregate::kFirst ? "jet_first(" : "jet_last(";
  for (size_t i = 0; i < expr.args.size(); ++i) text += (i > 0 ? ", " : "") + Value(*expr.args[i]);
  return text + ")";
}

namespace {

// Whether a value of one type always fits a field of the other as it is. Only literals and columns
// are sure to be in the range of their type.
bool FitsAsItIs(const FieldInfo& field, const Expr& expr) {
  if (expr.kind != ExprKind::kLiteral && expr.kind != ExprKind::kColumn) return false;
  const ValueType to = TypeOf(field.type);
  if (expr.type == ValueType::kNull) return to != ValueType::kBoolean;
  if (to == ValueType::kText) {
    return expr.kind == ExprKind::kColumn && expr.column.field != nullptr &&
           expr.type == ValueType::kText && expr.column.field->size <= field.size;
  }
  if (expr.type == to) return true;
  const bool wider_whole = IsWhole(expr.type) && IsWhole(to) && expr.type < to;
  return wider_whole || (IsWhole(expr.type) && to == ValueType::kDouble);
}

}  // namespace

std::string SqlWriter::Stored(const FieldInfo& field, const Expr& expr, bool strict) {
  if (FitsAsItIs(field, expr)) return Value(expr);
  const std::string mode = strict ? ", 1)" : ", 0)";
  switch (field.type) {
    case dao::FieldType::kText:
      return "jet_to_text(" + Text(expr) + ", " + std::to_string(field.size) + mode;
    case dao::FieldType::kMemo:
      return "jet_to_text(" + Text(expr) + ", 0" + mode;
    case dao::FieldType::kBoolean:
      return "jet_to_boolean(" + Value(expr) + mode;
    case dao::FieldType::kByte:
      return "jet_to_byte(" + Value(expr) + mode;
    case dao::FieldType::kInteger:
      return "jet_to_integer(" + Value(expr) + mode;
    case dao::FieldType::kLong:
      return "jet_to_long(" + Value(expr) + mode;
    case dao::FieldType::kCurrency:
      return "jet_to_currency(" + Value(expr) + mode;
    case dao::FieldType::kSingle:
      return "jet_to_single(" + Value(expr) + mode;
    case dao::FieldType::kDouble:
      return "jet_to_double(" + Value(expr) + mode;
    case dao::FieldType::kDate:
      return "jet_to_date(" + Value(expr) + mode;
  }
  return Value(expr);
}

}  // namespace ambrelio::embedded
