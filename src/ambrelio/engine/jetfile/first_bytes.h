// What tells the format of a file that is not open yet.
#pragma once

#include <string>

#include "ambrelio/engine/jetfile/bytes.h"

namespace ambrelio::jetfile {

// Those that tell the format, fewer when the file has no more. Raises 3024 when there is no such
// file, 3051 when it may not be read or is no file, and 3045 when another program keeps it to
// itself.
Bytes FirstBytes(const std::string& path);

}  // namespace ambrelio::jetfile
