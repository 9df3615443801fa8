// What the root makes of the sensor settings: which service it starts, when, and when it ends.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "ambrelio/frame/trazabilidad.h"
#include "ambrelio/sensors/sensores.h"
#include "support/manual_loop.h"
#include "support/mill.h"
#include "support/udp_gateway.h"

namespace ambrelio {
namespace {

using test::UdpGateway;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Mode = SensorService::Mode;

// A reader of levels that has no sensors.
class Lector : public AutomationObject {
 public:
  explicit Lector(std::function<void()> asked) : asked_(std::move(asked)) {}
  Variant Call(std::string_view, const std::vector<Variant>&) override {
    asked_();
    return int16_t{0};
  }

 private:
  std::function<void()> asked_;
};

class SensorSettings : public test::MillTest {
 protected:
  SensorSettings() { session.UseEvents(loop); }

  void SetUp() override {
    MillTest::SetUp();
    session.AutomationObjects().Register("Sondas.Lector", [this] {
      return std::make_shared<Lector>([this] {
        ++asked;
        if (when_asked) when_asked();
      });
    });
  }

  void Write(const std::string& key, const std::string& value) {
    WriteSetting("Vardex.ini", "SENSORES", key, value);
  }
  void WritePort() { Write("PortUDP", std::to_string(gateway.port())); }
  void Run(int milliseconds) { loop->RunFor(Milliseconds(milliseconds)); }
  Mode ModeNow() const { return session.Sensors()->mode(); }
  bool PortIsFree() const { return test::IsFreeUdpPort(gateway.port() + 1); }

