#include <gtest/gtest.h>
#include <sys/resource.h>

#include "ambrelio/platform/datagram_socket.h"
#include "support/error_of.h"

namespace ambrelio {
namespace {

// The error of a socket that tries to listen at `local`.
int ErrorOfBind(const Endpoint& local) {
  EventLoop loop;
  const auto socket = MakeUdpSocket(loop);
  return test::ErrorOf([&] { socket->Bind(local, [](const std::string&, const Endpoint&) {}); });
}

TEST(DatagramSocketLimits, TooManyOpenSocketsRaise10024) {
  // Met once before: a sanitizer needs files of its own to look at a type that is new to it.
  ErrorOfBind({"pc1.invalid", 0});
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit few{3, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
  const int error = ErrorOfBind({"", 0});
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_EQ(error, 10024);
}

// Of the addresses that are reserved for examples, no machine has one.
TEST(DatagramSocketPlaces, AnAddressOfAnotherMachineRaises10049) {
  EXPECT_EQ(ErrorOfBind({"192.0.2.1", 0}), 10049);
}

}  // namespace
}  // namespace ambrelio
