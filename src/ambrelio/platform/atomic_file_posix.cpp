#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "ambrelio/platform/atomic_file.h"
#include "ambrelio/platform/file_path.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio {
namespace {

namespace fs = std::filesystem;

constexpr int kMaxLinks = 40;
constexpr int kMaxAttempts = 100;
constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kPrivateMode = 0600;

[[noreturn]] void Fail(const std::string& path, int error) {
  Raise(RuntimeError::kPathFileAccess, path + ": " + std::generic_category().message(error));
}

// The file that a chain of symbolic links leads to, whether it exists or not.
fs::path FollowLinks(const std::string& path) {
  fs::path file = path;
  std::error_code error;
  for (int links = 0; fs::is_symlink(fs::symlink_status(file, error)); ++links) {
    if (links == kMaxLinks) Fail(path, ELOOP);
    fs::path target = fs::read_symlink(file, error);
    if (error) Fail(path, error.value());
    file = file.parent_path() / target;  // an absolute target stands alone
  }
  return file;
}

// A new file beside the one to be replaced; gone again unless it took that one's place.
class TemporaryFile {
 public:
  TemporaryFile(std::string target, mode_t mode) : target_(std::move(target)) {
    for (int attempt = 0; handle_ < 0; ++attempt) {
      path_ = target_ + ".tmp" + std::to_string(attempt);
      handle_ = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
      if (handle_ < 0 && (errno != EEXIST || attempt == kMaxAttempts)) Fail(target_, errno);
    }
  }
  ~TemporaryFile() {
    if (handle_ >= 0) ::close(handle_);
    if (!path_.empty()) ::unlink(path_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  // The owner too, as far as this process may give files away.
  void TakePermissionsOf(const struct stat& old) const {
    if (::fchown(handle_, old.st_uid, old.st_gid) != 0 && errno != EPERM) Fail(target_, errno);
    if (::fchmod(handle_, old.st_mode & 07777) != 0) Fail(target_, errno);
  }

  void Write(std::string_view bytes) const {
    while (!bytes.empty()) {
      ssize_t written = ::write(handle_, bytes.data(), bytes.size());
      if (written < 0 && errno != EINTR) Fail(target_, errno);
      if (written > 0) bytes.remove_prefix(static_cast<size_t>(written));
    }
    if (::fsync(handle_) != 0) Fail(target_, errno);
  }

  void TakePlace() {
    if (::close(std::exchange(handle_, -1)) != 0) Fail(target_, errno);
    if (::rename(path_.c_str(), target_.c_str()) != 0) Fail(target_, errno);
    path_.clear();
  }

 private:
  std::string target_;
  std::string path_;
  int handle_ = -1;
};

}  // namespace

void WriteFileAtomically(const std::string& path, std::string_view bytes) {
  if (path.empty() || path.find('\0') != std::string::npos) Fail(path, EINVAL);
  fs::path target = FollowLinks(path);
  struct stat old {};
  bool replaces = ::stat(target.c_str(), &old) == 0;
  if (!replaces && errno != ENOENT) Fail(path, errno);
  // Renaming over a file asks nobody for the right to write to it.
  if (replaces && ::access(target.c_str(), W_OK) != 0) Fail(path, errno);
  if (replaces && !S_ISREG(old.st_mode)) Fail(path, S_ISDIR(old.st_mode) ? EISDIR : EINVAL);

  TemporaryFile file(target.string(), replaces ? kPrivateMode : kNewFileMode);
  if (replaces) file.TakePermissionsOf(old);
  file.Write(bytes);
  file.TakePlace();
  SyncFolderOf(target.string());
}

void SyncFolderOf(const std::string& path) {
  const fs::path folder = fs::path(path).parent_path();
  const int handle =
      ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (handle < 0) return;
  ::fsync(handle);
  ::close(handle);
}

}  // namespace ambrelio
