#include <algorithm>
#include <utility>

#include "ambrelio/engine/embedded/planner/nulls.h"
#include "ambrelio/engine/embedded/planner/rewrites.h"
#include "ambrelio/engine/embedded/planner/tree_walk.h"

namespace ambrelio::embedded::planner {

using bound::ColumnPart;
using bound::ColumnRef;
using bound::Expr;
using bound::ExprKind;
using bound::ExprPtr;
using bound::Query;
using bound::Select;
using bound::Source;
using sql::JoinKind;

namespace {

// The place of a left join that can be split: nothing around it may leave its rows out.
Source* FindSplit(Source& source, const std::vector<int>& tested) {
  if (source.kind != Source::Kind::kJoin) return nullptr;
  const bool is_left = source.join == JoinKind::kLeft;
  if (is_left && source.right->kind == Source::Kind::kTable &&
      std::find(tested.begin(), tested.end(), source.right->id) != tested.end()) {
    return &source;
  }
  if (source.join != JoinKind::kRight) {
    if (Source* found = FindSplit(*source.left, tested)) return found;
  }
  if (is_left) return nullptr;
  return FindSplit(*source.right, tested);
}

// The sources whose columns stand under null-tests in a condition.
void CollectTested(const Expr& condition, std::vector<int>& tested) {
  bound::ForEachExpr(condition, [&](const Expr& part) {
    if (part.kind != ExprKind::kIsNull || part.args[0]->kind != ExprKind::kColumn) return;
    tested.push_back(part.args[0]->column.source);
  });
}

void CollectTested(const Source& source, std::vector<int>& tested) {
  if (source.kind != Source::Kind::kJoin) return;
  if (source.on) CollectTested(*source.on, tested);
  CollectTested(*source.left, tested);
  CollectTested(*source.right, tested);
}

Source* FindSplit(Select& select) {
  std::vector<int> tested;
  if (select.where) CollectTested(*select.where, tested);
  for (const Source& source : select.from) CollectTested(source, tested);
  for (Source& source : select.from) {
    if (Source* found = FindSplit(source, tested)) return found;
  }
  return nullptr;
}

// The sources that are there in every row.
void CollectSolid(const Source& source, std::vector<int>& solid) {
  if (source.kind != Source::Kind::kJoin) return solid.push_back(source.id);
  if (source.join != JoinKind::kRight) CollectSolid(*source.left, solid);
  if (source.join != JoinKind::kLeft) CollectSolid(*source.right, solid);
}

void ResolveAll(Query& query) {
  std::vector<int> solid;
  for (const Source& source : query.select->from) CollectSolid(source, solid);
  const NeverReadsNull never_null = [&](const ColumnRef& column) {
    return HoldsNoNull(column) &&
           std::find(solid.begin(), solid.end(), column.source) != solid.end();
  };
  RewriteAll(query, [&](ExprPtr& expr) { Resolve(expr, never_null); });
}

bool CanHold(const Query& query) {
  const std::vector<const Expr*> terms = Terms(query.select->where);
  return std::none_of(terms.begin(), terms.end(), [](const Expr* term) {
    return IsNeverTrue(*term, [](const ColumnRef&) { return false; });
  });
}

// The rows with a partner: the join is an inner one.
std::unique_ptr<Query> WithPartner(const Query& query) {
  auto branch = bound::Clone(query);
  FindSplit(*branch->select)->join = JoinKind::kInner;
  ResolveAll(*branch);
  return branch;
}

// `not exists (select 1 from table where on)`.
ExprPtr HasNone(Source table, ExprPtr on) {
  auto query = std::make_unique<Query>();
  query->select = std::make_unique<Select>();
  query->select->items.push_back(bound::MakeLiteral(int32_t{1}, ValueType::kLong));
  query->columns.push_back({"", ValueType::kLong, SizeOf(ValueType::kLong)});
  query->select->from.push_back(std::move(table));
  query->select->where = std::move(on);
  auto none = std::make_unique<Expr>();
  none->kind = ExprKind::kExists;
  none->type = ValueType::kBoolean;
  none->negated = true;
  none->query = std::move(query);
  return none;
}

// The rows without a partner: the table is gone, and every column of it reads Null.
std::unique_ptr<Query> WithoutPartner(const Query& query) {
  auto branch = bound::Clone(query);
  Source& join = *FindSplit(*branch->select);
  Source table = std::move(*join.right);
  ExprPtr on = std::move(join.on);
  Source left = std::move(*join.left);
  join = std::move(left);
  const int id = table.id;
  RewriteAll(*branch, [id](ExprPtr& expr) {
    if (expr->kind != ExprKind::kColumn || expr->column.source != id) return;
    expr = bound::MakeLiteral(Variant::Null(), expr->type);
  });
  ResolveAll(*branch);
  branch->select->where =
      bound::MakeAnd(std::move(branch->select->where), HasNone(std::move(table), std::move(on)));
  return branch;
}

// What the rows of a select's sources deliver to the select itself: the columns that it names, and
// what a grouped select computes of each row, which is computed where the row is found then. In a
// branch it can become less, and fewer columns go through the grouping.
class Outlet {
 public:
  // The columns come from source `id`.
  Outlet(Select& select, int id) : id_(id) {
    for (const Source& source : select.from) {
      bound::ForEachLeaf(source, [&](const Source& leaf) { sources_.push_back(leaf.id); });
    }
    for (ExprPtr& group : select.group_by) DeliverComputed(group);
  }

