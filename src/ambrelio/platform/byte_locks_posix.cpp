#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "ambrelio/platform/byte_locks.h"

namespace ambrelio {
namespace {

// Where there are locks of open files, asking for one also finds those of this very process.
#if defined(F_OFD_GETLK)
constexpr int kAskForLock = F_OFD_GETLK;
#else
constexpr int kAskForLock = F_GETLK;
#endif

}  // namespace

std::optional<uint64_t> LockedByte(const std::string& path, uint64_t first, uint64_t count) {
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return errno == ENOENT ? std::nullopt : std::optional(first);
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  lock.l_start = static_cast<off_t>(first);
  lock.l_len = static_cast<off_t>(count);
  const int code = ::fcntl(file, kAskForLock, &lock);
  ::close(file);
  // A file system without locks has no programs that use them.
  if (code != 0 || lock.l_type == F_UNLCK) return std::nullopt;
  return std::max(first, static_cast<uint64_t>(lock.l_start));
}

}  // namespace ambrelio
