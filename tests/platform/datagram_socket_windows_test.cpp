#include <gtest/gtest.h>

#include "ambrelio/platform/datagram_socket.h"
#include "support/error_of.h"
#include "support/wine.h"

namespace ambrelio {
namespace {

// The error of a socket that tries to listen at `local`.
int ErrorOfBind(const Endpoint& local) {
  EventLoop loop;
  const auto socket = MakeUdpSocket(loop);
  return test::ErrorOf([&] { socket->Bind(local, [](const std::string&, const Endpoint&) {}); });
}

// Of the addresses that are reserved for examples, no machine has one.
TEST(DatagramSocketPlaces, AnAddressOfAnotherMachineRaises10049) {
  if (test::RunsUnderWine()) GTEST_SKIP() << "Wine listens at every address instead";
  EXPECT_EQ(ErrorOfBind({"192.0.2.1", 0}), 10049);
}

}  // namespace
}  // namespace ambrelio
