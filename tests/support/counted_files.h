// Files of SQLite's as they are, with a count of how often the disk was waited for.
//
// While it lives, every file that SQLite opens goes through it.
#pragma once

#include <sqlite3.h>

#include <cstring>
#include <new>
#include <stdexcept>

namespace ambrelio::test {

class CountedFiles {
 public:
  CountedFiles() {
    real_ = sqlite3_vfs_find(nullptr);
    if (real_ == nullptr || current_ != nullptr) throw std::runtime_error("no file system");
    vfs_ = *real_;
    vfs_.zName = "counted";
    vfs_.szOsFile = static_cast<int>(sizeof(File)) + real_->szOsFile;
    vfs_.xOpen = Open;
    current_ = this;
    sqlite3_vfs_register(&vfs_, 1);
  }
  ~CountedFiles() {
    sqlite3_vfs_unregister(&vfs_);
    sqlite3_vfs_register(real_, 1);
    current_ = nullptr;
  }
  CountedFiles(const CountedFiles&) = delete;
  CountedFiles& operator=(const CountedFiles&) = delete;

  // How often the disk has been waited for since the last call.
  int Waits() {
    const int waits = waits_;
    waits_ = 0;
    return waits;
  }

 private:
  // Stands before the file of the real system, whose methods it lends but for one.
  struct File {
    sqlite3_file base;
    sqlite3_io_methods methods;
    sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
  };

  template <auto kMethod, class... A>
  static auto Pass(sqlite3_file* file, A... arguments) {
    sqlite3_file* const real = reinterpret_cast<File*>(file)->real();
    return (real->pMethods->*kMethod)(real, arguments...);
  }

  static int Sync(sqlite3_file* file, int flags) {
    ++current_->waits_;
    return Pass<&sqlite3_io_methods::xSync>(file, flags);
  }

  static int Open(sqlite3_vfs*, sqlite3_filename name, sqlite3_file* file, int flags, int* out) {
    auto* const counted = new (file) File{};
    using M = sqlite3_io_methods;
    const int code = current_->real_->xOpen(current_->real_, name, counted->real(), flags, out);
    if (counted->real()->pMethods == nullptr) return code;
    counted->methods = {counted->real()->pMethods->iVersion,
                        Pass<&M::xClose>,
                        Pass<&M::xRead, void*, int, sqlite3_int64>,
                        Pass<&M::xWrite, const void*, int, sqlite3_int64>,
                        Pass<&M::xTruncate, sqlite3_int64>,
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
    counted->base.pMethods = &counted->methods;
    return code;
  }

  inline static CountedFiles* current_ = nullptr;
  sqlite3_vfs* real_ = nullptr;
  sqlite3_vfs vfs_{};
  int waits_ = 0;
};

}  // namespace ambrelio::test
