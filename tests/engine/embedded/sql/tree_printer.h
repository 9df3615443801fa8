// Prints syntax trees as one line of text, every operator in brackets of its own, so that a test
// can state what a tree must be.
#pragma once

#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "ambrelio/engine/embedded/sql/ast.h"

namespace ambrelio::embedded::sql {

// How literals that have a slot are printed.
enum class Literals { kValues, kSlots };

class TreePrinter {
 public:
  explicit TreePrinter(Literals literals = Literals::kValues) : literals_(literals) {}

  std::string Print(const Expr& expr) const {
    switch (expr.kind) {
      case ExprKind::kLiteral:
        return PrintLiteral(expr);
      case ExprKind::kColumn:
        return Qualified(expr.qualifier, expr.name);
      case ExprKind::kNegate:
        return "(-" + Arg(expr, 0) + ")";
      case ExprKind::kNot:
        return "(not " + Arg(expr, 0) + ")";
      case ExprKind::kBinary:
        return "(" + Arg(expr, 0) + Negated(expr) + Sign(expr.op) + Arg(expr, 1) + ")";
      case ExprKind::kBetween:
        return "(" + Arg(expr, 0) + Negated(expr) + " between " + Arg(expr, 1) + " and " +
               Arg(expr, 2) + ")";
      case ExprKind::kIn:
        return "(" + Arg(expr, 0) + Negated(expr) + " in [" + List(expr.args, 1) + "])";
      case ExprKind::kInQuery:
        return "(" + Arg(expr, 0) + Negated(expr) + " in " + Braced(*expr.query) + ")";
      case ExprKind::kExists:
        return "(exists " + Braced(*expr.query) + ")";
      case ExprKind::kScalar:
        return Braced(*expr.query);
      case ExprKind::kIsNull:
        return "(" + Arg(expr, 0) + " is" + Negated(expr) + " null)";
      case ExprKind::kCall:
        return expr.name + "(" +
               (expr.star       ? "*"
                : expr.distinct ? "distinct "
                                : "") +
               List(expr.args, 0) + ")";
    }
    return "?";
  }

  std::string Print(const Query& query) const {
    std::string text = query.select
                           ? Print(*query.select)
                           : Braced(*query.left) + (query.union_all ? " union all " : " union ") +
                                 Braced(*query.right);
    for (size_t i = 0; i < query.order_by.size(); ++i) {
      text += (i == 0 ? " order by " : ", ") + Print(*query.order_by[i].expr);
      if (query.order_by[i].descending) text += " desc";
    }
    return text;
  }

  std::string Print(const Source& source) const {
    if (source.kind == Source::Kind::kJoin) {
      const char* words = source.join == JoinKind::kInner  ? " inner join "
                          : source.join == JoinKind::kLeft ? " left join "
                                                           : " right join ";
      return "(" + Print(*source.left) + words + Print(*source.right) + " on " + Print(*source.on) +
             ")";
    }
    const std::string rows =
        source.kind == Source::Kind::kDerived ? Braced(*source.query) : source.name;
    return source.alias.empty() ? rows : rows + " as " + source.alias;
  }

  std::string Print(const Insert& insert) const {
    std::string text = "insert into " + insert.table;
    if (!insert.columns.empty()) text += " (" + Joined(insert.columns) + ")";
    return text + (insert.query ? " " + Braced(*insert.query)
                                : " values (" + List(insert.values, 0) + ")");
  }

  std::string Print(const Update& update) const {
    std::string text = "update " + Sources(update.target) + " set ";
    for (const Assignment& set : update.set) {
      if (&set != &update.set.front()) text += ", ";
      text += Qualified(set.qualifier, set.column) + " = " + Print(*set.value);
    }
    return text + Clause(" where ", update.where);
  }

  std::string Print(const Delete& removal) const {
    return "delete " + (removal.target.empty() ? "" : removal.target + ".* ") + "from " +
           Sources(removal.from) + Clause(" where ", removal.where);
  }

  std::string Print(const ColumnDefinition& column) const {
    std::string text = column.name + " " + column.type;
    if (column.size != 0) text += "(" + std::to_string(column.size) + ")";
    if (column.not_null) text += " not null";
    text += Clause(" default ", column.default_value);
    if (!column.key_name.empty()) text += " constraint " + column.key_name;
    if (column.primary_key) text += " primary key";
    if (column.unique) text += " unique";
    return text;
  }

  std::string Print(const TableConstraint& constraint) const {
    return (constraint.name.empty() ? "" : "constraint " + constraint.name + " ") +
           (constraint.primary_key ? "primary key (" : "unique (") + Joined(constraint.columns) +
           ")";
  }

