#include "ambrelio/engine/embedded/workspace.h"

#include <utility>

#include "ambrelio/engine/embedded/connection.h"
#include "ambrelio/engine/embedded/database.h"
#include "ambrelio/engine/embedded/storage/catalogue_store.h"
#include "ambrelio/engine/embedded/storage/password.h"

namespace ambrelio::embedded {
namespace {

Storage::Access AccessOf(bool exclusive, bool read_only) {
  using Access = Storage::Access;
  if (exclusive) return read_only ? Access::kExclusiveReadOnly : Access::kExclusive;
  return read_only ? Access::kReadOnly : Access::kShared;
}

}  // namespace

std::shared_ptr<dao::Database> Workspace::Connect(std::unique_ptr<Storage> storage,
                                                  const std::string& password) const {
  auto catalogue = std::make_unique<CatalogueStore>(*storage, kept_);
  CheckPassword(*catalogue, password);
  catalogue->Current();  // a damaged one is known now
  catalogue->MakeKeptIndexes();
  return std::make_shared<Database>(
      std::make_shared<Connection>(std::move(storage), std::move(catalogue), transactions_, plan_));
}

std::shared_ptr<dao::Database> Workspace::OpenDatabase(const std::string& path, bool exclusive,
                                                       bool read_only, const std::string& connect) {
  const std::string password = PasswordOf(connect);
  return Connect(Storage::Open(path, AccessOf(exclusive, read_only)), password);
}

std::shared_ptr<dao::Database> Workspace::CreateDatabase(const std::string& path,
                                                         const std::string& connect) {
  const std::string password = PasswordOf(connect);
  CheckNewPassword(password);
  auto storage = Storage::Create(path, [&](Storage& fresh) {
    CatalogueStore catalogue(fresh);
    SetPassword(catalogue, password);
  });
  return Connect(std::move(storage), password);
}

}  // namespace ambrelio::embedded
