// A transaction level that is undone unless it is completed.
#pragma once

#include "ambrelio/engine/embedded/storage/storage.h"

namespace ambrelio::embedded {

class TransactionLevel {
 public:
  explicit TransactionLevel(Storage& storage) : storage_(storage) { storage_.Begin(); }
  ~TransactionLevel() {
    if (complete_) return;
    try {
      storage_.Rollback();
    } catch (...) {
      // The error that is on its way says more.
    }
  }
  TransactionLevel(const TransactionLevel&) = delete;
  TransactionLevel& operator=(const TransactionLevel&) = delete;

  void Complete() {
    storage_.Commit();
    complete_ = true;
  }

 private:
  Storage& storage_;
  bool complete_ = false;
};

}  // namespace ambrelio::embedded
