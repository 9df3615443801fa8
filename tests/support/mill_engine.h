// The engine that tests of a mill work on: one like the session's own, or DAO's adapter over the
// stand-in in the programs that are built with AMBRELIO_TEST_OVER_DAO.
#pragma once

#include <memory>

#include "ambrelio/dao/database.h"

#ifdef AMBRELIO_TEST_OVER_DAO
#include "ambrelio/engine/dao_com/dao_engine.h"
#include "support/error_of.h"
#include "windows/dao_stand_in/stand_in.h"
#else
#include "ambrelio/engine/embedded/embedded_engine.h"
#include "ambrelio/engine/mill_indexes.h"
#include "support/test_files.h"
#endif

namespace ambrelio::test {

#ifdef AMBRELIO_TEST_OVER_DAO

inline StandIn& TheStandIn() {
  // Never destroyed: sessions of threads may end after it would be.
  static auto* const stand_in = new StandIn;
  return *stand_in;
}

inline std::shared_ptr<dao::DBEngine> MakeMillEngine() {
  TheStandIn();
  auto engine = dao_com::CreateEngine();
  // The workspace is the process's: levels that a test before has left open are still there.
  while (ErrorOf([&] { engine->DefaultWorkspace().Rollback(); }) == 0) {
  }
  return engine;
}

#else

inline std::shared_ptr<dao::DBEngine> MakeMillEngine() {
  return embedded::CreateEngine(embedded::PlanOptions::FromEnvironment(), engine::MillIndexes(),
                                FormOfTestFiles());
}

#endif

}  // namespace ambrelio::test
