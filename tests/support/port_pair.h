// Two neighbouring UDP ports of this machine that nobody uses: a gateway's and the one above it,
// where a mill listens.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ambrelio/platform/datagram_socket.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio::test {

class PortPair {
 public:
  PortPair() {
    while (lower_ == 0) Try();
  }

  int32_t lower() const { return lower_; }
  int32_t upper() const { return lower_ + 1; }

 private:
  // Takes the port that the system offers when its neighbour is free, too.
  void Try() {
    constexpr int32_t kLast = 65534;
    EventLoop loop;
    const auto first = MakeUdpSocket(loop);
    const auto second = MakeUdpSocket(loop);
    const auto ignore = [](const std::string&, const Endpoint&) {};
    first->Bind({"127.0.0.1", 0}, ignore);
    const int32_t offered = first->LocalPort();
    if (offered > kLast) return;
    try {
      second->Bind({"127.0.0.1", offered + 1}, ignore);
      lower_ = offered;
    } catch (const AutomationError&) {
      // taken: the next offer
    }
  }

  int32_t lower_ = 0;
};

}  // namespace ambrelio::test
