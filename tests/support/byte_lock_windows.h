// See byte_lock.h.
#pragma once

#include <windows.h>

#include <cstdint>
#include <stdexcept>
#include <string>

#include "ambrelio/platform/file_path.h"

namespace ambrelio::test {

class ByteLock {
 public:
  ByteLock(const std::string& path, uint32_t first, uint32_t count)
      : file_(::CreateFileW(FilePath(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                            FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                            FILE_ATTRIBUTE_NORMAL, nullptr)) {
    if (file_ == INVALID_HANDLE_VALUE || !::LockFile(file_, first, 0, count, 0)) {
      throw std::runtime_error("no lock");
    }
  }
  ~ByteLock() { ::CloseHandle(file_); }
  ByteLock(const ByteLock&) = delete;
  ByteLock& operator=(const ByteLock&) = delete;

 private:
  HANDLE file_;
};

}  // namespace ambrelio::test
