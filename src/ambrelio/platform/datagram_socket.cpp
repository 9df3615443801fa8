#include "ambrelio/platform/datagram_socket.h"

#include <limits>
#include <map>
#include <utility>
#include <vector>

#include "ambrelio/platform/characters.h"
#include "ambrelio/platform/socket_error.h"
#include "ambrelio/platform/socket_system.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio {
namespace {

constexpr int32_t kLastPort = std::numeric_limits<uint16_t>::max();
// More than any datagram holds.
constexpr size_t kBufferSize = 65536;

// Names that no server is to be asked for: they are reserved as names of nothing.
bool IsReservedAsUnknown(const std::string& host) {
  const std::string name = LowerCase(host);
  return name.ends_with(".invalid") || name.ends_with(".invalid.");
}

in_addr LookUp(const std::string& host) {
  if (IsReservedAsUnknown(host)) Raise(SocketError::kHostNotFound, host);
  addrinfo wanted{};
  wanted.ai_family = AF_INET;
  wanted.ai_socktype = SOCK_DGRAM;
  addrinfo* found = nullptr;
  const int error = ::getaddrinfo(host.c_str(), nullptr, &wanted, &found);
  if (error != 0) Raise(LookupError(error), host);
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, &::freeaddrinfo);
  return reinterpret_cast<const sockaddr_in*>(found->ai_addr)->sin_addr;
}

in_addr EveryAddress() {
  in_addr every{};
  every.s_addr = INADDR_ANY;
  return every;
}

sockaddr_in MakeAddress(in_addr host, int32_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr = host;
  address.sin_port = htons(static_cast<uint16_t>(port));
  return address;
}

Endpoint MakeEndpoint(const sockaddr_in& address) {
  char text[INET_ADDRSTRLEN] = "";
  ::inet_ntop(AF_INET, &address.sin_addr, text, sizeof text);
  return {text, ntohs(address.sin_port)};
}

void CheckPort(int32_t port, int32_t first) {
  if (port >= first && port <= kLastPort) return;
  Raise(RuntimeError::kInvalidPropertyValue, "UDP port " + std::to_string(port));
}

class UdpSocket final : public DatagramSocket {
 public:
  explicit UdpSocket(EventLoop& loop) : loop_(loop), buffer_(kBufferSize) {}
  ~UdpSocket() override { Close(); }
  UdpSocket(const UdpSocket&) = delete;
  UdpSocket& operator=(const UdpSocket&) = delete;

  void Bind(const Endpoint& local, Receiver receiver) override {
    Close();
    CheckPort(local.port, 0);
    const in_addr host = local.host.empty() ? EveryAddress() : LookUp(local.host);
    try {
      Open(MakeAddress(host, local.port));
    } catch (...) {
      Close();
      throw;
    }
    receiver_ = std::move(receiver);
    loop_.Watch(Watched(), [this] { Receive(); });
  }

  void Send(const Endpoint& remote, std::string_view bytes) override {
    CheckPort(remote.port, 1);
    const std::string where = remote.host + ":" + std::to_string(remote.port);
    const in_addr host = Find(remote.host);
    // Some systems take "every address" for their own.
    if (host.s_addr == INADDR_ANY) Raise(SocketError::kAddressNotAvailable, where);
    const sockaddr_in address = MakeAddress(host, remote.port);
    if (!SendDatagram(socket_, address, bytes)) Raise(LastSocketError(), where);
  }

  void Close() override {
    found_.clear();
    receiver_ = nullptr;
    local_port_ = 0;
    if (socket_ == kNoSocket) return;
    loop_.StopWatching(Watched());
    CloseSocket(std::exchange(socket_, kNoSocket));
  }

  int32_t LocalPort() const override { return local_port_; }

 private:
  void Open(sockaddr_in address) {
    const std::string cause = "UDP port " + std::to_string(ntohs(address.sin_port));
    socket_ = OpenDatagramSocket();
    if (socket_ == kNoSocket) Raise(LastSocketError(), cause);
    socklen_t size = sizeof address;
    if (::bind(socket_, Generic(address), size) != 0) Raise(LastSocketError(), cause);
    if (::getsockname(socket_, Generic(address), &size) != 0) Raise(LastSocketError(), cause);
    local_port_ = ntohs(address.sin_port);
  }

  in_addr Find(const std::string& host) {
    if (host.empty()) return EveryAddress();
    const auto known = found_.find(host);
    if (known != found_.end()) return known->second;
    return found_.emplace(host, LookUp(host)).first->second;
  }

  EventLoop::SocketHandle Watched() const { return static_cast<EventLoop::SocketHandle>(socket_); }

  void Receive() {
    sockaddr_in sender{};
    const auto size = ReceiveDatagram(socket_, buffer_, sender);
    if (!size) return;
    const Receiver receiver = receiver_;  // it may close or destroy the socket
    receiver(std::string(buffer_.data(), *size), MakeEndpoint(sender));
  }

  SocketSystem system_;
  EventLoop& loop_;
  std::vector<char> buffer_;
  NativeSocket socket_ = kNoSocket;
  int32_t local_port_ = 0;
  Receiver receiver_;
  std::map<std::string, in_addr> found_;  // by name
};

}  // namespace

std::unique_ptr<DatagramSocket> MakeUdpSocket(EventLoop& loop) {
  return std::make_unique<UdpSocket>(loop);
}

}  // namespace ambrelio
