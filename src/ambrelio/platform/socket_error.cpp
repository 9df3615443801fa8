#include "ambrelio/platform/socket_error.h"

#include "ambrelio/value/automation_error.h"

namespace ambrelio {
namespace {

const char* Sentence(SocketError error) {
  switch (error) {
    case SocketError::kAccessDenied:
      return "Permission denied";
    case SocketError::kInvalidArgument:
      return "Invalid argument";
    case SocketError::kTooManySockets:
      return "Too many open sockets";
    case SocketError::kWouldBlock:
      return "No room to send for now";
    case SocketError::kSocketClosed:
      return "Socket is closed";
    case SocketError::kMessageTooLong:
      return "Datagram too long";
    case SocketError::kAddressInUse:
      return "Address in use";
    case SocketError::kAddressNotAvailable:
      return "Address not available";
    case SocketError::kNetworkDown:
      return "Network is down";
    case SocketError::kNetworkUnreachable:
      return "Network unreachable";
    case SocketError::kNoBufferSpace:
      return "No buffer space left";
    case SocketError::kConnectionRefused:
      return "Connection refused";
    case SocketError::kHostUnreachable:
      return "Host unreachable";
    case SocketError::kSystemCallFailed:
      break;
    case SocketError::kHostNotFound:
      return "Host not found";
    case SocketError::kHostLookupFailedForNow:
      return "Host not found for now";
    case SocketError::kHostLookupFailed:
      return "Host lookup failed";
  }
  return "Socket failed";
}

}  // namespace

void Raise(SocketError error, const std::string& cause) {
  throw AutomationError(static_cast<int>(error), "Ambrelio",
                        std::string(Sentence(error)) + ": " + cause);
}

}  // namespace ambrelio
