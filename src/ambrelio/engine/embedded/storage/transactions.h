// The transaction levels of a workspace, kept in step on all databases open in it.
#pragma once

#include <vector>

#include "ambrelio/engine/embedded/storage/storage.h"

namespace ambrelio::embedded {

class Transactions {
 public:
  // Opens in the storage the levels that are open here; 3218 when it is locked.
  void Join(Storage& storage);
  // Rolls back what the storage has not committed. When no storage is left no level is open.
  void Leave(Storage& storage);

  // As dao::Workspace. When one fails the levels stay as they were.
  void Begin();
  void Commit();
  void Rollback();
  void BeginStretch();
  void EndStretch();

 private:
  std::vector<Storage*> storages_;
  int level_ = 0;
};

}  // namespace ambrelio::embedded
