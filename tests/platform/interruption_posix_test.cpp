#include "ambrelio/platform/interruption.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <chrono>
#include <csignal>
#include <thread>

#include "ambrelio/platform/event_loop.h"

namespace ambrelio {
namespace {

volatile std::sig_atomic_t caught = 0;

TEST(Interruption, HasNotComeAtFirst) { EXPECT_FALSE(Interruption().Interrupted()); }

TEST(Interruption, ComesWithEitherSignal) {
  for (const int signal : {SIGINT, SIGTERM}) {
    const Interruption interruption;
    std::raise(signal);
    EXPECT_TRUE(interruption.Interrupted());
    EXPECT_TRUE(interruption.Interrupted());
  }
}

TEST(Interruption, IsForgottenByTheNextScope) {
  {
    const Interruption interruption;
    std::raise(SIGINT);
  }
  EXPECT_FALSE(Interruption().Interrupted());
}

TEST(Interruption, LeavesTheSignalsAsTheyWere) {
  for (const int signal : {SIGINT, SIGTERM}) {
    caught = 0;
    const auto before = std::signal(signal, [](int number) { caught = number; });
    { const Interruption interruption; }
    std::raise(signal);
    EXPECT_EQ(caught, signal);
    std::signal(signal, before);
  }
}

TEST(Interruption, EndsARunThatAsksForIt) {
  const Interruption interruption;
  EventLoop loop;
  std::thread person([waiting = pthread_self()] {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    pthread_kill(waiting, SIGINT);
  });
  EXPECT_TRUE(loop.RunUntil([&] { return interruption.Interrupted(); }, Milliseconds(60000)));
  person.join();
}

}  // namespace
}  // namespace ambrelio
