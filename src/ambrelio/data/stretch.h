// Several statements that no transaction holds together.
#pragma once

#include <functional>

#include "ambrelio/data/session.h"

namespace ambrelio::data {

// Runs `change`, and waits once for the disk when it has ended instead of at each statement: a call
// of the host costs one such wait. What was written stays when an error ends it.
void InOneStretch(Session& session, const std::function<void()>& change);

}  // namespace ambrelio::data
