#include <unistd.h>

#include <cerrno>

#include "ambrelio/platform/socket_system.h"

namespace ambrelio {

SocketSystem::SocketSystem() = default;
SocketSystem::~SocketSystem() = default;

NativeSocket OpenDatagramSocket() {
  return ::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
}

void CloseSocket(NativeSocket socket) { ::close(socket); }

bool SendDatagram(NativeSocket socket, const sockaddr_in& remote, std::string_view bytes) {
  ssize_t sent = 0;
  do {
    sent = ::sendto(socket, bytes.data(), bytes.size(), 0, Generic(remote), sizeof remote);
  } while (sent < 0 && errno == EINTR);
  return sent >= 0;
}

std::optional<size_t> ReceiveDatagram(NativeSocket socket, std::span<char> buffer,
                                      sockaddr_in& sender) {
  socklen_t size = sizeof sender;
  const ssize_t read = ::recvfrom(socket, buffer.data(), buffer.size(), 0, Generic(sender), &size);
  if (read < 0) return std::nullopt;
  return static_cast<size_t>(read);
}

SocketError LastSocketError() {
  switch (errno) {
    case EACCES:
    case EPERM:
      return SocketError::kAccessDenied;
    case EINVAL:
      return SocketError::kInvalidArgument;
    case EMFILE:
    case ENFILE:
      return SocketError::kTooManySockets;
    case EBADF:
      return SocketError::kSocketClosed;
    case EAGAIN:
      return SocketError::kWouldBlock;
    case EMSGSIZE:
      return SocketError::kMessageTooLong;
    case EADDRINUSE:
      return SocketError::kAddressInUse;
    case EADDRNOTAVAIL:
      return SocketError::kAddressNotAvailable;
    case ENETDOWN:
      return SocketError::kNetworkDown;
    case ENETUNREACH:
      return SocketError::kNetworkUnreachable;
    case ENOBUFS:
    case ENOMEM:
      return SocketError::kNoBufferSpace;
    case ECONNREFUSED:
      return SocketError::kConnectionRefused;
    case EHOSTUNREACH:
      return SocketError::kHostUnreachable;
    default:
      return SocketError::kSystemCallFailed;
  }
}

SocketError LookupError(int error) {
  switch (error) {
    case EAI_NONAME:
#if defined(EAI_NODATA) && EAI_NODATA != EAI_NONAME
    case EAI_NODATA:
#endif
      return SocketError::kHostNotFound;
    case EAI_AGAIN:
      return SocketError::kHostLookupFailedForNow;
    default:
      return SocketError::kHostLookupFailed;
  }
}

}  // namespace ambrelio
