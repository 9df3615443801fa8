// A 64-bit value that tells bytes from what is left of them after a torn write.
#pragma once

#include <cstdint>
#include <span>

namespace ambrelio::jetfile {

// Of pieces one after the other; where they are divided is part of the value.
class CheckValue {
 public:
  void Add(std::span<const uint8_t> piece);
  uint64_t value() const { return value_; }

 private:
  void AddWord(uint64_t word);

  uint64_t value_ = 0x6A65742D66696C65;
};

inline uint64_t CheckValueOf(std::span<const uint8_t> bytes) {
  CheckValue check;
  check.Add(bytes);
  return check.value();
}

}  // namespace ambrelio::jetfile
