#include "ambrelio/engine/embedded/embedded_engine.h"
#include "ambrelio/engine/engine.h"
#include "ambrelio/engine/mill_indexes.h"

namespace ambrelio::engine {

// There is one kind of file that can be opened here; the embedded engine's workspace looks at a
// file's first bytes and refuses the others by name.
std::shared_ptr<dao::DBEngine> Create() {
  return embedded::CreateEngine(embedded::PlanOptions::FromEnvironment(), MillIndexes());
}

}  // namespace ambrelio::engine
