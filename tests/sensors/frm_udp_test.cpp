#include "ambrelio/sensors/frm_udp.h"

#include "sensors/sensors_test.h"

namespace ambrelio::sensors {
namespace {

using test::ErrorOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FrmUDPTest : public ::testing::Test {
 protected:
  std::shared_ptr<Wire> wire = std::make_shared<Wire>();
  std::vector<std::string> texts;
  std::unique_ptr<FrmUDP> form =
      std::make_unique<FrmUDP>(std::make_unique<FakeSocket>(wire),
                               [this](const std::string& text) { texts.push_back(text); });
};

TEST_F(FrmUDPTest, ListensOnThePortAboveTheGateways) {
  form->Configure("pc1", 9084);
  EXPECT_THAT(wire->binds, ElementsAre(Endpoint{"", 9085}));
}

TEST_F(FrmUDPTest, ListensAtTheLoopbackAloneForAGatewayOnThisMachine) {
  for (const char* host : {"127.0.0.1", "127.1.2.3", "localhost", "LocalHost"}) {
    form->Configure(host, 9084);
    EXPECT_EQ(wire->binds.back(), (Endpoint{"127.0.0.1", 9085})) << host;
  }
  for (const char* host : {"128.0.0.1", "localhost.mill", "1127.0.0.1", ""}) {
    form->Configure(host, 9084);
    EXPECT_EQ(wire->binds.back(), (Endpoint{"", 9085})) << host;
  }
}

TEST_F(FrmUDPTest, ARequestIsTheNumberOfTheTankAndAQuestionMark) {
  form->Configure("pc1", 9084);
  form->Request(3);
  form->Request(32767);
  EXPECT_THAT(wire->sent, ElementsAre("3? to pc1:9084", "32767? to pc1:9084"));
}

TEST_F(FrmUDPTest, GivesTheTextOfEachDatagram) {
  form->Configure("pc1", 9084);
  wire->Deliver("12.5");
  wire->Deliver("");
  EXPECT_THAT(texts, ElementsAre("12.5", ""));
}

TEST_F(FrmUDPTest, ReadsDatagramsAsSingleByteCharacters) {
  form->Configure("pc1", 9084);
  wire->Deliver("dep\xF3sito \x80");
  EXPECT_THAT(texts, ElementsAre("depósito €"));
}

TEST_F(FrmUDPTest, APortWithoutOneAboveItRaises380) {
  for (const int32_t port : {-1, 0, 65535, 65536, 2147483647}) {
    try {
      form->Configure("pc1", port);
      FAIL() << "no error for " << port;
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.number(), 380);
      EXPECT_EQ(error.description(), "Invalid property value: UDP port " + std::to_string(port));
    }
  }
  EXPECT_THAT(wire->binds, IsEmpty());
}

TEST_F(FrmUDPTest, TakesTheFirstAndTheLastPort) {
  form->Configure("pc1", 1);
  form->Configure("pc1", 65534);
  EXPECT_THAT(wire->binds, ElementsAre(Endpoint{"", 2}, Endpoint{"", 65535}));
}

TEST_F(FrmUDPTest, AWrongPortClosesWhatWasOpen) {
  form->Configure("pc1", 9084);
  EXPECT_EQ(ErrorOf([this] { form->Configure("pc1", 0); }), 380);
  EXPECT_FALSE(wire->receiver);
}

TEST_F(FrmUDPTest, RaisesWhatTheSocketRaises) {
  wire->fail_bind = 10048;
  EXPECT_EQ(ErrorOf([this] { form->Configure("pc1", 9084); }), 10048);
  wire->fail_bind = 0;
  form->Configure("pc1", 9084);
  wire->fail_send = 11001;
  EXPECT_EQ(ErrorOf([this] { form->Request(1); }), 11001);
}

TEST_F(FrmUDPTest, ClosesItsSocketAtItsEnd) {
  form->Configure("pc1", 9084);
  form.reset();
  EXPECT_FALSE(wire->receiver);
}

}  // namespace
}  // namespace ambrelio::sensors
