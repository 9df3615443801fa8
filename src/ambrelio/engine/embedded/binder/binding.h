// The binder's working state. See binder.h for what it does and raises.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/binder/bound_tree.h"
#include "ambrelio/engine/embedded/binder/scope.h"
#include "ambrelio/engine/embedded/sql/ast.h"

namespace ambrelio::embedded {

// The first name in an expression, as messages show where a fault is: a column, else a function, ""
// without either.
std::string FirstName(const sql::Expr& expr);

class Binding {
 public:
  explicit Binding(const Catalogue& catalogue) : catalogue_(catalogue) {}

  bound::Insert BindInsert(const sql::Insert& insert);
  bound::Update BindUpdate(const sql::Update& update);
  bound::Delete BindDelete(const sql::Delete& statement);
  std::unique_ptr<bound::Query> BindQuery(const sql::Query& query);

  // Raises 3061 when names were left that nothing provides.
  void RequireAllNames() const;
  bool literals_matter() const { return literals_matter_; }

 private:
  // Where an expression stands, as far as aggregates are concerned.
  enum class Place : uint8_t { kWhere, kJoin, kGroupBy, kInAggregate, kValue, kSelect };

  // Sources (bind_source.cpp).
  bound::Source BindSource(const sql::Source& source, Scope& scope);
  bound::Source BindNamed(const sql::Source& source, Scope& scope);
  bound::Source MakeTable(const std::string& name, const TableInfo& table, Scope& scope, int depth);
  bound::Source MakeQuery(const std::string& name, std::unique_ptr<bound::Query> query,
                          Scope& scope);
  bound::ExprPtr BindOn(const sql::Expr& on, const bound::Source& left, const bound::Source& right,
                        Scope& scope);
  // Calls `use` with the syntax tree of a stored query, literals being constants meanwhile.
  template <class Use>
  void WithStoredQuery(const QueryInfo& stored, const Use& use);

  // Queries (bind_query.cpp).
  std::unique_ptr<bound::Query> BindSelect(const sql::Query& query);
  std::unique_ptr<bound::Query> BindUnion(const sql::Query& query);
  void BindItems(const std::vector<sql::SelectItem>& items, const Scope& scope,
                 bound::Query& query);
  void BindStar(const sql::SelectItem& item, const Scope& scope, bound::Query& query,
                std::vector<const Relation*>& origins);
  void GroupBySelectList(bound::Select& select);
  void BindOrder(const sql::Query& query, bound::Query& result);
  void RequireGrouped(const bound::Expr& expr, const bound::Select& select, const Scope& scope,
                      dao::DaoError error);
  void ShowFirstSpelling(bound::ExprPtr& expr, const bound::Select& select, const Scope& scope);
  void CompleteOrder(bound::Query& query);
  bool Same(const bound::Expr& a, const bound::Expr& b);
  bool Contains(const std::vector<bound::ExprPtr>& exprs, const bound::Expr& expr);

  // Expressions (bind_expr.cpp).
  bound::ExprPtr BindExpr(const sql::Expr& expr, Place place);
  bound::ExprPtr BindColumn(const sql::Expr& expr, Place place);
  bound::ExprPtr BindOperator(const sql::Expr& expr, Place place);
  bound::ExprPtr BindSubquery(const sql::Expr& expr, Place place);
  bound::ExprPtr BindCall(const sql::Expr& expr, Place place);
  bound::ExprPtr BindAggregate(const sql::Expr& expr, Aggregate aggregate, Place place);
  void BindArgs(const sql::Expr& expr, Place place, bound::Expr& result);

  // Writes (bind_write.cpp).
  void BindInsertValues(const sql::Insert& insert, bound::Insert& result);
  void BindInsertQuery(const sql::Insert& insert, bound::Insert& result);
  void BindDefaults(bound::Insert& result);
  bound::Source Flatten(const sql::Source& source, Scope& scope, int depth,
                        bound::ExprPtr& condition);
  bound::Source FlattenQuery(const sql::Query& query, const std::string& name, Scope& scope,
                             int depth, bound::ExprPtr& condition);
  void BindAssignment(const sql::Assignment& assignment, bound::Update& update);

  [[noreturn]] static void Fail(dao::DaoError error, std::string_view detail = {});

  const Catalogue& catalogue_;
  const Scope* scope_ = nullptr;  // of the expression being bound
  int next_source_ = 1;
  std::vector<std::string> unknown_names_;
  std::vector<std::string> open_queries_;  // stored queries being bound, outermost first
  bool saw_aggregate_ = false;
  bool literals_matter_ = false;
  // The select list being bound: aliases so far, and that of the item itself.
  const std::vector<sql::SelectItem>* items_ = nullptr;
  size_t item_ = 0;
  const Scope* items_scope_ = nullptr;
  // Queries whose sources were taken into an update.
  std::vector<std::unique_ptr<bound::Query>> inlined_;
};

}  // namespace ambrelio::embedded
