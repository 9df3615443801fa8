// What the DLL exports.
#include <windows.h>
// After it.
#include <ole2.h>
#include <olectl.h>

#include "ambrelio/platform/thread_value.h"
#include "ambrelio/win32/class_factory.h"
#include "ambrelio/win32/guarded.h"
#include "ambrelio/win32/registration.h"

using ambrelio::win32::Guarded;
using ambrelio::win32::RegistrationScope;

STDAPI DllGetClassObject(REFCLSID id, REFIID iid, void** to) {
  if (to == nullptr) return E_POINTER;
  *to = nullptr;
  const ambrelio::win32::ServerClass* const found = ambrelio::win32::FindServerClass(id);
  if (found == nullptr || found->create == nullptr) return CLASS_E_CLASSNOTAVAILABLE;
  HRESULT result = S_OK;
  const HRESULT made = Guarded(IID_IClassFactory, [&] {
    const ambrelio::com::ComPtr<IClassFactory> factory(new ambrelio::win32::ClassFactory(*found));
    result = factory->QueryInterface(iid, to);
  });
  return FAILED(made) ? made : result;
}

STDAPI DllCanUnloadNow() { return ambrelio::win32::ModuleUse::Any() ? S_FALSE : S_OK; }

STDAPI DllInstall(BOOL install, LPCWSTR arguments);

// For the machine, and without the rights for that, for the user.
STDAPI DllRegisterServer() {
  const HRESULT result = DllInstall(TRUE, nullptr);
  return SUCCEEDED(result) ? result : DllInstall(TRUE, L"user");
}

STDAPI DllUnregisterServer() {
  DllInstall(FALSE, nullptr);
  return DllInstall(FALSE, L"user");
}

// regsvr32 /n /i:user registers for the user alone.
STDAPI DllInstall(BOOL install, LPCWSTR arguments) {
  const bool user = arguments != nullptr && ::lstrcmpiW(arguments, L"user") == 0;
  const RegistrationScope scope = user ? RegistrationScope::kUser : RegistrationScope::kMachine;
  return Guarded(IID_NULL, [&] {
    if (install) {
      ambrelio::win32::RegisterServer(scope);
    } else {
      ambrelio::win32::UnregisterServer(scope);
    }
  });
}

// Unloaded by FreeLibrary, the DLL ends what it keeps for each thread. When the process ends, the
// other threads are gone in the middle of whatever they did, and nothing of theirs is touched.
BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID process_ends) {
  if (reason == DLL_PROCESS_DETACH && process_ends == nullptr) ambrelio::ThreadValues::EndAll();
  return TRUE;
}
