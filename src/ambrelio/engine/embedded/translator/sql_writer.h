// Writes the storage engine's SQL for one statement. See translator.h.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/engine/embedded/binder/bound_tree.h"

namespace ambrelio::embedded {

class SqlWriter {
 public:
  // Expressions (write_expr.cpp).
  //
  // Value: what a column of the expression holds, Booleans being 0 and -1. Condition: what stands
  // in a `where`, true being any number but 0. Text and Number: the value converted. Key: the value
  // as an ordering or grouping term.
  std::string Value(const bound::Expr& expr);
  std::string Condition(const bound::Expr& expr);
  std::string Text(const bound::Expr& expr);
  std::string Key(const bound::Expr& expr);
  // The value converted for a field.
  std::string Stored(const FieldInfo& field, const bound::Expr& expr, bool strict);

  // Queries (write_query.cpp).
  std::string Ordered(const bound::Query& query);
  std::string Unordered(const bound::Query& query);
  std::string From(const std::vector<bound::Source>& from);
  // ` FROM ... WHERE ...`. To be written behind everything that names columns of the sources: only
  // then it is known which of them deliver keys.
  std::string FromWhere(const std::vector<bound::Source>& from, const bound::ExprPtr& where);
  std::string OrderBy(const std::vector<bound::OrderKey>& order);

 private:
  using Types = std::vector<ValueType>;

  std::string Column(const bound::ColumnRef& column);
  std::string Number(const bound::Expr& expr);
  std::string Operator(const bound::Expr& expr);
  std::string Comparison(const bound::Expr& expr, const std::string& rest);
  std::string Predicate(const bound::Expr& expr);
  std::string Call(const bound::Expr& expr);
  std::string AggregateCall(const bound::Expr& expr);

  // What is asked of a select besides its rows.
  struct Wanted {
    bool order = false;
    bool keys = false;
    bool collated = false;         // its texts decide about equal rows
    const Types* types = nullptr;  // of the columns, where they are not the select's own
  };
  std::string Query(const bound::Query& query, const Wanted& wanted);
  std::string Select(const bound::Query& query, const Wanted& wanted);
  std::string Items(const bound::Query& query, const Wanted& wanted);
  std::string Body(const bound::Select& select);
  std::string Top(const bound::Query& query, const Wanted& wanted);
  std::string Union(const bound::Query& query, const Types& types);
  std::string UnionByGrouping(const bound::Query& query, const Types& types);
  std::string Operand(const bound::Query& query, const Types& types, bool union_all);
  std::string Join(const bound::Source& source, bool in_brackets);
  std::string JoinOperand(const bound::Source& source, bool in_brackets);
  std::string Leaf(const bound::Source& source, bool in_brackets);

  std::set<int> keys_wanted_;     // queries whose keys were named
  std::set<int> row_ids_wanted_;  // tables whose row ids were named
};

}  // namespace ambrelio::embedded
