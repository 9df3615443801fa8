#include "ambrelio/engine/embedded/database_file.h"

#include "ambrelio/engine/embedded/jet/jet_storage.h"
#include "ambrelio/engine/embedded/storage/catalogue_store.h"
#include "ambrelio/engine/embedded/storage/password.h"
#include "ambrelio/engine/embedded/storage/storage_file.h"

namespace ambrelio::embedded {

FileForm FormByName(std::string_view path) {
  constexpr std::string_view kJet = ".mdb";
  const bool is_jet =
      path.size() >= kJet.size() && SameName(path.substr(path.size() - kJet.size()), kJet);
  return is_jet ? FileForm::kJet : FileForm::kOwn;
}

std::unique_ptr<Storage> OpenFile(const std::string& path, const std::string& password,
                                  Storage::Access access) {
  if (IsJetFile(path)) return OpenJet(path, password, access);
  auto storage = Storage::Open(path, access);
  CatalogueStore catalogue(*storage);
  CheckPassword(catalogue, password);
  return storage;
}

std::unique_ptr<Storage> CreateFile(const std::string& path, const std::string& password,
                                    FileForm form) {
  if (form == FileForm::kJet) {
    CreateJet(path, password);
    return OpenJet(path, password, Storage::Access::kShared);
  }
  CheckNewPassword(password);
  return Storage::Create(path, [&](Storage& fresh) {
    CatalogueStore catalogue(fresh);
    SetPassword(catalogue, password);
  });
}

}  // namespace ambrelio::embedded
