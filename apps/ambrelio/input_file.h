// Files that a command reads.
#pragma once

#include <fstream>
#include <string>

namespace ambrelio::cli {

// Raises Failure (file problem) that names the file as `what`, as "journal", and the cause.
std::ifstream OpenInput(const std::string& what, const std::string& path);

}  // namespace ambrelio::cli
