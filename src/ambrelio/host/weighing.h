// What the host does at the scales: it stores a weighing.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "ambrelio/data/session.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::host {

// Columns of PESADA with their values.
using WeighingColumns = std::vector<std::pair<std::string, Variant>>;

// Stores one weighing, now. H_INICIO is the present moment, and with TOLVA given DESCARGA is the
// number of that hopper's current discharge, or 0 when the weighing waits in an intermediate hopper
// (a negative TOLVA); columns that are given are stored as they are. Text of the form
// "YYYY-MM-DD HH:MM:SS" is a moment where the column is a date. Returns the discharge's number, 0
// without one.
//
// Raises 3265 for a column that PESADA does not have, 5 for a hopper that the mill does not have,
// 3022 when the weighing is already there, and what the engine raises. Nothing is then stored.
int32_t StoreWeighing(Session& session, const WeighingColumns& columns);

}  // namespace ambrelio::host
