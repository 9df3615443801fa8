#include "ambrelio/engine/embedded/jet/jet_storage.h"

#include <utility>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/jet/jet_backing.h"
#include "ambrelio/engine/embedded/storage/storage_file.h"
#include "ambrelio/engine/jetfile/new_file.h"
#include "ambrelio/engine/jetfile/shared_file.h"
#include "ambrelio/platform/atomic_file.h"
#include "ambrelio/platform/clock.h"

namespace ambrelio::embedded {
namespace {

using jetfile::SharedFile;

SharedFile::Access AccessOf(Storage::Access access) {
  switch (access) {
    case Storage::Access::kShared:
      return SharedFile::Access::kShared;
    case Storage::Access::kReadOnly:
      return SharedFile::Access::kReadOnly;
    case Storage::Access::kExclusive:
      return SharedFile::Access::kExclusive;
    case Storage::Access::kExclusiveReadOnly:
      break;
  }
  return SharedFile::Access::kExclusiveReadOnly;
}

}  // namespace

std::unique_ptr<Storage> OpenJet(const std::string& path, const std::string& password,
                                 Storage::Access access) {
  auto file = SharedFile::Open(path, password, AccessOf(access));
  auto storage = Storage::InMemory(path, file->read_only());
  storage->Back(std::make_unique<JetBacking>(*storage, std::move(file)));
  return storage;
}

void CreateJet(const std::string& path, const std::string& password) {
  const jetfile::Bytes bytes = jetfile::NewFile(password, Clock::Current().Now());
  CreateWhole(path, [&](const std::string& unfinished) {
    try {
      WriteFileAtomically(unfinished, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    } catch (const AutomationError&) {
      dao::Raise(dao::DaoError::kAccessDenied, dao::source::kWorkspace, path);
    }
  });
}

}  // namespace ambrelio::embedded
