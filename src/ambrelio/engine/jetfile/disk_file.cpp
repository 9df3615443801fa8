#include "ambrelio/engine/jetfile/disk_file.h"

#include "ambrelio/dao/errors.h"

namespace ambrelio::jetfile {
namespace {

// The low byte of an extended code is the code itself.
int PrimaryCode(int code) { return code & 0xFF; }

sqlite3_vfs& Layer() { return *sqlite3_vfs_find(nullptr); }

}  // namespace

std::unique_ptr<DiskFile> DiskFile::Open(const std::string& path) { return OpenAs(path, 0, {}); }

std::unique_ptr<DiskFile> DiskFile::OpenOrCreate(const std::string& path, const std::string& like) {
  return OpenAs(path, SQLITE_OPEN_CREATE | SQLITE_OPEN_URI, {"modeof", like.c_str()});
}

std::unique_ptr<DiskFile> DiskFile::OpenAs(const std::string& path, int flags,
                                           std::vector<const char*> parameters) {
  sqlite3_vfs& layer = Layer();
  std::unique_ptr<DiskFile> file(new DiskFile(path));
  // The layer keeps the name, and wants it in memory of this form.
  file->name_ = {
      sqlite3_create_filename(path.c_str(), "", "", static_cast<int>(parameters.size() / 2),
                              parameters.data()),
      sqlite3_free_filename};
  file->file_ = std::make_unique<std::byte[]>(static_cast<size_t>(layer.szOsFile));
  // Only what is a main database to it has locks.
  flags |= SQLITE_OPEN_MAIN_DB | SQLITE_OPEN_READWRITE;
  int opened = 0;
  const int code = layer.xOpen(&layer, file->name_.get(), file->raw(), flags, &opened);
  if (code != SQLITE_OK) return nullptr;
  file->writable_ = (opened & SQLITE_OPEN_READONLY) == 0;
  return file;
}

void DiskFile::Delete(const std::string& path) {
  sqlite3_vfs& layer = Layer();
  layer.xDelete(&layer, path.c_str(), 0);
}

std::string DiskFile::FullPath(const std::string& path) {
  sqlite3_vfs& layer = Layer();
  std::vector<char> full(static_cast<size_t>(layer.mxPathname) + 1);
  const int code =
      layer.xFullPathname(&layer, path.c_str(), static_cast<int>(full.size()), full.data());
  if (PrimaryCode(code) != SQLITE_OK) {
    dao::Raise(dao::DaoError::kInvalidPath, dao::source::kWorkspace, path);
  }
  return full.data();
}

DiskFile::~DiskFile() {
  if (file_ && raw()->pMethods != nullptr) raw()->pMethods->xClose(raw());
}

void DiskFile::Check(int code) const {
  if (code == SQLITE_OK) return;
  const bool full = PrimaryCode(code) == SQLITE_FULL;
  dao::Raise(full ? dao::DaoError::kDiskFull : dao::DaoError::kDiskError, dao::source::kDatabase,
             path_);
}

int64_t DiskFile::Size() const {
  sqlite3_int64 size = 0;
  Check(raw()->pMethods->xFileSize(raw(), &size));
  return size;
}

void DiskFile::Read(int64_t place, std::span<uint8_t> bytes) const {
  const int code =
      raw()->pMethods->xRead(raw(), bytes.data(), static_cast<int>(bytes.size()), place);
  if (code != SQLITE_IOERR_SHORT_READ) Check(code);
}

void DiskFile::Write(int64_t place, std::span<const uint8_t> bytes) {
  Check(raw()->pMethods->xWrite(raw(), bytes.data(), static_cast<int>(bytes.size()), place));
}

void DiskFile::Truncate(int64_t size) { Check(raw()->pMethods->xTruncate(raw(), size)); }

void DiskFile::Sync() { Check(raw()->pMethods->xSync(raw(), SQLITE_SYNC_FULL)); }

bool DiskFile::TryLock(Lock lock) {
  const int code = raw()->pMethods->xLock(raw(), static_cast<int>(lock));
  if (PrimaryCode(code) == SQLITE_BUSY) return false;
  Check(code);
  return true;
}

void DiskFile::Unlock(Lock lock) { raw()->pMethods->xUnlock(raw(), static_cast<int>(lock)); }

bool DiskFile::HasMoved() const {
  int moved = 0;
  raw()->pMethods->xFileControl(raw(), SQLITE_FCNTL_HAS_MOVED, &moved);
  return moved != 0;
}

}  // namespace ambrelio::jetfile
