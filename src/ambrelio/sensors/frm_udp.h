// The transport of the sensor service: one UDP socket that sends to the gateway and hears on the
// port above the gateway's.
//
// A request is the tank's number and "?", as "3?"; an answer is the text of a datagram, single-byte
// characters both.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "ambrelio/platform/datagram_socket.h"

namespace ambrelio::sensors {

class FrmUDP {
 public:
  // `rx_dat` gets the text of each datagram.
  FrmUDP(std::unique_ptr<DatagramSocket> socket, std::function<void(const std::string&)> rx_dat);
  ~FrmUDP();  // closes the socket
  FrmUDP(const FrmUDP&) = delete;
  FrmUDP& operator=(const FrmUDP&) = delete;

  // Closes the socket, takes the gateway's host and port, and listens on port + 1: at the loopback
  // address alone when the host is this machine by its loopback name or address. Raises 380 for a
  // port outside 1..65534 and 10048 for one that is taken.
  void Configure(const std::string& host, int32_t port);
  // Asks for the level of a tank. Raises what the socket raises, as 11001 for an unknown host.
  void Request(int16_t tank);

 private:
  std::unique_ptr<DatagramSocket> socket_;
  std::function<void(const std::string&)> rx_dat_;
  Endpoint remote_;
};

}  // namespace ambrelio::sensors
