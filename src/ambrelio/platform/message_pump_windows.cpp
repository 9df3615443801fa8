#include <windows.h>
#include <winsock2.h>

#include <algorithm>
#include <utility>

#include "ambrelio/platform/message_pump.h"
#include "ambrelio/platform/socket_error.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio {
namespace {

constexpr UINT_PTR kTimer = 1;
constexpr UINT kSocketMessage = WM_APP;
// With more events than these waiting, the host's other messages get their turn first.
constexpr int kEventsAtOnce = 100;
// A timer further away than this is looked at again then.
constexpr Milliseconds kLongestTimer(USER_TIMER_MAXIMUM);

SOCKET Native(EventLoop::SocketHandle socket) { return static_cast<SOCKET>(socket); }

}  // namespace

// The window's side. It is one of a class that every Windows has, so that there is none to take
// away before a DLL with this code is unloaded.
class MessagePump::Window {
 public:
  static HWND Make(MessagePump* pump) {
    const HWND window = ::CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE,
                                          nullptr, nullptr, nullptr);
    if (window == nullptr) Raise(RuntimeError::kCannotCreateObject, "window");
    ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(pump));
    ::SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure));
    return window;
  }

  // Only its own thread can destroy a window. For any other one it is left with nothing to call.
  static void End(HWND window) {
    ::SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&::DefWindowProcW));
    ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    ::DestroyWindow(window);
  }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
    auto* const pump = reinterpret_cast<MessagePump*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
    if (pump == nullptr || (message != WM_TIMER && message != kSocketMessage)) {
      return ::DefWindowProcW(window, message, w, l);
    }
    pump->Deliver();
    return 0;
  }
};

void MessagePump::Open() {
  if (open_) return;
  open_ = true;
  loop_.SetWaiter(this);
}

void MessagePump::Close() {
  if (!open_) return;
  open_ = false;
  loop_.SetWaiter(nullptr);
  if (window_ != nullptr) Window::End(window_);
  window_ = nullptr;
}

void MessagePump::TimersChanged() {
  if (const auto rest = loop_.UntilNextTimer()) {
    SetTimerFor(*rest);
  } else if (window_ != nullptr) {
    ::KillTimer(window_, kTimer);
  }
}

void MessagePump::Watching(EventLoop::SocketHandle socket) {
  MakeWindow();
  if (::WSAAsyncSelect(Native(socket), window_, kSocketMessage, FD_READ) != 0) {
    Raise(static_cast<SocketError>(::WSAGetLastError()), "WSAAsyncSelect");
  }
}

void MessagePump::StoppedWatching(EventLoop::SocketHandle socket) {
  ::WSAAsyncSelect(Native(socket), window_, 0, 0);
}

void MessagePump::MakeWindow() {
  if (window_ == nullptr) window_ = Window::Make(this);
}

void MessagePump::SetTimerFor(Milliseconds rest) {
  MakeWindow();
  const Milliseconds wait = std::min(rest, kLongestTimer);
  ::SetTimer(window_, kTimer, static_cast<UINT>(wait.count()), nullptr);
}

void MessagePump::Deliver() {
  if (pauses_ > 0) {
    put_off_ = true;
    return;
  }
  const Pause pause(*this);
  bool more = true;
  for (int i = 0; i < kEventsAtOnce && more; ++i) {
    try {
      more = loop_.RunNext();
    } catch (...) {
    }
  }
  if (!open_) return;  // a handler closed it
  TimersChanged();
  if (more) put_off_ = true;
}

void MessagePump::Resume() {
  if (open_ && std::exchange(put_off_, false)) SetTimerFor(Milliseconds(0));
}

}  // namespace ambrelio
