#include "ambrelio/engine/embedded/execution/explanation.h"

#include <utility>

#include "ambrelio/engine/embedded/execution/preparation.h"
#include "ambrelio/engine/embedded/sql/lexer.h"

namespace ambrelio::embedded {

namespace {

// A line of the storage engine's plan; what belongs to none has the parent 0.
struct PlanLine {
  int64_t id = 0;
  int64_t parent = 0;
  std::string text;
};

std::vector<PlanStep> StepsBelow(const std::vector<PlanLine>& lines, int64_t parent) {
  std::vector<PlanStep> steps;
  for (const PlanLine& line : lines) {
    if (line.parent == parent) steps.push_back({line.text, StepsBelow(lines, line.id)});
  }
  return steps;
}

// The literals may decide about the plan, as whether an index of some rows only will do.
ExplainedStatement Explained(const char* use, const std::string& sql, Storage& storage,
                             const std::vector<Variant>& literals) {
  StorageStatement plan(storage.raw(), "EXPLAIN QUERY PLAN " + sql);
  plan.BindAll(literals);
  std::vector<PlanLine> lines;
  while (plan.Step()) {
    lines.push_back({plan.Integer(0), plan.Integer(1), std::string(plan.Text(3))});
  }
  return {use, sql, StepsBelow(lines, 0)};
}

std::vector<ExplainedStatement> StatementsOf(const Prepared& prepared, Storage& storage,
                                             const std::vector<Variant>& literals) {
  std::vector<ExplainedStatement> statements;
  const auto add = [&](const char* use, const StorageStatement& statement) {
    statements.push_back(Explained(use, sqlite3_sql(statement.raw()), storage, literals));
  };
  const bool reads = prepared.columns || prepared.stepwise;
  add(reads ? "rows" : "write", prepared.main);
  if (prepared.row) add("row", *prepared.row);
  if (!prepared.last_sql.empty()) {
    statements.push_back(Explained("last row", prepared.last_sql, storage, literals));
  }
  if (!prepared.stepwise) return statements;
  add("values", prepared.stepwise->values);
  for (const Prepared::Target& target : prepared.stepwise->targets) {
    const std::string sql = sqlite3_sql(target.write.raw());
    statements.push_back(Explained("row write", sql, storage, {}));
  }
  return statements;
}

}  // namespace

Explanation ExplanationOf(const Preparation& preparation, const PreparationGround& ground,
                          sql::Shape shape) {
  const RewritesMade& made = preparation.rewrites;
  Explanation explanation;
  explanation.shape = std::move(shape.key);
  explanation.by_text = preparation.by_text;
  explanation.literals = std::move(shape.literals);
  explanation.rewrites = {
      {std::string(kInnerJoins), ground.plan.inner_joins, made.inner_joins},
      {std::string(kMergedQueries), ground.plan.merged_queries, made.merged_queries},
      {std::string(kSplitJoins), ground.plan.split_joins, made.split_joins},
      {std::string(kShorterKeys), ground.plan.shorter_keys, made.shorter_keys},
  };
  explanation.plan_refused = preparation.plan_refused;
  explanation.statements =
      StatementsOf(*preparation.prepared, ground.storage, explanation.literals);
  return explanation;
}

}  // namespace ambrelio::embedded
