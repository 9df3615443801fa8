#include "ambrelio/platform/datagram_socket.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/error_of.h"
#include "support/udp_ports.h"

namespace ambrelio {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr size_t kLongest = 65507;

class DatagramSocketTest : public ::testing::Test {
 protected:
  void SetUp() override {
    service->Bind({"127.0.0.1", 0}, [this](const std::string& bytes, const Endpoint& sender) {
      received.push_back(bytes);
      senders.push_back(sender);
    });
    gateway->Bind({"127.0.0.1", 0},
                  [this](const std::string& bytes, const Endpoint&) { answers.push_back(bytes); });
  }

  Endpoint ServicePlace() const { return {"127.0.0.1", service->LocalPort()}; }
  static DatagramSocket::Receiver Ignore() {
    return [](const std::string&, const Endpoint&) {};
  }
  // The error of a socket that tries to listen at `local`, as its number and sentence.
  std::string ErrorOfBind(const Endpoint& local) {
    const auto socket = MakeUdpSocket(loop);
    return ErrorText([&] { socket->Bind(local, Ignore()); });
  }
  std::string ErrorOfSend(const Endpoint& remote, const std::string& bytes = "x") {
    return ErrorText([&] { gateway->Send(remote, bytes); });
  }
  static std::string ErrorText(const std::function<void()>& action) {
    try {
      action();
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.source(), "Ambrelio");
      return std::to_string(error.number()) + " " + error.description();
    }
    return "none";
  }

  ManualTicks ticks;
  EventLoop loop{ticks};
  std::unique_ptr<DatagramSocket> service = MakeUdpSocket(loop);
  std::unique_ptr<DatagramSocket> gateway = MakeUdpSocket(loop);
  std::vector<std::string> received;
  std::vector<Endpoint> senders;
  std::vector<std::string> answers;
};

// --- delivery

TEST_F(DatagramSocketTest, DeliversADatagramWithItsSender) {
  gateway->Send(ServicePlace(), std::string("3?\0\xFF", 4));
  EXPECT_THAT(received, IsEmpty());
  loop.RunUntilIdle();
  EXPECT_THAT(received, ElementsAre(std::string("3?\0\xFF", 4)));
  EXPECT_THAT(senders, ElementsAre(Endpoint{"127.0.0.1", gateway->LocalPort()}));
}

TEST_F(DatagramSocketTest, TheSenderCanBeAnswered) {
  gateway->Send(ServicePlace(), "3?");
  loop.RunUntilIdle();
  service->Send(senders.at(0), "12.5");
  loop.RunUntilIdle();
  EXPECT_THAT(answers, ElementsAre("12.5"));
}

TEST_F(DatagramSocketTest, DeliversEachDatagramAsAnEventOfItsOwnInOrder) {
  for (const char* text : {"a", "b", "c"}) gateway->Send(ServicePlace(), text);
  EXPECT_TRUE(loop.RunUntil([this] { return received.size() == 1; }, Milliseconds(0)));
  EXPECT_THAT(received, ElementsAre("a"));
  loop.RunUntilIdle();
  EXPECT_THAT(received, ElementsAre("a", "b", "c"));
}

TEST_F(DatagramSocketTest, DeliversTheLongestDatagramWhole) {
  const std::string longest(kLongest, 'x');
  gateway->Send(ServicePlace(), longest);
  loop.RunUntilIdle();
  EXPECT_EQ(received, std::vector<std::string>{longest});
}

TEST_F(DatagramSocketTest, DeliversAnEmptyDatagram) {
  gateway->Send(ServicePlace(), "");
  loop.RunUntilIdle();
  EXPECT_THAT(received, ElementsAre(""));
}

TEST_F(DatagramSocketTest, WakesALoopThatWaits) {
  EventLoop real;
  const auto hears = MakeUdpSocket(real);
  bool heard = false;
  hears->Bind({"127.0.0.1", 0}, [&](const std::string&, const Endpoint&) { heard = true; });
  real.StartTimer(Milliseconds(2), [&] { gateway->Send({"127.0.0.1", hears->LocalPort()}, "x"); });
  EXPECT_TRUE(real.RunUntil([&heard] { return heard; }, Milliseconds(60000)));
}

TEST_F(DatagramSocketTest, FindsThisMachineByName) {
  gateway->Send({"localhost", service->LocalPort()}, "x");
  loop.RunUntilIdle();
  EXPECT_THAT(received, ElementsAre("x"));
}

TEST_F(DatagramSocketTest, ListensOnAllAddressesWithoutAHost) {
  service->Bind({"", 0},
                [this](const std::string& bytes, const Endpoint&) { received.push_back(bytes); });
  gateway->Send({"127.0.0.2", service->LocalPort()}, "x");
  loop.RunUntilIdle();
  EXPECT_THAT(received, ElementsAre("x"));
}

