#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <initializer_list>
#include <thread>

#include "ambrelio/platform/event_loop.h"
#include "ambrelio/platform/interruption.h"
#include "support/interruptions.h"

namespace ambrelio {
namespace {

using test::Press;

std::atomic<int> caught = 0;

BOOL WINAPI Catch(DWORD) {
  ++caught;
  return TRUE;
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
