// Whether a database file is sound, whichever engine it is of.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ambrelio::engine {

struct CheckFinding {
  // Where in the file, as far as that is known.
  std::optional<uint32_t> page;
  std::optional<uint64_t> offset;  // bytes from the start of the page
  std::string text;                // what is wrong, a phrase for engineers
};

// What is wrong with a file, nothing for a sound one. The file is only read. Raises DAO's errors of
// a file that cannot be opened: 3024 there is none, 3343 another format, 3049 damaged at its very
// beginning, 3031 wrong password.
std::vector<CheckFinding> CheckFile(const std::string& path, const std::string& password);

}  // namespace ambrelio::engine
