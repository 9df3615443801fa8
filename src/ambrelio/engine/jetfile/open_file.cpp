#include "ambrelio/engine/jetfile/open_file.h"

#include "ambrelio/dao/errors.h"
#include "ambrelio/platform/file_path.h"

namespace ambrelio::jetfile {
namespace {

constexpr const char* kSource = "DAO.Workspace";

}  // namespace

void RequireFile(const std::string& path) {
  std::error_code ignored;
  const auto status = std::filesystem::status(FilePath(path), ignored);
  if (!std::filesystem::exists(status)) dao::Raise(dao::DaoError::kFileNotFound, kSource, path);
  if (!std::filesystem::is_regular_file(status)) {
    dao::Raise(dao::DaoError::kAccessDenied, kSource, path);
  }
}

std::ifstream OpenFile(const std::string& path) {
  RequireFile(path);
  std::ifstream file(FilePath(path), std::ios::binary);
  if (!file) dao::Raise(dao::DaoError::kAccessDenied, kSource, path);
  return file;
}

}  // namespace ambrelio::jetfile
