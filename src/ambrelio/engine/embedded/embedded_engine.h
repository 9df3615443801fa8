// The engine that needs nothing installed: the Jet dialect over database files of its own.
#pragma once

#include <memory>

#include "ambrelio/dao/database.h"
#include "ambrelio/engine/embedded/planner/planner.h"

namespace ambrelio::embedded {

// An engine with a default workspace of its own. Databases outlive it if they are still held.
std::shared_ptr<dao::DBEngine> CreateEngine(
    const PlanOptions& plan = PlanOptions::FromEnvironment());

}  // namespace ambrelio::embedded
