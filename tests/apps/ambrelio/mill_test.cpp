#include "mill.h"

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/engine.h"
#include "cli_test.h"
#include "support/error_of.h"
#include "support/probe_engine.h"
#include "support/udp_ports.h"

namespace ambrelio::cli {
namespace {

class OpeningAMill : public test::MillCliTest {
 protected:
  Mill Open(SensorUse sensors = SensorUse::kOptional) {
    return {{app}, std::make_shared<test::ProbeEngine>(engine::Create(), probe), console, sensors};
  }

  std::istringstream in;
  std::ostringstream out;
  std::ostringstream err;
  Console console{in, out, err};
  std::shared_ptr<test::Probe> probe = std::make_shared<test::Probe>();
};

TEST_F(OpeningAMill, AnotherProcessMayBringTheDatabaseUpToDateAtTheSameMoment) {
  probe->before_new_query = [](dao::Database& database) {
    database.CreateQueryDef("ExtPesada", "select * from PESADA");
  };
  Mill mill = Open();
  EXPECT_TRUE(mill.root()->BaseAbierta());
  EXPECT_NE(mill.session().Database().QueryDefs().Item("ExtPesada")->Sql(), "select * from PESADA");
}

TEST_F(OpeningAMill, AQueryInTheWayIsAnError) {
  probe->before_new_query = [](dao::Database& database) {
    database.CreateQueryDef("EXTPESADA", "select * from PESADA");
  };
  EXPECT_EQ(test::ErrorOf([&] { Open(); }), static_cast<int>(dao::DaoError::kObjectExists));
}

// Another program that listens where this mill's service would.
class SensorsOfAnother : public OpeningAMill {
 protected:
  SensorsOfAnother() {
    const int32_t port = test::FreeUdpPortPair();
    other->Bind({"127.0.0.1", port + 1}, [](const std::string&, const Endpoint&) {});
    SetSensors("PortUDP", std::to_string(port));
    cause = "error 10048: Address in use: UDP port " + std::to_string(port + 1);
  }

  EventLoop loop;
  std::unique_ptr<DatagramSocket> other = MakeUdpSocket(loop);
  std::string cause;
};

TEST_F(SensorsOfAnother, AreAWarning) {
  Mill mill = Open();
  EXPECT_TRUE(mill.root()->BaseAbierta());
  EXPECT_EQ(err.str(), "ambrelio: the sensors are not polled: " + cause + "\n");
}

TEST_F(SensorsOfAnother, AreAWarningOfEveryCommand) {
  const auto outcome = test::RunCli({"call", "--app", app, "MaximoTolvas"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.out, "4\n");
  EXPECT_EQ(outcome.err, "ambrelio: the sensors are not polled: " + cause + "\n");
}

TEST_F(SensorsOfAnother, AreAnErrorWhereTheSensorsAreTheMatter) {
  EXPECT_EQ(test::ErrorOf([&] { Open(SensorUse::kRequired); }), 10048);
  EXPECT_EQ(err.str(), "");
}

TEST_F(OpeningAMill, APortThatIsNoneIsAWarning) {
  SetSensors("PortUDP", "70000");
  Mill mill = Open();
  EXPECT_TRUE(mill.root()->BaseAbierta());
  EXPECT_THAT(err.str(), testing::StartsWith("ambrelio: the sensors are not polled: error 380: "));
}

TEST_F(OpeningAMill, AnErrorBeforeTheSensorsIsAnErrorAlsoWithSensors) {
  SetSensors("PortUDP", "70000");
  probe->before_new_query = [](dao::Database& database) {
    database.CreateQueryDef("EXTPESADA", "select * from PESADA");
  };
  EXPECT_EQ(test::ErrorOf([&] { Open(); }), static_cast<int>(dao::DaoError::kObjectExists));
}

TEST_F(OpeningAMill, ItsEventsAreTheConsoles) {
  Mill mill = Open();
  EXPECT_EQ(&mill.session().Events(), console.events.get());
}

}  // namespace
}  // namespace ambrelio::cli
