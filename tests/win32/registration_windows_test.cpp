// How clients find the DLL: by the registry of the machine or of the user, or by a manifest.
#include <fstream>
#include <optional>
#include <thread>

#include "win32/client.h"

namespace ambrelio {
namespace {

using com::ToWide;
using test::Apartment;
using test::ComPtr;
using test::ServerDll;

// A value of a key; nothing when it is not there.
std::optional<std::string> Read(HKEY root, const std::string& key, const wchar_t* name = nullptr) {
  wchar_t text[1024];
  DWORD size = sizeof text;
  const std::wstring path = L"Software\\Classes\\" + ToWide(key);
  if (::RegGetValueW(root, path.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size) !=
      ERROR_SUCCESS) {
    return std::nullopt;
  }
  return com::FromWide(text);
}

std::string Text(REFGUID id) {
  wchar_t text[40];
  ::StringFromGUID2(id, text, 40);
  return com::FromWide(text);
}

// What a client gets that asks for a class by its name: 429 when it is not found.
int ErrorOfCreating(const char* prog_id) {
  try {
    com::CreateObject(prog_id);
  } catch (const AutomationError& error) {
    return error.number();
  }
  return 0;
}

// Takes all entries away again.
class RegistrationTest : public ::testing::Test {
 protected:
  void TearDown() override {
    dll.Install(false, nullptr);
    dll.Install(false, L"user");
  }

  static void ExpectEntries(HKEY root) {
    const std::string id = Text(__uuidof(::Trazabilidad));
    EXPECT_EQ(Read(root, "Ambrelio.Trazabilidad\\CLSID"), id);
    EXPECT_EQ(Read(root, "Ambrelio.Trazabilidad\\CurVer"), "Ambrelio.Trazabilidad.1");
    EXPECT_EQ(Read(root, "Ambrelio.Trazabilidad.1\\CLSID"), id);
    EXPECT_EQ(Read(root, "Ambrelio.Referente\\CLSID"), Text(__uuidof(::Referente)));
    EXPECT_EQ(Read(root, "Ambrelio.Tolva\\CLSID"), std::nullopt);
    const std::string key = "CLSID\\" + id;
    EXPECT_EQ(Read(root, key + "\\ProgID"), "Ambrelio.Trazabilidad.1");
    EXPECT_EQ(Read(root, key + "\\VersionIndependentProgID"), "Ambrelio.Trazabilidad");
    EXPECT_EQ(Read(root, key + "\\InprocServer32", L"ThreadingModel"), "Apartment");
    EXPECT_THAT(Read(root, key + "\\InprocServer32").value_or(""),
                ::testing::EndsWith("Ambrelio.dll"));
    EXPECT_TRUE(Read(root, key + "\\TypeLib"));
  }

  Apartment apartment;
  ServerDll dll;
};

TEST_F(RegistrationTest, OfTheMachineLetsClientsCreateByName) {
  ASSERT_EQ(dll.Install(true, nullptr), S_OK);
  ExpectEntries(HKEY_LOCAL_MACHINE);
  EXPECT_EQ(ErrorOfCreating("Ambrelio.Trazabilidad"), 0);
  EXPECT_EQ(ErrorOfCreating("Ambrelio.Referente.1"), 0);
  EXPECT_EQ(ErrorOfCreating("Ambrelio.Tolva"), 429);
  ComPtr<ITypeLib> library;
  const std::optional<std::string> id =
      Read(HKEY_LOCAL_MACHINE, "CLSID\\" + Text(__uuidof(::Trazabilidad)) + "\\TypeLib");
  GUID library_id{};
  ASSERT_EQ(::CLSIDFromString(ToWide(id.value()).c_str(), &library_id), S_OK);
  EXPECT_EQ(::LoadRegTypeLib(library_id, 1, 0, 0, library.Receive()), S_OK);
}

TEST_F(RegistrationTest, IsTakenAwayWhole) {
  ASSERT_EQ(dll.Install(true, nullptr), S_OK);
  ASSERT_EQ(dll.Install(false, nullptr), S_OK);
  EXPECT_EQ(Read(HKEY_LOCAL_MACHINE, "Ambrelio.Trazabilidad\\CLSID"), std::nullopt);
  EXPECT_EQ(Read(HKEY_LOCAL_MACHINE, "Ambrelio.Trazabilidad.1\\CLSID"), std::nullopt);
  EXPECT_EQ(Read(HKEY_LOCAL_MACHINE, "CLSID\\" + Text(__uuidof(::Trazabilidad)) + "\\ProgID"),
            std::nullopt);
  EXPECT_EQ(ErrorOfCreating("Ambrelio.Trazabilidad"), 429);
  EXPECT_EQ(dll.Install(false, nullptr), S_OK);
}

TEST_F(RegistrationTest, OfTheUserWritesTheUsersEntries) {
  ASSERT_EQ(dll.Install(true, L"user"), S_OK);
  ExpectEntries(HKEY_CURRENT_USER);
  EXPECT_EQ(Read(HKEY_LOCAL_MACHINE, "Ambrelio.Trazabilidad\\CLSID"), std::nullopt);
  ASSERT_EQ(dll.Install(false, L"user"), S_OK);
  EXPECT_EQ(Read(HKEY_CURRENT_USER, "Ambrelio.Trazabilidad\\CLSID"), std::nullopt);
}

// The exit code of a program.
DWORD ExitCodeOf(std::wstring command) {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!::CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &process)) {
    return ::GetLastError();
  }
  ::WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 1;
  ::GetExitCodeProcess(process.hProcess, &code);
  ::CloseHandle(process.hThread);
  ::CloseHandle(process.hProcess);
  return code;
}

