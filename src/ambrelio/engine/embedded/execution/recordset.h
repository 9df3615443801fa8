// The recordsets of the embedded engine.
#pragma once

#include <memory>
#include <vector>

#include "ambrelio/dao/database.h"
#include "ambrelio/engine/embedded/execution/executor.h"
#include "ambrelio/engine/embedded/execution/row_buffer.h"
#include "ambrelio/engine/embedded/execution/statement_cache.h"

namespace ambrelio::embedded {

// Rows computed at opening.
std::unique_ptr<dao::Recordset> OpenSnapshot(RowBuffer rows, std::shared_ptr<const Columns> columns,
                                             Liveness alive);

// Rows known by their ids and read when they become current, with the lease's `row` statement,
// whose other parameters are bound.
std::unique_ptr<dao::Recordset> OpenDynaset(std::vector<int64_t> row_ids, Lease lease,
                                            Liveness alive);

}  // namespace ambrelio::embedded
