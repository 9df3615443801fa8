// The number of a file; see file_number.h.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

#include "ambrelio/com/text.h"

namespace ambrelio::test {

// Nothing when there is no such file.
inline std::optional<uint64_t> FileNumber(const std::string& path) {
  const HANDLE file = ::CreateFileW(com::ToWide(path).c_str(), 0,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return std::nullopt;
  BY_HANDLE_FILE_INFORMATION known{};
  const bool told = ::GetFileInformationByHandle(file, &known) != 0;
  ::CloseHandle(file);
  if (!told) return std::nullopt;
  return uint64_t{known.nFileIndexHigh} << 32 | known.nFileIndexLow;
}

}  // namespace ambrelio::test
