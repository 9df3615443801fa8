// Keys of a console; see interruptions.h.
#pragma once

#include <windows.h>

#include <functional>
#include <stdexcept>
#include <vector>

namespace ambrelio::test {

// What Windows runs on a new thread of a program whose keys are pressed: it asks the handlers, the
// latest first. To press keys for oneself takes a console, which a test may not have.
inline void Press(DWORD event) {
  const auto routine = reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(
      ::GetProcAddress(::GetModuleHandleW(L"kernelbase.dll"), "CtrlRoutine")));
  if (routine == nullptr) throw std::runtime_error("this Windows has no CtrlRoutine");
  const HANDLE thread =
      ::CreateThread(nullptr, 0, routine, reinterpret_cast<void*>(ULONG_PTR{event}), 0, nullptr);
  ::WaitForSingleObject(thread, INFINITE);
  ::CloseHandle(thread);
}

inline std::vector<std::function<void()>> Interruptions() {
  return {[] { Press(CTRL_C_EVENT); }, [] { Press(CTRL_BREAK_EVENT); }};
}

}  // namespace ambrelio::test
