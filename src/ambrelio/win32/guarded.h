// The border between the library and automation: no exception crosses it.
#pragma once

#include <ole2.h>

#include <utility>

namespace ambrelio::win32 {

// The exception being handled, as automation tells it: the number as an HRESULT, source and
// description as the thread's error information, in the name of `interface_id`. Any other exception
// than an AutomationError is the internal error 51.
HRESULT ReportException(REFIID interface_id) noexcept;

// Calls `body`; S_OK, or what ReportException gives.
template <class Body>
HRESULT Guarded(REFIID interface_id, Body&& body) noexcept {
  try {
    std::forward<Body>(body)();
    return S_OK;
  } catch (...) {
    return ReportException(interface_id);
  }
}

// Takes the thread's error information into `info`, for a call that failed with `result`.
void TakeErrorInfo(HRESULT result, EXCEPINFO& info) noexcept;

}  // namespace ambrelio::win32
