#include "ambrelio/platform/clock.h"

#include <algorithm>
#include <ctime>

namespace ambrelio {
namespace {

std::tm LocalTime(std::time_t time) {
  std::tm parts{};
#if defined(_WIN32)
  localtime_s(&parts, &time);
#else
  localtime_r(&time, &parts);
#endif
  return parts;
}

class SystemClock : public Clock {
 public:
  OleDate Now() const override {
    std::tm parts = LocalTime(std::time(nullptr));
    // A leap second shows as second 60; the calendar of the database has none.
    return OleDate::FromCivil({parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour,
                               parts.tm_min, std::min(parts.tm_sec, 59)})
        .value_or(OleDate());
  }
};

// A plain pointer, so that nothing runs when a thread ends.
thread_local const Clock* clock_of_thread = nullptr;

}  // namespace

const Clock& Clock::System() {
  static const SystemClock clock;
  return clock;
}

const Clock& Clock::Current() {
  return clock_of_thread != nullptr ? *clock_of_thread : Clock::System();
}

ScopedClock::ScopedClock(const Clock& clock) : before_(clock_of_thread) {
  clock_of_thread = &clock;
}

ScopedClock::~ScopedClock() { clock_of_thread = before_; }

}  // namespace ambrelio