DWORD Regsvr32(const std::wstring& options) {
  return ExitCodeOf(L"regsvr32.exe /s " + options + L" \"" + ServerDll::Path() + L"\"");
}

// Such a client gets a proxy; the object lives on a thread that automation runs for it.
TEST(MultithreadedClient, DISABLED_CallsThroughAProxy) {
  const test::MillFolder mill;
  std::thread([&] {
    ASSERT_EQ(::CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    {
      const com::LateBound root(com::CreateObject("Ambrelio.Trazabilidad"));
      root.Call("Constructor", {mill.path(), false});
      EXPECT_EQ(root.Call("MaximoTolvas"), Variant(int16_t{4}));
      root.Call("Cerrar");
    }
    ::CoUninitialize();
  }).join();
}

// In a process of its own: Wine never releases the class that it asks for on that thread, and other
// tests look whether the DLL can go.
TEST_F(RegistrationTest, ServesClientsOfTheMultithreadedApartment) {
  ASSERT_EQ(dll.Install(true, nullptr), S_OK);
  wchar_t program[MAX_PATH];
  ::GetModuleFileNameW(nullptr, program, MAX_PATH);
  EXPECT_EQ(ExitCodeOf(std::wstring(L"\"") + program +
                       L"\" --gtest_brief=1 --gtest_also_run_disabled_tests "
                       L"--gtest_filter=MultithreadedClient.*"),
            0U);
}

TEST_F(RegistrationTest, IsDoneByRegsvr32) {
  ASSERT_EQ(Regsvr32(L""), 0U);
  ExpectEntries(HKEY_LOCAL_MACHINE);
  EXPECT_EQ(ErrorOfCreating("Ambrelio.Trazabilidad"), 0);
  EXPECT_EQ(Regsvr32(L"/u"), 0U);
  EXPECT_EQ(ErrorOfCreating("Ambrelio.Trazabilidad"), 429);
  EXPECT_EQ(Regsvr32(L"/n /i:user"), 0U);
  ExpectEntries(HKEY_CURRENT_USER);
}

TEST_F(RegistrationTest, GivesOnlyClassesThatCanBeCreated) {
  ComPtr<IClassFactory> factory;
  EXPECT_EQ(dll.GetClass(__uuidof(::Tolva), factory), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(dll.GetClass(IID_IUnknown, factory), CLASS_E_CLASSNOTAVAILABLE);
  ASSERT_EQ(dll.GetClass(__uuidof(::Trazabilidad), factory), S_OK);
  ComPtr<IUnknown> object;
  EXPECT_EQ(factory->CreateInstance(factory.get(), IID_IUnknown, object.ReceiveVoid()),
            CLASS_E_NOAGGREGATION);
  EXPECT_EQ(factory->CreateInstance(nullptr, __uuidof(_Tolva), object.ReceiveVoid()),
            E_NOINTERFACE);
}

// A host's manifest in force for a scope, for a host that lies beside the DLL.
class Activation {
 public:
  explicit Activation(const std::string& manifest) {
    const std::wstring path = ToWide(manifest);
    ACTCTXW context{};
    context.cbSize = sizeof context;
    context.lpSource = path.c_str();
    handle_ = ::CreateActCtxW(&context);
    active_ = handle_ != INVALID_HANDLE_VALUE && ::ActivateActCtx(handle_, &cookie_);
  }
  ~Activation() {
    if (active_) ::DeactivateActCtx(0, cookie_);
    if (handle_ != INVALID_HANDLE_VALUE) ::ReleaseActCtx(handle_);
  }
  Activation(const Activation&) = delete;
  Activation& operator=(const Activation&) = delete;
  bool active() const { return active_; }

 private:
  HANDLE handle_;
  ULONG_PTR cookie_ = 0;
  bool active_ = false;
};

TEST_F(RegistrationTest, IsNotNeededWithAManifest) {
  const test::TempFolder folder;
  const std::string manifest = folder.File("host.manifest");
  std::ofstream(manifest) << R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
  <assemblyIdentity type="win32" name="Host" version="1.0.0.0"/>
  <dependency>
    <dependentAssembly>
      <assemblyIdentity type="win32" name="Ambrelio" version=")" AMBRELIO_VERSION
                             R"(.0" processorArchitecture="*"/>
    </dependentAssembly>
  </dependency>
</assembly>)";
  EXPECT_EQ(ErrorOfCreating("Ambrelio.Trazabilidad"), 429);
  const Activation activation(manifest);
  ASSERT_TRUE(activation.active()) << ::GetLastError();
  EXPECT_EQ(ErrorOfCreating("Ambrelio.Trazabilidad"), 0);
  EXPECT_EQ(ErrorOfCreating("Ambrelio.Referente"), 0);
}

}  // namespace
}  // namespace ambrelio
