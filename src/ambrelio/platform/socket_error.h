// The errors of sockets, with the numbers of Windows Sockets on every system.
#pragma once

#include <string>

namespace ambrelio {

enum class SocketError : int {
  kAccessDenied = 10013,
  kInvalidArgument = 10022,
  kTooManySockets = 10024,
  kWouldBlock = 10035,
  kSocketClosed = 10038,
  kMessageTooLong = 10040,
  kAddressInUse = 10048,
  kAddressNotAvailable = 10049,
  kNetworkDown = 10050,
  kNetworkUnreachable = 10051,
  kNoBufferSpace = 10055,
  kConnectionRefused = 10061,
  kHostUnreachable = 10065,
  kSystemCallFailed = 10107,  // what has no number of its own
  kHostNotFound = 11001,
  kHostLookupFailedForNow = 11002,
  kHostLookupFailed = 11003,
};

// Throws the AutomationError of `error`, with `cause` behind its sentence: "UDP port 9085".
[[noreturn]] void Raise(SocketError error, const std::string& cause);

}  // namespace ambrelio
