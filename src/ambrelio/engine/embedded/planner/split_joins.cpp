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

bool SameColumn(const ColumnRef& a, const ColumnRef& b) {
  return a.source == b.source && a.part == b.part && a.index == b.index;
}

// The columns of a select's sources that are named in what it delivers.
class Outlet {
 public:
  explicit Outlet(const Select& select) {
    for (const Source& source : select.from) {
      bound::ForEachLeaf(source, [&](const Source& leaf) { sources_.push_back(leaf.id); });
    }
  }

  // Makes the expression read the columns from output columns of source `id`.
  void Redirect(ExprPtr& expr, int id) {
    RewriteAll(expr, [&](ExprPtr& part) {
      if (part->kind != ExprKind::kColumn) return;
      if (std::find(sources_.begin(), sources_.end(), part->column.source) == sources_.end()) {
        return;
      }
      const auto found = std::find_if(columns_.begin(), columns_.end(), [&](const ExprPtr& column) {
        return SameColumn(column->column, part->column);
      });
      ColumnRef ref;
      ref.source = id;
      ref.part = ColumnPart::kOutput;
      ref.index = static_cast<int>(found - columns_.begin());
      const ValueType type = part->type;
      if (found == columns_.end()) columns_.push_back(std::move(part));
      part = bound::MakeColumn(ref, type);
    });
  }

  const std::vector<ExprPtr>& columns() const { return columns_; }

 private:
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
  Outlet outlet(*query.select);
  ForEachDelivered(query, [&](ExprPtr& expr) { outlet.Redirect(expr, id); });
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
