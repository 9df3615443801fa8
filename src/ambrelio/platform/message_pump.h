// Lets the message loop of a Windows program drive an event loop: timers and datagrams are
// delivered when the thread dispatches its messages, through a window that nobody sees.
#pragma once

#ifdef _WIN32

#include "ambrelio/platform/event_loop.h"

struct HWND__;

namespace ambrelio {

class MessagePump final : public EventLoop::Waiter {
 public:
  // Belongs to the thread that makes it. `loop` must outlive it.
  explicit MessagePump(EventLoop& loop) : loop_(loop) {}
  ~MessagePump() override { Close(); }
  MessagePump(const MessagePump&) = delete;
  MessagePump& operator=(const MessagePump&) = delete;

  // From Open to Close the loop's events are delivered; opening or closing twice is nothing. What a
  // handler raises is dropped: there is nobody to tell, and who raised it has stopped its timer.
  void Open();
  void Close();

  // Puts events off: those that come while one of these lives are delivered after the last one has
  // gone. A host's call that dispatches messages in its middle is not interrupted by an event.
  class Pause {
   public:
    explicit Pause(MessagePump& pump) : pump_(pump) { ++pump_.pauses_; }
    ~Pause() {
      if (--pump_.pauses_ == 0) pump_.Resume();
    }
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;

   private:
    MessagePump& pump_;
  };

  // The window, null while there was nothing to wait for.
  HWND__* window() const { return window_; }

  void TimersChanged() override;
  void Watching(EventLoop::SocketHandle socket) override;
  void StoppedWatching(EventLoop::SocketHandle socket) override;

 private:
  class Window;

  void MakeWindow();
  void Deliver();
  void Resume();
  void SetTimerFor(Milliseconds rest);

  EventLoop& loop_;
  HWND__* window_ = nullptr;
  bool open_ = false;
  int pauses_ = 0;
  bool put_off_ = false;  // an event came during a pause
};

}  // namespace ambrelio

#endif
