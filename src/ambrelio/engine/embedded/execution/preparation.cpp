#include "ambrelio/engine/embedded/execution/preparation.h"

#include <utility>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/binder/binder.h"
#include "ambrelio/engine/embedded/translator/translator.h"

namespace ambrelio::embedded {

namespace {

std::unique_ptr<Prepared> PrepareText(Storage& storage, const std::string& sql) {
  return std::make_unique<Prepared>(StorageStatement(storage.raw(), sql));
}

std::unique_ptr<Prepared> PrepareUpdate(const bound::Update& update,
                                        const PreparationGround& ground, bool strict) {
  Storage& storage = ground.storage;
  if (!GoesRowByRow(update)) return PrepareText(storage, TranslateUpdate(update, strict));
  const StepwiseUpdateSql sql =
      TranslateStepwise(update, strict, static_cast<int>(ground.literal_count) + 1);
  auto prepared = PrepareText(storage, sql.rows);
  prepared->row_parameter = static_cast<int>(ground.literal_count) + 1;
  prepared->stepwise.emplace(
      Prepared::Stepwise{StorageStatement(storage.raw(), sql.values), sql.source_count, {}});
  for (const StepwiseUpdateSql::Target& target : sql.targets) {
    prepared->stepwise->targets.push_back({target.source, target.first_value, target.value_count,
                                           StorageStatement(storage.raw(), target.write)});
  }
  return prepared;
}

struct PrepareBound {
  const PreparationGround& ground;
  bool strict;

  std::unique_ptr<Prepared> operator()(const std::unique_ptr<bound::Query>& /*unused*/) const {
    dao::Raise(dao::DaoError::kExecuteOnSelect, dao::source::kDatabase);
  }
  std::unique_ptr<Prepared> operator()(const bound::Insert& insert) const {
    return PrepareText(ground.storage, TranslateInsert(insert, strict));
  }
  std::unique_ptr<Prepared> operator()(const bound::Update& update) const {
    return PrepareUpdate(update, ground, strict);
  }
  std::unique_ptr<Prepared> operator()(const bound::Delete& statement) const {
    return PrepareText(ground.storage, TranslateDelete(statement));
  }
};

template <class Prepare>
Preparation WithPlanOrWithout(const PreparationGround& ground, const Prepare& prepare) {
  try {
    return prepare(ground);
  } catch (const AutomationError& error) {
    if (error.number() != static_cast<int>(dao::DaoError::kReserved)) throw;
  }
  const PlanOptions none = PlanOptions::Without("all");
  Preparation result = prepare({ground.catalogue, ground.storage, none, ground.literal_count});
  result.plan_refused = true;
  return result;
}

template <class PrepareOn>
Preparation Prepare(const PreparationGround& ground, const PrepareOn& prepare) {
  Preparation result;
  TablesTouched touched =
      ground.storage.TouchedBy([&] { result = WithPlanOrWithout(ground, prepare); });
  result.prepared->touched = std::move(touched);
  return result;
}

Preparation PrepareQueryOn(const sql::Statement& statement, const PreparationGround& ground,
                           bool as_snapshot) {
  Storage& storage = ground.storage;
  if (!std::holds_alternative<sql::Query>(statement)) {
    dao::Raise(dao::DaoError::kInvalidOperation, dao::source::kDatabase);
  }
  BoundStatement bound = Bind(statement, ground.catalogue);
  auto& query = *std::get<std::unique_ptr<bound::Query>>(bound.statement);
  Preparation result;
  result.by_text = bound.literals_matter;
  const bool is_dynaset = !as_snapshot && IsDynaset(query);
  const bool can_turn = CanTurnRound(query);
  result.rewrites = Plan(query, ground.plan);
  const int row_parameter = static_cast<int>(ground.literal_count) + 1;
  if (is_dynaset) {
    const DynasetSql sql = TranslateDynaset(query, row_parameter);
    result.prepared = PrepareText(storage, sql.rows);
    result.prepared->row.emplace(storage.raw(), sql.row);
    result.prepared->row_parameter = row_parameter;
    result.prepared->values_follow = sql.values_follow;
  } else {
    result.prepared = PrepareText(storage, TranslateQuery(query));
  }
  result.prepared->columns = std::make_shared<const Columns>(query.columns);
  if (can_turn) {
    TurnRound(query);
    result.prepared->last_sql =
        (is_dynaset ? TranslateDynaset(query, row_parameter).rows : TranslateQuery(query)) +
        " LIMIT 1";
  }
  return result;
}

Preparation PrepareWriteOn(const sql::Statement& statement, const PreparationGround& ground,
                           bool strict) {
  if (std::holds_alternative<sql::Query>(statement)) {
    dao::Raise(dao::DaoError::kExecuteOnSelect, dao::source::kDatabase);
  }
  BoundStatement bound = Bind(statement, ground.catalogue);
  Preparation result;
  result.by_text = bound.literals_matter;
  result.rewrites = Plan(bound.statement, ground.plan);
  result.prepared = std::visit(PrepareBound{ground, strict}, bound.statement);
  return result;
}

}  // namespace

Preparation PrepareQuery(const sql::Statement& statement, const PreparationGround& ground,
                         bool as_snapshot) {
  return Prepare(ground, [&](const PreparationGround& with) {
    return PrepareQueryOn(statement, with, as_snapshot);
  });
}

Preparation PrepareWrite(const sql::Statement& statement, const PreparationGround& ground,
                         bool strict) {
  return Prepare(ground, [&](const PreparationGround& with) {
    return PrepareWriteOn(statement, with, strict);
  });
}

}  // namespace ambrelio::embedded
