#include "ambrelio/engine/check.h"

#include "ambrelio/engine/embedded/database_file.h"
#include "ambrelio/engine/embedded/storage/integrity.h"
#include "ambrelio/engine/embedded/storage/storage_file.h"
#include "ambrelio/engine/jetfile/checker.h"
#include "ambrelio/engine/jetfile/shared_file.h"

namespace ambrelio::engine {
namespace {

std::vector<CheckFinding> CheckJetFile(const std::string& path, const std::string& password) {
  const auto file =
      jetfile::SharedFile::Open(path, password, jetfile::SharedFile::Access::kReadOnly);
  const auto moment = file->Read();
  std::vector<CheckFinding> findings;
  for (jetfile::Finding& finding : jetfile::Check(file->file())) {
    findings.push_back({finding.place.page, finding.place.offset, std::move(finding.text)});
  }
  return findings;
}

std::vector<CheckFinding> CheckEmbeddedFile(const std::string& path, const std::string& password) {
  const auto storage = embedded::OpenFile(path, password, embedded::Storage::Access::kReadOnly);
  embedded::CatalogueStore catalogue(*storage);
  std::vector<CheckFinding> findings;
  for (std::string& text : embedded::CheckIntegrity(*storage, catalogue)) {
    findings.push_back({std::nullopt, std::nullopt, std::move(text)});
  }
  return findings;
}

}  // namespace

std::vector<CheckFinding> CheckFile(const std::string& path, const std::string& password) {
  return embedded::IsJetFile(path) ? CheckJetFile(path, password)
                                   : CheckEmbeddedFile(path, password);
}

}  // namespace ambrelio::engine
