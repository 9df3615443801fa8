#include "ambrelio/platform/message_pump.h"

#include <winsock2.h>
// After it.
#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>

#include "ambrelio/platform/datagram_socket.h"

namespace ambrelio {
namespace {

class MessagePumpTest : public ::testing::Test {
 protected:
  void SetUp() override { pump.Open(); }

  // Dispatches the thread's messages until `done`; false when that takes far too long.
  static bool DispatchUntil(const std::function<bool()>& done) {
    const ULONGLONG end = ::GetTickCount64() + 60000;
    while (!done()) {
      if (::GetTickCount64() >= end) return false;
      ::MsgWaitForMultipleObjectsEx(0, nullptr, 100, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
      MSG message;
      while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&message);
    }
    return true;
  }

  EventLoop loop;
  MessagePump pump{loop};
};

TEST_F(MessagePumpTest, HasNoWindowWithNothingToWaitFor) {
  EXPECT_EQ(pump.window(), nullptr);
  loop.StartTimer(Milliseconds(1000), [] {});
  EXPECT_NE(pump.window(), nullptr);
}

TEST_F(MessagePumpTest, DeliversTimers) {
  int ticks = 0;
  std::function<void()> tick = [&] {
    if (++ticks < 3) loop.StartTimer(Milliseconds(10), tick);
  };
  loop.StartTimer(Milliseconds(10), tick);
  EXPECT_TRUE(DispatchUntil([&] { return ticks == 3; }));
}

TEST_F(MessagePumpTest, DeliversTimersFromBeforeItsOpening) {
  pump.Close();
  bool ticked = false;
  loop.StartTimer(Milliseconds(10), [&] { ticked = true; });
  pump.Open();
  EXPECT_TRUE(DispatchUntil([&] { return ticked; }));
}

TEST_F(MessagePumpTest, DeliversDatagramsAllOfThem) {
  constexpr size_t kDatagrams = 250;  // more than are delivered at once
  const auto receiver = MakeUdpSocket(loop);
  const auto sender = MakeUdpSocket(loop);
  size_t received = 0;
  receiver->Bind({"127.0.0.1", 0}, [&](const std::string&, const Endpoint&) { ++received; });
  sender->Bind({"127.0.0.1", 0}, [](const std::string&, const Endpoint&) {});
  for (size_t i = 0; i < kDatagrams; ++i) sender->Send({"127.0.0.1", receiver->LocalPort()}, "x");
  EXPECT_TRUE(DispatchUntil([&] { return received == kDatagrams; })) << received;
}

TEST_F(MessagePumpTest, DropsWhatAHandlerRaises) {
  bool ticked = false;
  loop.StartTimer(Milliseconds(0), [] { throw std::runtime_error("handler"); });
  loop.StartTimer(Milliseconds(1), [&] { ticked = true; });
  EXPECT_TRUE(DispatchUntil([&] { return ticked; }));
}

TEST_F(MessagePumpTest, PutsEventsOffDuringAPause) {
  bool ticked = false;
  loop.StartTimer(Milliseconds(0), [&] { ticked = true; });
  {
    const MessagePump::Pause pause(pump);
    ::SendMessageW(pump.window(), WM_TIMER, 1, 0);
    EXPECT_FALSE(ticked);
  }
  EXPECT_TRUE(DispatchUntil([&] { return ticked; }));
}

TEST_F(MessagePumpTest, AHandlerIsNotInterruptedByAnotherEvent) {
  bool inside = false;
  bool interrupted = false;
  bool done = false;
  loop.StartTimer(Milliseconds(0), [&] {
    inside = true;
    ::SendMessageW(pump.window(), WM_TIMER, 1, 0);
    inside = false;
  });
  loop.StartTimer(Milliseconds(0), [&] {
    interrupted = inside;
    done = true;
  });
  EXPECT_TRUE(DispatchUntil([&] { return done; }));
  EXPECT_FALSE(interrupted);
}

TEST_F(MessagePumpTest, AHandlerMayCloseIt) {
  bool closed = false;
  loop.StartTimer(Milliseconds(0), [&] {
    pump.Close();
    closed = true;
  });
  EXPECT_TRUE(DispatchUntil([&] { return closed; }));
  EXPECT_EQ(pump.window(), nullptr);
}

TEST_F(MessagePumpTest, DeliversNothingOnceClosed) {
  bool ticked = false;
  loop.StartTimer(Milliseconds(0), [&] { ticked = true; });
  pump.Close();
  MSG message;
  while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&message);
  EXPECT_FALSE(ticked);
  loop.RunUntilIdle();
  EXPECT_TRUE(ticked);
}

}  // namespace
}  // namespace ambrelio
