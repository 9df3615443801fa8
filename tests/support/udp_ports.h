// UDP ports for tests over real sockets.
#pragma once

#include <cstdint>
#include <random>

#include "ambrelio/platform/datagram_socket.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio::test {

// Whether a socket can listen at `port`, on all addresses.
inline bool IsFreeUdpPort(int32_t port) {
  EventLoop loop;
  try {
    MakeUdpSocket(loop)->Bind({"", port}, [](const std::string&, const Endpoint&) {});
  } catch (const AutomationError&) {
    return false;
  }
  return true;
}

// A port that is free, and so is the one above it. Below those that systems give away by
// themselves and always even, so that nobody gets the upper one by chance in between.
inline int32_t FreeUdpPortPair() {
  std::random_device random;
  std::uniform_int_distribution<int32_t> pairs(10000, 15000);
  for (;;) {
    const int32_t port = 2 * pairs(random);
    if (IsFreeUdpPort(port) && IsFreeUdpPort(port + 1)) return port;
  }
}

}  // namespace ambrelio::test
