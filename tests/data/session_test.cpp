#include "ambrelio/data/session.h"

#include <thread>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/engine.h"
#include "support/mill.h"

namespace ambrelio {
namespace {

using test::At;
using test::MillTest;

TEST(Session, IsOnePerThread) {
  Session* const here = &Session::Current();
  Session* there = nullptr;
  std::thread([&there] { there = &Session::Current(); }).join();
  EXPECT_EQ(&Session::Current(), here);
  EXPECT_NE(there, nullptr);
  EXPECT_NE(there, here);
}

TEST(Session, StartsClosedWithOneTank) {
  const Session session;
  EXPECT_FALSE(session.IsOpen());
  EXPECT_EQ(session.hopper_count, 0);
  EXPECT_EQ(session.intermediate_hopper_count, 0);
  EXPECT_EQ(session.tank_count, 1);
  EXPECT_FALSE(session.vardex3);
}

TEST(Session, HasNoDatabaseBeforeTheFirstOpening) {
  const Session session;
  EXPECT_EQ(MillTest::ErrorOf([&] { session.Database(); }), 91);
}

TEST(Session, MakesItsEngineOnFirstUseAndKeepsIt) {
  Session session;
  dao::DBEngine& engine = session.Engine();
  EXPECT_EQ(&session.Engine(), &engine);
  EXPECT_EQ(&session.Workspace(), &engine.DefaultWorkspace());
}

TEST(Session, UsesTheEngineItIsGiven) {
  Session session;
  const auto engine =
      std::make_shared<test::ProbeEngine>(engine::Create(), std::make_shared<test::Probe>());
  session.UseEngine(engine);
  EXPECT_EQ(&session.Engine(), engine.get());
}

TEST(Session, LetsGoOfDatabaseAndEngine) {
  Session session;
  const auto engine =
      std::make_shared<test::ProbeEngine>(engine::Create(), std::make_shared<test::Probe>());
  session.UseEngine(engine);
  const test::TempFolder folder;
  host::CreateMillDatabase(*engine, folder.File("oliva.mdb"), "");
  session.SetDatabase(session.Workspace().OpenDatabase(folder.File("oliva.mdb"), false, false, ""));
  session.hopper_count = 4;
  session.ReleaseEngine();
  EXPECT_FALSE(session.IsOpen());
  EXPECT_EQ(MillTest::ErrorOf([&] { session.Database(); }), 91);
  EXPECT_EQ(engine.use_count(), 1);
  EXPECT_NE(&session.Engine(), engine.get());
  EXPECT_EQ(session.hopper_count, 4);
}

TEST(Session, ReadsTheClockOfTheThread) {
  const Session session;
  const ManualClock clock(At("2026-11-15 08:00:00"));
  const ScopedClock scope(clock);
  EXPECT_EQ(session.Now(), At("2026-11-15 08:00:00"));
}

TEST(Session, MakesItsLoopOnFirstUseAndKeepsIt) {
  Session session;
  EventLoop& loop = session.Events();
  EXPECT_EQ(&session.Events(), &loop);
}

TEST(Session, UsesTheLoopItIsGivenWhichMayBeShared) {
  const auto loop = std::make_shared<EventLoop>();
  Session session;
  Session other;
  session.UseEvents(loop);
  other.UseEvents(loop);
  EXPECT_EQ(&session.Events(), loop.get());
  EXPECT_EQ(&other.Events(), loop.get());
}

TEST(Session, KeepsTheLoopItIsGiven) {
  auto loop = std::make_shared<EventLoop>();
  const std::weak_ptr<EventLoop> watched = loop;
  {
    Session session;
    session.UseEvents(std::move(loop));
    EXPECT_FALSE(watched.expired());
  }
  EXPECT_TRUE(watched.expired());
}

// A service that ticks until its end, as one with a timer does.
class TickingService : public SensorService {
 public:
  TickingService(Session& session, int& ticks) : loop_(session.Events()) {
    timer_ = loop_.StartTimer(Milliseconds(0), [&ticks] { ++ticks; });
  }
  ~TickingService() override { loop_.StopTimer(timer_); }
  void StartSensors(Mode, const Variant&, int32_t, int32_t) override {}
  Mode mode() const override { return Mode::kNone; }
  int16_t current_tank() const override { return 0; }
  tpHayLectura hay(int16_t) const override { return tpHayLectura::hNoHayLectura; }
  Variant Lectura(int16_t) const override { return {}; }

