// Opening a file for reading, with DAO's errors.
#pragma once

#include <fstream>
#include <string>

#include "ambrelio/engine/jetfile/bytes.h"

namespace ambrelio::jetfile {

// Raises 3024 when there is no such file, 3051 when it may not be read or is no file, and 3045 when
// another program keeps it to itself.
std::ifstream OpenFile(const std::string& path);

// Those that tell the format, fewer when the file has no more. Raises as OpenFile does.
Bytes FirstBytes(const std::string& path);

}  // namespace ambrelio::jetfile
