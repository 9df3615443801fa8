// Signals; see interruptions.h.
#pragma once

#include <csignal>
#include <functional>
#include <vector>

namespace ambrelio::test {

inline std::vector<std::function<void()>> Interruptions() {
  return {[] { std::raise(SIGINT); }, [] { std::raise(SIGTERM); }};
}

}  // namespace ambrelio::test
