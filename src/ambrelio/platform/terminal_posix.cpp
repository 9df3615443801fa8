#include <unistd.h>

#include "ambrelio/platform/terminal.h"

namespace ambrelio {

bool OutputIsTerminal() { return isatty(STDOUT_FILENO) == 1; }
bool ErrorOutputIsTerminal() { return isatty(STDERR_FILENO) == 1; }

void UsePlainUtf8Streams() {}

}  // namespace ambrelio
