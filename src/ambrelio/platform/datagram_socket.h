// Datagrams over UDP, IPv4. Errors are AutomationErrors with the numbers of Windows Sockets, as
// 10048 for a port that is taken and 11001 for a host that is not found, on every system.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "ambrelio/platform/event_loop.h"

namespace ambrelio {

struct Endpoint {
  std::string host;  // a name, or an address with dots; "" is every address of this machine
  int32_t port = 0;

  friend bool operator==(const Endpoint&, const Endpoint&) = default;
};

// A socket; a test puts its own behind it.
class DatagramSocket {
 public:
  // The bytes of one datagram, whole, also none; and where an answer goes to.
  using Receiver = std::function<void(const std::string& bytes, const Endpoint& sender)>;

  virtual ~DatagramSocket() = default;

  // Closes what was open and listens at `local`. `receiver` gets each datagram, one event each; one
  // that cannot be read is passed over. 380 (invalid property value) for a port outside 0..65535;
  // 0 lets the system choose one.
  virtual void Bind(const Endpoint& local, Receiver receiver) = 0;
  // From the port bound. 380 for a port outside 1..65535. Names are looked up once and kept until
  // Close.
  virtual void Send(const Endpoint& remote, std::string_view bytes) = 0;
  // May be called from within the receiver.
  virtual void Close() = 0;
  // The port listened at; 0 when closed.
  virtual int32_t LocalPort() const = 0;
};

// Delivers by `loop`, which must outlive it.
std::unique_ptr<DatagramSocket> MakeUdpSocket(EventLoop& loop);

}  // namespace ambrelio
