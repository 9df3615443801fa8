// Everything that happened to a tank, in the order of time.
#pragma once

#include <cstdint>
#include <optional>
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

// The moments of the events just before and just after an event; Null where there is none.
struct Neighbours {
  Variant before = Variant::Null();
  Variant after = Variant::Null();
};
// The neighbours of the first event of that kind, number and code; nothing when `history` does not
// have it.
std::optional<Neighbours> FindNeighbours(const Variant& history, int32_t kind, int16_t number,
                                         int32_t code);

// Whether `a` is later than `b`. Only dates compare: with Null it is never true.
bool IsLater(const Variant& a, const Variant& b);
// Whether a moment lies strictly between two others, of which a Null one does not restrict.
bool FitsBetween(OleDate moment, const Variant& before, const Variant& after);

}  // namespace ambrelio::tanks
