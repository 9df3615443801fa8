// The sensor service as such, and with a gateway.
#include "ambrelio/sensors/sensores.h"

#include "sensors/sensors_test.h"

namespace ambrelio::sensors {
namespace {

using test::ErrorOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SensoresTest : public SensorsTest {
 protected:
  using SensorsTest::SensorsTest;
  // The answer to the request that has just been sent.
  void Answer(const std::string& text) { wire->Deliver(text); }
};

// --- before it is started

TEST_F(SensoresTest, KnowsNothingAtFirst) {
  EXPECT_EQ(service->mode(), Mode::kNone);
  EXPECT_EQ(service->phase(), Phase::kStopped);
  EXPECT_EQ(service->current_tank(), 0);
  EXPECT_THAT(Tanks(), ElementsAre("0 Null", "0 Null", "0 Null"));
}

TEST_F(SensoresTest, PollsNothingUntilStarted) {
  Run(60000);
  EXPECT_EQ(wire->sockets, 0);
}

TEST_F(SensoresTest, HasNeitherStateNorReadingForATankThatDoesNotExist) {
  for (const int16_t dep : std::initializer_list<int16_t>{-32768, -1, 0, 4, 32767}) {
    EXPECT_EQ(service->hay(dep), tpHayLectura::hNoHaySensor) << dep;
    EXPECT_TRUE(service->Lectura(dep).is_empty()) << dep;
  }
}

TEST_F(SensoresTest, HasAsManyTanksAsTheSessionCountedAtItsCreation) {
  session.tank_count = 5;
  EXPECT_TRUE(service->Lectura(4).is_empty());
  EXPECT_TRUE(MakeService()->Lectura(5).is_null());
}

TEST_F(SensoresTest, ModeNonePollsNothing) {
  service->StartSensors(Mode::kNone, {}, 5000, 500);
  Run(60000);
  EXPECT_EQ(service->mode(), Mode::kNone);
  EXPECT_EQ(service->phase(), Phase::kStopped);
  EXPECT_EQ(wire->sockets, 0);
}

TEST_F(SensoresTest, AnUnknownModeIsNone) {
  service->StartSensors(static_cast<Mode>(3), "9084", 5000, 500);
  Run(60000);
  EXPECT_EQ(service->mode(), Mode::kNone);
  EXPECT_EQ(wire->sockets, 0);
}

// --- without tanks

class SensoresWithoutTanks : public SensoresTest {
 protected:
  SensoresWithoutTanks() : SensoresTest(0) {}
};

TEST_F(SensoresWithoutTanks, PollNoGateway) {
  StartUdp();
  Run(60000);
  EXPECT_THAT(wire->sent, IsEmpty());
  wire->Deliver("12.5");
  Run(60000);
  EXPECT_THAT(wire->sent, IsEmpty());
  EXPECT_EQ(Tank(0), "0 Empty");
  EXPECT_EQ(Tank(1), "0 Empty");
}

TEST_F(SensoresWithoutTanks, PollNoAutomationObject) {
  StartRemote();
  Run(60000);
  EXPECT_THAT(lector->calls, IsEmpty());
  EXPECT_EQ(Tank(1), "0 Empty");
}

TEST_F(SensoresWithoutTanks, NegativeCountsAreNoTanksEither) {
  session.tank_count = -6;
  service = MakeService();
  StartUdp();
  Run(60000);
  EXPECT_THAT(wire->sent, IsEmpty());
  EXPECT_EQ(Tank(-1), "0 Empty");
}

// --- the target

class SensoresTarget : public SensoresTest {
 protected:
  // Where the requests for a target go to.
  std::string Gateway(const Variant& target) {
    wire->sent.clear();
    StartUdp(target);
    RunToFirstCycle();
    return wire->sent.at(0);
  }
};

TEST_F(SensoresTarget, ANumberIsAPortOfThisMachine) {
  EXPECT_EQ(Gateway("9090"), "1? to 127.0.0.1:9090");
  EXPECT_EQ(wire->binds.back(), (Endpoint{"127.0.0.1", 9091}));
  EXPECT_EQ(Gateway(" 9084 "), "1? to 127.0.0.1:9084");
  EXPECT_EQ(wire->binds.back(), (Endpoint{"127.0.0.1", 9085}));
  EXPECT_EQ(Gateway(int32_t{9100}), "1? to 127.0.0.1:9100");
}

TEST_F(SensoresTarget, APortIsRoundedToAWholeNumber) {
  EXPECT_EQ(Gateway("9084.5"), "1? to 127.0.0.1:9084");
  EXPECT_EQ(Gateway("9085.5"), "1? to 127.0.0.1:9086");
  EXPECT_EQ(Gateway("pc1:9084.6"), "1? to pc1:9085");
}

TEST_F(SensoresTarget, TextWithoutAColonIsTheDefaultPortOfThisMachine) {
  EXPECT_EQ(Gateway("pc1"), "1? to 127.0.0.1:9084");
  EXPECT_EQ(wire->binds.back(), (Endpoint{"127.0.0.1", 9085}));
  EXPECT_EQ(Gateway(""), "1? to 127.0.0.1:9084");
}

TEST_F(SensoresTarget, AHostAndItsPortAreSplitAtTheFirstColon) {
  EXPECT_EQ(Gateway("pc1:9090"), "1? to pc1:9090");
  EXPECT_EQ(wire->binds.back(), (Endpoint{"", 9091}));
  EXPECT_EQ(Gateway(":9090"), "1? to :9090");
}

TEST_F(SensoresTarget, AHostWithoutANumberHasTheDefaultPort) {
  EXPECT_EQ(Gateway("pc1:abc"), "1? to pc1:9084");
  EXPECT_EQ(Gateway("pc1:"), "1? to pc1:9084");
  EXPECT_EQ(Gateway("pc1:a:9090"), "1? to pc1:9084");
}

TEST_F(SensoresTarget, ANumberBeyond32BitsRaises6) {
  EXPECT_EQ(ErrorOf([this] { StartUdp("2147483648"); }), 6);
  EXPECT_EQ(ErrorOf([this] { StartUdp("pc1:2147483648"); }), 6);
  EXPECT_EQ(service->mode(), Mode::kNone);
}

TEST_F(SensoresTarget, APortWithoutOneAboveItRaises380) {
  EXPECT_EQ(ErrorOf([this] { StartUdp("65535"); }), 380);
  EXPECT_EQ(ErrorOf([this] { StartUdp("0"); }), 380);
  EXPECT_EQ(ErrorOf([this] { StartUdp("-9084"); }), 380);
  EXPECT_EQ(service->mode(), Mode::kNone);
}

TEST_F(SensoresTarget, NullIsNoTarget) {
  EXPECT_EQ(ErrorOf([this] { StartUdp(Variant::Null()); }), 94);
}

// --- a start that fails

TEST_F(SensoresTest, APortThatIsTakenLeavesTheServiceUnstarted) {
  wire->fail_bind = 10048;
  EXPECT_EQ(ErrorOf([this] { StartUdp(); }), 10048);
  EXPECT_EQ(service->mode(), Mode::kNone);
  EXPECT_EQ(service->phase(), Phase::kStopped);
  Run(60000);
  EXPECT_THAT(wire->sent, IsEmpty());
}

TEST_F(SensoresTest, CanBeStartedAfterAStartThatFailed) {
  wire->fail_bind = 10048;
  EXPECT_EQ(ErrorOf([this] { StartUdp(); }), 10048);
  wire->fail_bind = 0;
  StartUdp();
  RunToFirstCycle();
  EXPECT_THAT(wire->sent, ElementsAre("1? to 127.0.0.1:9084"));
}

// --- a cycle

TEST_F(SensoresTest, TheFirstCycleBeginsTwoSecondsAfterTheStart) {
  StartUdp();
  EXPECT_EQ(service->mode(), Mode::kUdp);
  EXPECT_EQ(service->phase(), Phase::kIdle);
  EXPECT_EQ(service->current_tank(), 0);
  Run(1999);
  EXPECT_THAT(wire->sent, IsEmpty());
  Run(1);
  EXPECT_THAT(wire->sent, ElementsAre("1? to 127.0.0.1:9084"));
  EXPECT_EQ(service->phase(), Phase::kReply);
  EXPECT_EQ(service->current_tank(), 1);
}

TEST_F(SensoresTest, AsksTheNextTankAsSoonAsOneHasAnswered) {
  StartUdp();
  RunToFirstCycle();
  Answer("10");
  EXPECT_EQ(service->current_tank(), 2);
  Answer("20");
  EXPECT_EQ(service->phase(), Phase::kReply);
  EXPECT_THAT(wire->sent,
              ElementsAre("1? to 127.0.0.1:9084", "2? to 127.0.0.1:9084", "3? to 127.0.0.1:9084"));
  EXPECT_THAT(Tanks(), ElementsAre("3 10", "3 20", "0 Null"));
}

TEST_F(SensoresTest, RestsForTheIntervalAfterTheLastTank) {
  StartUdp();
  RunToFirstCycle();
  for (const char* text : {"10", "20", "30"}) Answer(text);
  EXPECT_EQ(service->phase(), Phase::kIdle);
  EXPECT_EQ(service->current_tank(), 0);
  Run(4999);
  EXPECT_EQ(wire->sent.size(), 3);
  Run(1);
  EXPECT_EQ(wire->sent.size(), 4);
  EXPECT_EQ(wire->sent.back(), "1? to 127.0.0.1:9084");
}

TEST_F(SensoresTest, TheLeastIntervalIsThatOfTheTimer) {
  service->StartSensors(Mode::kUdp, "9084", 0, 500);
  RunToFirstCycle();
  for (const char* text : {"10", "20", "30"}) Answer(text);
  Run(9);
  EXPECT_EQ(wire->sent.size(), 3);
  Run(1);
  EXPECT_EQ(wire->sent.size(), 4);
}

TEST_F(SensoresTest, OneTankIsACycleOfItsOwn) {
  session.tank_count = 1;
  service = MakeService();
  StartUdp();
  RunToFirstCycle();
  Answer("10");
  EXPECT_EQ(service->phase(), Phase::kIdle);
  Run(5000);
  EXPECT_THAT(wire->sent, ElementsAre("1? to 127.0.0.1:9084", "1? to 127.0.0.1:9084"));
}

TEST_F(SensoresTest, ManyTanksAreNumberedToTheLast) {
  session.tank_count = 32767;
  service = MakeService();
  StartUdp();
  RunToFirstCycle();
  for (int tank = 1; tank <= 32767; ++tank) Answer("10");
  EXPECT_EQ(wire->sent.back(), "32767? to 127.0.0.1:9084");
  EXPECT_EQ(service->phase(), Phase::kIdle);
  EXPECT_EQ(Tank(32767), "3 10");
}

// --- no answer

TEST_F(SensoresTest, ATankThatDoesNotAnswerInTimeIsAnError) {
  StartUdp();
  RunToFirstCycle();
  Answer("10");
  Run(499);
  EXPECT_EQ(Tank(2), "0 Null");
  Run(1);
  EXPECT_EQ(Tank(2), "2 Null");
  EXPECT_EQ(wire->sent.back(), "3? to 127.0.0.1:9084");
}

TEST_F(SensoresTest, ATimeoutTakesAnEarlierReadingAway) {
  session.tank_count = 1;
  service = MakeService();
  StartUdp();
  RunToFirstCycle();
  Answer("10");
  Run(5000 + 500);
  EXPECT_EQ(Tank(1), "2 Null");
}

TEST_F(SensoresTest, TheCycleEndsAfterTheTimeoutOfTheLastTank) {
  StartUdp();
  Run(2000 + 3 * 500);
  EXPECT_EQ(service->phase(), Phase::kIdle);
  EXPECT_EQ(service->current_tank(), 0);
  EXPECT_THAT(Tanks(), ElementsAre("2 Null", "2 Null", "2 Null"));
  Run(4999);
  EXPECT_EQ(wire->sent.size(), 3);
  Run(1);
  EXPECT_EQ(wire->sent.size(), 4);
}

TEST_F(SensoresTest, AnAnswerStopsItsTimeout) {
  StartUdp();
  RunToFirstCycle();
  Run(400);
  Answer("10");
  Run(499);
  EXPECT_EQ(service->current_tank(), 2);
  Run(1);
  EXPECT_EQ(service->current_tank(), 3);
}

TEST_F(SensoresTest, ATimeoutBelowOneIsTwoSeconds) {
  for (const int32_t timeout : {0, -1, -2147483647}) {
    service->StartSensors(Mode::kUdp, "9084", 5000, timeout);
    RunToFirstCycle();
    Run(1999);
    EXPECT_EQ(service->current_tank(), 1) << timeout;
    Run(1);
    EXPECT_EQ(service->current_tank(), 2) << timeout;
  }
}

TEST_F(SensoresTest, ATimeoutOfOneCounts) {
  service->StartSensors(Mode::kUdp, "9084", 5000, 1);
  RunToFirstCycle();
  Run(10);
  EXPECT_EQ(service->current_tank(), 2);
}

// --- what an answer means

class SensoresAnswer : public SensoresTest {
 protected:
  // The tank's state and reading after this answer.
  std::string After(const std::string& text) {
    StartUdp();
    RunToFirstCycle();
    Answer(text);
    return Tank(1);
  }
};

TEST_F(SensoresAnswer, ANumberIsAReading) {
  EXPECT_EQ(After("12.5"), "3 12.5");
  EXPECT_EQ(service->Lectura(1), Variant(12.5));
  EXPECT_EQ(After("0"), "3 0");
  EXPECT_EQ(After("-3"), "3 -3");
  EXPECT_EQ(After(" 7 "), "3 7");
  EXPECT_EQ(After("1e3"), "3 1000");
}

TEST_F(SensoresAnswer, ANumberFollowsTheLocale) {
  EXPECT_EQ(After("1,250"), "3 1250");
  const ScopedLocale spanish(Locale::FromName("es_ES.UTF-8"));
  EXPECT_EQ(After("12,5"), "3 12,5");
  EXPECT_EQ(service->Lectura(1), Variant(12.5));
  EXPECT_EQ(After("1.250"), "3 1250");
}

TEST_F(SensoresAnswer, NoInCapitalsIsATankWithoutASensor) {
  EXPECT_EQ(After("12.5"), "3 12.5");
  EXPECT_EQ(After("NO"), "0 Null");
}

TEST_F(SensoresAnswer, NoInOtherLettersIsAnError) {
  for (const char* text : {"no", "No", " NO", "NO ", "NO\r\n", "NOO"}) {
    EXPECT_EQ(After(text), "2 Null") << text;
  }
}

TEST_F(SensoresAnswer, AnythingElseIsAnError) {
  EXPECT_EQ(After("12.5"), "3 12.5");
  for (const char* text : {"", " ", "abc", "12.5.1", "12 cm", "--3", "1e400", "ERROR", "\xFF"}) {
    EXPECT_EQ(After(text), "2 Null") << text;
  }
}

TEST_F(SensoresAnswer, HugeNumbersAndTextsAreReadWhole) {
  EXPECT_EQ(After(std::string(65506, '0') + "7"), "3 7");
  EXPECT_EQ(After(std::string(65506, '0') + "x"), "2 Null");
  EXPECT_EQ(After(std::string(65507, '9')), "2 Null");
}

TEST_F(SensoresAnswer, ChangesItsOwnTankOnly) {
  StartUdp();
  RunToFirstCycle();
  for (const char* text : {"10", "NO", "x"}) Answer(text);
  EXPECT_THAT(Tanks(), ElementsAre("3 10", "0 Null", "2 Null"));
}

// --- answers nobody asked for

TEST_F(SensoresTest, ASecondAnswerIsTakenForTheNextTank) {
  StartUdp();
  RunToFirstCycle();
  Answer("10");
  Answer("10.5");
  EXPECT_THAT(Tanks(), ElementsAre("3 10", "3 10.5", "0 Null"));
  EXPECT_EQ(service->current_tank(), 3);
}

TEST_F(SensoresTest, AnAnswerBelongsToTheCurrentTankWhateverItSays) {
  StartUdp();
  RunToFirstCycle();
  Answer("3");
  EXPECT_THAT(Tanks(), ElementsAre("3 3", "0 Null", "0 Null"));
}

TEST_F(SensoresTest, ALateAnswerIsTakenForTheNextTank) {
  StartUdp();
  RunToFirstCycle();
  Run(500);
  Answer("10");
  EXPECT_THAT(Tanks(), ElementsAre("2 Null", "3 10", "0 Null"));
}

TEST_F(SensoresTest, AStrayDatagramRestartsThePauseBetweenCycles) {
  StartUdp();
  RunToFirstCycle();
  for (const char* text : {"10", "20", "30"}) Answer(text);
  Run(4000);
  Answer("99");
  EXPECT_EQ(service->phase(), Phase::kIdle);
  Run(4999);
  EXPECT_EQ(wire->sent.size(), 3);
  Run(1);
  EXPECT_EQ(wire->sent.size(), 4);
  EXPECT_THAT(Tanks(), ElementsAre("3 10", "3 20", "3 30"));
}

TEST_F(SensoresTest, AStrayDatagramBeforeTheFirstCycleMakesItWaitForTheInterval) {
  StartUdp();
  Run(1000);
  Answer("99");
  Run(4999);
  EXPECT_THAT(wire->sent, IsEmpty());
  Run(1);
  EXPECT_EQ(wire->sent.size(), 1);
  EXPECT_THAT(Tanks(), ElementsAre("0 Null", "0 Null", "0 Null"));
}

// --- errors of sending

TEST_F(SensoresTest, AnErrorOfSendingComesOutOfTheLoopAndPollingRests) {
  StartUdp("pc1:9084");
  wire->fail_send = 11001;
  EXPECT_EQ(ErrorOf([this] { Run(2000); }), 11001);
  wire->fail_send = 0;
  Run(60000);
  EXPECT_THAT(wire->sent, IsEmpty());
  EXPECT_EQ(Tank(1), "0 Null");
}

TEST_F(SensoresTest, AnErrorOfSendingInTheMiddleOfACycleKeepsWhatWasRead) {
  StartUdp("pc1:9084");
  RunToFirstCycle();
  wire->fail_send = 10051;
  EXPECT_EQ(ErrorOf([this] { Answer("10"); }), 10051);
  Run(60000);
  EXPECT_THAT(Tanks(), ElementsAre("3 10", "0 Null", "0 Null"));
}

TEST_F(SensoresTest, ANewStartAfterAnErrorPollsAgain) {
  StartUdp("pc1:9084");
  wire->fail_send = 11001;
  EXPECT_EQ(ErrorOf([this] { Run(2000); }), 11001);
  wire->fail_send = 0;
  StartUdp("pc2:9084");
  RunToFirstCycle();
  EXPECT_THAT(wire->sent, ElementsAre("1? to pc2:9084"));
}

// --- a new start

TEST_F(SensoresTest, ANewStartKeepsStatesAndReadings) {
  StartUdp();
  RunToFirstCycle();
  Answer("10");
  Answer("x");
  StartUdp();
  EXPECT_EQ(service->phase(), Phase::kIdle);
  EXPECT_EQ(service->current_tank(), 0);
  EXPECT_THAT(Tanks(), ElementsAre("3 10", "2 Null", "0 Null"));
}

TEST_F(SensoresTest, ANewStartWaitsTwoSecondsAgain) {
  StartUdp();
  Run(1500);
  StartUdp();
  Run(1999);
  EXPECT_THAT(wire->sent, IsEmpty());
  Run(1);
  EXPECT_EQ(wire->sent.size(), 1);
}

TEST_F(SensoresTest, ANewStartBindsTheSameSocketAnew) {
  StartUdp("9084");
  StartUdp("9090");
  EXPECT_EQ(wire->sockets, 1);
  EXPECT_THAT(wire->binds, ElementsAre(Endpoint{"127.0.0.1", 9085}, Endpoint{"127.0.0.1", 9091}));
  RunToFirstCycle();
  EXPECT_THAT(wire->sent, ElementsAre("1? to 127.0.0.1:9090"));
}

TEST_F(SensoresTest, ANewStartWithoutAModeEndsThePolling) {
  StartUdp();
  RunToFirstCycle();
  service->StartSensors(Mode::kNone, {}, 5000, 500);
  Run(60000);
  EXPECT_EQ(service->mode(), Mode::kNone);
  EXPECT_EQ(wire->sent.size(), 1);
}

// --- its end

TEST_F(SensoresTest, ItsEndClosesTheSocketAndStopsTheTimer) {
  StartUdp();
  RunToFirstCycle();
  service.reset();
  EXPECT_FALSE(wire->receiver);
  Run(60000);
  EXPECT_EQ(wire->sent.size(), 1);
}

TEST_F(SensoresTest, AnotherServiceMayUseTheLoopAfterIt) {
  StartUdp();
  RunToFirstCycle();
  Answer("10");
  service.reset();
  service = MakeService();
  EXPECT_EQ(Tank(1), "0 Null");
  StartUdp();
  RunToFirstCycle();
  EXPECT_EQ(wire->sent.back(), "1? to 127.0.0.1:9084");
}

}  // namespace
}  // namespace ambrelio::sensors
