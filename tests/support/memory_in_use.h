// The bytes that the program has allocated and not released, for tests that run for long.
#pragma once

#include <malloc.h>

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
// Of the sanitizer's own allocator, whose header not every compiler brings along.
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace ambrelio::test {

inline size_t MemoryInUse() {
#if defined(__SANITIZE_ADDRESS__)
  return __sanitizer_get_current_allocated_bytes();
#else
  return mallinfo2().uordblks;
#endif
}

}  // namespace ambrelio::test