  // Makes the expression read what is delivered.
  void Redirect(ExprPtr& expr) {
    const bool in_group = expr->kind == ExprKind::kAggregate;
    if (!in_group && Find(*expr) != columns_.end()) return Deliver(expr);
    if (expr->query) return RewriteAll(expr, [&](ExprPtr& part) { DeliverColumn(part); });
    DeliverColumn(expr);
    for (ExprPtr& arg : expr->args) {
      if (in_group) DeliverComputed(arg);
      Redirect(arg);
    }
  }

  const std::vector<ExprPtr>& columns() const { return columns_; }

 private:
  bool IsOurs(const Expr& expr) const {
    return expr.kind == ExprKind::kColumn &&
           std::find(sources_.begin(), sources_.end(), expr.column.source) != sources_.end();
  }

  // What needs a row, and nothing but the row.
  bool IsOfOneRow(const Expr& expr) const {
    bool reads_row = false;
    bool reads_more = false;
    bound::ForEachExpr(expr, [&](const Expr& part) {
      const bool ours = IsOurs(part);
      reads_row = reads_row || ours;
      reads_more = reads_more || part.query || part.kind == ExprKind::kAggregate ||
                   (part.kind == ExprKind::kColumn && !ours);
    });
    return reads_row && !reads_more;
  }

  void DeliverColumn(ExprPtr& expr) {
    if (IsOurs(*expr)) Deliver(expr);
  }
  void DeliverComputed(ExprPtr& expr) {
    if (IsOfOneRow(*expr)) Deliver(expr);
  }

  void Deliver(ExprPtr& expr) {
    const auto found = Find(*expr);
    ColumnRef ref;
    ref.source = id_;
    ref.part = ColumnPart::kOutput;
    ref.index = static_cast<int>(found - columns_.begin());
    const ValueType type = expr->type;
    if (found == columns_.end()) columns_.push_back(std::move(expr));
    expr = bound::MakeColumn(ref, type);
  }

  // Two parameters can be the same today and differ with the next text of the shape.
  std::vector<ExprPtr>::iterator Find(const Expr& expr) {
    return std::find_if(columns_.begin(), columns_.end(), [&](const ExprPtr& column) {
      bool literals_compared = false;
      return bound::SameExpr(*column, expr, literals_compared) && !literals_compared;
    });
  }

  int id_;
  std::vector<int> sources_;
  std::vector<ExprPtr> columns_;
};

// The columns alone, under the same conditions: what a branch delivers to the union.
Query RowsOf(Query& query, const std::vector<ExprPtr>& columns) {
  Query rows;
  rows.select = std::make_unique<Select>();
  for (const ExprPtr& column : columns) {
    rows.select->items.push_back(bound::Clone(*column));
    rows.columns.push_back({"", column->type, SizeOf(column->type)});
  }
  if (columns.empty()) {
    rows.select->items.push_back(bound::MakeLiteral(int32_t{1}, ValueType::kLong));
    rows.columns.push_back({"", ValueType::kLong, SizeOf(ValueType::kLong)});
  }
  rows.select->from = std::move(query.select->from);
  rows.select->where = std::move(query.select->where);
  return rows;
}

// The query over a union of the two branches, in a source of the next number.
void ReadFromBranches(Query& query, int& next_source) {
  const int id = next_source++;
  Outlet outlet(*query.select, id);
  ForEachDelivered(query, [&](ExprPtr& expr) { outlet.Redirect(expr); });
  const Query rows = RowsOf(query, outlet.columns());
  auto both = std::make_unique<Query>();
  both->left = WithPartner(rows);
  both->right = WithoutPartner(rows);
  Renumber(*both->right, next_source);
  both->union_all = true;
  both->columns = rows.columns;
  Source source;
  source.kind = Source::Kind::kQuery;
  source.id = id;
  source.query = std::move(both);
  query.select->from.clear();
  query.select->from.push_back(std::move(source));
  query.select->where = nullptr;
}

}  // namespace

bool SplitJoin(Query& query, int& next_source) {
  if (FindSplit(*query.select) == nullptr) return false;
  std::unique_ptr<Query> with = WithPartner(query);
  std::unique_ptr<Query> without = WithoutPartner(query);
  if (!CanHold(*with)) {
    query = std::move(*without);
  } else if (!CanHold(*without)) {
    query = std::move(*with);
  } else {
    ReadFromBranches(query, next_source);
  }
  return true;
}

}  // namespace ambrelio::embedded::planner
