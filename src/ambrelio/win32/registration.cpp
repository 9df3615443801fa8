#include "ambrelio/win32/registration.h"

// Before the identifiers that it gives their places.
#include <initguid.h>

#include <ambrelio.idl.h>

#include <string>

#include "ambrelio/com/errors.h"
#include "ambrelio/com/owned.h"
#include "ambrelio/win32/module.h"
#include "ambrelio/win32/server_classes.h"
#include "ambrelio/win32/type_library.h"

// In the import library of oleaut32, but in no header of the toolchain.
extern "C" {
HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* path, OLECHAR* help_folder);
HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID id, WORD major, WORD minor, LCID locale,
                                        SYSKIND system);
}

namespace ambrelio::win32 {
namespace {

constexpr SYSKIND kSystem = sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32;
constexpr WORD kMajorVersion = 1;
constexpr WORD kMinorVersion = 0;

std::wstring Text(REFGUID id) {
  wchar_t text[40];
  const int length = ::StringFromGUID2(id, text, 40);
  return {text, static_cast<size_t>(length - 1)};
}

// The part of the registry where programs find classes, in one scope.
class Classes {
 public:
  explicit Classes(RegistrationScope scope)
      : root_(scope == RegistrationScope::kMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER) {}

  // Sets a value of a key, the unnamed one with null, and makes the key.
  void Set(const std::wstring& key, const wchar_t* name, const std::wstring& text) const {
    HKEY handle = nullptr;
    Check(::RegCreateKeyExW(root_, Path(key).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &handle,
                            nullptr));
    const LSTATUS status =
        ::RegSetValueExW(handle, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                         static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    ::RegCloseKey(handle);
    Check(status);
  }

  void Delete(const std::wstring& key) const { ::RegDeleteTreeW(root_, Path(key).c_str()); }

 private:
  static std::wstring Path(const std::wstring& key) { return L"Software\\Classes\\" + key; }
  static void Check(LSTATUS status) {
    com::Check(HRESULT_FROM_WIN32(static_cast<DWORD>(status)), "Registry");
  }

  HKEY root_;
};

void RegisterClass(const Classes& classes, const ServerClass& server_class) {
  const std::wstring id = Text(server_class.id);
  const std::wstring prog_id = com::ToWide(server_class.ProgId());
  const std::wstring versioned = prog_id + L".1";
  const std::wstring help = com::ToWide(server_class.model().help);
  const std::wstring key = L"CLSID\\" + id;
  classes.Set(key, nullptr, help);
  classes.Set(key + L"\\InprocServer32", nullptr, ModulePath());
  classes.Set(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  classes.Set(key + L"\\ProgID", nullptr, versioned);
  classes.Set(key + L"\\VersionIndependentProgID", nullptr, prog_id);
  classes.Set(key + L"\\TypeLib", nullptr, Text(LIBID_Ambrelio));
  classes.Set(key + L"\\Version", nullptr, L"1.0");
  classes.Set(key + L"\\Programmable", nullptr, L"");
  classes.Set(prog_id, nullptr, help);
  classes.Set(prog_id + L"\\CLSID", nullptr, id);
  classes.Set(prog_id + L"\\CurVer", nullptr, versioned);
  classes.Set(versioned, nullptr, help);
  classes.Set(versioned + L"\\CLSID", nullptr, id);
}

void UnregisterClass(const Classes& classes, const ServerClass& server_class) {
  const std::wstring prog_id = com::ToWide(server_class.ProgId());
  classes.Delete(L"CLSID\\" + Text(server_class.id));
  classes.Delete(prog_id);
  classes.Delete(prog_id + L".1");
}

}  // namespace

void RegisterServer(RegistrationScope scope) {
  const Classes classes(scope);
  for (const ServerClass& server_class : ServerClasses()) {
    if (server_class.create != nullptr) RegisterClass(classes, server_class);
  }
  const com::ComPtr<ITypeLib> library = OpenTypeLibrary();
  std::wstring path = ModulePath();
  if (scope == RegistrationScope::kMachine) {
    com::Check(::RegisterTypeLib(library.get(), path.data(), nullptr), "RegisterTypeLib");
  } else {
    com::Check(::RegisterTypeLibForUser(library.get(), path.data(), nullptr),
               "RegisterTypeLibForUser");
  }
}

void UnregisterServer(RegistrationScope scope) {
  const Classes classes(scope);
  for (const ServerClass& server_class : ServerClasses()) {
    if (server_class.create != nullptr) UnregisterClass(classes, server_class);
  }
  if (scope == RegistrationScope::kMachine) {
    ::UnRegisterTypeLib(LIBID_Ambrelio, kMajorVersion, kMinorVersion, 0, kSystem);
  } else {
    ::UnRegisterTypeLibForUser(LIBID_Ambrelio, kMajorVersion, kMinorVersion, 0, kSystem);
  }
}

}  // namespace ambrelio::win32
