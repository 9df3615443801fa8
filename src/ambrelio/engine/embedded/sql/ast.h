// The syntax tree of the Jet dialect.
//
// Plain data, owned from the root down, printed and compared nowhere: the parser builds it, the
// binder resolves its names, the translator turns it into the storage engine's SQL. Names keep the
// spelling of the text; they compare without regard to case.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "ambrelio/value/variant.h"

namespace ambrelio::embedded::sql {

struct Query;

enum class ExprKind : uint8_t {
  kLiteral,  // literal
  kColumn,   // [qualifier.]name
  kNegate,   // -a
  kNot,      // not a
  kBinary,   // a op b
  kBetween,  // a [not] between b and c
  kIn,       // a [not] in (b, c, ...)
  kInQuery,  // a [not] in (query)
  kExists,   // [not] exists (query)
  kScalar,   // (query), one column, its first row
  kIsNull,   // a is [not] null
  kCall,     // name(a, b, ...); count(*) is a call with `star`
};

enum class BinaryOp : uint8_t {
  kAdd,
  kSubtract,
  kMultiply,
  kDivide,
  kIntDivide,
  kMod,
  kPower,
  kConcat,  // + - * / \ mod ^ &
  kEqual,
  kNotEqual,
  kLess,
  kLessEqual,
  kGreater,
  kGreaterEqual,
  kLike,
  kAnd,
  kOr,
  kXor,
  kEqv,
  kImp,
};

struct Expr;
using ExprPtr = std::unique_ptr<Expr>;

struct Expr {
  ExprKind kind = ExprKind::kLiteral;
  // kLiteral: Null, Boolean, Long, Double (a decimal or a whole number beyond Long), Text, Date.
  Variant literal;
  // kLiteral: the place of the literal among the statement's literals (see Shape), -1 for those
  // that are part of the shape itself (Null, True, False).
  int slot = -1;
  std::string qualifier;  // kColumn: "" when there is none
  std::string name;       // kColumn, kCall
  BinaryOp op = BinaryOp::kAdd;
  bool negated = false;   // kBetween, kIn, kInQuery, kExists, kIsNull, and kBinary with kLike
  bool star = false;      // kCall: count(*)
  bool distinct = false;  // kCall: an aggregate over distinct values
  std::vector<ExprPtr> args;
  std::unique_ptr<Query> query;  // kInQuery, kExists, kScalar
  int offset = 0;                // where it starts in the text, for error messages
  int height = 1;                // levels of tree from here down, the queries inside included;
                                 // the parser lets none exceed kMaxHeight
};

// Deep enough for every real statement, and for every recursion over a tree to be safe.
inline constexpr int kMaxHeight = 500;

// One entry of a select list: `*`, `qualifier.*`, or an expression with an optional alias.
struct SelectItem {
  bool star = false;
  std::string qualifier;  // of a star
  ExprPtr expr;
  std::string alias;  // "" for none
};

enum class JoinKind : uint8_t { kInner, kLeft, kRight };

// Where rows come from.
struct Source {
  enum class Kind : uint8_t { kNamed, kDerived, kJoin } kind = Kind::kNamed;
  std::string name;              // kNamed: a table or a stored query
  std::string alias;             // kNamed, kDerived: "" for none
  std::unique_ptr<Query> query;  // kDerived
  JoinKind join = JoinKind::kInner;
  std::unique_ptr<Source> left;  // kJoin
  std::unique_ptr<Source> right;
  ExprPtr on;
};

struct Select {
  bool distinct = false;  // distinct and distinctrow alike keep this flag apart from each other
  bool distinct_row = false;
  std::optional<int64_t> top;  // part of the shape: never taken out as a literal
  bool top_percent = false;
  std::vector<SelectItem> items;
  std::vector<Source> from;  // joined by comma
  ExprPtr where;             // null for none
  std::vector<ExprPtr> group_by;
  ExprPtr having;
};

struct OrderItem {
  // A whole-number literal here is the place of an output column (from 1) and keeps slot -1: it is
  // part of the shape.
  ExprPtr expr;
  bool descending = false;
};

// A select, or a union of queries; `order_by` is the outermost one's.
struct Query {
  // Exactly one of the two: a plain select, or two operands of a union.
  std::unique_ptr<Select> select;
  std::unique_ptr<Query> left;
  std::unique_ptr<Query> right;
  bool union_all = false;
  std::vector<OrderItem> order_by;
  int height = 1;  // as Expr::height; not kept for the operands of a union
};

struct Insert {
  std::string table;
  std::vector<std::string> columns;  // empty: all, in ordinal order
  std::vector<ExprPtr> values;       // of `values (...)`
  std::unique_ptr<Query> query;      // or the query that gives the rows
};

struct Assignment {
  std::string qualifier;
  std::string column;
  ExprPtr value;
};

struct Update {
  std::vector<Source> target;  // a table, a join or a derived table
  std::vector<Assignment> set;
  ExprPtr where;
};

struct Delete {
  std::string target;  // of `delete t.* from ...`; "" when it is the only source
  std::vector<Source> from;
  ExprPtr where;
};

struct ColumnDefinition {
  std::string name;
  std::string type;  // upper case, as written: INTEGER, TEXT, ...
  int size = 0;
  bool not_null = false;
  bool primary_key = false;
  bool unique = false;
  std::string key_name;  // of `constraint name primary key`; "" for none
  ExprPtr default_value;
};

// `[constraint name] primary key (a, b)` or `unique (a, b)`.
struct TableConstraint {
  std::string name;
  bool primary_key = false;
  std::vector<std::string> columns;
};

struct CreateTable {
  std::string name;
  std::vector<ColumnDefinition> columns;
  std::vector<TableConstraint> constraints;
};

struct CreateIndex {
  std::string name;
  std::string table;
  bool unique = false;
  bool primary = false;
  bool ignore_nulls = false;
  bool disallow_nulls = false;
  struct Column {
    std::string name;
    bool descending = false;
  };
  std::vector<Column> columns;
};

struct AlterTable {
  std::string table;
  enum class Action : uint8_t { kAddColumn, kDropColumn, kAddConstraint, kDropConstraint } action;
  ColumnDefinition column;     // kAddColumn; only the name for kDropColumn
  TableConstraint constraint;  // kAddConstraint; only the name for kDropConstraint
};

struct Drop {
  enum class What : uint8_t { kTable, kIndex } what = What::kTable;
  std::string name;
  std::string table;  // of the index
};

using Statement =
    std::variant<Query, Insert, Update, Delete, CreateTable, CreateIndex, AlterTable, Drop>;

}  // namespace ambrelio::embedded::sql
