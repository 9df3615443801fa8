// A medium that cannot be written: while it lives, every file that is opened through SQLite's layer
// is opened for reading, and none is made. Rights that are taken away would not stop every user.
#pragma once

#include <sqlite3.h>

#include <stdexcept>

namespace ambrelio::test {

class ReadOnlyFiles {
 public:
  ReadOnlyFiles() {
    real_ = sqlite3_vfs_find(nullptr);
    if (real_ == nullptr) throw std::runtime_error("no file system");
    vfs_ = *real_;
    vfs_.zName = "read-only";
    vfs_.xOpen = Open;
    sqlite3_vfs_register(&vfs_, 1);
  }
  ~ReadOnlyFiles() {
    sqlite3_vfs_unregister(&vfs_);
    sqlite3_vfs_register(real_, 1);
  }
  ReadOnlyFiles(const ReadOnlyFiles&) = delete;
  ReadOnlyFiles& operator=(const ReadOnlyFiles&) = delete;

 private:
  static int Open(sqlite3_vfs*, sqlite3_filename path, sqlite3_file* file, int flags, int* out) {
    flags &= ~(SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    return real_->xOpen(real_, path, file, flags | SQLITE_OPEN_READONLY, out);
  }

  inline static sqlite3_vfs* real_ = nullptr;
  sqlite3_vfs vfs_{};
};

}  // namespace ambrelio::test
