// See byte_lock.h.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace ambrelio::test {

class ByteLock {
 public:
  ByteLock(const std::string& path, uint32_t first, uint32_t count)
      : file_(open(path.c_str(), O_RDWR)) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(first);
    lock.l_len = static_cast<off_t>(count);
    if (file_ < 0 || fcntl(file_, F_SETLK, &lock) != 0) throw std::runtime_error("no lock");
  }
  ~ByteLock() { close(file_); }
  ByteLock(const ByteLock&) = delete;
  ByteLock& operator=(const ByteLock&) = delete;

 private:
  int file_;
};

}  // namespace ambrelio::test
