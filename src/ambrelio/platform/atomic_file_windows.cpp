#include <windows.h>

#include <algorithm>
#include <system_error>

#include "ambrelio/platform/atomic_file.h"
#include "ambrelio/platform/file_path.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio {
namespace {

constexpr int kMaxAttempts = 100;
constexpr size_t kLargestWrite = 1 << 20;
// A reader, a copy to the network or a virus scanner holds a file for moments.
constexpr int kMaxHeld = 50;
constexpr DWORD kPauseWhileHeld = 20;  // milliseconds

[[noreturn]] void Fail(const std::string& path, DWORD error) {
  Raise(RuntimeError::kPathFileAccess,
        path + ": " + std::system_category().message(static_cast<int>(error)));
}

// A new file beside the one to be replaced; gone again unless it took that one's place.
class TemporaryFile {
 public:
  TemporaryFile(const std::string& shown_path, const std::filesystem::path& beside)
      : shown_path_(shown_path) {
    for (int attempt = 0; handle_ == INVALID_HANDLE_VALUE; ++attempt) {
      path_ = beside.wstring() + L".tmp" + std::to_wstring(attempt);
      handle_ = ::CreateFileW(path_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
      DWORD error = ::GetLastError();
      if (handle_ == INVALID_HANDLE_VALUE &&
          (error != ERROR_FILE_EXISTS || attempt == kMaxAttempts)) {
        Fail(shown_path_, error);
      }
    }
  }
  ~TemporaryFile() {
    Close();
    if (!path_.empty()) ::DeleteFileW(path_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  void Write(std::string_view bytes) const {
    while (!bytes.empty()) {
      DWORD written = 0;
      auto size = static_cast<DWORD>(std::min(bytes.size(), kLargestWrite));
      if (!::WriteFile(handle_, bytes.data(), size, &written, nullptr)) {
        Fail(shown_path_, ::GetLastError());
      }
      bytes.remove_prefix(written);
    }
    if (!::FlushFileBuffers(handle_)) Fail(shown_path_, ::GetLastError());
  }

  void TakePlaceOf(const std::filesystem::path& target, bool replaces) {
    Close();
    for (int held = 0; !Move(target, replaces); ++held) {
      const DWORD error = ::GetLastError();
      if (!MeansHeld(error) || held == kMaxHeld) Fail(shown_path_, error);
      ::Sleep(kPauseWhileHeld);
    }
    path_.clear();
  }

 private:
  // ReplaceFile keeps the old file's permissions, attributes and streams.
  bool Move(const std::filesystem::path& target, bool replaces) const {
    return replaces ? ::ReplaceFileW(target.c_str(), path_.c_str(), nullptr, 0, nullptr, nullptr)
                    : ::MoveFileExW(path_.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH);
  }

  static bool MeansHeld(DWORD error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_UNABLE_TO_REMOVE_REPLACED ||
           error == ERROR_LOCK_VIOLATION;
  }

  void Close() {
    if (handle_ != INVALID_HANDLE_VALUE) ::CloseHandle(handle_);
    handle_ = INVALID_HANDLE_VALUE;
  }

  std::string shown_path_;
  std::wstring path_;
  HANDLE handle_ = INVALID_HANDLE_VALUE;
};

}  // namespace

void WriteFileAtomically(const std::string& path, std::string_view bytes) {
  if (path.empty() || path.find('\0') != std::string::npos) Fail(path, ERROR_INVALID_NAME);
  std::error_code error;
  std::filesystem::path target = std::filesystem::absolute(FilePath(path), error);
  if (error) Fail(path, ERROR_INVALID_NAME);
  if (std::filesystem::is_symlink(target, error)) {
    target = target.parent_path() / std::filesystem::read_symlink(target, error);
  }
  DWORD attributes = ::GetFileAttributesW(target.c_str());
  bool replaces = attributes != INVALID_FILE_ATTRIBUTES;
  if (replaces && (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) != 0) {
    Fail(path, ERROR_ACCESS_DENIED);
  }
  TemporaryFile file(path, target);
  file.Write(bytes);
  file.TakePlaceOf(target, replaces);
}

void SyncFolderOf(const std::string&) {}

}  // namespace ambrelio
