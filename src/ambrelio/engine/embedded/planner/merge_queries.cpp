#include <algorithm>
#include <utility>

#include "ambrelio/engine/embedded/planner/rewrites.h"
#include "ambrelio/engine/embedded/planner/tree_walk.h"

namespace ambrelio::embedded::planner {

using bound::ColumnPart;
using bound::ExprKind;
using bound::ExprPtr;
using bound::Query;
using bound::Select;
using bound::Source;
using sql::JoinKind;

namespace {

bool ChoosesOnly(const Query& query) {
  if (!query.select) return false;
  const Select& select = *query.select;
  return !select.from.empty() && !select.grouped && !select.distinct && !select.top;
}

bool ArePlain(const std::vector<ExprPtr>& columns) {
  return std::all_of(columns.begin(), columns.end(),
                     [](const ExprPtr& column) { return column->kind == ExprKind::kColumn; });
}

// Several sources as one: every row of each with every row of the others.
Source Crossed(std::vector<Source> sources) {
  Source all = std::move(sources.front());
  for (size_t i = 1; i < sources.size(); ++i) {
    Source join;
    join.kind = Source::Kind::kJoin;
    join.left = std::make_unique<Source>(std::move(all));
    join.right = std::make_unique<Source>(std::move(sources[i]));
    all = std::move(join);
  }
  return all;
}

class Merger {
 public:
  Merger(Query& query, int& next_source) : query_(query), next_source_(next_source) {}

  int Run() {
    for (Source& source : query_.select->from) Visit(source, nullptr);
    return merged_;
  }

 private:
  // `optional` is the condition of the innermost outer join on whose optional side the source is.
  void Visit(Source& source, ExprPtr* optional) {
    if (source.kind == Source::Kind::kJoin) {
      Visit(*source.left, source.join == JoinKind::kRight ? &source.on : optional);
      Visit(*source.right, source.join == JoinKind::kLeft ? &source.on : optional);
      return;
    }
    if (source.kind != Source::Kind::kQuery || !ChoosesOnly(*source.query)) return;
    const Select& select = *source.query->select;
    const bool plain = ArePlain(select.items) && ArePlain(select.keys);
    if (optional != nullptr && !plain) return;
    ++merged_;
    Merge(source, optional == nullptr ? query_.select->where : *optional);
    Visit(source, optional);
  }

  void Merge(Source& source, ExprPtr& condition) {
    const std::unique_ptr<Query> merged = std::move(source.query);
    Select& select = *merged->select;
    const int id = source.id;
    source = Crossed(std::move(select.from));
    condition = bound::MakeAnd(std::move(condition), std::move(select.where));
    RewriteAll(query_, [&](ExprPtr& expr) {
      if (expr->kind != ExprKind::kColumn || expr->column.source != id) return;
      const auto& named = expr->column.part == ColumnPart::kKey ? select.keys : select.items;
      expr = bound::Clone(*named[static_cast<size_t>(expr->column.index)]);
      Renumber(expr, next_source_);
    });
  }

  Query& query_;
  int& next_source_;
  int merged_ = 0;
};

}  // namespace

int MergeQueries(Query& query, int& next_source) { return Merger(query, next_source).Run(); }

}  // namespace ambrelio::embedded::planner
