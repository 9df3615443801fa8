// SQLite's files as they are, with somebody who learns of every change of them before it happens
// and can have it fail.
//
// While it lives, every file that SQLite opens goes through it; what is open when it begins or ends
// must not be touched in between. There can be one at a time.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace ambrelio::test {

struct FileRequest {
  enum Kind : uint8_t { kOpen, kWrite, kTruncate, kSync, kDelete } kind;
  std::string path;
  int64_t place = 0;         // of the bytes written; the size after a truncation
  std::string_view bytes{};  // written
  // Of a deletion: whether it shall have reached the disk when it returns.
  bool waits = false;
};

class WatchedFiles {
 public:
  // Gives SQLITE_OK to let a request through, or the error it ends with. An opening tells of a file
  // that is open already, and cannot fail.
  using Watcher = std::function<int(const FileRequest&)>;

  explicit WatchedFiles(Watcher watcher) : watcher_(std::move(watcher)) {
    real_ = sqlite3_vfs_find(nullptr);
    if (real_ == nullptr || current_ != nullptr) throw std::runtime_error("no file system");
    vfs_ = *real_;
    vfs_.zName = "watched";
    vfs_.szOsFile = static_cast<int>(sizeof(File)) + real_->szOsFile;
    vfs_.xOpen = Open;
    vfs_.xDelete = Delete;
    current_ = this;
    sqlite3_vfs_register(&vfs_, 1);
  }
  ~WatchedFiles() {
    sqlite3_vfs_unregister(&vfs_);
    sqlite3_vfs_register(real_, 1);
    current_ = nullptr;
  }
  WatchedFiles(const WatchedFiles&) = delete;
  WatchedFiles& operator=(const WatchedFiles&) = delete;

 private:
  // Stands before the file of the real system, whose methods it lends but for those that change.
  struct File {
    sqlite3_file base;
    sqlite3_io_methods methods;
    const char* path;  // lives as long as the file is open
    sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
  };
  using M = sqlite3_io_methods;

  template <auto kMethod, class... A>
  static auto Pass(sqlite3_file* file, A... arguments) {
    sqlite3_file* const real = reinterpret_cast<File*>(file)->real();
    return (real->pMethods->*kMethod)(real, arguments...);
  }

  static int Ask(sqlite3_file* file, FileRequest::Kind kind, int64_t place = 0,
                 std::string_view bytes = {}) {
    return current_->watcher_({kind, reinterpret_cast<File*>(file)->path, place, bytes});
  }

  static int Write(sqlite3_file* file, const void* bytes, int size, sqlite3_int64 place) {
    const std::string_view written(static_cast<const char*>(bytes), static_cast<size_t>(size));
    const int code = Ask(file, FileRequest::kWrite, place, written);
    return code != SQLITE_OK ? code : Pass<&M::xWrite>(file, bytes, size, place);
  }
  static int Truncate(sqlite3_file* file, sqlite3_int64 size) {
    const int code = Ask(file, FileRequest::kTruncate, size);
    return code != SQLITE_OK ? code : Pass<&M::xTruncate>(file, size);
  }
  // The real disk is not waited for: the power stays, and tests have better to do.
  static int Sync(sqlite3_file* file, int) { return Ask(file, FileRequest::kSync); }
  static int Delete(sqlite3_vfs*, const char* path, int waits) {
    const int code = current_->watcher_({FileRequest::kDelete, path, 0, {}, waits != 0});
    return code != SQLITE_OK ? code : current_->real_->xDelete(current_->real_, path, 0);
  }

  static int Open(sqlite3_vfs*, sqlite3_filename path, sqlite3_file* file, int flags, int* out) {
    sqlite3_vfs* const real = current_->real_;
    // A file without a name is SQLite's own scratch space.
    if (path == nullptr) return real->xOpen(real, path, file, flags, out);
    auto* const watched = new (file) File{};
    const int code = real->xOpen(real, path, watched->real(), flags, out);
    const sqlite3_io_methods* const methods = watched->real()->pMethods;
    if (methods == nullptr) return code;
    watched->path = path;
    watched->methods = {methods->iVersion,
                        Pass<&M::xClose>,
                        Pass<&M::xRead, void*, int, sqlite3_int64>,
                        Write,
                        Truncate,
                        Sync,
                        Pass<&M::xFileSize, sqlite3_int64*>,
                        Pass<&M::xLock, int>,
                        Pass<&M::xUnlock, int>,
                        Pass<&M::xCheckReservedLock, int*>,
                        Pass<&M::xFileControl, int, void*>,
                        Pass<&M::xSectorSize>,
                        Pass<&M::xDeviceCharacteristics>,
                        Pass<&M::xShmMap, int, int, int, void volatile**>,
                        Pass<&M::xShmLock, int, int, int>,
                        Pass<&M::xShmBarrier>,
                        Pass<&M::xShmUnmap, int>,
                        Pass<&M::xFetch, sqlite3_int64, int, void**>,
                        Pass<&M::xUnfetch, sqlite3_int64, void*>};
    watched->base.pMethods = &watched->methods;
    if (code == SQLITE_OK) Ask(file, FileRequest::kOpen);
    return code;
  }

  inline static WatchedFiles* current_ = nullptr;
  Watcher watcher_;
  sqlite3_vfs* real_ = nullptr;
  sqlite3_vfs vfs_{};
};

}  // namespace ambrelio::test
