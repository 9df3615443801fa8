#include "input_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "ambrelio/platform/file_path.h"
#include "failure.h"

namespace ambrelio::cli {

std::ifstream OpenInput(const std::string& what, const std::string& path) {
  std::error_code ignored;
  errno = 0;
  std::ifstream file(FilePath(path), std::ios::binary);
  if (std::filesystem::is_directory(FilePath(path), ignored)) errno = EISDIR;
  if (!file || errno == EISDIR) {
    throw Failure(ExitCode::kFileProblem, fmt::format("the {} '{}' cannot be read: {}", what, path,
                                                      std::generic_category().message(errno)));
  }
  return file;
}

}  // namespace ambrelio::cli
