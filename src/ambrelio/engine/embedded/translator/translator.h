// From a bound tree to the storage engine's SQL.
//
// The statement's literals become the parameters ?1, ?2, ... by their slots. Numbers behind those
// are given to the translator for what a text takes besides them. Text is compared, grouped and
// ordered by the JET collation everywhere, whatever the columns say themselves.
#pragma once

#include <string>
#include <vector>

#include "ambrelio/engine/embedded/binder/bound_tree.h"

namespace ambrelio::embedded {

// The rows of a query, in its order.
std::string TranslateQuery(const bound::Query& query);

// Whether the query's last row is the first one of the opposite order, and found that way sooner
// than by reading all rows: its order decides between any two of them, and it needs not know all of
// them for the first. To be asked before the query is planned, which does not change the answer.
bool CanTurnRound(const bound::Query& query);
// Gives the query the opposite order.
void TurnRound(bound::Query& query);

// A select over one table whose rows can be read again one by one.
struct DynasetSql {
  // The row ids of the set, in its order; behind each the values, unless one of them is computed
  // and could fail for a row that nobody looks at.
  std::string rows;
  bool values_follow = false;
  std::string row;  // the values of the row whose id is parameter `row_parameter`
};
// Whether the query is such a select.
bool IsDynaset(const bound::Query& query);
DynasetSql TranslateDynaset(const bound::Query& query, int row_parameter);

// With `strict`, a row that cannot be written as it is ends the statement with an error; without,
// it is skipped, and values that do not convert become Null.
std::string TranslateInsert(const bound::Insert& insert, bool strict);
std::string TranslateDelete(const bound::Delete& statement);

// Whether the update has to go row by row, in its order: over a join, where a row that is met twice
// is changed twice, and where a row can collide with another in a unique index.
bool GoesRowByRow(const bound::Update& update);
std::string TranslateUpdate(const bound::Update& update, bool strict);

// An update row by row: for each of `rows`, the values are computed from what all sources hold by
// then, and written to each target.
struct StepwiseUpdateSql {
  struct Target {
    size_t source = 0;       // which of the row ids is that of the row to write
    std::string write;       // parameters: the target's values, then the row id
    size_t first_value = 0;  // where its values stand in `values`
    size_t value_count = 0;
  };
  std::string rows;    // one row id for each source, Null where the optional side has no partner
  std::string values;  // row ids from parameter `first_row_parameter` on
  size_t source_count = 0;
  std::vector<Target> targets;
};
StepwiseUpdateSql TranslateStepwise(const bound::Update& update, bool strict,
                                    int first_row_parameter);

}  // namespace ambrelio::embedded
