// Whether somebody watches.
#pragma once

namespace ambrelio {

// Whether the process's standard output (standard error) is a terminal.
bool OutputIsTerminal();
bool ErrorOutputIsTerminal();

}  // namespace ambrelio
