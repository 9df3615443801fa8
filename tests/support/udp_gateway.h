// A gateway of level sensors for tests: real datagrams on the loop of the service that asks it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ambrelio/platform/datagram_socket.h"
#include "support/udp_ports.h"

namespace ambrelio::test {

class UdpGateway {
 public:
  // The datagrams that answer a request, in their order.
  using Answers = std::function<std::vector<std::string>(const std::string& request)>;

  UdpGateway(EventLoop& loop, Answers answers)
      : answers_(std::move(answers)), socket_(MakeUdpSocket(loop)) {
    socket_->Bind({"127.0.0.1", FreeUdpPortPair()},
                  [this](const std::string& request, const Endpoint& service) {
                    requests.push_back(request);
                    for (const std::string& text : answers_(request)) socket_->Send(service, text);
                  });
  }

  // The one above is free for the service.
  int32_t port() const { return socket_->LocalPort(); }
  void SendStray(const std::string& text) { socket_->Send({"127.0.0.1", port() + 1}, text); }

  std::vector<std::string> requests;

 private:
  Answers answers_;
  std::unique_ptr<DatagramSocket> socket_;
};

}  // namespace ambrelio::test
