#include <mswsock.h>

#include <limits>

#include "ambrelio/platform/socket_system.h"

namespace ambrelio {
namespace {

bool Prepare(SOCKET socket) {
  u_long never_wait = 1;
  if (::ioctlsocket(socket, static_cast<long>(FIONBIO), &never_wait) != 0) return false;
  // Otherwise others may listen at this socket's port and take what comes.
  BOOL alone = TRUE;
  if (::setsockopt(socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, reinterpret_cast<const char*>(&alone),
                   sizeof alone) != 0) {
    return false;
  }
  // Otherwise a datagram that nobody took comes back as an error of a later reception. Systems that
  // do not know the option report such errors, which reception passes over.
  BOOL told = FALSE;
  DWORD size = 0;
  ::WSAIoctl(socket, SIO_UDP_CONNRESET, &told, sizeof told, nullptr, 0, &size, nullptr, nullptr);
  return true;
}

int SizeOf(size_t bytes) {
  constexpr size_t kMost = std::numeric_limits<int>::max();
  return static_cast<int>(bytes < kMost ? bytes : kMost);
}

}  // namespace

SocketSystem::SocketSystem() {
  WSADATA details;
  const int error = ::WSAStartup(MAKEWORD(2, 2), &details);
  if (error != 0) Raise(static_cast<SocketError>(error), "Windows Sockets 2.2");
}

SocketSystem::~SocketSystem() { ::WSACleanup(); }

NativeSocket OpenDatagramSocket() {
  const SOCKET socket = ::WSASocketW(AF_INET, SOCK_DGRAM, IPPROTO_UDP, nullptr, 0,
                                     WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT);
  if (socket == INVALID_SOCKET || Prepare(socket)) return socket;
  const int error = ::WSAGetLastError();
  ::closesocket(socket);
  ::WSASetLastError(error);
  return kNoSocket;
}

void CloseSocket(NativeSocket socket) { ::closesocket(socket); }

bool SendDatagram(NativeSocket socket, const sockaddr_in& remote, std::string_view bytes) {
  return ::sendto(socket, bytes.data(), SizeOf(bytes.size()), 0, Generic(remote), sizeof remote) >=
         0;
}

std::optional<size_t> ReceiveDatagram(NativeSocket socket, std::span<char> buffer,
                                      sockaddr_in& sender) {
  int size = sizeof sender;
  const int read =
      ::recvfrom(socket, buffer.data(), SizeOf(buffer.size()), 0, Generic(sender), &size);
  if (read < 0) return std::nullopt;
  return static_cast<size_t>(read);
}

// The numbers of SocketError are those of Windows.
SocketError LastSocketError() { return static_cast<SocketError>(::WSAGetLastError()); }

SocketError LookupError(int error) { return static_cast<SocketError>(error); }

}  // namespace ambrelio
