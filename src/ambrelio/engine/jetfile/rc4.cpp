#include "ambrelio/engine/jetfile/rc4.h"

#include <array>
#include <numeric>
#include <utility>

namespace ambrelio::jetfile {

void Rc4(uint32_t key, std::span<uint8_t> bytes) {
  std::array<uint8_t, 256> state{};
  std::iota(state.begin(), state.end(), uint8_t{0});
  uint8_t j = 0;
  for (size_t i = 0; i < state.size(); ++i) {
    j = static_cast<uint8_t>(j + state[i] + (key >> (8 * (i % 4)) & 0xFF));
    std::swap(state[i], state[j]);
  }
  uint8_t i = 0;
  j = 0;
  for (uint8_t& byte : bytes) {
    j = static_cast<uint8_t>(j + state[++i]);
    std::swap(state[i], state[j]);
    byte ^= state[static_cast<uint8_t>(state[i] + state[j])];
  }
}

}  // namespace ambrelio::jetfile
