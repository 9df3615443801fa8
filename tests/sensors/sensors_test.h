// What the tests of the sensor service share: a session whose time the test lets pass, a socket
// that the test is at the other end of, and an automation object that the test speaks for.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ambrelio/data/session.h"
#include "ambrelio/sensors/sensores.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"
#include "ambrelio/value/locale.h"
#include "support/error_of.h"
#include "support/manual_loop.h"

namespace ambrelio::sensors {

using Mode = SensorService::Mode;
using Phase = Sensores::Phase;

// The other end of the sockets of a test: what became of them, and what to say to them.
struct Wire {
  int sockets = 0;                // made
  std::vector<std::string> sent;  // "3? to host:port"
  std::vector<Endpoint> binds;
  DatagramSocket::Receiver receiver;  // none while closed
  int fail_bind = 0;                  // the number of the error to raise; 0 for none
  int fail_send = 0;

  void Deliver(const std::string& bytes) const {
    ASSERT_TRUE(receiver) << "the socket is closed";
    const auto hears = receiver;
    hears(bytes, {"127.0.0.1", 9084});
  }
};

class FakeSocket : public DatagramSocket {
 public:
  explicit FakeSocket(std::shared_ptr<Wire> wire) : wire_(std::move(wire)) { ++wire_->sockets; }
  ~FakeSocket() override { FakeSocket::Close(); }

  void Bind(const Endpoint& local, Receiver receiver) override {
    Close();
    wire_->binds.push_back(local);
    Fail(wire_->fail_bind);
    wire_->receiver = std::move(receiver);
  }
  void Send(const Endpoint& remote, std::string_view bytes) override {
    Fail(wire_->fail_send);
    wire_->sent.push_back(std::string(bytes) + " to " + remote.host + ":" +
                          std::to_string(remote.port));
  }
  void Close() override { wire_->receiver = nullptr; }
  int32_t LocalPort() const override { return wire_->receiver ? wire_->binds.back().port : 0; }

 private:
  static void Fail(int number) {
    if (number != 0) throw AutomationError(number, "Ambrelio", "told to fail");
  }

  std::shared_ptr<Wire> wire_;
};

// An automation object that reads levels. Each method notes its call and answers by a function.
struct Lector : public AutomationObject {
  using Method = std::function<Variant(int16_t tank)>;

  Variant Call(std::string_view method, const std::vector<Variant>& arguments) override {
    EXPECT_EQ(arguments.size(), 1);
    const auto tank = arguments.at(0).as<int16_t>();
    calls.push_back(std::string(method) + "(" + std::to_string(tank) + ")");
    if (method == "DisparoLectura") return disparo(tank);
    if (method == "ResultadoLectura") return resultado(tank);
    if (method == "LecturaNivel") return lectura(tank);
    Raise(RuntimeError::kMemberNotFound);
  }

  std::vector<std::string> calls;
  Method disparo = [](int16_t) { return int16_t{2}; };
  Method resultado = [](int16_t) { return int16_t{0}; };
  Method lectura = [](int16_t tank) { return tank * 10.5; };
};

class SensorsTest : public ::testing::Test {
 protected:
  explicit SensorsTest(int16_t tanks = 3) {
    session.UseEvents(loop);
    session.tank_count = tanks;
    session.AutomationObjects().Register("Sondas.Lector", [this] { return lector; });
    service = MakeService();
  }

  std::shared_ptr<Sensores> MakeService() {
    return std::make_shared<Sensores>(
        session, [wire = wire](EventLoop&) { return std::make_unique<FakeSocket>(wire); });
  }
  // With a pause of five seconds between cycles and half a second for an answer.
  void StartUdp(const Variant& target = "9084") {
    service->StartSensors(Mode::kUdp, target, 5000, 500);
  }
  void StartRemote() { service->StartSensors(Mode::kAutomationObject, "Sondas.Lector", 5000, 500); }
  void Run(int milliseconds) { loop->RunFor(Milliseconds(milliseconds)); }
  // Until the first tank has just been asked.
  void RunToFirstCycle() { Run(2000); }

  // The tank's state and reading, as "3 12.5".
  std::string Tank(int16_t dep) const {
    const Variant reading = service->Lectura(dep);
    const std::string state = std::to_string(static_cast<int>(service->hay(dep)));
    if (reading.is_null()) return state + " Null";
    if (reading.is_empty()) return state + " Empty";
    return state + " " + ToText(reading);
  }
  std::vector<std::string> Tanks() const {
    std::vector<std::string> tanks;
    for (int16_t dep = 1; dep <= session.tank_count; ++dep) tanks.push_back(Tank(dep));
    return tanks;
  }

  ScopedLocale locale{Locale{}};
  std::shared_ptr<EventLoop> loop = test::MakeManualLoop();
  std::shared_ptr<Wire> wire = std::make_shared<Wire>();
  std::shared_ptr<Lector> lector = std::make_shared<Lector>();
  Session session;
  std::shared_ptr<Sensores> service;
};

}  // namespace ambrelio::sensors
