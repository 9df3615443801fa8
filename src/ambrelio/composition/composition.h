// What a quantity of oil or olives is made of, by member, product, municipality, place or mill
// line.
//
// The result is a list of rows (key, name, percentage, quantity) in ascending order of the key, or
// Empty. Nothing here knows what a tank, an emptying or a hopper is.
#pragma once

#include <cstdint>
#include <string>

#include "ambrelio/data/session.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::composition {

// Content held as fractions of discharges. `source` is the from piece ("Descargas ") and
// `condition` the where piece of the query that gives Tolva, Descarga, Molino and Fraccion.
// Percentages are of `total` (kilograms), quantities are shares of `litres`. Classes 1 to 5.
Variant Weighted(Session& session, int16_t clase, double litres, double total,
                 const std::string& source, const std::string& condition);

// A whole discharge; quantities are kilograms. Classes 1 to 4.
Variant Plain(Session& session, int16_t clase, int16_t hopper, int32_t discharge);

}  // namespace ambrelio::composition
