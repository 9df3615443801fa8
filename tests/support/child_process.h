// A program run by a test, with pipes to its standard input and output:
//
//   ChildProcess child({program, "journal", "-"});
//   child.Write("...\n");
//   child.CloseInput();
//   for (std::string line; child.ReadLine(line);) ...
//   EXPECT_EQ(child.Wait(), 0);
#pragma once

namespace ambrelio::test {

// In place of a file for standard error: it goes where the output goes.
inline constexpr const char* kErrorsToOutput = "&1";

}  // namespace ambrelio::test

#if defined(_WIN32)
#include "support/child_process_windows.h"
#else
#include "support/child_process_posix.h"
#endif
