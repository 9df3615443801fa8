// The door of the DLL: class factories, and registration for those who need it (see README.md).
#include <ole2.h>
#include <olectl.h>

#include <array>
#include <exception>
#include <string>

#include "ambrelio/com/owned.h"
#include "control.h"
#include "dao_classes.h"

namespace ambrelio::stand_in {
namespace {

struct Served {
  CLSID clsid;
  const wchar_t* clsid_text;
  const wchar_t* prog_id;
  com::ComPtr<IDispatch> (*make)();
};

constexpr std::array kServed = {
    Served{{0x00000100, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}},
           L"{00000100-0000-0010-8000-00AA006D2EA4}",
           L"DAO.DBEngine.36",
           NewDbEngine},
    Served{{0xCD7791B9, 0x43FD, 0x42C5, {0xAE, 0x42, 0x8D, 0xD2, 0x81, 0x1F, 0x04, 0x19}},
           L"{CD7791B9-43FD-42C5-AE42-8DD2811F0419}",
           L"DAO.DBEngine.120",
           NewDbEngine},
    Served{{0x8B0C1F5E, 0x6B7D, 0x4B58, {0x9E, 0x2A, 0x54, 0xD1, 0x3C, 0x90, 0x7F, 0x16}},
           L"{8B0C1F5E-6B7D-4B58-9E2A-54D13C907F16}",
           L"Ambrelio.DaoStandIn.Control",
           Control::Object},
};

// One for each class, for the life of the DLL.
class Factory final : public IClassFactory {
 public:
  explicit Factory(const Served& served) : served_(served) {}
  virtual ~Factory() = default;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IClassFactory) return E_NOINTERFACE;
    *object = this;
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() noexcept override { return 2; }
  ULONG STDMETHODCALLTYPE Release() noexcept override { return 1; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid,
                                           void** object) noexcept override try {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return served_.make()->QueryInterface(iid, object);
  } catch (const std::exception&) {
    return E_FAIL;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) noexcept override { return S_OK; }

 private:
  const Served& served_;
};

HMODULE ThisModule() {
  HMODULE module = nullptr;
  ::GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<const wchar_t*>(&ThisModule), &module);
  return module;
}

bool Write(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
  return ::RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), name, REG_SZ, value.c_str(),
                           static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))) ==
         ERROR_SUCCESS;
}

}  // namespace
}  // namespace ambrelio::stand_in

using ambrelio::stand_in::Factory;
using ambrelio::stand_in::kServed;

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  static Factory factories[] = {Factory(kServed[0]), Factory(kServed[1]), Factory(kServed[2])};
  static_assert(std::size(factories) == kServed.size());
  for (size_t i = 0; i < kServed.size(); ++i) {
    if (kServed[i].clsid == clsid) return factories[i].QueryInterface(iid, object);
  }
  if (object != nullptr) *object = nullptr;
  return CLASS_E_CLASSNOTAVAILABLE;
}

// The engine is the process's and stays.
STDAPI DllCanUnloadNow() { return S_FALSE; }

STDAPI DllRegisterServer() {
  using ambrelio::stand_in::Write;
  std::wstring path(32768, L'\0');
  path.resize(::GetModuleFileNameW(ambrelio::stand_in::ThisModule(), path.data(),
                                   static_cast<DWORD>(path.size())));
  for (const auto& served : kServed) {
    const std::wstring by_clsid = std::wstring(L"CLSID\\") + served.clsid_text;
    if (!Write(by_clsid, nullptr, L"Ambrelio's stand-in for DAO") ||
        !Write(by_clsid + L"\\InprocServer32", nullptr, path) ||
        !Write(by_clsid + L"\\InprocServer32", L"ThreadingModel", L"Apartment") ||
        !Write(by_clsid + L"\\ProgID", nullptr, served.prog_id) ||
        !Write(std::wstring(served.prog_id) + L"\\CLSID", nullptr, served.clsid_text)) {
      return SELFREG_E_CLASS;
    }
  }
  return S_OK;
}

STDAPI DllUnregisterServer() {
  for (const auto& served : kServed) {
    ::RegDeleteTreeW(HKEY_CLASSES_ROOT, (std::wstring(L"CLSID\\") + served.clsid_text).c_str());
    ::RegDeleteTreeW(HKEY_CLASSES_ROOT, served.prog_id);
  }
  return S_OK;
}
