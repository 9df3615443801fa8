// Whether the tests run under Wine, for the few that have to know what it lacks.
#pragma once

#include <windows.h>

namespace ambrelio::test {

inline bool RunsUnderWine() {
  return ::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

}  // namespace ambrelio::test
