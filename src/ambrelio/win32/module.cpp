#include "ambrelio/win32/module.h"

#include <atomic>

#include "ambrelio/com/errors.h"

namespace ambrelio::win32 {
namespace {

std::atomic<long> uses = 0;

}  // namespace

HINSTANCE ThisModule() {
  HMODULE module = nullptr;
  ::GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<const wchar_t*>(&ThisModule), &module);
  return module;
}

std::wstring ModulePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length =
        ::GetModuleFileNameW(ThisModule(), path.data(), static_cast<DWORD>(path.size()));
    if (length == 0) com::Check(HRESULT_FROM_WIN32(::GetLastError()), "GetModuleFileName");
    if (length < path.size()) return path.substr(0, length);
    path.resize(path.size() * 2);
  }
}

void ModuleUse::Add(long change) { uses += change; }

bool ModuleUse::Any() { return uses != 0; }

}  // namespace ambrelio::win32
