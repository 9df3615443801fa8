// The system's sockets where POSIX and Windows differ; what they share is used as it is.
#pragma once

#if defined(_WIN32)
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#endif

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

#include "ambrelio/platform/socket_error.h"

namespace ambrelio {

#if defined(_WIN32)
using NativeSocket = SOCKET;
#else
using NativeSocket = int;
#endif
inline constexpr auto kNoSocket = static_cast<NativeSocket>(-1);

// Sockets may be used while one of these lives. The constructor raises a SocketError.
class SocketSystem {
 public:
  SocketSystem();
  ~SocketSystem();  // NOLINT(performance-trivially-destructible): on one system there is work
  SocketSystem(const SocketSystem&) = delete;
  SocketSystem& operator=(const SocketSystem&) = delete;
};

// A socket for datagrams over IPv4 that never waits and that child processes do not get; kNoSocket
// when that fails.
NativeSocket OpenDatagramSocket();
void CloseSocket(NativeSocket socket);

inline const sockaddr* Generic(const sockaddr_in& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}
inline sockaddr* Generic(sockaddr_in& address) { return reinterpret_cast<sockaddr*>(&address); }

// Whether the datagram went out.
bool SendDatagram(NativeSocket socket, const sockaddr_in& remote, std::string_view bytes);
// The size of the datagram now in `buffer`; nothing when there is none, or only news of an error.
std::optional<size_t> ReceiveDatagram(NativeSocket socket, std::span<char> buffer,
                                      sockaddr_in& sender);

// Why the last of the calls above, or of the system's own on sockets, failed on this thread.
SocketError LastSocketError();
// What a result of getaddrinfo other than 0 means.
SocketError LookupError(int error);

}  // namespace ambrelio
