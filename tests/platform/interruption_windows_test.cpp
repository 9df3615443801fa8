#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>

#include "ambrelio/platform/event_loop.h"
#include "ambrelio/platform/interruption.h"

namespace ambrelio {
namespace {

std::atomic<int> caught = 0;

BOOL WINAPI Catch(DWORD) {
  ++caught;
  return TRUE;
}

// A console of the test's own, where the keys' events go to no other program; and someone who
// handles what nobody else does, so that the test goes on.
class InterruptionTest : public testing::Test {
 protected:
  InterruptionTest() {
    ::FreeConsole();
    ::AllocConsole();
    caught = 0;
    ::SetConsoleCtrlHandler(Catch, TRUE);
  }
  ~InterruptionTest() override { ::SetConsoleCtrlHandler(Catch, FALSE); }

  static bool Press(DWORD event) { return ::GenerateConsoleCtrlEvent(event, 0) != FALSE; }

  EventLoop loop;
};

TEST_F(InterruptionTest, HasNotComeAtFirst) { EXPECT_FALSE(Interruption().Interrupted()); }

TEST_F(InterruptionTest, ComesWithEitherKeyAndEndsARunThatAsksForIt) {
  for (const DWORD event : {CTRL_C_EVENT, CTRL_BREAK_EVENT}) {
    const Interruption interruption;
    ASSERT_TRUE(Press(event));
    EXPECT_TRUE(loop.RunUntil([&] { return interruption.Interrupted(); }, Milliseconds(60000)));
    EXPECT_EQ(caught, 0);
  }
}

TEST_F(InterruptionTest, IsForgottenByTheNextScopeAndLeavesTheKeysAsTheyWere) {
  {
    const Interruption interruption;
    ASSERT_TRUE(Press(CTRL_BREAK_EVENT));
    loop.RunUntil([&] { return interruption.Interrupted(); }, Milliseconds(60000));
  }
  EXPECT_FALSE(Interruption().Interrupted());
  ASSERT_TRUE(Press(CTRL_BREAK_EVENT));
  EXPECT_TRUE(loop.RunUntil([] { return caught == 1; }, Milliseconds(60000)));
}

}  // namespace
}  // namespace ambrelio
