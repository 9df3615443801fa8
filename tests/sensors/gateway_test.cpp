// The sensor service over real sockets, its gateway on the same loop.
#include "ambrelio/sensors/sensores.h"
#include "sensors/sensors_test.h"
#include "support/udp_gateway.h"

namespace ambrelio::sensors {
namespace {

using test::ErrorOf;
using test::UdpGateway;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SensorGateway : public SensorsTest {
 protected:
  SensorGateway() { service = std::make_shared<Sensores>(session); }

  std::string Target() const { return "127.0.0.1:" + std::to_string(gateway->port()); }
  void Start() { StartUdp(Target()); }

  // What the gateway says to the request; a request without an entry is not answered.
  std::map<std::string, std::vector<std::string>> says;
  std::unique_ptr<UdpGateway> gateway = std::make_unique<UdpGateway>(
      *loop, [this](const std::string& request) { return says[request]; });
};

TEST_F(SensorGateway, IsAskedTankByTank) {
  says = {{"1?", {"12.5"}}, {"2?", {"NO"}}, {"3?", {"?"}}};
  Start();
  Run(1999);
  EXPECT_THAT(gateway->requests, IsEmpty());
  Run(1);
  EXPECT_THAT(gateway->requests, ElementsAre("1?", "2?", "3?"));
  EXPECT_THAT(Tanks(), ElementsAre("3 12.5", "0 Null", "2 Null"));
}

TEST_F(SensorGateway, IsAskedAgainAfterTheInterval) {
  says = {{"1?", {"1"}}, {"2?", {"2"}}, {"3?", {"3"}}};
  Start();
  RunToFirstCycle();
  says["2?"] = {"2.5"};
  Run(4999);
  EXPECT_EQ(gateway->requests.size(), 3);
  Run(1);
  EXPECT_EQ(gateway->requests.size(), 6);
  EXPECT_THAT(Tanks(), ElementsAre("3 1", "3 2.5", "3 3"));
}

TEST_F(SensorGateway, MayBeSilent) {
  says = {{"1?", {"1"}}, {"3?", {"3"}}};
  Start();
  RunToFirstCycle();
  EXPECT_EQ(service->current_tank(), 2);
  Run(500);
  EXPECT_THAT(Tanks(), ElementsAre("3 1", "2 Null", "3 3"));
}

TEST_F(SensorGateway, MayAnswerTwice) {
  says = {{"1?", {"1", "10"}}, {"2?", {"2"}}, {"3?", {"3"}}};
  Start();
  RunToFirstCycle();
  EXPECT_THAT(Tanks(), ElementsAre("3 1", "3 10", "3 2"));
  EXPECT_EQ(service->phase(), Phase::kIdle);
}

TEST_F(SensorGateway, MaySendTheLongestDatagramAndTheEmptyOne) {
  says = {{"1?", {std::string(65507, 'x')}}, {"2?", {""}}, {"3?", {std::string(65506, '0') + "7"}}};
  Start();
  RunToFirstCycle();
  EXPECT_THAT(Tanks(), ElementsAre("2 Null", "2 Null", "3 7"));
}

TEST_F(SensorGateway, StrayDatagramsRestartThePause) {
  says = {{"1?", {"1"}}, {"2?", {"2"}}, {"3?", {"3"}}};
  Start();
  RunToFirstCycle();
  Run(4000);
  gateway->SendStray("99");
  Run(4999);
  EXPECT_EQ(gateway->requests.size(), 3);
  Run(1);
  EXPECT_EQ(gateway->requests.size(), 6);
}

TEST_F(SensorGateway, AnUnknownHostComesOutOfTheLoop) {
  StartUdp("pc1.invalid:" + std::to_string(gateway->port()));
  EXPECT_EQ(ErrorOf([this] { Run(2000); }), 11001);
  Run(60000);
  EXPECT_EQ(service->hay(1), tpHayLectura::hNoHaySensor);
}

TEST_F(SensorGateway, APortThatIsTakenRaises10048) {
  const auto other = MakeUdpSocket(*loop);
  other->Bind({"", gateway->port() + 1}, [](const std::string&, const Endpoint&) {});
  EXPECT_EQ(ErrorOf([this] { Start(); }), 10048);
  EXPECT_EQ(service->mode(), Mode::kNone);
}

TEST_F(SensorGateway, ANewStartTakesItsOwnPortAgain) {
  says = {{"1?", {"1"}}};
  Start();
  Start();
  RunToFirstCycle();
  EXPECT_EQ(Tank(1), "3 1");
}

TEST_F(SensorGateway, TheEndOfTheServiceFreesThePort) {
  Start();
  EXPECT_FALSE(test::IsFreeUdpPort(gateway->port() + 1));
  service.reset();
  EXPECT_TRUE(test::IsFreeUdpPort(gateway->port() + 1));
}

TEST_F(SensorGateway, TwoServicesMayShareALoop) {
  UdpGateway other_gateway(*loop, [](const std::string&) { return std::vector<std::string>{"9"}; });
  Session other_session;
  other_session.UseEvents(loop);
  const auto other = std::make_shared<Sensores>(other_session);
  says = {{"1?", {"1"}}, {"2?", {"2"}}, {"3?", {"3"}}};
  Start();
  other->StartSensors(Mode::kUdp, std::to_string(other_gateway.port()), 5000, 500);
  RunToFirstCycle();
  EXPECT_THAT(Tanks(), ElementsAre("3 1", "3 2", "3 3"));
  EXPECT_EQ(other->Lectura(1), Variant(9.0));
}

TEST_F(SensorGateway, ADayOfPollingTakesADaysRequests) {
  says = {{"1?", {"1"}}, {"2?", {"2"}}, {"3?", {"3"}}};
  Start();
  Run(24 * 60 * 60 * 1000);
  EXPECT_EQ(gateway->requests.size(), 3 * ((24 * 60 * 60 - 2) / 5 + 1));
}

}  // namespace
}  // namespace ambrelio::sensors
