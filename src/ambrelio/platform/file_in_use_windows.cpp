#include <windows.h>

#include "ambrelio/platform/file_in_use.h"
#include "ambrelio/platform/file_path.h"

namespace ambrelio {

bool IsHeldByAnother(const std::string& path) {
  constexpr DWORD kWithAnybody = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE file = ::CreateFileW(FilePath(path).c_str(), GENERIC_READ, kWithAnybody, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return ::GetLastError() == ERROR_SHARING_VIOLATION;
  ::CloseHandle(file);
  return false;
}

}  // namespace ambrelio
