#include "stand_in_file.h"

#include <filesystem>
#include <fstream>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/storage/storage_file.h"
#include "ambrelio/platform/file_path.h"

namespace ambrelio::stand_in {
namespace {

using dao::DaoError;

constexpr const char* kSource = "DAO.Workspace";
constexpr size_t kPage = 4096;  // of Jet 4

bool Exists(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(FilePath(path), error);
}

}  // namespace

std::string DataOf(const std::string& path) {
  if (path.empty() || !Exists(path)) return path;
  if (!embedded::IsJetFile(path) || !Exists(path + kDataSuffix)) {
    dao::Raise(DaoError::kUnrecognisedFormat, kSource, path);
  }
  return path + kDataSuffix;
}

std::string DataOfNew(const std::string& path) {
  if (path.empty()) return path;
  if (Exists(path)) dao::Raise(DaoError::kDatabaseExists, kSource, path);
  return path + kDataSuffix;
}

void WriteHeader(const std::string& path) {
  std::string page("\0\1\0\0Standard Jet DB\0\1", 21);
  page.resize(kPage);
  std::ofstream file(FilePath(path), std::ios::binary);
  file << page;
  file.close();
  if (!file) dao::Raise(DaoError::kAccessDenied, kSource, path);
}

}  // namespace ambrelio::stand_in
