// Sensors polled by the message loop of the client's thread.
#include <winsock2.h>
// After it.
#include <windows.h>

#include "support/udp_ports.h"
#include "win32/client.h"

namespace ambrelio {
namespace {

using test::ServerTest;

class Events : public ServerTest {
 protected:
  static constexpr DWORD kLimit = 60000;  // milliseconds, for a machine that is busy

  // The next message of the thread, waited for; false after a while without `done`.
  static bool PumpUntil(const std::function<bool()>& done) {
    const ULONGLONG end = ::GetTickCount64() + kLimit;
    while (!done()) {
      const ULONGLONG now = ::GetTickCount64();
      if (now >= end) return false;
      ::MsgWaitForMultipleObjectsEx(0, nullptr, 100, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
      MSG message;
      while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&message);
    }
    return true;
  }

  static size_t Windows() {
    size_t count = 0;
    for (HWND window = nullptr;
         (window = ::FindWindowExW(HWND_MESSAGE, window, L"STATIC", nullptr)) != nullptr;) {
      if (::GetWindowThreadProcessId(window, nullptr) == ::GetCurrentThreadId()) ++count;
    }
    return count;
  }
};

// The gateway of the sensors, on the same thread.
class Gateway {
 public:
  explicit Gateway(int port) {
    WSADATA data;
    ::WSAStartup(MAKEWORD(2, 2), &data);
    socket_ = ::socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<u_short>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address);
    u_long without_waiting = 1;
    ::ioctlsocket(socket_, static_cast<long>(FIONBIO), &without_waiting);
  }
  ~Gateway() {
    ::closesocket(socket_);
    ::WSACleanup();
  }
  Gateway(const Gateway&) = delete;
  Gateway& operator=(const Gateway&) = delete;

  // Answers the question that waits, if any.
  void Answer(const std::string& text) {
    char question[64];
    sockaddr_in client{};
    int size = sizeof client;
    const int read = ::recvfrom(socket_, question, sizeof question, 0,
                                reinterpret_cast<sockaddr*>(&client), &size);
    if (read <= 0) return;
    asked.emplace_back(question, static_cast<size_t>(read));
    ::sendto(socket_, text.data(), static_cast<int>(text.size()), 0,
             reinterpret_cast<sockaddr*>(&client), size);
  }

  std::vector<std::string> asked;

 private:
  SOCKET socket_;
};

TEST_F(Events, SensorsAreAskedWhileTheClientDispatchesMessages) {
  const int32_t port = test::FreeUdpPortPair();
  Gateway gateway(port);
  mill.WriteSensorSetting("PortUDP", std::to_string(port));
  mill.WriteSensorSetting("TimeOut", "60000");
  mill.WriteSensorSetting("Periodo", "60000");
  root.Call("RecargaValores");
  EXPECT_TRUE(PumpUntil([&] {
    gateway.Answer("12");
    return root.Call("hayLecturaNivel", {int16_t{6}}) == Variant(int32_t{3});
  }));
  EXPECT_EQ(root.Call("LecturaNivel", {int16_t{6}}), Variant(12.0));
  EXPECT_THAT(gateway.asked, ::testing::ElementsAre("1?", "2?", "3?", "4?", "5?", "6?"));
}

TEST_F(Events, TheWindowGoesWithTheLastObject) {
  const size_t before = Windows();
  mill.WriteSensorSetting("PortUDP", std::to_string(test::FreeUdpPortPair()));
  root.Call("RecargaValores");
  EXPECT_EQ(Windows(), before + 1);
  root = {};
  EXPECT_EQ(Windows(), before);
}

// The object of the sensors is not there, so the service has no mode and no timer.
TEST_F(Events, WithoutSensorsThereIsNoWindow) {
  const size_t before = Windows();
  mill.WriteSensorSetting("ActiveX", "Nadie.Nada");
  root.Call("RecargaValores");
  EXPECT_EQ(Windows(), before);
}

}  // namespace
}  // namespace ambrelio
