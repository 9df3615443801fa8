// One level of transaction around a change that may be refused.
#pragma once

#include <functional>

#include "ambrelio/data/session.h"

namespace ambrelio::data {

// Runs `change` in a level of its own on the session's workspace: committed when it returns True,
// rolled back when it returns False, which is passed on. An error passes through and leaves the
// level open: the host sees the error, and closing the database rolls the level back.
// Without an open database nothing is begun: 91 before the first opening, 3420 after the closing.
bool InTransaction(Session& session, const std::function<bool()>& change);

}  // namespace ambrelio::data
