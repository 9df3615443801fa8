#include "ambrelio/platform/atomic_file.h"

#include <fstream>

#include "ambrelio/platform/file_path.h"

namespace ambrelio {

std::optional<std::string> ReadWholeFile(const std::string& path) {
  std::error_code ignored;
  std::filesystem::path file = FilePath(path);
  if (!std::filesystem::is_regular_file(file, ignored)) return std::nullopt;
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return std::nullopt;
  std::string bytes;
  char block[1 << 14];
  while (stream.read(block, sizeof block) || stream.gcount() > 0) {
    bytes.append(block, static_cast<size_t>(stream.gcount()));
  }
  if (stream.bad()) return std::nullopt;
  return bytes;
}

}  // namespace ambrelio
