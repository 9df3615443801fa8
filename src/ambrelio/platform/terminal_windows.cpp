#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>
#include <initializer_list>

#include "ambrelio/platform/terminal.h"

namespace ambrelio {
namespace {

// Only a console has a mode; the null device passes for a terminal in the C library.
bool IsConsole(DWORD stream) {
  DWORD mode = 0;
  return ::GetConsoleMode(::GetStdHandle(stream), &mode) != 0;
}

}  // namespace

bool OutputIsTerminal() { return IsConsole(STD_OUTPUT_HANDLE); }
bool ErrorOutputIsTerminal() { return IsConsole(STD_ERROR_HANDLE); }

void UsePlainUtf8Streams() {
  for (std::FILE* stream : {stdin, stdout, stderr}) ::_setmode(::_fileno(stream), _O_BINARY);
  ::SetConsoleOutputCP(CP_UTF8);
}

}  // namespace ambrelio
