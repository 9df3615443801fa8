// Errors between automation (HRESULT, EXCEPINFO) and the library (AutomationError).
#pragma once

#include <ole2.h>

#include <string>

#include "ambrelio/value/automation_error.h"

namespace ambrelio::com {

// A number up to 65535 becomes 0x800A0000 and the number, as clients of Visual Basic expect; any
// other one is an HRESULT already.
HRESULT ResultOf(const AutomationError& error);
// The number that a Visual Basic client sees for a failed call: 0x800A0000 and n is n, and the
// failures that automation itself has are 6, 13, 429, 438, 449, 450 and the like.
int NumberOf(HRESULT result);

// The system's sentence for `result`, or one with its number.
std::string SentenceOf(HRESULT result);

// Throws when `result` tells a failure. `action` says what was tried, as "CoCreateInstance".
void Check(HRESULT result, const std::string& action);

// The error that a failed IDispatch::Invoke tells; frees what `info` holds. `action` says what was
// called, for objects that tell nothing.
AutomationError ErrorOf(HRESULT result, EXCEPINFO& info, const std::string& action);

}  // namespace ambrelio::com
