// Updates that go row by row.
#pragma once

#include <cstdint>

#include "ambrelio/engine/embedded/execution/statement_cache.h"
#include "ambrelio/engine/embedded/storage/storage.h"

namespace ambrelio::embedded {

// Carries out a prepared stepwise update whose literals are bound: finds the rows first, then
// writes one after the other, each from what its sources hold by then. A row that the statement may
// skip keeps all its old values. Returns how many of the rows wrote something; on an error nothing
// is written.
int32_t UpdateStepwise(Storage& storage, Prepared& prepared);

}  // namespace ambrelio::embedded
