#include "ambrelio/engine/jetfile/shared_file.h"

#include <filesystem>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/first_bytes.h"
#include "ambrelio/engine/jetfile/other_programs.h"
#include "ambrelio/platform/file_path.h"

namespace ambrelio::jetfile {
namespace {

using dao::DaoError;
using Access = SharedFile::Access;

constexpr const char* kOpening = dao::source::kWorkspace;

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

}  // namespace

std::unique_ptr<SharedFile> SharedFile::Open(const std::string& path, std::string_view password,
                                             Access access, std::chrono::milliseconds wait) {
  RequireFolder(path);
  const Format& format = RecogniseFormat({FirstBytes(path), {}});
  std::unique_ptr<SharedFile> file(new SharedFile(path, format));
  file->OpenLocks(IsAlone(access), wait);
  file->OpenData();
  if (access == Access::kReadOnly || access == Access::kExclusiveReadOnly) file->read_only_ = true;
  const Moment moment = file->Read();
  file->ReadHeader(password);
  return file;
}

SharedFile::SharedFile(const std::string& path, const Format& format)
    : path_(path),
      full_path_(DiskFile::FullPath(path)),
      read_only_(!format.jet4),
      format_(format) {}

void SharedFile::OpenLocks(bool alone, std::chrono::milliseconds wait) {
  locks_ = FileLocks::Open(full_path_, alone, wait);
  if (alone) RefuseWhileOthersHaveIt(full_path_);
  if (locks_) return;
  if (alone) dao::Raise(DaoError::kAccessDenied, kOpening, path_);
  const std::string rollback = FileLocks::RollbackPath(full_path_);
  if (!std::filesystem::exists(FilePath(rollback))) return;
  const auto file = DiskFile::Open(rollback);
  if (!file || RollbackRecord::Begins(*file, FileLocks::kRecordAt)) RefuseUnfinishedCommit(path_);
}

// Behind the locks, so that nobody can replace the file any more.
void SharedFile::OpenData() {
  data_ = DiskFile::Open(full_path_);
  if (!data_) dao::Raise(DaoError::kAccessDenied, kOpening, path_);
  if (!data_->writable() || !locks_ || !locks_->writable()) read_only_ = true;
  if (locks_) record_.emplace(locks_->rollback(), FileLocks::kRecordAt, *data_);
}

void SharedFile::ReadHeader(std::string_view password) {
  auto pages = std::make_unique<SharedPages>(*data_, format_.page_size);
  SharedPages* const below = pages.get();
  const size_t torn = static_cast<size_t>(data_->Size()) % format_.page_size;
  file_.emplace(std::move(pages), torn, password);
  pages_ = below;  // which are gone where the file is refused
  seen_ = ReadStamp();
}

SharedFile::~SharedFile() { GiveBack(); }

// Only who is overwriting pages has a record, and then there are no moments: one that is found in a
// moment is left of somebody who died or failed.
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
    while (RollbackRecord::Begins(locks_->rollback(), FileLocks::kRecordAt)) {
      locks_->Leave();
      PutRight();
      locks_->Enter();
    }
  }
  if (pages_ != nullptr && moments_ == 0) pages_->BeginMoment();
  ++moments_;
}

void SharedFile::LeaveMoment() {
  if (--moments_ > 0) return;
  if (pages_ != nullptr) pages_->EndMoment();
  if (locks_) locks_->Leave();
}

SharedFile::Stamp SharedFile::ReadStamp() const {
  Stamp stamp{locks_ ? locks_->Count() : 0, Bytes(kCommitTableBytes)};
  data_->Read(static_cast<int64_t>(format_.commit_table_at), stamp.commit_table);
  return stamp;
}

// A commit under way shows as a difference, and by the time of the moment it is done. In the turn
// to write nobody else commits.
bool SharedFile::ChangedByOthers() {
  if (!turn_ && ReadStamp() != seen_) {
    const Moment moment = Read();
    TakeNotice();
  }
  return std::exchange(changed_by_others_, false);
}

void SharedFile::TakeNotice() {
  pages_->Look();
  file_->ForgetChanges();
  Stamp now = ReadStamp();
  if (now == seen_) return;
  auto pages = PagesBetween(seen_, now);
  if (!pages) {
    pages_of_others_.reset();
  } else if (pages_of_others_) {
    pages_of_others_->merge(*pages);
  }
  seen_ = std::move(now);
  changed_by_others_ = true;
}

// The record tells of the last commit, also when it is void.
std::optional<std::set<uint32_t>> SharedFile::PagesBetween(const Stamp& before,
                                                           const Stamp& after) const {
  if (!record_ || after.count != before.count + 1) return std::nullopt;
  Bytes expected = before.commit_table;
  Put(expected, 0, NextCommit(ByteView(expected, {}).U16(0)), kEntryBytes);
  if (after.commit_table != expected) return std::nullopt;
  return record_->LastPages();
}

}  // namespace ambrelio::jetfile