  std::shared_ptr<EventLoop> loop = test::MakeManualLoop();
  UdpGateway gateway{*loop, [](const std::string& request) {
                       return std::vector<std::string>{request.substr(0, request.size() - 1)};
                     }};
  int asked = 0;
  std::function<void()> when_asked;
};

// --- which service

TEST_F(SensorSettings, NoneStartNoPolling) {
  EXPECT_EQ(ModeNow(), Mode::kNone);
  Run(60000);
  EXPECT_THAT(gateway.requests, IsEmpty());
}

TEST_F(SensorSettings, APortStartsPollingOverUdp) {
  WritePort();
  root.RecargaValores();
  EXPECT_EQ(ModeNow(), Mode::kUdp);
  Run(2000);
  EXPECT_THAT(gateway.requests, ElementsAre("1?", "2?", "3?", "4?", "5?", "6?"));
}

TEST_F(SensorSettings, AnObjectStartsPollingIt) {
  Write("ActiveX", "Sondas.Lector");
  root.RecargaValores();
  EXPECT_EQ(ModeNow(), Mode::kAutomationObject);
  Run(2000);
  EXPECT_EQ(asked, 1);
}

TEST_F(SensorSettings, AnObjectWinsOverAPort) {
  Write("ActiveX", "Sondas.Lector");
  WritePort();
  root.RecargaValores();
  EXPECT_EQ(ModeNow(), Mode::kAutomationObject);
  Run(60000);
  EXPECT_THAT(gateway.requests, IsEmpty());
}

TEST_F(SensorSettings, AnObjectThatIsMissingWinsOverAPortToo) {
  Write("ActiveX", "Sondas.Otro");
  WritePort();
  root.RecargaValores();
  EXPECT_EQ(ModeNow(), Mode::kNone);
  Run(60000);
  EXPECT_THAT(gateway.requests, IsEmpty());
}

TEST_F(SensorSettings, TheConstructorStartsPollingToo) {
  WritePort();
  root.Constructor(folder.path(), false);
  Run(2000);
  EXPECT_EQ(gateway.requests.size(), 6);
}

TEST_F(SensorSettings, TheIntervalAndTheTimeoutAreThoseOfTheSettings) {
  const auto silent = MakeUdpSocket(*loop);
  const int32_t port = test::FreeUdpPortPair();
  int requests = 0;
  silent->Bind({"127.0.0.1", port}, [&](const std::string&, const Endpoint&) { ++requests; });
  Write("PortUDP", std::to_string(port));
  Write("Periodo", "7000");
  Write("TimeOut", "300");
  root.RecargaValores();
  Run(2000 + 299);
  EXPECT_EQ(requests, 1);
  Run(1);
  EXPECT_EQ(requests, 2);
  Run(5 * 300 + 6999);
  EXPECT_EQ(requests, 6);
  Run(1);
  EXPECT_EQ(requests, 7);
}

// --- what the root tells

TEST_F(SensorSettings, TheRootTellsStatesAndReadings) {
  WritePort();
  root.RecargaValores();
  EXPECT_EQ(root.HayLecturaNivel(6), tpHayLectura::hNoHaySensor);
  EXPECT_TRUE(root.LecturaNivel(6).is_null());
  Run(2000);
  EXPECT_EQ(root.HayLecturaNivel(6), tpHayLectura::hLecturaDisponible);
  EXPECT_EQ(root.LecturaNivel(6), Variant(6.0));
}

TEST_F(SensorSettings, TheRootKnowsNothingOfTanksThatDoNotExist) {
  WritePort();
  root.RecargaValores();
  Run(2000);
  for (const int16_t dep : {int16_t{-1}, int16_t{0}, int16_t{7}}) {
    EXPECT_EQ(root.HayLecturaNivel(dep), tpHayLectura::hNoHaySensor) << dep;
    EXPECT_TRUE(root.LecturaNivel(dep).is_empty()) << dep;
  }
}

TEST_F(SensorSettings, TheRootKnowsNothingWithoutAService) {
  session.SetSensors(nullptr);
  EXPECT_EQ(root.HayLecturaNivel(1), tpHayLectura::hNoHaySensor);
  EXPECT_TRUE(root.LecturaNivel(1).is_empty());
}

TEST_F(SensorSettings, ReadingsStayWhenTheDatabaseIsClosed) {
  WritePort();
  root.RecargaValores();
  Run(2000);
  root.Cerrar();
  EXPECT_EQ(root.LecturaNivel(1), Variant(1.0));
}

// --- a service anew

TEST_F(SensorSettings, ReloadingForgetsStatesAndReadings) {
  WritePort();
  root.RecargaValores();
  Run(2000);
  root.RecargaValores();
  for (int16_t dep = 1; dep <= 6; ++dep) {
    EXPECT_EQ(root.HayLecturaNivel(dep), tpHayLectura::hNoHaySensor) << dep;
    EXPECT_TRUE(root.LecturaNivel(dep).is_null()) << dep;
  }
  Run(2000);
  EXPECT_EQ(root.LecturaNivel(6), Variant(6.0));
}

TEST_F(SensorSettings, ReloadingCountsTheTanksAnew) {
  WritePort();
  WriteSetting("Vardex.ini", "GENERAL", "MaxTolvas", "4,2,8");
  root.RecargaValores();
  Run(2000);
  EXPECT_EQ(root.LecturaNivel(8), Variant(8.0));
}

TEST_F(SensorSettings, APropertyChangesNothingUntilSavedAndReloaded) {
  root.SetPuertoUDP(std::to_string(gateway.port()));
  EXPECT_EQ(ModeNow(), Mode::kNone);
  root.RecargaValores();
  EXPECT_EQ(ModeNow(), Mode::kNone);
  EXPECT_EQ(root.PuertoUDP(), "");

  root.SetPuertoUDP(std::to_string(gateway.port()));
  root.SalvarValores();
  EXPECT_EQ(ModeNow(), Mode::kNone);
  root.RecargaValores();
  EXPECT_EQ(ModeNow(), Mode::kUdp);
}

TEST_F(SensorSettings, AnObjectMayReloadTheSettingsWhileItIsAsked) {
  Write("ActiveX", "Sondas.Lector");
  root.RecargaValores();
  const std::weak_ptr<SensorService> before = session.Sensors();
  when_asked = [this] { root.RecargaValores(); };
  Run(2000);
  EXPECT_TRUE(before.expired());
  EXPECT_EQ(asked, 1);
  when_asked = nullptr;
  Run(1999);
  EXPECT_EQ(asked, 1);
  Run(1);
  EXPECT_EQ(asked, 2);
}

// --- failures

TEST_F(SensorSettings, ATakenPortRaises10048WithTheDatabaseOpen) {
  session.Database().TableDefs().Delete("Depositos");
  WritePort();
  const auto other = MakeUdpSocket(*loop);
  other->Bind({"", gateway.port() + 1}, [](const std::string&, const Endpoint&) {});
  try {
    root.Constructor(folder.path(), false);
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 10048);
    EXPECT_THAT(error.description(), HasSubstr(std::to_string(gateway.port() + 1)));
  }
  EXPECT_TRUE(root.BaseAbierta());
  EXPECT_THAT(Rows("select * from Depositos"), IsEmpty());
  EXPECT_EQ(root.PuertoUDP(), std::to_string(gateway.port()));
  EXPECT_EQ(ModeNow(), Mode::kNone);
  Run(60000);
  EXPECT_THAT(gateway.requests, IsEmpty());
}

TEST_F(SensorSettings, AFailedOpeningStartsNothing) {
  WritePort();
  WriteSetting("Vardex.ini", "GENERAL", "BaseDatos", "nowhere.mdb");
  Session fresh;
  fresh.UseEvents(loop);
  Trazabilidad other(fresh);
  other.Constructor(folder.path(), false);
  EXPECT_FALSE(other.BaseAbierta());
  EXPECT_EQ(fresh.Sensors(), nullptr);
  EXPECT_EQ(other.HayLecturaNivel(1), tpHayLectura::hNoHaySensor);
  EXPECT_EQ(other.PuertoUDP(), "");
  EXPECT_TRUE(PortIsFree());
}

TEST_F(SensorSettings, AFailedReopeningLeavesTheServiceAsItWas) {
  WritePort();
  root.RecargaValores();
  Run(2000);
  WriteSetting("Vardex.ini", "GENERAL", "BaseDatos", "nowhere.mdb");
  root.RecargaValores();
  EXPECT_FALSE(root.BaseAbierta());
  EXPECT_EQ(root.LecturaNivel(6), Variant(6.0));
}

// --- the end

TEST_F(SensorSettings, TheEndOfARootEndsTheService) {
  WritePort();
  {
    Trazabilidad other(session);
    other.Constructor(folder.path(), false);
    EXPECT_FALSE(PortIsFree());
  }
  EXPECT_EQ(session.Sensors(), nullptr);
  EXPECT_TRUE(PortIsFree());
  Run(60000);
  EXPECT_THAT(gateway.requests, IsEmpty());
}

}  // namespace
}  // namespace ambrelio
