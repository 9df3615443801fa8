// The bound tree: a statement whose names are resolved to the catalogue's tables and columns and
// whose expressions have types.
//
// The binder builds it from the syntax tree, the translator turns it into storage SQL; what is
// rewritten between the two is rewritten here. Plain data, owned from the root down. Every source
// of rows has a number that is its own in the whole statement, and a column reference names its
// source by that number: a tree stays valid when sources move.
//
// The tree points into the catalogue it was bound against and must not outlive that version of it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "ambrelio/engine/embedded/binder/dialect_functions.h"
#include "ambrelio/engine/embedded/binder/value_type.h"
#include "ambrelio/engine/embedded/sql/ast.h"
#include "ambrelio/engine/embedded/storage/catalogue.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::embedded::bound {

struct Query;
struct Expr;
using ExprPtr = std::unique_ptr<Expr>;

enum class ExprKind : uint8_t {
  kLiteral,    // literal
  kColumn,     // column
  kNegate,     // -a
  kNot,        // not a
  kBinary,     // a op b
  kBetween,    // a [not] between b and c
  kIn,         // a [not] in (b, c, ...)
  kInQuery,    // a [not] in (query)
  kExists,     // [not] exists (query)
  kScalar,     // (query)
  kIsNull,     // a is [not] null
  kIif,        // iif(a, b, c)
  kFunction,   // function(a, b, ...)
  kAggregate,  // aggregate(a), or with `star` count(*); kFirst and kLast have their keys behind a
};

// What a column reference names in its source.
enum class ColumnPart : uint8_t {
  kField,   // a field of a table
  kRowId,   // the identity of a table's row
  kOutput,  // an output column of a query
  kKey,     // a key of a query's rows, not among its output columns (see Select::keys)
};

struct ColumnRef {
  int source = 0;
  ColumnPart part = ColumnPart::kField;
  int index = 0;                     // of the field, output column or key; 0 for a row id
  const FieldInfo* field = nullptr;  // kField
  const TableInfo* table = nullptr;  // kField, kRowId
};

struct Expr {
  ExprKind kind = ExprKind::kLiteral;
  ValueType type = ValueType::kNull;
  Variant literal;
  int slot =
      -1;  // of a literal: which of the statement's literals it is, -1 when it is no parameter
  ColumnRef column;
  sql::BinaryOp op = sql::BinaryOp::kAdd;
  bool negated = false;
  bool star = false;
  bool distinct = false;
  Aggregate aggregate = Aggregate::kCount;
  const DialectFunction* function = nullptr;
  std::vector<ExprPtr> args;
  std::unique_ptr<Query> query;
};

// A column that a query delivers.
struct Column {
  std::string name;
  ValueType type = ValueType::kNull;
  int32_t size = 0;
};

struct Source {
  enum class Kind : uint8_t { kTable, kQuery, kJoin } kind = Kind::kTable;
  int id = 0;                        // kTable, kQuery
  std::string name;                  // by which the statement knows it, "" for none
  const TableInfo* table = nullptr;  // kTable
  std::unique_ptr<Query> query;      // kQuery: a derived table or a stored query
  sql::JoinKind join = sql::JoinKind::kInner;
  std::unique_ptr<Source> left;  // kJoin
  std::unique_ptr<Source> right;
  ExprPtr on;
};

struct Select {
  std::vector<ExprPtr> items;  // one for each column of the query
  std::vector<Source> from;
  ExprPtr where;
  // A grouped select gives one row for each group; without group_by, one row in all.
  bool grouped = false;
  std::vector<ExprPtr> group_by;
  ExprPtr having;
  bool distinct = false;  // only where grouping cannot say it: see the binder
  std::optional<int64_t> top;
  bool top_percent = false;
  // What identifies and orders a row: the keys of the sources, or the groups.
  std::vector<ExprPtr> keys;
};

struct OrderKey {
  ExprPtr expr;
  bool descending = false;
};

// A select, or a union of two queries.
struct Query {
  std::unique_ptr<Select> select;
  std::unique_ptr<Query> left;
  std::unique_ptr<Query> right;
  bool union_all = false;
  std::vector<Column> columns;
  // The statement's own order, completed so that it decides between all rows. In a union the
  // expressions are the places of output columns (source 0).
  std::vector<OrderKey> order;
  size_t stated_order = 0;  // how many of `order` the statement itself gave
};

// A value on its way into a field.
struct FieldValue {
  const FieldInfo* field = nullptr;
  ExprPtr value;
};

struct Insert {
  const TableInfo* table = nullptr;
  std::vector<FieldValue> values;  // of `values (...)`
  std::unique_ptr<Query> query;    // or a query with one column for each of `fields`
  std::vector<const FieldInfo*> fields;
  std::vector<FieldValue> defaults;        // fields left out that have a value all the same
  std::vector<const FieldInfo*> counters;  // automatic numbers left out
};

struct UpdateTarget {
  int source = 0;
  const TableInfo* table = nullptr;
  std::vector<FieldValue> values;
};

// An update of the rows that `from` and `where` give; all its sources are tables.
struct Update {
  std::vector<Source> from;
  ExprPtr where;
  std::vector<UpdateTarget> targets;
  std::vector<OrderKey> order;  // in which rows are written
};

struct Delete {
  std::vector<Source> from;
  ExprPtr where;
  int target = 0;
  const TableInfo* table = nullptr;
};

using Statement = std::variant<std::unique_ptr<Query>, Insert, Update, Delete>;

ExprPtr Clone(const Expr& expr);
std::unique_ptr<Query> Clone(const Query& query);
Source Clone(const Source& source);

// Whether two expressions are one. `literals_compared` becomes true when the answer depended on the
// values of parameters.
bool SameExpr(const Expr& a, const Expr& b, bool& literals_compared);

ExprPtr MakeLiteral(Variant value, ValueType type);
ExprPtr MakeColumn(const ColumnRef& column, ValueType type);
ExprPtr MakeAnd(ExprPtr a, ExprPtr b);  // either may be null

// Calls `visit` for every source that is no join, in the order of the text.
template <class SourceType, class Visit>
void ForEachLeaf(SourceType& source, const Visit& visit) {
  if (source.kind == Source::Kind::kJoin) {
    ForEachLeaf(*source.left, visit);
    ForEachLeaf(*source.right, visit);
  } else {
    visit(source);
  }
}

// Calls `visit` for the expression and all below it, queries within it excepted.
template <class ExprType, class Visit>
void ForEachExpr(ExprType& expr, const Visit& visit) {
  visit(expr);
  for (auto& arg : expr.args) ForEachExpr(*arg, visit);
}

}  // namespace ambrelio::embedded::bound
