// The number of a file; see file_number.h.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <optional>
#include <string>

namespace ambrelio::test {

// Nothing when there is no such file.
inline std::optional<uint64_t> FileNumber(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return status.st_ino;
}

}  // namespace ambrelio::test
