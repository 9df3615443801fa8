// What the fuzzers share. A fuzzer hands bytes to one reader and holds it to what must be true of
// any bytes; an exception that the reader does not promise ends the run as a crash does.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace ambrelio::fuzz {

inline std::string_view TextOf(const uint8_t* data, size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

inline void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "this must hold: %s\n", what);
  std::abort();
}

}  // namespace ambrelio::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
