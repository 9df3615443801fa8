// A gateway of level sensors: answers the requests that a mill sends it over UDP as its script
// says.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "ambrelio/platform/datagram_socket.h"
#include "gateway_script.h"

namespace ambrelio::cli {

class Gateway {
 public:
  // What the gateway tells of its work.
  struct Listener {
    std::function<void(int16_t tank, const GatewayAnswer& answer)> request;
    // A datagram that is no request, or an answer that cannot be sent; in a sentence.
    std::function<void(const std::string& problem)> problem;
  };

  // Works while `loop` is run, which must outlive it.
  Gateway(EventLoop& loop, GatewayScript script, Listener listener);
  ~Gateway();
  Gateway(const Gateway&) = delete;
  Gateway& operator=(const Gateway&) = delete;

  // Raises what DatagramSocket::Bind does.
  void Listen(const Endpoint& local);
  int32_t Port() const { return socket_->LocalPort(); }

  // Requests met so far.
  int64_t Requests() const { return requests_; }
  // Whether an answer waits for its delay to pass.
  bool HasDelayedAnswers() const { return !delayed_.empty(); }

 private:
  void Receive(const std::string& bytes, const Endpoint& sender);
  void Answer(const GatewayAnswer& answer, const Endpoint& sender);
  void Send(const GatewayAnswer& answer, const Endpoint& sender);

  EventLoop& loop_;
  GatewayScript script_;
  Listener listener_;
  std::unique_ptr<DatagramSocket> socket_;
  int64_t requests_ = 0;
  std::map<int64_t, EventLoop::TimerId> delayed_;  // by the number of the request
};

}  // namespace ambrelio::cli
