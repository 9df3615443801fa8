// The turn to write, and the commit.
#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/other_programs.h"
#include "ambrelio/engine/jetfile/shared_file.h"

namespace ambrelio::jetfile {
namespace {

using dao::DaoError;

}  // namespace

void SharedFile::Lock() {
  if (read_only_) dao::Raise(DaoError::kReadOnly, dao::source::kDatabase, path_);
  locks_->TakeTurn();
  try {
    turn_.emplace(Read());
    TakeNotice();
    RefuseWhileOthersHaveIt(full_path_);
    RefuseUnfinishedChange(path_, file_->header());
  } catch (...) {
    GiveBack();
    throw;
  }
}

void SharedFile::Unlock() {
  if (!turn_) return;
  const Moment moment = Read();
  GiveBack();
  file_->ForgetChanges();
}

// What cannot be taken back now, the next one takes back, who finds the turn free.
void SharedFile::GiveBack() {
  if (!locks_ || !locks_->has_turn()) return;
  TryToTakeBack();
  locks_->GiveTurn();
  turn_.reset();
}

void SharedFile::Commit() {
  if (!turn_) dao::Raise(DaoError::kNoTransaction, dao::source::kDatabase);
  if (locks_->overwriting()) TakeBack();
  if (file_->changes().empty()) return;
  RefuseWhileOthersHaveIt(full_path_);
  if (ReadStamp().commit_table != seen_.commit_table) {
    Refuse(DaoError::kFileInUse,
           "The file '" + path_ + "' was changed by another program in the meantime.");
  }
  const std::map<uint32_t, Page> pages = PagesToStore();
  try {
    locks_->BeginOverwriting();
    record_->Write(pages);
    Overwrite(pages);
  } catch (...) {
    TryToTakeBack();
    throw;
  }
  locks_->EndOverwriting();
  pages_->Look();
  file_->ForgetChanges();
  seen_ = ReadStamp();
}

std::map<uint32_t, Page> SharedFile::PagesToStore() const {
  std::map<uint32_t, Page> pages = file_->StoredChanges();
  const uint16_t old_entry = ViewOf(pages_->Read(0), 0).U16(format_.commit_table_at);
  Bytes header = *file_->Read(0);
  Put(header, format_.commit_table_at, NextCommit(old_entry), kEntryBytes);
  pages[0] = std::make_shared<Bytes>(std::move(header));
  return pages;
}

// An entry of zeros in the commit table tells other programs of a change under way.
void SharedFile::Overwrite(const std::map<uint32_t, Page>& pages) {
  Bytes header = *pages_->Read(0);
  Put(header, format_.commit_table_at, 0, kEntryBytes);
  WritePage(0, header);
  for (const auto& [number, page] : pages) {
    if (number != 0) WritePage(number, *page);
  }
  WritePage(0, *pages.at(0));
  data_->Sync();
  try {
    record_->MakeVoid();
  } catch (const AutomationError&) {
    // Whoever finds the record finds the commit as well.
  }
}

void SharedFile::WritePage(uint32_t number, std::span<const uint8_t> page) {
  data_->Write(static_cast<int64_t>(number) * static_cast<int64_t>(page.size()), page);
}

void SharedFile::TakeBack() {
  record_->TakeBack();
  locks_->EndOverwriting();
  pages_->Look();
}

// After another failure the record stays for the next attempt, and nobody may read before.
void SharedFile::TryToTakeBack() {
  try {
    if (locks_->overwriting()) TakeBack();
  } catch (const AutomationError&) {
    return;
  }
}

}  // namespace ambrelio::jetfile
