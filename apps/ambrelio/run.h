// The whole command line, without the process around it.
#pragma once

#include <string>
#include <vector>

#include "console.h"
#include "failure.h"

namespace ambrelio::cli {

// `arguments` do not hold the program's name. Never raises: failures are told on standard error.
ExitCode Run(std::vector<std::string> arguments, Console& console);

}  // namespace ambrelio::cli
