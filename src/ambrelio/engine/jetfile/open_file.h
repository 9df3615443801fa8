// Opening a file for reading, with DAO's errors.
#pragma once

#include <fstream>
#include <string>

namespace ambrelio::jetfile {

// Raises 3024 when there is no such file, 3051 when it is none, as a folder or a device.
void RequireFile(const std::string& path);

// Raises 3024 when there is no such file, 3051 when it may not be read or is no file.
std::ifstream OpenFile(const std::string& path);

}  // namespace ambrelio::jetfile
