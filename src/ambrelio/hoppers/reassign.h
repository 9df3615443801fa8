// The re-assignment of weighings between discharges.
#pragma once

#include <cstdint>

#include "ambrelio/data/session.h"

namespace ambrelio {

// Moves the share `quantity` (0 < quantity <= 1) of every weighing of one discharge to another, in
// a transaction of its own, keeping the shares of each weighing summing to 1. Returns True; every
// failure is raised, with that transaction left open.
bool ReassignDischarge(Session& session, int16_t origin, int32_t origin_discharge, int16_t target,
                       int32_t target_discharge, double quantity);

}  // namespace ambrelio
