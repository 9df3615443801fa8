// Apartments, the ends of threads, and the unloading of the DLL.
#include <windows.h>

#include <future>
#include <memory>
#include <thread>

#include "support/memory_in_use.h"
#include "win32/client.h"

namespace ambrelio {
namespace {

using test::Apartment;
using test::ComPtr;
using test::LateBound;
using test::MillFolder;
using test::ServerDll;
using test::ServerTest;

using Threads = ServerTest;

LateBound NewRoot(const ServerDll& dll) {
  return LateBound(ComPtr<IDispatch>(dll.CreateRoot().get()));
}

// Runs on a thread of its own, in an apartment of its own.
void OnAnotherThread(const std::function<void()>& action) {
  std::thread([&] {
    const Apartment apartment;
    action();
  }).join();
}

TEST_F(Threads, TwoRootsOfOneThreadShareItsState) {
  const LateBound second = NewRoot(dll);
  EXPECT_EQ(second.Call("BaseAbierta"), Variant(true));
  EXPECT_EQ(second.Call("MaximoTolvas"), Variant(int16_t{4}));
}

TEST_F(Threads, TheEndOfAnyRootClosesTheDatabase) {
  { const LateBound second = NewRoot(dll); }
  EXPECT_EQ(root.Call("BaseAbierta"), Variant(false));
}

TEST_F(Threads, AnotherThreadHasAStateOfItsOwn) {
  OnAnotherThread([&] {
    const LateBound other = NewRoot(dll);
    EXPECT_EQ(other.Call("BaseAbierta"), Variant(false));
    EXPECT_EQ(other.Call("MaximoTolvas"), Variant(int16_t{0}));
    const MillFolder mill_of_other;
    other.Call("Constructor", {mill_of_other.path(), false});
    EXPECT_EQ(other.Call("BaseAbierta"), Variant(true));
  });
  EXPECT_EQ(root.Call("BaseAbierta"), Variant(true));
}

TEST_F(Threads, RefusesCallsFromAnotherThread) {
  const auto dual = ComPtr<IDispatch>(root.get()).As<_Trazabilidad>();
  OnAnotherThread([&] {
    VARIANT_BOOL open = VARIANT_FALSE;
    EXPECT_EQ(dual->BaseAbierta(&open), RPC_E_WRONG_THREAD);
    EXPECT_EQ(test::Invoke(root.get(), "BaseAbierta", {}).result, RPC_E_WRONG_THREAD);
  });
  EXPECT_EQ(root.Call("BaseAbierta"), Variant(true));
}

TEST_F(Threads, TakesNoObjectOfAnotherThread) {
  OnAnotherThread([&] {
    const LateBound other = NewRoot(dll);
    const MillFolder mill_of_other;
    other.Call("Constructor", {mill_of_other.path(), false});
    const LateBound referent(dll.Create<IDispatch>(__uuidof(::Referente)));
    EXPECT_EQ(ErrorOf([&] {
                root.Call("GuardarReferente", {int16_t{1}, referent.AsArgument()});
              }),
              RPC_E_WRONG_THREAD);
  });
}

TEST_F(Threads, AnObjectReleasedElsewhereEndsOnItsOwnThread) {
  LateBound second = NewRoot(dll);
  OnAnotherThread([&] { second = LateBound(); });
  // Its end, which the next call sees to, closes the database.
  root.Call("MaximoTolvas");
  EXPECT_EQ(root.Call("BaseAbierta"), Variant(false));
}

TEST(EndOfAThread, LeavesItsObjectsDisconnected) {
  const ServerDll dll;
  ComPtr<_Trazabilidad> left;
  OnAnotherThread([&] {
    const MillFolder mill;
    left = dll.CreateRoot();
    const LateBound root{ComPtr<IDispatch>(left.get())};
    root.Call("Constructor", {mill.path(), false});
    root.Call("Cerrar");  // so that the folder can go
  });
  EXPECT_FALSE(dll.CanUnload());
  left = {};
  EXPECT_TRUE(dll.CanUnload());
}

TEST(Unloading, IsRefusedWhileAnythingIsInUse) {
  const Apartment apartment;
  const ServerDll dll;
  EXPECT_TRUE(dll.CanUnload());
  {
    const LateBound root = NewRoot(dll);
    EXPECT_FALSE(dll.CanUnload());
  }
  EXPECT_TRUE(dll.CanUnload());
  ComPtr<IClassFactory> factory;
  ASSERT_EQ(dll.GetClass(__uuidof(::Referente), factory), S_OK);
  EXPECT_FALSE(dll.CanUnload());
  factory->LockServer(TRUE);
  factory = {};
  EXPECT_FALSE(dll.CanUnload());
  ASSERT_EQ(dll.GetClass(__uuidof(::Referente), factory), S_OK);
  factory->LockServer(FALSE);
  factory = {};
  EXPECT_TRUE(dll.CanUnload());
}

TEST(Unloading, TypeInformationDoesNotKeepTheDll) {
  const Apartment apartment;
  {
    const ServerDll dll;
    ComPtr<ITypeInfo> info;
    ASSERT_EQ(dll.CreateRoot()->GetTypeInfo(0, 0, info.Receive()), S_OK);
  }
  EXPECT_EQ(::GetModuleHandleW(L"Ambrelio.dll"), nullptr);
}

TEST(Unloading, EndsTheStateOfThreadsThatLiveOn) {
  std::promise<void> used;
  std::promise<void> unloaded;
  auto dll = std::make_unique<ServerDll>();
  std::thread other([&] {
    const Apartment apartment;
    NewRoot(*dll).Call("MaximoTolvas");
    used.set_value();
    unloaded.get_future().wait();
  });
  used.get_future().wait();
  dll = nullptr;
  EXPECT_EQ(::GetModuleHandleW(L"Ambrelio.dll"), nullptr);
  unloaded.set_value();
  other.join();
}

DWORD OpenHandles() {
  DWORD count = 0;
  ::GetProcessHandleCount(::GetCurrentProcess(), &count);
  return count;
}

// One use of the server, from the creation of its root to the release of its last object.
void UseOnce(const ServerDll& dll, const MillFolder& mill) {
  const LateBound root = NewRoot(dll);
  root.Call("Constructor", {mill.path(), false});
  ASSERT_EQ(root.Call("BaseAbierta"), Variant(true));
  ASSERT_TRUE(root.ObjectFrom("Tolva", {int16_t{1}}).Call("MomentoInicio").is_date());
  EXPECT_THROW(root.Call("Tolva", {"zz"}), AutomationError);
}

// What `action` leaves behind each time, once the system has what it keeps.
void ExpectToLeave(size_t bytes_each, const std::function<void()>& action) {
  constexpr int kTimes = 30;
  for (int i = 0; i < 10; ++i) action();
  const size_t bytes = test::MemoryInUse();
  const DWORD handles = OpenHandles();
  for (int i = 0; i < kTimes; ++i) action();
  EXPECT_LT(test::MemoryInUse(), bytes + kTimes * bytes_each);
  EXPECT_LE(OpenHandles(), handles + 5);
}

TEST(LastRelease, LeavesNothingBehind) {
  const Apartment apartment;
  const MillFolder mill;
  const ServerDll dll;
  ExpectToLeave(256, [&] { UseOnce(dll, mill); });
}

// A DLL with the compiler's runtime inside and nothing else leaves some 20 kB each time, and 76
// with 64 bits: its tables for exceptions. A session with its connection would be much more.
TEST(Unloading, LeavesNoMoreThanTheCompilersRuntimeDoes) {
  const Apartment apartment;
  const MillFolder mill;
  ExpectToLeave(sizeof(void*) == 8 ? 96 * 1024 : 32 * 1024, [&] {
    const ServerDll dll;
    UseOnce(dll, mill);
  });
}

}  // namespace
}  // namespace ambrelio
