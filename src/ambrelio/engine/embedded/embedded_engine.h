// The engine that needs nothing installed: the Jet dialect over files of Jet, and over database
// files of its own.
#pragma once

#include <memory>

#include "ambrelio/dao/database.h"
#include "ambrelio/engine/embedded/planner/planner.h"
#include "ambrelio/engine/embedded/storage/kept_indexes.h"
#include "ambrelio/engine/embedded/workspace.h"

namespace ambrelio::embedded {

// An engine with a default workspace of its own. Databases outlive it if they are still held.
// `plan` says how queries are planned, `kept` which indexes its databases have besides those that
// clients see, and `new_files` what kind of file it makes.
std::shared_ptr<dao::DBEngine> CreateEngine(
    const PlanOptions& plan = PlanOptions::FromEnvironment(), KeptIndexes kept = {},
    NewFiles new_files = NewFiles::kByName);

}  // namespace ambrelio::embedded
