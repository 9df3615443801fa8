// Paths are UTF-8 inside the library, on every system.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace ambrelio {

inline std::filesystem::path FilePath(std::string_view utf8) {
  return {std::u8string(utf8.begin(), utf8.end())};
}

inline std::string Utf8Path(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

}  // namespace ambrelio
