// Chance that is the same on every machine: the standard's distributions are not.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace ambrelio::test {

class Chance {
 public:
  explicit Chance(uint64_t seed) : bits_(seed) {}

  // A number from 0 to count - 1.
  int Below(int count) { return static_cast<int>(bits_() % static_cast<uint64_t>(count)); }
  // True `percent` times in a hundred.
  bool Odds(int percent) { return Below(100) < percent; }
  template <class T>
  const T& Of(const std::vector<T>& choices) {
    return choices[static_cast<size_t>(Below(static_cast<int>(choices.size())))];
  }

 private:
  std::mt19937_64 bits_;
};

}  // namespace ambrelio::test
