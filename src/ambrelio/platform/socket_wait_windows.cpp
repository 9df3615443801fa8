#include <algorithm>
#include <limits>

#include "ambrelio/platform/socket_system.h"
#include "ambrelio/platform/socket_wait.h"

namespace ambrelio {

std::vector<EventLoop::SocketHandle> WaitForSockets(
    const std::vector<EventLoop::SocketHandle>& sockets, Milliseconds limit) {
  constexpr Milliseconds kLongest(std::numeric_limits<int>::max());
  const auto wait = static_cast<int>(std::clamp(limit, Milliseconds(0), kLongest).count());
  std::vector<EventLoop::SocketHandle> readable;
  if (sockets.empty()) {  // which WSAPoll takes for an error
    ::Sleep(static_cast<DWORD>(wait));
    return readable;
  }
  std::vector<WSAPOLLFD> polled;
  polled.reserve(sockets.size());
  for (const auto socket : sockets) {
    polled.push_back({static_cast<SOCKET>(socket), POLLRDNORM, 0});
  }
  if (::WSAPoll(polled.data(), static_cast<ULONG>(polled.size()), wait) <= 0) return readable;
  for (const WSAPOLLFD& socket : polled) {
    // An error is something to read too: reading it takes it away.
    if ((socket.revents & (POLLRDNORM | POLLERR)) != 0) {
      readable.push_back(static_cast<EventLoop::SocketHandle>(socket.fd));
    }
  }
  return readable;
}

}  // namespace ambrelio
