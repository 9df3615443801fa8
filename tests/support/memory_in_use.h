// The bytes that the program has allocated and not released, for tests that run for long.
#pragma once

#include <cstddef>

#if defined(_WIN32)
#include <windows.h>

#include <algorithm>
#include <iterator>
#else
#include <malloc.h>
#endif

#if defined(__SANITIZE_ADDRESS__)
// Of the sanitizer's own allocator, whose header not every compiler brings along.
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace ambrelio::test {

inline size_t MemoryInUse() {
#if defined(__SANITIZE_ADDRESS__)
  return __sanitizer_get_current_allocated_bytes();
#elif defined(_WIN32)
  // The heaps of the C library and of automation.
  HANDLE heaps[64];
  const DWORD count = std::min<DWORD>(::GetProcessHeaps(std::size(heaps), heaps), std::size(heaps));
  size_t bytes = 0;
  for (DWORD i = 0; i < count; ++i) {
    PROCESS_HEAP_ENTRY entry{};
    while (::HeapWalk(heaps[i], &entry)) {
      if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) bytes += entry.cbData;
    }
  }
  return bytes;
#else
  return mallinfo2().uordblks;
#endif
}

}  // namespace ambrelio::test
