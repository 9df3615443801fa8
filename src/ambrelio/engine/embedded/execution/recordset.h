// The recordsets of the embedded engine.
#pragma once

#include <memory>
#include <vector>

#include "ambrelio/dao/database.h"
#include "ambrelio/engine/embedded/execution/executor.h"
#include "ambrelio/engine/embedded/execution/statement_cache.h"
#include "ambrelio/engine/embedded/storage/storage.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::embedded {

// The recordset of a prepared query, with its first row current: a dynaset if it was prepared as
// one. The others are read when they are looked at.
std::unique_ptr<dao::Recordset> OpenRows(Storage& storage, Lease lease,
                                         std::vector<Variant> literals, Liveness alive);

}  // namespace ambrelio::embedded
