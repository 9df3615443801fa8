// The engine a session uses unless it is given another one.
#pragma once

#include <memory>

#include "ambrelio/dao/database.h"

namespace ambrelio::engine {

// One per calling thread's session. The kind of file decides what is behind a database.
std::shared_ptr<dao::DBEngine> Create();

}  // namespace ambrelio::engine