TEST_F(DatagramSocketTest, ListensAtItsAddressOnly) {
  gateway->Send({"127.0.0.2", service->LocalPort()}, "x");
  loop.RunUntilIdle();
  EXPECT_THAT(received, IsEmpty());
}

TEST_F(DatagramSocketTest, WhatAReceiverRaisesComesOutOfTheRunAndTakesItsDatagram) {
  service->Bind(ServicePlace(), [this](const std::string& bytes, const Endpoint&) {
    received.push_back(bytes);
    if (bytes == "bad") Raise(RuntimeError::kInvalidCall);
  });
  gateway->Send(ServicePlace(), "bad");
  gateway->Send(ServicePlace(), "good");
  EXPECT_EQ(test::ErrorOf([this] { loop.RunUntilIdle(); }), 5);
  loop.RunUntilIdle();
  EXPECT_THAT(received, ElementsAre("bad", "good"));
}

// --- closing within the receiver

TEST_F(DatagramSocketTest, AReceiverMayCloseItsSocket) {
  service->Bind(ServicePlace(), [this](const std::string& bytes, const Endpoint&) {
    service->Close();
    received.push_back(bytes);
  });
  gateway->Send(ServicePlace(), "a");
  gateway->Send(ServicePlace(), "b");
  loop.RunUntilIdle();
  EXPECT_THAT(received, ElementsAre("a"));
}

TEST_F(DatagramSocketTest, AReceiverMayDestroyItsSocket) {
  const std::string note = "a text too long to be kept within the function object";
  service->Bind(ServicePlace(), [this, note](const std::string& bytes, const Endpoint&) {
    service.reset();
    received.push_back(bytes + note);
  });
  gateway->Send(ServicePlace(), "");
  loop.RunUntilIdle();
  EXPECT_THAT(received, ElementsAre(note));
}

TEST_F(DatagramSocketTest, AReceiverMayBindItsSocketAnew) {
  const Endpoint place = ServicePlace();
  service->Bind(place, [this, place](const std::string&, const Endpoint&) {
    service->Bind(place, [this](const std::string& bytes, const Endpoint&) {
      received.push_back("anew " + bytes);
    });
  });
  gateway->Send(place, "a");
  loop.RunUntilIdle();
  gateway->Send(place, "b");
  loop.RunUntilIdle();
  EXPECT_THAT(received, ElementsAre("anew b"));
}

// --- turns

TEST_F(DatagramSocketTest, ManyDatagramsOfOneSocketDoNotHoldUpAnother) {
  for (int i = 0; i < 50; ++i) gateway->Send(ServicePlace(), "many");
  service->Send({"127.0.0.1", gateway->LocalPort()}, "one");
  loop.RunUntil([this] { return !answers.empty(); }, Milliseconds(0));
  EXPECT_LE(received.size(), 2);
}

TEST_F(DatagramSocketTest, ManyDatagramsDoNotHoldUpATimer) {
  for (int i = 0; i < 50; ++i) gateway->Send(ServicePlace(), "many");
  bool ticked = false;
  loop.StartTimer(Milliseconds(0), [&ticked] { ticked = true; });
  loop.RunUntil([&ticked] { return ticked; }, Milliseconds(0));
  EXPECT_LE(received.size(), 1);
}

TEST_F(DatagramSocketTest, TimersThatAreAlwaysDueDoNotHoldUpADatagram) {
  int ticks_delivered = 0;
  const EventLoop::Handler again = [&] {
    ++ticks_delivered;
    loop.StartTimer(Milliseconds(0), again);
  };
  loop.StartTimer(Milliseconds(0), again);
  gateway->Send(ServicePlace(), "x");
  EXPECT_TRUE(loop.RunUntil([this] { return !received.empty(); }, Milliseconds(0)));
  EXPECT_LE(ticks_delivered, 1);
}

TEST_F(DatagramSocketTest, TimeStandsStillWhileThereIsSomethingToRead) {
  Milliseconds at(-1);
  service->Bind(ServicePlace(), [&](const std::string&, const Endpoint&) { at = ticks.Now(); });
  gateway->Send(ServicePlace(), "x");
  loop.RunFor(Milliseconds(100));
  EXPECT_EQ(at, Milliseconds(0));
}

// --- opening and closing

TEST_F(DatagramSocketTest, TellsThePortItListensAt) {
  EXPECT_GT(service->LocalPort(), 0);
  service->Close();
  EXPECT_EQ(service->LocalPort(), 0);
  const int32_t port = test::FreeUdpPortPair();
  service->Bind({"", port}, Ignore());
  EXPECT_EQ(service->LocalPort(), port);
}

TEST_F(DatagramSocketTest, DeliversNothingOnceClosed) {
  gateway->Send(ServicePlace(), "x");
  service->Close();
  service->Close();
  loop.RunUntilIdle();
  EXPECT_THAT(received, IsEmpty());
}

