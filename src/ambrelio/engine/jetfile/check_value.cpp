#include "ambrelio/engine/jetfile/check_value.h"

#include <algorithm>

namespace ambrelio::jetfile {

// Each step maps the values one to one, so that a difference in a single word always shows.
void CheckValue::AddWord(uint64_t word) {
  constexpr uint64_t kOddFactor = 0x9E3779B97F4A7C15;
  constexpr int kHalf = 32;
  value_ = (value_ ^ word) * kOddFactor;
  value_ ^= value_ >> kHalf;
}

void CheckValue::Add(std::span<const uint8_t> piece) {
  AddWord(piece.size());
  while (!piece.empty()) {
    const size_t size = std::min(piece.size(), sizeof(uint64_t));
    uint64_t word = 0;
    for (size_t i = 0; i < size; ++i) word |= static_cast<uint64_t>(piece[i]) << (8 * i);
    AddWord(word);
    piece = piece.subspan(size);
  }
}

}  // namespace ambrelio::jetfile
