// Two engines as one: what a file is decides which of them opens it.
#pragma once

#include <functional>
#include <memory>

#include "ambrelio/dao/database.h"

namespace ambrelio::engine {

using EngineFactory = std::function<std::shared_ptr<dao::DBEngine>()>;

// Files of Jet go to the engine that `jet` makes, when the first of them is opened; all others, the
// missing ones and those that are created go to `own`.
//
// Transactions are those of the engine whose database was opened last, and of `own` before there is
// one: a thread that has databases of both open moves levels on one side only, and levels left open
// on the other side end with its database.
std::shared_ptr<dao::DBEngine> EngineByFile(const std::shared_ptr<dao::DBEngine>& own,
                                            EngineFactory jet);

}  // namespace ambrelio::engine
