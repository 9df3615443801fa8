// An event loop whose time passes only while it has nothing to deliver: hours in an instant.
#pragma once

#include <memory>

#include "ambrelio/platform/event_loop.h"

namespace ambrelio::test {

// With its clock, which starts at 0.
inline std::shared_ptr<EventLoop> MakeManualLoop() {
  struct TimedLoop {
    ManualTicks ticks;
    EventLoop loop{ticks};
  };
  const auto timed = std::make_shared<TimedLoop>();
  return {timed, &timed->loop};
}

}  // namespace ambrelio::test
