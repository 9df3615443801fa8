// A file on a disk, through the layer that SQLite has over operating systems: the same everywhere,
// with locks that also hold between the threads of one process.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace ambrelio::jetfile {

class DiskFile {
 public:
  // In the order of their strength. kReserved excludes itself and kExclusive, kExclusive excludes
  // all; whoever waits for it keeps newcomers from kShared.
  enum class Lock : int {
    kNone = SQLITE_LOCK_NONE,
    kShared = SQLITE_LOCK_SHARED,
    kReserved = SQLITE_LOCK_RESERVED,
    kExclusive = SQLITE_LOCK_EXCLUSIVE,
  };

  // Nothing when it cannot be opened. One that may not be written is opened for reading.
  static std::unique_ptr<DiskFile> Open(const std::string& path);
  // The same, but one that is missing is made, with the permissions of `like`.
  static std::unique_ptr<DiskFile> OpenOrCreate(const std::string& path, const std::string& like);
  static void Delete(const std::string& path);  // as far as it can be done
  // Absolute, without symbolic links where the system lets them be resolved. Raises 3044.
  static std::string FullPath(const std::string& path);

  ~DiskFile();
  DiskFile(const DiskFile&) = delete;
  DiskFile& operator=(const DiskFile&) = delete;

  const std::string& path() const { return path_; }
  bool writable() const { return writable_; }

  // These raise 3026 when the disk is full and 3043 for any other failure.
  int64_t Size() const;
  void Read(int64_t place, std::span<uint8_t> bytes) const;  // zeros beyond the end
  void Write(int64_t place, std::span<const uint8_t> bytes);
  void Truncate(int64_t size);
  void Sync();

  // Does not wait; false when a lock of another opening is in the way, and then newcomers may be
  // kept out until Unlock. From kNone only kShared can be had. Raises 3043.
  bool TryLock(Lock lock);
  // Goes back to `lock`, which is kNone or kShared.
  void Unlock(Lock lock);
  // Whether the name has been taken away or given to another file since the opening.
  bool HasMoved() const;

 private:
  explicit DiskFile(std::string path) : path_(std::move(path)) {}
  static std::unique_ptr<DiskFile> OpenAs(const std::string& path, int flags,
                                          std::vector<const char*> parameters);
  sqlite3_file* raw() const { return reinterpret_cast<sqlite3_file*>(file_.get()); }
  void Check(int code) const;

  std::string path_;
  std::unique_ptr<const char, void (*)(const char*)> name_{nullptr, nullptr};
  std::unique_ptr<std::byte[]> file_;  // a sqlite3_file and what the layer keeps behind it
  bool writable_ = false;
};

}  // namespace ambrelio::jetfile
