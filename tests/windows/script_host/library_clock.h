// The moment that Ambrelio.dll takes for the present. It asks the system; a test that replays a day
// answers in the system's place.
#pragma once

#include <cstdint>

#include "ambrelio/value/ole_date.h"

namespace ambrelio::script_host {

// From here on the library of this process finds `moment` when it looks at the clock; the time
// stands still until the next call. Loads the library, which has to be registered, and throws when
// it takes its time from elsewhere.
void SetLibraryClock(OleDate moment);

// Lets so much time pass on the clock that was set. False, with nothing done, when none was.
bool AdvanceLibraryClock(int32_t milliseconds);

}  // namespace ambrelio::script_host
