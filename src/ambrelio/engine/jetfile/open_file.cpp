#include "ambrelio/engine/jetfile/open_file.h"

#include "ambrelio/dao/errors.h"
#include "ambrelio/platform/file_path.h"

namespace ambrelio::jetfile {

std::ifstream OpenFile(const std::string& path) {
  constexpr const char* kSource = "DAO.Workspace";
  std::error_code ignored;
  const auto status = std::filesystem::status(FilePath(path), ignored);
  if (!std::filesystem::exists(status)) dao::Raise(dao::DaoError::kFileNotFound, kSource, path);
  std::ifstream file(FilePath(path), std::ios::binary);
  if (!file || !std::filesystem::is_regular_file(status)) {
    dao::Raise(dao::DaoError::kAccessDenied, kSource, path);
  }
  return file;
}

}  // namespace ambrelio::jetfile
