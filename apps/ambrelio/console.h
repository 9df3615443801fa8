// The streams a command works with; tests put their own behind it.
#pragma once

#include <istream>
#include <ostream>
#include <string_view>

namespace ambrelio::cli {

struct Console {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
  // Whether progress on `err` would be seen and would not stand between results.
  bool shows_progress = false;
};

// Write to the results' stream. Both end the command with a Failure that names the cause when the
// stream takes no more (a full disk, a reader that has gone).
void Write(Console& console, std::string_view text);
void Flush(Console& console);

}  // namespace ambrelio::cli
