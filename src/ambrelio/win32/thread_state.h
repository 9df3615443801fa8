// What the server keeps for each client thread: the objects handed out there, and the pump that
// delivers the session's events by the thread's message loop.
#pragma once

#include <unknwn.h>

#include <atomic>
#include <set>

#include "ambrelio/data/session.h"
#include "ambrelio/platform/message_pump.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::win32 {

class ServerObject;

class ThreadState {
 public:
  // The calling thread's.
  static ThreadState& Current();

  ThreadState();
  // The thread ends: objects that clients still hold let go of what they stand for.
  ~ThreadState();
  ThreadState(const ThreadState&) = delete;
  ThreadState& operator=(const ThreadState&) = delete;

  // With its first object the thread gets its pump; with its last one it loses pump and engine,
  // while the automation libraries behind both are sure to be there.
  void Add(ServerObject& object);
  void Remove(ServerObject& object);

  // What the server's object of that identity on this thread stands for; null when there is none.
  Variant::ObjectPtr Find(const IUnknown* identity) const;

  // An object lost its last reference on another thread, which must not destroy it. Called there.
  void Abandon() { abandoned_ = true; }

  // A call from outside, while which no event is delivered.
  class Call {
   public:
    explicit Call(ThreadState& state) : state_(state), pause_(state.pump_) {}
    ~Call() { state_.DestroyAbandoned(); }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

   private:
    ThreadState& state_;
    MessagePump::Pause pause_;
  };

 private:
  void DestroyAbandoned();

  Session& session_;  // older than this, so that it goes later
  MessagePump pump_;
  std::set<ServerObject*> objects_;
  std::atomic<bool> abandoned_ = false;
};

}  // namespace ambrelio::win32
