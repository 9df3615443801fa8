// What a program is told on its command line.
#pragma once

#include <string>
#include <vector>

namespace ambrelio {

// The arguments behind the program's name, in UTF-8; those of main() are not, on every system.
std::vector<std::string> ProgramArguments(int count, char** values);

}  // namespace ambrelio