// Systems give the numbers of closed sockets to new ones.
TEST_F(DatagramSocketTest, IsForgottenByItsLoopOnceClosed) {
  service.reset();
  EventLoop other_loop(ticks);
  const auto other = MakeUdpSocket(other_loop);
  other->Bind({"127.0.0.1", 0}, [this](const std::string& bytes, const Endpoint&) {
    received.push_back("other " + bytes);
  });
  gateway->Send({"127.0.0.1", other->LocalPort()}, "x");
  loop.RunUntilIdle();
  EXPECT_THAT(received, IsEmpty());
  other_loop.RunUntilIdle();
  EXPECT_THAT(received, ElementsAre("other x"));
}

TEST_F(DatagramSocketTest, ATakenPortRaises10048) {
  const std::string sentence =
      "10048 Address in use: UDP port " + std::to_string(service->LocalPort());
  EXPECT_EQ(ErrorOfBind(ServicePlace()), sentence);
  EXPECT_EQ(ErrorOfBind({"", service->LocalPort()}), sentence);
}

TEST_F(DatagramSocketTest, APortIsFreeAgainOnceClosed) {
  const Endpoint place = ServicePlace();
  service->Close();
  EXPECT_EQ(ErrorOfBind(place), "none");
  service->Bind(place, Ignore());
  service.reset();
  EXPECT_EQ(ErrorOfBind(place), "none");
}

TEST_F(DatagramSocketTest, BindingAgainClosesWhatWasOpen) {
  const Endpoint before = ServicePlace();
  service->Bind({"127.0.0.1", 0}, Ignore());
  EXPECT_EQ(ErrorOfBind(before), "none");
  service->Bind(ServicePlace(), Ignore());
}

TEST_F(DatagramSocketTest, AFailedBindLeavesTheSocketClosed) {
  const Endpoint before = ServicePlace();
  EXPECT_EQ(test::ErrorOf([this] {
              service->Bind({"127.0.0.1", gateway->LocalPort()}, Ignore());
            }),
            10048);
  EXPECT_EQ(service->LocalPort(), 0);
  EXPECT_EQ(test::ErrorOf([&] { service->Send(before, "x"); }), 10038);
  EXPECT_EQ(ErrorOfBind(before), "none");
}

TEST_F(DatagramSocketTest, APortOutOfRangeIsNamed) {
  EXPECT_EQ(ErrorOfBind({"", -1}), "380 Invalid property value: UDP port -1");
  EXPECT_EQ(ErrorOfBind({"", 65536}), "380 Invalid property value: UDP port 65536");
  EXPECT_EQ(ErrorOfSend({"127.0.0.1", 0}), "380 Invalid property value: UDP port 0");
  EXPECT_EQ(ErrorOfSend({"127.0.0.1", 65536}), "380 Invalid property value: UDP port 65536");
}

// --- sending

TEST_F(DatagramSocketTest, AnUnknownHostRaises11001) {
  EXPECT_EQ(ErrorOfSend({"pc1.invalid", 9084}), "11001 Host not found: pc1.invalid");
  EXPECT_EQ(ErrorOfSend({"PC1.Invalid.", 9084}), "11001 Host not found: PC1.Invalid.");
  EXPECT_EQ(ErrorOfBind({"pc1.invalid", 0}), "11001 Host not found: pc1.invalid");
}

TEST_F(DatagramSocketTest, EveryAddressIsNobodyToSendTo) {
  EXPECT_EQ(ErrorOfSend({"", 9084}), "10049 Address not available: :9084");
  EXPECT_EQ(ErrorOfSend({"0.0.0.0", 9084}), "10049 Address not available: 0.0.0.0:9084");
}

TEST_F(DatagramSocketTest, ADatagramThatIsTooLongRaises10040) {
  EXPECT_EQ(ErrorOfSend(ServicePlace(), std::string(kLongest + 1, 'x')),
            "10040 Datagram too long: 127.0.0.1:" + std::to_string(service->LocalPort()));
}

TEST_F(DatagramSocketTest, SendingToAllRaises10013) {
  EXPECT_EQ(ErrorOfSend({"127.255.255.255", 9084}),
            "10013 Permission denied: 127.255.255.255:9084");
}

TEST_F(DatagramSocketTest, SendingFromAClosedSocketRaises10038) {
  gateway->Close();
  EXPECT_EQ(ErrorOfSend({"127.0.0.1", 9084}), "10038 Socket is closed: 127.0.0.1:9084");
}

TEST_F(DatagramSocketTest, NobodyListeningIsNoError) {
  const int32_t port = test::FreeUdpPortPair();
  gateway->Send({"127.0.0.1", port}, "x");
  gateway->Send({"127.0.0.1", port}, "x");
  loop.RunUntilIdle();
  EXPECT_THAT(answers, IsEmpty());
}

}  // namespace
}  // namespace ambrelio
