#include "ambrelio/engine/jetfile/first_bytes.h"

#include <fstream>

#include "ambrelio/dao/errors.h"
#include "ambrelio/platform/file_in_use.h"
#include "ambrelio/platform/file_path.h"

namespace ambrelio::jetfile {

Bytes FirstBytes(const std::string& path) {
  constexpr size_t kFirstBytes = 0x18;
  std::error_code ignored;
  const auto status = std::filesystem::status(FilePath(path), ignored);
  if (!std::filesystem::exists(status)) {
    dao::Raise(dao::DaoError::kFileNotFound, dao::source::kWorkspace, path);
  }
  std::ifstream file(FilePath(path), std::ios::binary);
  if (!file || !std::filesystem::is_regular_file(status)) {
    const bool held = IsHeldByAnother(path);
    dao::Raise(held ? dao::DaoError::kFileInUse : dao::DaoError::kAccessDenied,
               dao::source::kWorkspace, path);
  }
  Bytes bytes(kFirstBytes);
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<size_t>(file.gcount()));
  return bytes;
}

}  // namespace ambrelio::jetfile
