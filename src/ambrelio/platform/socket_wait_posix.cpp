#include <poll.h>

#include <algorithm>
#include <limits>

#include "ambrelio/platform/socket_wait.h"

namespace ambrelio {

std::vector<EventLoop::SocketHandle> WaitForSockets(
    const std::vector<EventLoop::SocketHandle>& sockets, Milliseconds limit) {
  std::vector<pollfd> polled;
  polled.reserve(sockets.size());
  for (const auto socket : sockets) polled.push_back({static_cast<int>(socket), POLLIN, 0});

  constexpr Milliseconds kLongest(std::numeric_limits<int>::max());
  const auto wait = std::clamp(limit, Milliseconds(0), kLongest).count();
  std::vector<EventLoop::SocketHandle> readable;
  if (::poll(polled.data(), polled.size(), static_cast<int>(wait)) <= 0) return readable;
  for (const pollfd& socket : polled) {
    // An error is something to read too: reading it takes it away.
    if ((socket.revents & (POLLIN | POLLERR)) != 0) readable.push_back(socket.fd);
  }
  return readable;
}

}  // namespace ambrelio
