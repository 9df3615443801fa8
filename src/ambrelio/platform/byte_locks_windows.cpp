#include <windows.h>

#include "ambrelio/platform/byte_locks.h"
#include "ambrelio/platform/file_path.h"

namespace ambrelio {
namespace {

constexpr int kHighBits = 32;

// Whether the bytes can be locked; they are free again afterwards.
bool AreFree(HANDLE file, uint64_t first, uint64_t count) {
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(first);
  place.OffsetHigh = static_cast<DWORD>(first >> kHighBits);
  const auto low = static_cast<DWORD>(count);
  const auto high = static_cast<DWORD>(count >> kHighBits);
  constexpr DWORD kWithoutWaiting = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
  if (!::LockFileEx(file, kWithoutWaiting, 0, low, high, &place)) return false;
  ::UnlockFileEx(file, 0, low, high, &place);
  return true;
}

}  // namespace

std::optional<uint64_t> LockedByte(const std::string& path, uint64_t first, uint64_t count) {
  constexpr DWORD kWithAnybody = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE file = ::CreateFileW(FilePath(path).c_str(), GENERIC_READ, kWithAnybody, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    const DWORD error = ::GetLastError();
    const bool missing = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
    return missing ? std::nullopt : std::optional(first);
  }
  std::optional<uint64_t> locked;
  if (!AreFree(file, first, count)) {
    for (uint64_t byte = first; !locked && byte < first + count; ++byte) {
      if (!AreFree(file, byte, 1)) locked = byte;
    }
  }
  ::CloseHandle(file);
  return locked;
}

}  // namespace ambrelio
