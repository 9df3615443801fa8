// A second process for tests of what several do to one file:
//
//   SecondProcess child(folder, [&](SecondProcess& parent) { ...; parent.Signal(); });
//   ASSERT_TRUE(child.Await());
//
// It must be a test's first statement, before the test opens the file, and a fixture may change
// `folder` only when it is not in the second process: where processes cannot be forked, that one
// runs the same test on the same folder up to here.
#pragma once

#if defined(_WIN32)
#include "support/second_process_windows.h"
#else
#include "support/second_process_posix.h"
#endif
