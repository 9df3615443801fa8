#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <initializer_list>
#include <thread>

#include "ambrelio/platform/event_loop.h"
#include "ambrelio/platform/interruption.h"

namespace ambrelio {
namespace {

std::atomic<int> caught = 0;

BOOL WINAPI Catch(DWORD) {
  ++caught;
  return TRUE;
}

// What Windows runs on a new thread of a program whose keys are pressed: it asks the handlers, the
// latest first. To press keys for oneself takes a console, which a test may not have.
void Press(DWORD event) {
  const auto routine = reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(
      ::GetProcAddress(::GetModuleHandleW(L"kernelbase.dll"), "CtrlRoutine")));
  ASSERT_NE(routine, nullptr);
  const HANDLE thread =
      ::CreateThread(nullptr, 0, routine, reinterpret_cast<void*>(ULONG_PTR{event}), 0, nullptr);
  ::WaitForSingleObject(thread, INFINITE);
  ::CloseHandle(thread);
}

// Beside someone who handles what nobody else does, so that the test goes on.
class InterruptionTest : public testing::Test {
 protected:
  InterruptionTest() {
    caught = 0;
    ::SetConsoleCtrlHandler(Catch, TRUE);
  }
  ~InterruptionTest() override { ::SetConsoleCtrlHandler(Catch, FALSE); }
};

TEST_F(InterruptionTest, HasNotComeAtFirst) { EXPECT_FALSE(Interruption().Interrupted()); }

TEST_F(InterruptionTest, ComesWithEitherKey) {
  for (const DWORD event : {CTRL_C_EVENT, CTRL_BREAK_EVENT}) {
    const Interruption interruption;
    Press(event);
    EXPECT_TRUE(interruption.Interrupted());
    EXPECT_TRUE(interruption.Interrupted());
    EXPECT_EQ(caught, 0);
  }
}

TEST_F(InterruptionTest, DoesNotKeepAWindowFromBeingClosed) {
  const Interruption interruption;
  Press(CTRL_CLOSE_EVENT);
  EXPECT_FALSE(interruption.Interrupted());
  EXPECT_EQ(caught, 1);
}

TEST_F(InterruptionTest, IsForgottenByTheNextScopeAndLeavesTheKeysAsTheyWere) {
  {
    const Interruption interruption;
    Press(CTRL_BREAK_EVENT);
  }
  EXPECT_FALSE(Interruption().Interrupted());
  Press(CTRL_BREAK_EVENT);
  EXPECT_EQ(caught, 1);
}

TEST_F(InterruptionTest, EndsARunThatAsksForIt) {
  const Interruption interruption;
  EventLoop loop;
  std::thread person([] { Press(CTRL_C_EVENT); });
  EXPECT_TRUE(loop.RunUntil([&] { return interruption.Interrupted(); }, Milliseconds(60000)));
  person.join();
}

}  // namespace
}  // namespace ambrelio
