// The DLL as a client has it: loaded from its file and asked for its classes.
#pragma once

#include <ole2.h>

#include <ambrelio.idl.h>

#include <stdexcept>

#include "ambrelio/com/errors.h"
#include "ambrelio/com/owned.h"

namespace ambrelio::test {

// Automation on the calling thread, in an apartment of its own.
class Apartment {
 public:
  Apartment() { com::Check(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), "CoInitializeEx"); }
  ~Apartment() { ::CoUninitialize(); }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
};

class ServerDll {
 public:
  static std::wstring Path() {
    wchar_t path[MAX_PATH];
    ::GetFullPathNameW(com::ToWide(AMBRELIO_SERVER).c_str(), MAX_PATH, path, nullptr);
    return path;
  }

  ServerDll() : module_(::LoadLibraryW(Path().c_str())) {
    if (module_ == nullptr) throw std::runtime_error("Ambrelio.dll does not load");
  }
  ~ServerDll() { ::FreeLibrary(module_); }
  ServerDll(const ServerDll&) = delete;
  ServerDll& operator=(const ServerDll&) = delete;

  // An exported function.
  template <class Function>
  Function* Get(const char* name) const {
    const FARPROC found = ::GetProcAddress(module_, name);
    if (found == nullptr) throw std::runtime_error(name);
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(found));
  }

  HRESULT GetClass(REFCLSID id, com::ComPtr<IClassFactory>& factory) const {
    return Get<HRESULT WINAPI(REFCLSID, REFIID, void**)>("DllGetClassObject")(
        id, IID_IClassFactory, factory.ReceiveVoid());
  }
  bool CanUnload() const { return Get<HRESULT WINAPI()>("DllCanUnloadNow")() == S_OK; }
  HRESULT Install(bool install, const wchar_t* arguments) const {
    return Get<HRESULT WINAPI(BOOL, LPCWSTR)>("DllInstall")(install, arguments);
  }

  // A new object of a class, by its default interface.
  template <class Interface>
  com::ComPtr<Interface> Create(REFCLSID id) const {
    com::ComPtr<IClassFactory> factory;
    com::Check(GetClass(id, factory), "DllGetClassObject");
    com::ComPtr<Interface> object;
    com::Check(factory->CreateInstance(nullptr, __uuidof(Interface), object.ReceiveVoid()),
               "CreateInstance");
    return object;
  }
  com::ComPtr<_Trazabilidad> CreateRoot() const {
    return Create<_Trazabilidad>(__uuidof(::Trazabilidad));
  }

 private:
  HMODULE module_;
};

}  // namespace ambrelio::test
