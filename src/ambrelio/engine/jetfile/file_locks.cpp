#include "ambrelio/engine/jetfile/file_locks.h"

#include <filesystem>
#include <thread>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/jetfile/bytes.h"
#include "ambrelio/engine/jetfile/rollback_record.h"
#include "ambrelio/platform/file_path.h"

namespace ambrelio::jetfile {
namespace {

using Lock = DiskFile::Lock;
using dao::DaoError;

// Whether the name of a file can go while the file is open.
#if defined(_WIN32)
constexpr bool kOpenFilesCanBeDeleted = false;
#else
constexpr bool kOpenFilesCanBeDeleted = true;
#endif

// Tries until it succeeds or the time is over.
template <class Attempt>
bool Await(std::chrono::milliseconds wait, Attempt attempt) {
  constexpr std::chrono::milliseconds kPause{2};
  const auto end = std::chrono::steady_clock::now() + wait;
  while (!attempt()) {
    if (std::chrono::steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(kPause);
  }
  return true;
}

}  // namespace

std::unique_ptr<FileLocks> FileLocks::Open(const std::string& path, bool alone,
                                           std::chrono::milliseconds wait) {
  std::unique_ptr<FileLocks> locks(new FileLocks(path, alone, wait));
  const bool joined = Await(wait, [&] { return locks->TryJoin(); });
  if (!joined) dao::Raise(DaoError::kFileInUse, dao::source::kWorkspace, path);
  if (locks->presence_) {
    locks->rollback_ = DiskFile::OpenOrCreate(RollbackPath(path), path);
  }
  if (locks->rollback_) return locks;
  // One that is there is somebody's, who would not be seen.
  const std::string missing = locks->presence_ ? RollbackPath(path) : locks->PresencePath();
  if (std::filesystem::exists(FilePath(missing))) {
    dao::Raise(DaoError::kAccessDenied, dao::source::kWorkspace, missing);
  }
  return nullptr;
}

// The last one can have taken the name away between the opening and the lock. Who wants to be alone
// gives way after each attempt, so that of two one succeeds.
bool FileLocks::TryJoin() {
  presence_ = DiskFile::OpenOrCreate(PresencePath(), path_);
  if (!presence_) return true;
  if (alone_ && !presence_->writable()) {
    dao::Raise(DaoError::kAccessDenied, dao::source::kWorkspace, path_);
  }
  const bool joined = presence_->TryLock(Lock::kShared) && !presence_->HasMoved() &&
                      (!alone_ || presence_->TryLock(Lock::kExclusive));
  if (!joined) presence_.reset();
  return joined;
}

FileLocks::~FileLocks() {
  if (!presence_ || !rollback_ || !writable()) return;
  try {
    if (presence_->TryLock(Lock::kExclusive)) Remove();
  } catch (const AutomationError&) {
    // The files stay, which does no harm.
  }
}

void FileLocks::Remove() {
  const bool needed = RollbackRecord::Begins(*rollback_, kRecordAt);
  rollback_.reset();
  if (!needed) DiskFile::Delete(RollbackPath(path_));
  if (!kOpenFilesCanBeDeleted) presence_.reset();
  DiskFile::Delete(PresencePath());
}

void FileLocks::Enter() {
  const bool entered = Await(wait_, [&] { return rollback_->TryLock(Lock::kShared); });
  if (!entered) dao::Raise(DaoError::kRecordLocked, dao::source::kDatabase, path_);
}

void FileLocks::Leave() {
  overwriting_ = false;
  rollback_->Unlock(Lock::kNone);
}

void FileLocks::TakeTurn() {
  has_turn_ = alone_ || Await(wait_, [&] { return presence_->TryLock(Lock::kReserved); });
  if (!has_turn_) dao::Raise(DaoError::kRecordLocked, dao::source::kDatabase, path_);
}

void FileLocks::GiveTurn() {
  has_turn_ = false;
  if (!alone_) presence_->Unlock(Lock::kShared);
}

void FileLocks::BeginOverwriting() {
  overwriting_ = Await(wait_, [&] { return rollback_->TryLock(Lock::kExclusive); });
  try {
    if (!overwriting_) dao::Raise(DaoError::kRecordLocked, dao::source::kDatabase, path_);
    Bytes count;
    Append(count, Count() + 1, kRecordAt);
    rollback_->Write(0, count);
  } catch (...) {
    EndOverwriting();
    throw;
  }
}

void FileLocks::EndOverwriting() {
  overwriting_ = false;
  rollback_->Unlock(Lock::kShared);
}

uint64_t FileLocks::Count() const {
  Bytes count(kRecordAt);
  rollback_->Read(0, count);
  return ByteView(count, {}).U64(0);
}

}  // namespace ambrelio::jetfile
