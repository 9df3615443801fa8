// The whole host: what a program around a script does.
#pragma once

#include <functional>
#include <vector>

#include "script_run.h"

namespace ambrelio::script_host {

// Items beside WScript; made inside the apartment.
using MoreItems = std::function<std::vector<NamedItem>()>;

// The process's exit code for its command line: the script, then the script's arguments. 2 when no
// script was begun.
int Main(int count, wchar_t** arguments, const MoreItems& more = nullptr);

}  // namespace ambrelio::script_host
