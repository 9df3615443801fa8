// Bytes of a file that are locked as long as this lives, and no longer than its process, as each
// user of the original engine locks one of the .ldb file:
//
//   const ByteLock lock(path, first, count);    // throws when another program has one of them
#pragma once

#if defined(_WIN32)
#include "support/byte_lock_windows.h"
#else
#include "support/byte_lock_posix.h"
#endif
