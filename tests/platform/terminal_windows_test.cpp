#include <gtest/gtest.h>
#include <windows.h>

#include "ambrelio/platform/terminal.h"

namespace ambrelio {
namespace {

TEST(Terminal, IsNotTheNullDevice) {
  const HANDLE before = ::GetStdHandle(STD_OUTPUT_HANDLE);
  const HANDLE null = ::CreateFileW(L"NUL", GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(null, INVALID_HANDLE_VALUE);
  ::SetStdHandle(STD_OUTPUT_HANDLE, null);
  const bool terminal = OutputIsTerminal();
  ::SetStdHandle(STD_OUTPUT_HANDLE, before);
  ::CloseHandle(null);
  EXPECT_FALSE(terminal);
}

}  // namespace
}  // namespace ambrelio