 private:
  EventLoop& loop_;
  EventLoop::TimerId timer_ = 0;
};

TEST(Session, HasNoSensorServiceAtFirst) { EXPECT_EQ(Session().Sensors(), nullptr); }

TEST(Session, HoldsTheSensorServiceUntilAnotherOneIsSet) {
  int ticks = 0;
  Session session;
  session.SetSensors(std::make_shared<TickingService>(session, ticks));
  session.SetSensors(nullptr);
  session.Events().RunUntilIdle();
  EXPECT_EQ(ticks, 0);
  session.SetSensors(std::make_shared<TickingService>(session, ticks));
  session.Events().RunUntilIdle();
  EXPECT_EQ(ticks, 1);
}

TEST(Session, LetsItsServiceGoBeforeItsLoop) {
  int ticks = 0;
  {
    Session session;
    session.SetSensors(std::make_shared<TickingService>(session, ticks));
  }
  EXPECT_EQ(ticks, 0);
}

class NoObject : public AutomationObject {
 public:
  Variant Call(std::string_view, const std::vector<Variant>&) override { return {}; }
};

TEST(Session, KnowsTheObjectsOfOtherProgramsByItself) {
  Session session;
  Session other;
  session.AutomationObjects().Register("Sondas.Lector",
                                       [] { return std::make_shared<NoObject>(); });
  EXPECT_NE(session.AutomationObjects().Create("Sondas.Lector"), nullptr);
  EXPECT_EQ(MillTest::ErrorOf([&] { other.AutomationObjects().Create("Sondas.Lector"); }), 429);
}

class OpenSession : public MillTest {};

TEST_F(OpenSession, GivesTheDatabaseThatWasSet) {
  EXPECT_TRUE(session.IsOpen());
  EXPECT_EQ(session.Database().Name(), folder.File("oliva.mdb"));
}

TEST_F(OpenSession, IsClosedByAFailedOpening) {
  session.SetDatabase(nullptr);
  EXPECT_FALSE(session.IsOpen());
  EXPECT_EQ(ErrorOf([&] { session.Database(); }), 91);
}

TEST_F(OpenSession, KeepsTheClosedDatabaseForObjectsFromBefore) {
  session.CloseDatabase();
  EXPECT_FALSE(session.IsOpen());
  EXPECT_EQ(ErrorOf([&] { session.Database().OpenRecordset("Descargas"); }), 3420);
}

TEST_F(OpenSession, ClosesOnlyOnce) {
  session.CloseDatabase();
  probe->events.clear();
  session.CloseDatabase();
  EXPECT_TRUE(probe->events.empty());
}

TEST_F(OpenSession, IsClosedEvenWhenTheClosingFails) {
  probe->FailAt(1, 3218);
  EXPECT_EQ(ErrorOf([&] { session.CloseDatabase(); }), 3218);
  EXPECT_FALSE(session.IsOpen());
}

TEST(SessionEvents, AnotherLoopEndsTheSensorService) {
  struct Service : SensorService {
    void StartSensors(Mode, const Variant&, int32_t, int32_t) override {}
    Mode mode() const override { return Mode::kNone; }
    int16_t current_tank() const override { return 0; }
    tpHayLectura hay(int16_t) const override { return tpHayLectura::hNoHaySensor; }
    Variant Lectura(int16_t) const override { return {}; }
  };
  Session session;
  session.SetSensors(std::make_shared<Service>());
  session.UseEvents(std::make_shared<EventLoop>());
  EXPECT_EQ(session.Sensors(), nullptr);
}

}  // namespace
}  // namespace ambrelio
