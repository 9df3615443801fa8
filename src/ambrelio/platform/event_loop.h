// The events of one thread: timers that have run out and datagrams that have arrived. They are
// delivered on that thread while it runs the loop, and at no other time.
//
//   loop.RunFor(Milliseconds(500));   // a host between two of its own pieces of work
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace ambrelio {

using Milliseconds = std::chrono::milliseconds;

// The time that a loop measures its timers by.
class TickClock {
 public:
  virtual ~TickClock() = default;
  // Since a moment of its own; never goes back.
  virtual Milliseconds Now() const = 0;
  // Lets `duration` pass for a loop that has nothing to deliver; returns how much of it the loop
  // shall wait for datagrams itself.
  virtual Milliseconds Pass(Milliseconds duration) = 0;

  // The system's: never set, never put back.
  static TickClock& System();
};

// Time that passes only while a loop has nothing to deliver, and then at once: hours of polling in
// an instant, always in the same order.
class ManualTicks : public TickClock {
 public:
  Milliseconds Now() const override { return now_; }
  Milliseconds Pass(Milliseconds duration) override {
    now_ += duration;
    return Milliseconds(0);
  }

 private:
  Milliseconds now_{0};
};

class EventLoop {
 public:
  using Handler = std::function<void()>;
  using TimerId = uint64_t;
  using SocketHandle = std::intptr_t;  // of the system

  // Waits in the loop's place for what it has to deliver, where the host has a message loop of its
  // own: told what to wait for, it lets the loop deliver by RunNext when that has come.
  class Waiter {
   public:
    virtual ~Waiter() = default;
    // UntilNextTimer may have changed.
    virtual void TimersChanged() = 0;
    virtual void Watching(SocketHandle socket) = 0;
    virtual void StoppedWatching(SocketHandle socket) = 0;
  };

  // `clock` must outlive the loop; sockets and timers must not.
  explicit EventLoop(TickClock& clock = TickClock::System());
  ~EventLoop();
  EventLoop(const EventLoop&) = delete;
  EventLoop& operator=(const EventLoop&) = delete;

  // Delivers events until `duration` has passed. What a handler raises comes out of here; events
  // not yet delivered stay for the next run.
  void RunFor(Milliseconds duration);
  // The same, until `done` holds, which is asked after every event; whether it came to hold.
  bool RunUntil(const std::function<bool()>& done, Milliseconds limit);
  // Delivers what is due and what that makes due at once; never waits.
  void RunUntilIdle();
  // Delivers one event that is due; false when there is none.
  bool RunNext();

  // Calls `handler` once, `delay` from now. Timers due at the same moment are delivered in the
  // order of their starts.
  TimerId StartTimer(Milliseconds delay, Handler handler);
  // Does nothing for a timer that has been delivered or stopped.
  void StopTimer(TimerId timer);

  // Calls `readable` whenever the socket has something to read. A handler may stop any watch and
  // any timer, its own included.
  void Watch(SocketHandle socket, Handler readable);
  void StopWatching(SocketHandle socket);

  // From now on until another one is set, or null; told at once of the timers and watches there
  // are.
  void SetWaiter(Waiter* waiter);
  // The time left until the first timer is due, not below 0; nothing without timers.
  std::optional<Milliseconds> UntilNextTimer() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace ambrelio
