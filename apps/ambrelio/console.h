// The streams and the events a command works with; tests put their own behind it.
#pragma once

#include <istream>
#include <memory>
#include <ostream>
#include <string_view>

#include "ambrelio/platform/event_loop.h"

namespace ambrelio::cli {

struct Console {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
  // Whether progress on `err` would be seen and would not stand between results.
  bool shows_progress = false;
  // Whether `out` is a screen that may be drawn anew.
  bool is_screen = false;
  // What delivers timers and datagrams while a command waits.
  std::shared_ptr<EventLoop> events = std::make_shared<EventLoop>();
};

// Write to the results' stream. Both end the command with a Failure that names the cause when the
// stream takes no more (a full disk, a reader that has gone).
void Write(Console& console, std::string_view text);
void Flush(Console& console);

}  // namespace ambrelio::cli
