#include "ambrelio/engine/jetfile/shared_file.h"

#include <algorithm>
#include <filesystem>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/open_file.h"
#include "ambrelio/platform/file_in_use.h"
#include "ambrelio/platform/file_path.h"

namespace ambrelio::jetfile {
namespace {

using dao::DaoError;
using Access = SharedFile::Access;

constexpr const char* kOpening = "DAO.Workspace";
constexpr size_t kFirstBytes = 0x18;
constexpr size_t kCommitTableBytes = 512;

void RequireFolder(const std::string& path) {
  const std::filesystem::path folder = FilePath(path).parent_path();
  std::error_code ignored;
  if (!folder.empty() && !std::filesystem::is_directory(folder, ignored)) {
    dao::Raise(DaoError::kInvalidPath, kOpening, path);
  }
}

bool IsAlone(Access access) {
  return access == Access::kExclusive || access == Access::kExclusiveReadOnly;
}

[[noreturn]] void RefuseUnfinishedCommit(const std::string& path) {
  Refuse(DaoError::kAccessDenied,
         "The file '" + path +
             "' cannot be opened: it was left in the middle of a change, and can only be put right "
             "where it and its folder may be written.");
}

const Format& FormatOf(const DiskFile& file) {
  Bytes first(static_cast<size_t>(std::min<int64_t>(file.Size(), kFirstBytes)));
  file.Read(0, first);
  return RecogniseFormat({first, {}});
}

}  // namespace

std::unique_ptr<SharedFile> SharedFile::Open(const std::string& path, std::string_view password,
                                             Access access, std::chrono::milliseconds wait) {
  RequireFolder(path);
  RequireFile(path);
  std::unique_ptr<SharedFile> file(new SharedFile(path, access));
  file->OpenLocks(access, wait);
  const Moment moment = file->Read();
  auto pages = std::make_unique<SharedPages>(*file->data_, file->format_->page_size);
  file->pages_ = pages.get();
  const size_t torn = static_cast<size_t>(file->data_->Size()) % file->format_->page_size;
  file->file_.emplace(std::move(pages), torn, password);
  file->seen_ = file->ReadStamp();
  return file;
}

SharedFile::SharedFile(const std::string& path, Access access)
    : path_(path), full_path_(DiskFile::FullPath(path)) {
  data_ = DiskFile::Open(full_path_, DiskFile::Mode::kExisting);
  if (!data_) {
    const bool held = IsHeldByAnother(path);
    dao::Raise(held ? DaoError::kFileInUse : DaoError::kAccessDenied, kOpening, path);
  }
  format_ = &FormatOf(*data_);
  read_only_ = access == Access::kReadOnly || access == Access::kExclusiveReadOnly ||
               !data_->writable() || !format_->jet4;
}

void SharedFile::OpenLocks(Access access, std::chrono::milliseconds wait) {
  locks_ = FileLocks::Open(full_path_, IsAlone(access), wait);
  if (locks_) {
    read_only_ = read_only_ || !locks_->writable();
    record_.emplace(locks_->rollback(), FileLocks::kRecordAt, *data_);
    if (RollbackRecord::Begins(locks_->rollback(), FileLocks::kRecordAt)) PutRight();
    return;
  }
  if (IsAlone(access)) dao::Raise(DaoError::kAccessDenied, kOpening, path_);
  read_only_ = true;
  const std::string rollback = FileLocks::RollbackPath(full_path_);
  if (!std::filesystem::exists(FilePath(rollback))) return;
  const auto file = DiskFile::Open(rollback, DiskFile::Mode::kExisting);
  if (!file || RollbackRecord::Begins(*file, FileLocks::kRecordAt)) RefuseUnfinishedCommit(path_);
}

SharedFile::~SharedFile() { GiveBack(); }

// A record of somebody who is still writing is not touched, for he has the turn.
void SharedFile::PutRight() {
  if (!locks_->writable() || !data_->writable()) RefuseUnfinishedCommit(path_);
  const bool had_turn = locks_->has_turn();
  if (!had_turn) locks_->TakeTurn();
  try {
    locks_->Enter();
    locks_->BeginOverwriting();
    record_->Settle();
    locks_->EndOverwriting();
  } catch (...) {
    if (!had_turn) locks_->GiveTurn();
    locks_->Leave();
    throw;
  }
  locks_->Leave();
  if (!had_turn) locks_->GiveTurn();
}

void SharedFile::EnterMoment() {
  if (locks_ && moments_ == 0) {
    locks_->Enter();
    while (locks_->LeftInTheMiddle()) {
      locks_->Leave();
      PutRight();
      locks_->Enter();
    }
  }
  if (pages_ != nullptr && moments_ == 0) pages_->Look();
  ++moments_;
}

void SharedFile::LeaveMoment() {
  if (--moments_ == 0 && locks_) locks_->Leave();
}

SharedFile::Stamp SharedFile::ReadStamp() const {
  Stamp stamp{locks_ ? locks_->Count() : 0, Bytes(kCommitTableBytes)};
  data_->Read(static_cast<int64_t>(format_->commit_table_at), stamp.commit_table);
  return stamp;
}

// Who is in the middle of a commit shows as a difference, and within the moment he is done.
bool SharedFile::ChangedByOthers() {
  if (ReadStamp() == seen_) return false;
  const Moment moment = Read();
  Stamp now = ReadStamp();
  if (now == seen_) return false;
  file_->ForgetChanges();
  seen_ = std::move(now);
  return true;
}

}  // namespace ambrelio::jetfile
