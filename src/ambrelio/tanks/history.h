// Everything that happened to a tank, in the order of time.
#pragma once

#include <cstdint>
#include <string>

#include "ambrelio/data/session.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::tanks {

// Kinds of a history row.
inline constexpr int32_t kHopperDischarge = 1;
inline constexpr int32_t kEmptying = 2;
inline constexpr int32_t kReading = 3;

// The history query: columns mmto, tpo, dto, cod.
std::string ConsultaHistorial(int16_t tank);
// Its rows as a list of arrays (moment, kind, number, code); Empty without rows.
Variant ReadHistory(Session& session, int16_t tank);

}  // namespace ambrelio::tanks
