// Which form the database files of tests have: that of the engine's own, or, in the runs whose
// names say "over jet", the one that their names ask for.
#pragma once

#include <cstdlib>
#include <string_view>

#include "ambrelio/engine/embedded/workspace.h"

namespace ambrelio::test {

inline embedded::NewFiles FormOfTestFiles() {
  const char* const form = std::getenv("AMBRELIO_TEST_FILES");
  return form != nullptr && std::string_view(form) == "jet" ? embedded::NewFiles::kByName
                                                            : embedded::NewFiles::kOfEngine;
}

// How often a commit to such a file waits for the disk: the engine's own form for its log alone, a
// Jet file for what would take the commit back, and for itself.
inline int WaitsOfACommit() { return FormOfTestFiles() == embedded::NewFiles::kOfEngine ? 1 : 2; }

}  // namespace ambrelio::test
