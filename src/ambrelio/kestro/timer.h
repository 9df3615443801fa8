// A timer with an event, ticking on the thread that runs its loop.
#pragma once

#include <cstdint>
#include <functional>

#include "ambrelio/platform/event_loop.h"

namespace ambrelio::kestro {

class Timer {
 public:
  // Calls `tic` at every tick. The loop must outlive the timer.
  Timer(EventLoop& loop, std::function<void()> tic);
  ~Timer();
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;

  // Milliseconds between ticks, from the next Start on. Below 10 counts as 10, the least that
  // timers of a message loop know.
  void SetInterval(int32_t milliseconds) { interval_ = milliseconds; }
  // Ticks until stopped, first after one interval; one that runs starts anew.
  void Start();
  void Stop();
  bool Enabled() const { return enabled_; }

 private:
  void Arm(Milliseconds interval);

  EventLoop& loop_;
  std::function<void()> tic_;
  EventLoop::TimerId timer_ = 0;
  int32_t interval_ = 0;
  bool enabled_ = false;
};

}  // namespace ambrelio::kestro
