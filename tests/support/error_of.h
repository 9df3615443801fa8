// The number of the error that an action raises, for tests of failures.
#pragma once

#include "ambrelio/value/automation_error.h"

namespace ambrelio::test {

// 0 when the action raises none.
template <class Action>
int ErrorOf(Action action) {
  try {
    action();
  } catch (const AutomationError& error) {
    return error.number();
  }
  return 0;
}

}  // namespace ambrelio::test
