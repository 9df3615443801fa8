// Where rows come from: tables, stored queries, derived tables and their joins.
#include <algorithm>

#include "ambrelio/engine/embedded/binder/binding.h"
#include "ambrelio/engine/embedded/binder/binding_stored.h"

namespace ambrelio::embedded {

using bound::ExprPtr;
using bound::Source;
using dao::DaoError;

Source Binding::MakeTable(const std::string& name, const TableInfo& table, Scope& scope,
                          int depth) {
  Source source;
  source.kind = Source::Kind::kTable;
  source.id = next_source_++;
  source.name = name;
  source.table = &table;
  Relation relation(name, source.id, table);
  relation.depth = depth;
  scope.relations.push_back(std::move(relation));
  return source;
}

Source Binding::MakeQuery(const std::string& name, std::unique_ptr<bound::Query> query,
                          Scope& scope) {
  Source source;
  source.kind = Source::Kind::kQuery;
  source.id = next_source_++;
  source.name = name;
  source.query = std::move(query);
  scope.relations.emplace_back(name, source.id, *source.query);
  return source;
}

Source Binding::BindNamed(const sql::Source& source, Scope& scope) {
  const std::string& name = source.alias.empty() ? source.name : source.alias;
  if (const TableInfo* table = catalogue_.FindTable(source.name)) {
    return MakeTable(name, *table, scope, 0);
  }
  const QueryInfo* stored = catalogue_.FindQuery(source.name);
  if (stored == nullptr) Fail(DaoError::kUnknownTable, source.name);
  std::unique_ptr<bound::Query> query;
  WithStoredQuery(*stored, [&](const sql::Query& tree) { query = BindQuery(tree); });
  return MakeQuery(name, std::move(query), scope);
}

Source Binding::BindSource(const sql::Source& source, Scope& scope) {
  switch (source.kind) {
    case sql::Source::Kind::kNamed:
      return BindNamed(source, scope);
    case sql::Source::Kind::kDerived:
      return MakeQuery(source.alias, BindQuery(*source.query), scope);
    case sql::Source::Kind::kJoin:
      break;
  }
  Source join;
  join.kind = Source::Kind::kJoin;
  join.join = source.join;
  join.left = std::make_unique<Source>(BindSource(*source.left, scope));
  join.right = std::make_unique<Source>(BindSource(*source.right, scope));
  join.on = BindOn(*source.on, *join.left, *join.right, scope);
  return join;
}

namespace {

bool Mentions(const bound::Expr& expr, const Source& side) {
  bool found = false;
  bound::ForEachExpr(expr, [&](const bound::Expr& part) {
    if (part.kind != bound::ExprKind::kColumn) return;
    bound::ForEachLeaf(side,
                       [&](const Source& leaf) { found = found || leaf.id == part.column.source; });
  });
  return found;
}

// Whether each of the terms joined by `and` names both sides.
bool JoinsBoth(const bound::Expr& on, const Source& left, const Source& right) {
  if (on.kind == bound::ExprKind::kBinary && on.op == sql::BinaryOp::kAnd) {
    return JoinsBoth(*on.args[0], left, right) && JoinsBoth(*on.args[1], left, right);
  }
  return Mentions(on, left) && Mentions(on, right);
}

}  // namespace

ExprPtr Binding::BindOn(const sql::Expr& on, const Source& left, const Source& right,
                        Scope& scope) {
  const Scope* outside = scope_;
  scope_ = &scope;
  const size_t unknown_before = unknown_names_.size();
  ExprPtr bound = BindExpr(on, Place::kJoin);
  scope_ = outside;
  // A name that nothing provides is reported as such.
  if (unknown_names_.size() == unknown_before && !JoinsBoth(*bound, left, right)) {
    Fail(DaoError::kJoinNotSupported, FirstName(on));
  }
  return bound;
}

void Binding::Fail(DaoError error, std::string_view detail) {
  dao::Raise(error, dao::source::kDatabase, std::string(detail));
}

void Binding::RequireAllNames() const {
  if (unknown_names_.empty()) return;
  std::string detail = std::to_string(unknown_names_.size());
  for (const std::string& name : unknown_names_) {
    detail += &name == unknown_names_.data() ? " (" : ", ";
    detail += name;
  }
  Fail(DaoError::kTooFewParameters, detail + ")");
}

}  // namespace ambrelio::embedded
