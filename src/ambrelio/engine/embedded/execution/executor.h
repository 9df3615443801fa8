// The way of a statement through the engine: text, shape, syntax tree, bound tree, storage SQL,
// rows.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ambrelio/dao/database.h"
#include "ambrelio/engine/embedded/execution/explanation.h"
#include "ambrelio/engine/embedded/planner/planner.h"
#include "ambrelio/engine/embedded/storage/catalogue_store.h"
#include "ambrelio/engine/embedded/storage/storage.h"

namespace ambrelio::embedded {

// Whether the database is still open; shared with the recordsets that came out of it.
using Liveness = std::shared_ptr<const bool>;

class Executor {
 public:
  Executor(Storage& storage, CatalogueStore& catalogue, const PlanOptions& plan);
  ~Executor();
  Executor(const Executor&) = delete;
  Executor& operator=(const Executor&) = delete;

  // Carries out an action query or data definition and returns the rows written. Each statement is
  // atomic. Without `fail_on_error`, a row that breaks a key, a required value or a zero-length
  // rule is skipped, and a lock held by another process for longer than two seconds leaves 0 rows
  // written; with it they raise 3022, 3058, 3314, 3315, 3163, 3421, 3218, and nothing is written.
  int32_t Execute(const std::string& sql, bool fail_on_error);

  std::unique_ptr<dao::Recordset> Open(const std::string& source, dao::RecordsetType type,
                                       Liveness alive);

  // How Open (as it is asked unless for a snapshot) or Execute (without `fail_on_error`) would go
  // about the statement, which is prepared and not carried out. Raises what preparing does, and
  // 3129 for a data definition, of which there is no plan.
  Explanation Explain(const std::string& source);

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace ambrelio::embedded
