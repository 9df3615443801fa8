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

// A program that is started hidden may have no output, or that of a console that is not there: a
// device which refuses every write.
bool GoesNowhere(DWORD stream) {
  const HANDLE handle = ::GetStdHandle(stream);
  const DWORD type = ::GetFileType(handle);
  DWORD written = 0;
  return type == FILE_TYPE_UNKNOWN ||
         (type == FILE_TYPE_CHAR && !::WriteFile(handle, "", 0, &written, nullptr));
}

}  // namespace

bool OutputIsTerminal() { return IsConsole(STD_OUTPUT_HANDLE); }
bool ErrorOutputIsTerminal() { return IsConsole(STD_ERROR_HANDLE); }

void UsePlainUtf8Streams() {
  if (GoesNowhere(STD_OUTPUT_HANDLE)) std::freopen("NUL", "w", stdout);
  if (GoesNowhere(STD_ERROR_HANDLE)) std::freopen("NUL", "w", stderr);
  for (std::FILE* stream : {stdin, stdout, stderr}) ::_setmode(::_fileno(stream), _O_BINARY);
  ::SetConsoleOutputCP(CP_UTF8);
}

}  // namespace ambrelio