  std::string Print(const CreateTable& create) const {
    std::string text = "create table " + create.name + " (";
    std::string separator;
    for (const ColumnDefinition& column : create.columns) {
      text += std::exchange(separator, ", ") + Print(column);
    }
    for (const TableConstraint& constraint : create.constraints) {
      text += std::exchange(separator, ", ") + Print(constraint);
    }
    return text + ")";
  }

  std::string Print(const CreateIndex& index) const {
    std::string text = std::string("create ") + (index.unique ? "unique " : "") + "index " +
                       index.name + " on " + index.table + " (";
    for (const CreateIndex::Column& column : index.columns) {
      if (&column != &index.columns.front()) text += ", ";
      text += column.name + (column.descending ? " desc" : "");
    }
    return text + ")" + (index.primary ? " with primary" : "") +
           (index.disallow_nulls ? " with disallow null" : "") +
           (index.ignore_nulls ? " with ignore null" : "");
  }

  std::string Print(const AlterTable& alter) const {
    std::string text = "alter table " + alter.table;
    switch (alter.action) {
      case AlterTable::Action::kAddColumn:
        return text + " add column " + Print(alter.column);
      case AlterTable::Action::kDropColumn:
        return text + " drop column " + alter.column.name;
      case AlterTable::Action::kAddConstraint:
        return text + " add " + Print(alter.constraint);
      case AlterTable::Action::kDropConstraint:
        return text + " drop constraint " + alter.constraint.name;
    }
    return text;
  }

  std::string Print(const Drop& drop) const {
    return drop.what == Drop::What::kTable ? "drop table " + drop.name
                                           : "drop index " + drop.name + " on " + drop.table;
  }

  std::string PrintStatement(const Statement& statement) const {
    return std::visit([this](const auto& one) { return Print(one); }, statement);
  }

 private:
  std::string Print(const Select& select) const {
    std::string text = "select ";
    if (select.distinct) text += "distinct ";
    if (select.distinct_row) text += "distinctrow ";
    if (select.top) text += "top " + std::to_string(*select.top) + " ";
    if (select.top_percent) text += "percent ";
    for (const SelectItem& item : select.items) {
      if (&item != &select.items.front()) text += ", ";
      text += item.star ? Qualified(item.qualifier, "*") : Print(*item.expr);
      if (!item.alias.empty()) text += " as " + item.alias;
    }
    if (!select.from.empty()) text += " from " + Sources(select.from);
    text += Clause(" where ", select.where);
    if (!select.group_by.empty()) text += " group by " + List(select.group_by, 0);
    return text + Clause(" having ", select.having);
  }

  std::string PrintLiteral(const Expr& expr) const {
    if (literals_ == Literals::kSlots && expr.slot >= 0) {
      return "?" + std::to_string(expr.slot) + TypeName(expr.literal);
    }
    switch (expr.literal.type()) {
      case VariantType::kNull:
        return "Null";
      case VariantType::kBoolean:
        return expr.literal.as<bool>() ? "True" : "False";
      case VariantType::kLong:
        return std::to_string(expr.literal.as<int32_t>());
      case VariantType::kDouble:
        return std::to_string(expr.literal.as<double>());
      case VariantType::kDate:
        return "#" + expr.literal.as<OleDate>().Iso() + "#";
      default:
        return "'" + expr.literal.as<std::string>() + "'";
    }
  }

  static std::string Sign(BinaryOp op) {
    static constexpr const char* kSigns[] = {
        " + ", " - ",  " * ", " / ",  " \\ ",   " mod ", " ^ ",  " & ",   " = ",   " <> ",
        " < ", " <= ", " > ", " >= ", " like ", " and ", " or ", " xor ", " eqv ", " imp "};
    return kSigns[static_cast<int>(op)];
  }
  static std::string Negated(const Expr& expr) { return expr.negated ? " not" : ""; }
  static std::string Qualified(const std::string& qualifier, const std::string& name) {
    return qualifier.empty() ? name : qualifier + "." + name;
  }
  std::string Arg(const Expr& expr, size_t index) const { return Print(*expr.args.at(index)); }
  std::string Braced(const Query& query) const { return "{" + Print(query) + "}"; }
  std::string Clause(const char* words, const ExprPtr& expr) const {
    return expr ? words + Print(*expr) : "";
  }
  std::string List(const std::vector<ExprPtr>& list, size_t from) const {
    std::string text;
    for (size_t i = from; i < list.size(); ++i) text += (i == from ? "" : ", ") + Print(*list[i]);
    return text;
  }
  std::string Sources(const std::vector<Source>& sources) const {
    std::string text;
    for (const Source& source : sources) {
      text += (&source == &sources.front() ? "" : ", ") + Print(source);
    }
    return text;
  }
  static std::string Joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
  }

  Literals literals_;
};

}  // namespace ambrelio::embedded::sql
