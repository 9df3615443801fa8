// Files that other programs keep to themselves.
#pragma once

#include <string>

namespace ambrelio {

// Whether a file that cannot be read is there but held by another program, for as long as that has
// it open. Only on some systems programs can do so.
bool IsHeldByAnother(const std::string& path);

}  // namespace ambrelio
