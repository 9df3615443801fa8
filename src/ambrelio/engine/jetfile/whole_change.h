// A change of many pages that is made whole or not at all.
#pragma once

#include "ambrelio/engine/jetfile/jet_file.h"

namespace ambrelio::jetfile {

// What `action` gives. What it raises leaves the file's changes as they were before it.
template <class Action>
auto WholeOrNotAtAll(JetFile& file, Action action) {
  const std::map<uint32_t, Page> before = file.changes();
  try {
    return action();
  } catch (...) {
    file.SetChanges(before);
    throw;
  }
}

}  // namespace ambrelio::jetfile
