// Where this library's own file lies.
#pragma once

#include <string>

namespace ambrelio {

// The folder of the shared library that holds this code, or of the program when it is part of the
// program itself. No separator at the end.
std::string ProgramFolder();

}  // namespace ambrelio
