// The present moment, behind an interface that a test or a replayed journal puts its own moments
// behind.
#pragma once

#include "ambrelio/value/ole_date.h"

namespace ambrelio {

class Clock {
 public:
  virtual ~Clock() = default;
  // Local time, whole seconds.
  virtual OleDate Now() const = 0;

  // The system's clock.
  static const Clock& System();
  // The clock of the calling thread: the system's unless a ScopedClock is in force.
  static const Clock& Current();
};

// Puts a clock in force on the calling thread, for a scope.
class ScopedClock {
 public:
  explicit ScopedClock(const Clock& clock);
  ~ScopedClock();
  ScopedClock(const ScopedClock&) = delete;
  ScopedClock& operator=(const ScopedClock&) = delete;

 private:
  const Clock* before_;
};

// A clock that shows what it was last set to.
class ManualClock : public Clock {
 public:
  explicit ManualClock(OleDate now) : now_(now) {}
  OleDate Now() const override { return now_; }
  void Set(OleDate now) { now_ = now; }

 private:
  OleDate now_;
};

}  // namespace ambrelio
