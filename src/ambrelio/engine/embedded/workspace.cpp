#include "ambrelio/engine/embedded/workspace.h"

#include <utility>

#include "ambrelio/engine/embedded/connection.h"
#include "ambrelio/engine/embedded/database.h"
#include "ambrelio/engine/embedded/database_file.h"
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

std::shared_ptr<dao::Database> Workspace::Connect(std::unique_ptr<Storage> storage) const {
  auto catalogue = std::make_unique<CatalogueStore>(*storage, kept_);
  catalogue->Current();  // a damaged one is known now
  catalogue->MakeKeptIndexes();
  return std::make_shared<Database>(
      std::make_shared<Connection>(std::move(storage), std::move(catalogue), transactions_, plan_));
}

std::shared_ptr<dao::Database> Workspace::OpenDatabase(const std::string& path, bool exclusive,
                                                       bool read_only, const std::string& connect) {
  return Connect(OpenFile(path, PasswordOf(connect), AccessOf(exclusive, read_only)));
}

std::shared_ptr<dao::Database> Workspace::CreateDatabase(const std::string& path,
                                                         const std::string& connect) {
  const FileForm form = new_files_ == NewFiles::kByName ? FormByName(path) : FileForm::kOwn;
  return Connect(CreateFile(path, PasswordOf(connect), form));
}

}  // namespace ambrelio::embedded
