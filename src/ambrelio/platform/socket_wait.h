// Waiting for sockets: the part of the event loop that differs from system to system.
#pragma once

#include <vector>

#include "ambrelio/platform/event_loop.h"

namespace ambrelio {

// Those of `sockets` that have something to read, in the order given; waits for the first at most
// `limit`. Nothing when a signal ends the waiting.
std::vector<EventLoop::SocketHandle> WaitForSockets(
    const std::vector<EventLoop::SocketHandle>& sockets, Milliseconds limit);

}  // namespace ambrelio
