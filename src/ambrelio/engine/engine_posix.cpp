#include "ambrelio/engine/embedded/embedded_engine.h"
#include "ambrelio/engine/engine.h"
#include "ambrelio/engine/mill_indexes.h"

namespace ambrelio::engine {

std::shared_ptr<dao::DBEngine> Create() {
  return embedded::CreateEngine(embedded::PlanOptions::FromEnvironment(), MillIndexes());
}

}  // namespace ambrelio::engine
