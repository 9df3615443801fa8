#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>
#include <initializer_list>
#include <iostream>
#include <streambuf>

#include "ambrelio/platform/terminal.h"

namespace ambrelio {
namespace {

// Only a console has a mode; the null device passes for a terminal in the C library.
bool IsConsole(DWORD stream) {
  DWORD mode = 0;
  return ::GetConsoleMode(::GetStdHandle(stream), &mode) != 0;
}

// Takes everything and keeps nothing.
class Nowhere : public std::streambuf {
  int_type overflow(int_type character) override { return traits_type::not_eof(character); }
  std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
};

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
  static auto* const nowhere = new Nowhere;  // which the streams use to the very end
  if (GoesNowhere(STD_OUTPUT_HANDLE)) std::cout.rdbuf(nowhere);
  if (GoesNowhere(STD_ERROR_HANDLE)) std::cerr.rdbuf(nowhere);
  for (std::FILE* stream : {stdin, stdout, stderr}) ::_setmode(::_fileno(stream), _O_BINARY);
  ::SetConsoleOutputCP(CP_UTF8);
}

}  // namespace ambrelio
