#include "ambrelio/engine/check.h"

#include <fstream>

#include "ambrelio/engine/embedded/storage/integrity.h"
#include "ambrelio/engine/embedded/storage/password.h"
#include "ambrelio/engine/jetfile/checker.h"
#include "ambrelio/engine/jetfile/shared_file.h"
#include "ambrelio/platform/file_path.h"

namespace ambrelio::engine {
namespace {

bool IsJetFile(const std::string& path) {
  constexpr size_t kEnough = 32;
  std::ifstream file(FilePath(path), std::ios::binary);
  std::string first(kEnough, '\0');
  file.read(first.data(), static_cast<std::streamsize>(first.size()));
  first.resize(static_cast<size_t>(file.gcount()));
  return jetfile::LooksLikeJet(first);
}

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
  const auto storage = embedded::Storage::Open(path, embedded::Storage::Access::kReadOnly);
  embedded::CatalogueStore catalogue(*storage);
  embedded::CheckPassword(catalogue, password);
  std::vector<CheckFinding> findings;
  for (std::string& text : embedded::CheckIntegrity(*storage, catalogue)) {
    findings.push_back({std::nullopt, std::nullopt, std::move(text)});
  }
  return findings;
}

}  // namespace

std::vector<CheckFinding> CheckFile(const std::string& path, const std::string& password) {
  return IsJetFile(path) ? CheckJetFile(path, password) : CheckEmbeddedFile(path, password);
}

}  // namespace ambrelio::engine
