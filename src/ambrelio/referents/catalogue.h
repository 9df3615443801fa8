// The catalogues of clients (prefix 1) and carriers (prefix 2).
//
// Statements are written for a table "Tabla", which is replaced by the catalogue's name once the
// text is complete: in a name or line, too. For any other prefix it is replaced by nothing, and the
// engine raises its syntax error. None of these traps errors.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ambrelio/data/session.h"
#include "ambrelio/referents/referente.h"

namespace ambrelio::referents {

inline constexpr int16_t kClients = 1;
inline constexpr int16_t kCarriers = 2;

// A new record with the next free code.
std::shared_ptr<Referente> NewReferent(Session& session, int16_t pfx);
// Null when there is no such code.
std::shared_ptr<Referente> FindReferent(Session& session, int16_t pfx, int32_t code);
// Inserts a new record, or updates the row under which it was loaded; whether a row was written.
// False at once for one whose data are not valid. Raises 3022 for a code or name that exists
// already, 3163 for a text longer than its column, 3315 for a name of blanks.
bool SaveReferent(Session& session, int16_t pfx, const Referente& referent);
bool DeleteReferent(Session& session, int16_t pfx, int32_t code);
// Rows of code, name and tax identifier, by name when `order` is 1, else by code; Empty without.
Variant ListReferents(Session& session, int16_t pfx, int16_t order);

}  // namespace ambrelio::referents
