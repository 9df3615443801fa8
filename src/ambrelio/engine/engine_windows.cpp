#include "ambrelio/engine/dao_com/dao_engine.h"
#include "ambrelio/engine/embedded/embedded_engine.h"
#include "ambrelio/engine/engine.h"
#include "ambrelio/engine/engine_by_file.h"
#include "ambrelio/engine/mill_indexes.h"

namespace ambrelio::engine {

// Files of Jet are opened by DAO, which is looked for when the first one is.
std::shared_ptr<dao::DBEngine> Create() {
  return EngineByFile(
      embedded::CreateEngine(embedded::PlanOptions::FromEnvironment(), MillIndexes()),
      dao_com::CreateEngine);
}

}  // namespace ambrelio::engine
