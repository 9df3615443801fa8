// How the host writes its own values into SQL: exactly, apostrophes included.
#pragma once

#include <string>

#include "ambrelio/value/variant.h"

namespace ambrelio::host {

// The value as a literal: Null, numbers with as many digits as they need, #dates#, 'text' with
// apostrophes doubled. 13 for an array or an object, 6 for a number that is not finite.
std::string SqlLiteral(const Variant& value);

}  // namespace ambrelio::host
