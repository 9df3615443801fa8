// Dates as text by the locale in force. Reading is ParseDate of convert.h.
#pragma once

#include <string>

#include "ambrelio/value/ole_date.h"

namespace ambrelio {

// Short date and time; the date alone at midnight, the time alone on the zero date's day.
std::string DateText(OleDate date);

}  // namespace ambrelio
