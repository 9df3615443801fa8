// The sensor service with an automation object.
#include "ambrelio/sensors/sensores.h"

#include <algorithm>

#include "sensors/sensors_test.h"

namespace ambrelio::sensors {
namespace {

using test::ErrorOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SensoresRemote : public SensorsTest {
 protected:
  static Lector::Method Fail(RuntimeError error = RuntimeError::kInvalidCall) {
    return [error](int16_t) -> Variant { Raise(error); };
  }
  std::ptrdiff_t Calls(const std::string& call) const {
    return std::count(lector->calls.begin(), lector->calls.end(), call);
  }
};

// --- the start

TEST_F(SensoresRemote, TheFirstCycleBeginsTwoSecondsAfterTheStart) {
  StartRemote();
  EXPECT_EQ(service->mode(), Mode::kAutomationObject);
  EXPECT_EQ(service->phase(), Phase::kIdle);
  Run(1999);
  EXPECT_THAT(lector->calls, IsEmpty());
  Run(1);
  EXPECT_THAT(lector->calls, ElementsAre("DisparoLectura(1)"));
  EXPECT_EQ(service->phase(), Phase::kResult);
  EXPECT_EQ(service->current_tank(), 1);
}

TEST_F(SensoresRemote, OpensNoSocket) {
  StartRemote();
  Run(60000);
  EXPECT_EQ(wire->sockets, 0);
}

TEST_F(SensoresRemote, WithoutTheObjectThereIsNoMode) {
  service->StartSensors(Mode::kAutomationObject, "Sondas.Otro", 5000, 500);
  EXPECT_EQ(service->mode(), Mode::kNone);
  EXPECT_EQ(service->phase(), Phase::kStopped);
  Run(60000);
  EXPECT_THAT(Tanks(), ElementsAre("0 Null", "0 Null", "0 Null"));
}

TEST_F(SensoresRemote, AnObjectThatCannotBeMadeIsNoObject) {
  session.AutomationObjects().Register("Sondas.Lector", []() -> std::shared_ptr<AutomationObject> {
    Raise(RuntimeError::kInvalidCall);
  });
  StartRemote();
  EXPECT_EQ(service->mode(), Mode::kNone);
}

TEST_F(SensoresRemote, ANewStartWithoutTheObjectEndsThePolling) {
  StartRemote();
  RunToFirstCycle();
  service->StartSensors(Mode::kAutomationObject, "Sondas.Otro", 5000, 500);
  Run(60000);
  EXPECT_EQ(service->mode(), Mode::kNone);
  EXPECT_THAT(lector->calls, ElementsAre("DisparoLectura(1)"));
}

TEST_F(SensoresRemote, EachStartMakesAnObject) {
  int made = 0;
  session.AutomationObjects().Register("Sondas.Lector", [&] {
    ++made;
    return lector;
  });
  StartRemote();
  StartRemote();
  EXPECT_EQ(made, 2);
}

// --- a cycle

TEST_F(SensoresRemote, AsksForTheResult20MillisecondsAfterTheTrigger) {
  StartRemote();
  RunToFirstCycle();
  Run(19);
  EXPECT_THAT(lector->calls, ElementsAre("DisparoLectura(1)"));
  Run(1);
  EXPECT_THAT(lector->calls,
              ElementsAre("DisparoLectura(1)", "ResultadoLectura(1)", "LecturaNivel(1)"));
  EXPECT_EQ(service->phase(), Phase::kAboutTo);
  EXPECT_EQ(service->current_tank(), 2);
}

TEST_F(SensoresRemote, TriggersTheNextTank20MillisecondsAfterTheReading) {
  StartRemote();
  RunToFirstCycle();
  Run(20 + 19);
  EXPECT_EQ(Calls("DisparoLectura(2)"), 0);
  Run(1);
  EXPECT_EQ(Calls("DisparoLectura(2)"), 1);
}

TEST_F(SensoresRemote, RestsForTheIntervalAfterTheLastTank) {
  StartRemote();
  RunToFirstCycle();
  Run(5 * 20);
  EXPECT_EQ(service->phase(), Phase::kIdle);
  EXPECT_EQ(service->current_tank(), 0);
  EXPECT_EQ(Calls("LecturaNivel(3)"), 1);
  Run(4999);
  EXPECT_EQ(Calls("DisparoLectura(1)"), 1);
  Run(1);
  EXPECT_EQ(Calls("DisparoLectura(1)"), 2);
}

TEST_F(SensoresRemote, AReadingIsStoredAndTheStateStays) {
  StartRemote();
  Run(3000);
  EXPECT_THAT(Tanks(), ElementsAre("0 10.5", "0 21", "0 31.5"));
  EXPECT_EQ(service->Lectura(1), Variant(10.5));
}

TEST_F(SensoresRemote, AReadingAfterAnErrorLeavesTheErrorState) {
  lector->disparo = [](int16_t) { return int16_t{1}; };
  StartRemote();
  Run(3000);
  EXPECT_EQ(Tank(1), "2 Null");
  lector->disparo = [](int16_t) { return int16_t{2}; };
  Run(10000);
  EXPECT_EQ(Tank(1), "2 10.5");
}

TEST_F(SensoresRemote, KeepsWhatTheObjectGivesAsAReading) {
  lector->lectura = [](int16_t tank) { return tank == 1 ? Variant::Null() : Variant(int32_t{7}); };
  StartRemote();
  Run(3000);
  EXPECT_TRUE(service->Lectura(1).is_null());
  EXPECT_EQ(service->Lectura(2), Variant(int32_t{7}));
}

// --- what DisparoLectura answers

TEST_F(SensoresRemote, Code0IsATankWithoutASensor) {
  lector->disparo = [](int16_t tank) { return int16_t(tank == 1 ? 1 : 0); };
  StartRemote();
  Run(2020);
  EXPECT_EQ(service->hay(1), tpHayLectura::hErrorLectura);
  lector->disparo = [](int16_t) { return int16_t{0}; };
  Run(8000);
  EXPECT_THAT(Tanks(), ElementsAre("0 Null", "0 Null", "0 Null"));
  EXPECT_EQ(Calls("ResultadoLectura(1)"), 0);
}

TEST_F(SensoresRemote, Code1IsAnError) {
  lector->disparo = [](int16_t) { return int16_t{1}; };
  StartRemote();
  Run(3000);
  EXPECT_THAT(Tanks(), ElementsAre("2 Null", "2 Null", "2 Null"));
  EXPECT_EQ(service->phase(), Phase::kIdle);
}

TEST_F(SensoresRemote, AnErrorLeavesAnEarlierReading) {
  StartRemote();
  Run(3000);
  lector->disparo = [](int16_t) { return int16_t{1}; };
  Run(6000);
  EXPECT_EQ(Tank(1), "2 10.5");
}

TEST_F(SensoresRemote, ATankWithoutAResultIsFollowedByTheNextIn20Milliseconds) {
  lector->disparo = [](int16_t) { return int16_t{0}; };
  StartRemote();
  RunToFirstCycle();
  EXPECT_EQ(service->phase(), Phase::kAboutTo);
  Run(19);
  EXPECT_EQ(Calls("DisparoLectura(2)"), 0);
  Run(1);
  EXPECT_EQ(Calls("DisparoLectura(2)"), 1);
}

TEST_F(SensoresRemote, TheCodeIsConvertedTo16Bits) {
  lector->disparo = [](int16_t) { return Variant("0.6"); };
  StartRemote();
  Run(3000);
  EXPECT_THAT(Tanks(), ElementsAre("2 Null", "2 Null", "2 Null"));
  lector->disparo = [](int16_t) { return Variant(); };
  Run(6000);
  EXPECT_THAT(Tanks(), ElementsAre("0 Null", "0 Null", "0 Null"));
}

TEST_F(SensoresRemote, ErrorsOfTheTriggerAreErrorsOfTheTank) {
  lector->disparo = Fail();
  StartRemote();
  EXPECT_EQ(ErrorOf([this] { Run(3000); }), 0);
  EXPECT_THAT(Tanks(), ElementsAre("2 Null", "2 Null", "2 Null"));
  EXPECT_EQ(service->phase(), Phase::kIdle);
}

TEST_F(SensoresRemote, ACodeThatDoesNotConvertIsAnErrorOfTheTank) {
  lector->disparo = [](int16_t tank) -> Variant {
    if (tank == 1) return "two";
    if (tank == 2) return int32_t{40000};
    return Variant::Null();
  };
  StartRemote();
  EXPECT_EQ(ErrorOf([this] { Run(3000); }), 0);
  EXPECT_THAT(Tanks(), ElementsAre("2 Null", "2 Null", "2 Null"));
}

TEST_F(SensoresRemote, AnUnknownCodeHaltsThePollingUntilTheNextStart) {
  for (const int16_t code : {int16_t{3}, int16_t{-1}}) {
    lector->calls.clear();
    lector->disparo = [code](int16_t tank) { return tank == 2 ? code : int16_t{1}; };
    StartRemote();
    Run(60000);
    EXPECT_THAT(lector->calls, ElementsAre("DisparoLectura(1)", "DisparoLectura(2)")) << code;
    EXPECT_THAT(Tanks(), ElementsAre("2 Null", "0 Null", "0 Null")) << code;
  }
  lector->disparo = [](int16_t) { return int16_t{2}; };
  StartRemote();
  Run(3000);
  EXPECT_EQ(Tank(3), "0 31.5");
}

// --- what ResultadoLectura answers

TEST_F(SensoresRemote, AsksAgainAfter20MillisecondsUntilTheResultIsThere) {
  int questions = 0;
  lector->resultado = [&](int16_t) { return int16_t(++questions < 5 ? -1 : 0); };
  StartRemote();
  RunToFirstCycle();
  Run(4 * 20);
  EXPECT_EQ(questions, 4);
  EXPECT_EQ(Calls("LecturaNivel(1)"), 0);
  Run(19);
  EXPECT_EQ(questions, 4);
  Run(1);
  EXPECT_EQ(Tank(1), "0 10.5");
}

TEST_F(SensoresRemote, GivesUpAfter100QuestionsForAResult) {
  lector->resultado = [](int16_t) { return int16_t{-1}; };
  StartRemote();
  RunToFirstCycle();
  Run(99 * 20);
  EXPECT_EQ(Calls("ResultadoLectura(1)"), 99);
  EXPECT_EQ(Tank(1), "0 Null");
  EXPECT_EQ(service->phase(), Phase::kResult);
  Run(20);
  EXPECT_EQ(Calls("ResultadoLectura(1)"), 100);
  EXPECT_EQ(Tank(1), "2 Null");
  EXPECT_EQ(service->phase(), Phase::kAboutTo);
  Run(20);
  EXPECT_EQ(Calls("ResultadoLectura(1)"), 100);
  EXPECT_EQ(Calls("DisparoLectura(2)"), 1);
}

TEST_F(SensoresRemote, TheHundredthQuestionMayStillHaveItsResult) {
  int questions = 0;
  lector->resultado = [&](int16_t) { return int16_t(++questions < 100 ? -1 : 0); };
  StartRemote();
  RunToFirstCycle();
  Run(100 * 20);
  EXPECT_EQ(Tank(1), "0 10.5");
}

TEST_F(SensoresRemote, EachTankHasItsOwn100Questions) {
  lector->resultado = [](int16_t) { return int16_t{-1}; };
  StartRemote();
  Run(2000 + 3 * (100 + 1) * 20);
  for (const char* tank : {"1", "2", "3"}) {
    EXPECT_EQ(Calls("ResultadoLectura(" + std::string(tank) + ")"), 100) << tank;
  }
}

TEST_F(SensoresRemote, AnyFormOfMinusOneIsNoResultYet) {
  for (const Variant& result :
       {Variant(int32_t{-1}), Variant(-1.0), Variant(true), Variant("-1")}) {
    lector->resultado = [&](int16_t) { return result; };
    StartRemote();
    RunToFirstCycle();
    Run(20);
    EXPECT_EQ(service->phase(), Phase::kResult) << ToText(result);
  }
}

TEST_F(SensoresRemote, AnythingElseIsAResult) {
  for (const Variant& result : {Variant(int16_t{0}), Variant(int16_t{1}), Variant(-1.5), Variant(),
                                Variant::Null(), Variant("0")}) {
    lector->calls.clear();
    lector->resultado = [&](int16_t) { return result; };
    StartRemote();
    RunToFirstCycle();
    Run(20);
    EXPECT_EQ(Calls("LecturaNivel(1)"), 1) << TypeName(result);
  }
}

// --- errors that are not trapped

TEST_F(SensoresRemote, AnErrorOfTheResultComesOutOfTheLoopAndPollingRests) {
  lector->resultado = Fail();
  StartRemote();
  RunToFirstCycle();
  EXPECT_EQ(ErrorOf([this] { Run(20); }), 5);
  Run(60000);
  EXPECT_THAT(lector->calls, ElementsAre("DisparoLectura(1)", "ResultadoLectura(1)"));
  EXPECT_EQ(Tank(1), "0 Null");
}

TEST_F(SensoresRemote, AResultThatIsNoNumberComesOutOfTheLoop) {
  lector->resultado = [](int16_t) { return "listo"; };
  StartRemote();
  RunToFirstCycle();
  EXPECT_EQ(ErrorOf([this] { Run(20); }), 13);
}

TEST_F(SensoresRemote, AnErrorOfTheReadingComesOutOfTheLoopAndPollingRests) {
  lector->lectura = Fail(RuntimeError::kMemberNotFound);
  StartRemote();
  RunToFirstCycle();
  EXPECT_EQ(ErrorOf([this] { Run(20); }), 438);
  Run(60000);
  EXPECT_THAT(lector->calls,
              ElementsAre("DisparoLectura(1)", "ResultadoLectura(1)", "LecturaNivel(1)"));
  EXPECT_EQ(Tank(1), "0 Null");
}

TEST_F(SensoresRemote, ANewStartAfterAnErrorPollsAgain) {
  lector->resultado = Fail();
  StartRemote();
  EXPECT_EQ(ErrorOf([this] { Run(2020); }), 5);
  lector->resultado = [](int16_t) { return int16_t{0}; };
  StartRemote();
  Run(3000);
  EXPECT_EQ(Tank(3), "0 31.5");
}

// --- an object that acts back

TEST_F(SensoresRemote, TheObjectMayReleaseTheServiceWhileItIsAsked) {
  const std::weak_ptr<Sensores> watched = service;
  lector->disparo = [this](int16_t) {
    service.reset();
    return int16_t{0};
  };
  StartRemote();
  Run(60000);
  EXPECT_TRUE(watched.expired());
  EXPECT_THAT(lector->calls, ElementsAre("DisparoLectura(1)"));
}

TEST_F(SensoresRemote, TheObjectMayReleaseTheServiceWhileItIsMade) {
  const std::weak_ptr<Sensores> watched = service;
  session.AutomationObjects().Register("Sondas.Lector", [this] {
    service.reset();
    return lector;
  });
  service->StartSensors(Mode::kAutomationObject, "Sondas.Lector", 5000, 500);
  EXPECT_TRUE(watched.expired());
  Run(60000);
  EXPECT_THAT(lector->calls, IsEmpty());
}

TEST_F(SensoresRemote, TheObjectMayStartTheServiceAnewAndOutlivesItsCall) {
  std::weak_ptr<Lector> first;
  session.AutomationObjects().Register("Sondas.Lector", [&] {
    auto made = std::make_shared<Lector>();
    if (first.expired()) first = made;
    return made;
  });
  StartRemote();
  first.lock()->lectura = [this, &first](int16_t) {
    StartRemote();
    EXPECT_FALSE(first.expired());
    return 5.0;
  };
  Run(2020);
  EXPECT_TRUE(first.expired());
  EXPECT_EQ(Tank(1), "0 5");
}

TEST_F(SensoresRemote, ItsEndReleasesTheObject) {
  StartRemote();
  RunToFirstCycle();
  EXPECT_EQ(lector.use_count(), 2);
  service.reset();
  EXPECT_EQ(lector.use_count(), 1);
  Run(60000);
  EXPECT_THAT(lector->calls, ElementsAre("DisparoLectura(1)"));
}

// --- from one mode to the other

TEST_F(SensoresRemote, AServiceCanChangeFromAGatewayToAnObject) {
  StartUdp();
  RunToFirstCycle();
  wire->Deliver("12.5");
  StartRemote();
  Run(3000);
  EXPECT_EQ(wire->sent.size(), 2);
  EXPECT_THAT(Tanks(), ElementsAre("3 10.5", "0 21", "0 31.5"));
}

TEST_F(SensoresRemote, AnswersOfTheGatewayAreIgnoredWhileTheObjectWorks) {
  StartUdp();
  StartRemote();
  RunToFirstCycle();
  wire->Deliver("99");
  EXPECT_EQ(service->phase(), Phase::kResult);
  EXPECT_EQ(Tank(1), "0 Null");
}

}  // namespace
}  // namespace ambrelio::sensors
