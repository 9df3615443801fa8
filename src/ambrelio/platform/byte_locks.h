// Locks that programs hold on single bytes of a file, which need not have those bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace ambrelio {

// One of the `count` bytes from `first` on that another program has locked. Nothing when none is,
// or when there is no such file; one that cannot be looked into counts as locked.
std::optional<uint64_t> LockedByte(const std::string& path, uint64_t first, uint64_t count);

}  // namespace ambrelio
