#include "ambrelio/data/session.h"

#include <thread>

#include "ambrelio/dao/errors.h"
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

TEST(Session, ReadsTheClockOfTheThread) {
  const Session session;
  const ManualClock clock(At("2026-11-15 08:00:00"));
  const ScopedClock scope(clock);
  EXPECT_EQ(session.Now(), At("2026-11-15 08:00:00"));
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

}  // namespace
}  // namespace ambrelio
