// From a statement's text to what the storage engine can run.
#pragma once

#include <memory>
#include <variant>

#include "ambrelio/engine/embedded/execution/statement_cache.h"
#include "ambrelio/engine/embedded/planner/planner.h"
#include "ambrelio/engine/embedded/sql/ast.h"
#include "ambrelio/engine/embedded/storage/catalogue.h"
#include "ambrelio/engine/embedded/storage/storage.h"

namespace ambrelio::embedded {

struct Preparation {
  std::unique_ptr<Prepared> prepared;
  // Whether it serves only the very text, not all texts of its shape.
  bool by_text = false;
  RewritesMade rewrites;
  // Whether the storage engine refused the plan, see below.
  bool plan_refused = false;
};

// What a statement is prepared on.
struct PreparationGround {
  const Catalogue& catalogue;
  Storage& storage;
  const PlanOptions& plan;
  size_t literal_count;  // parameters that the literals take
};

// The storage engine limits how deep a text is nested and how many sources are joined, and a plan
// can have more of both than the statement: what is refused then is prepared as it stands.

// A select or union; 3219 for anything else. Unless `as_snapshot`, a select over one table becomes
// a dynaset.
Preparation PrepareQuery(const sql::Statement& statement, const PreparationGround& ground,
                         bool as_snapshot);

// An insert, update or delete; 3065 for a select.
Preparation PrepareWrite(const sql::Statement& statement, const PreparationGround& ground,
                         bool strict);

}  // namespace ambrelio::embedded
