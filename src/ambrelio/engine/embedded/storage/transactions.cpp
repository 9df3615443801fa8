#include "ambrelio/engine/embedded/storage/transactions.h"

#include <algorithm>

#include "ambrelio/dao/errors.h"

namespace ambrelio::embedded {
namespace {

using dao::DaoError;

constexpr int kMostLevels = 5;

}  // namespace

void Transactions::Join(Storage& storage) {
  for (int level = 0; level < level_; ++level) storage.Begin();
  storages_.push_back(&storage);
}

void Transactions::Leave(Storage& storage) {
  storage.RollbackAll();
  std::erase(storages_, &storage);
  if (storages_.empty()) level_ = 0;
}

void Transactions::Begin() {
  if (level_ == kMostLevels) dao::Raise(DaoError::kTooManyTransactions, dao::source::kWorkspace);
  size_t begun = 0;
  try {
    for (; begun < storages_.size(); ++begun) storages_[begun]->Begin();
  } catch (...) {
    while (begun > 0) storages_[--begun]->Rollback();
    throw;
  }
  ++level_;
}

void Transactions::Commit() {
  if (level_ == 0) dao::Raise(DaoError::kNoTransaction, dao::source::kWorkspace);
  // Several files cannot be committed at one stroke; at least none is when one is known to fail.
  for (const Storage* const storage : storages_) {
    if (storage->transaction_lost()) dao::Raise(DaoError::kNoTransaction, dao::source::kWorkspace);
  }
  size_t committed = 0;
  try {
    for (; committed < storages_.size(); ++committed) storages_[committed]->Commit();
  } catch (...) {
    while (committed > 0) storages_[--committed]->Begin();
    throw;
  }
  --level_;
}

void Transactions::BeginStretch() {
  for (Storage* const storage : storages_) storage->PutOffWaiting();
}

void Transactions::EndStretch() {
  for (Storage* const storage : storages_) storage->WaitForAll();
}

void Transactions::Rollback() {
  if (level_ == 0) dao::Raise(DaoError::kNoTransaction, dao::source::kWorkspace);
  for (Storage* const storage : storages_) storage->Rollback();
  --level_;
}

}  // namespace ambrelio::embedded
