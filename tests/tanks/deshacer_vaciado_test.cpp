// Undoing the last emptying of a tank.
#include "tanks/tank_test.h"

namespace ambrelio {
namespace {

using test::At;
using ::testing::ElementsAre;

// Tanks 1 and 2 both hold both discharges; tank 1 has 1000 litres.
class DeshacerVaciado : public test::TankTest {
 protected:
  void SetUp() override {
    TankTest::SetUp();
    Hold(1, 1, "2026-11-03 08:00:00", 1, 0.5, 2);
    Hold(2, 1, "2026-11-03 09:00:00", 1, 0.25, 1);
    Hold(1, 1, "2026-11-03 08:00:00", 2, 0.125);
    Hold(2, 1, "2026-11-03 09:00:00", 2, 0.5);
    Read(1, 1, "2026-11-03 10:00:00", "1200", "1000");
    probe->events.clear();
  }

  int32_t Empty(Deposito& tank, int16_t destination, double litres,
                const std::string& moment = "2026-11-03 11:00:00") {
    return tank.NuevoVaciado(destination, litres, At(moment), Variant::Array{int16_t{0}, "L-7"});
  }
  // Opens a discharge of `hopper` at `moment`.
  void Open(int hopper, int number, const std::string& moment) {
    Execute("insert into Descargas (Tolva, Descarga, MomentoDesde, Deposito) values (" +
            std::to_string(hopper) + ", " + std::to_string(number) + ", " + Date(moment) + ", 0)");
  }
  void ExpectRefused(Deposito& tank) {
    const std::string before = Dump();
    EXPECT_FALSE(tank.DeshacerVaciado());
    EXPECT_EQ(probe->level, 0);
    EXPECT_EQ(Dump(), before);
  }
};

TEST_F(DeshacerVaciado, OfATransferRestoresEveryTable) {
  const std::string before = Dump();
  ASSERT_EQ(Empty(tank1, 2, 400), 1);
  ASSERT_NE(Dump(), before);
  EXPECT_TRUE(tank1.DeshacerVaciado());
  EXPECT_EQ(Dump(), before);
}

TEST_F(DeshacerVaciado, OfAnEmptyingOutOfTheMillRestoresEveryTable) {
  const std::string before = Dump();
  ASSERT_EQ(Empty(tank1, 0, 400), 1);
  ASSERT_NE(Dump(), before);
  EXPECT_TRUE(tank1.DeshacerVaciado());
  EXPECT_EQ(Dump(), before);
}

TEST_F(DeshacerVaciado, OfTheWholeContentRestoresEveryTable) {
  const std::string before = Dump();
  ASSERT_EQ(Empty(tank1, 2, 1000), 1);
  EXPECT_TRUE(tank1.DeshacerVaciado());
  EXPECT_EQ(Dump(), before);
}

TEST_F(DeshacerVaciado, LeavesTheRowsThatTheTransferMadeWithoutFraction) {
  ASSERT_EQ(Empty(tank1, 3, 400), 1);
  EXPECT_TRUE(tank1.DeshacerVaciado());
  EXPECT_THAT(Fractions(1), ElementsAre("1/1=0.5", "2/1=0.25"));
  EXPECT_THAT(Fractions(3), ElementsAre("1/1=0", "2/1=0"));
}

TEST_F(DeshacerVaciado, SendsItsStatementsInOrder) {
  ASSERT_EQ(Empty(tank1, 2, 400), 1);
  EXPECT_THAT(
      Sent([&] { EXPECT_TRUE(tank1.DeshacerVaciado()); }),
      ElementsAre(
          "select Vaciado, mmto, Destino from Vaciados where Deposito=1 order by mmto ",
          "select Tolva from Descargas where Deposito=1 order by MomentoHasta, Tolva ",
          "select * from Descargas where (Tolva=2) order by Descarga ", "begin",
          "delete from Niveles where (Deposito=1) and (Momento>#11/3/2026 11:0:0#) ",
          "select * from detVaciados where (Deposito=1) and (Vaciado=1) ",
          "select Fraccion from Descargas where (TOLVA=1) and (DESCARGA=1)  and (Deposito=1) ",
          "update Descargas set Fraccion= Fraccion-0.20000000 where (Tolva=1) and (Descarga=1) and "
          "(Deposito=2) ",
          "update Descargas set Fraccion=0 where (Fraccion<0.0001) ",
          "update Descargas set Fraccion=0.50000000 where (TOLVA=1) and (DESCARGA=1)  and "
          "(Deposito=1) ",
          "select Fraccion from Descargas where (TOLVA=2) and (DESCARGA=1)  and (Deposito=1) ",
          "update Descargas set Fraccion= Fraccion-0.10000000 where (Tolva=2) and (Descarga=1) and "
          "(Deposito=2) ",
          "update Descargas set Fraccion=0 where (Fraccion<0.0001) ",
          "update Descargas set Fraccion=0.25000000 where (TOLVA=2) and (DESCARGA=1)  and "
          "(Deposito=1) ",
          "delete from detVaciados where (Deposito=1) and (Vaciado=1) ",
          "delete from Vaciados where (Deposito=1) and (Vaciado=1) ", "commit"));
}

TEST_F(DeshacerVaciado, OutOfTheMillAsksForNoPresentFraction) {
  ASSERT_EQ(Empty(tank1, 0, 400), 1);
  const auto sent = Sent([&] { EXPECT_TRUE(tank1.DeshacerVaciado()); });
  EXPECT_THAT(sent, ::testing::Not(::testing::Contains(::testing::StartsWith("select Fraccion"))));
  EXPECT_THAT(Fractions(2), ElementsAre("1/1=0.125", "2/1=0.5"));
}

TEST_F(DeshacerVaciado, DropsTheReadingsOfTheEmptiedTankAfterTheEmptyingOnly) {
  ASSERT_EQ(Empty(tank1, 2, 400), 1);
  Read(1, 2, "2026-11-03 11:00:00", "700", "600");
  Read(1, 3, "2026-11-03 11:00:01", "700", "600");
  Read(2, 1, "2026-11-03 12:00:00", "700", "600");
  EXPECT_TRUE(tank1.DeshacerVaciado());
  EXPECT_THAT(Rows("select Deposito, Item from Niveles order by Deposito, Item"),
              ElementsAre("1|1", "1|2", "2|1"));
}

TEST_F(DeshacerVaciado, GoesBackwardsOneEmptyingAtATime) {
  const std::string before = Dump();
  ASSERT_EQ(Empty(tank1, 2, 400, "2026-11-03 11:00:00"), 1);
  ASSERT_EQ(Empty(tank1, 0, 150, "2026-11-03 12:00:00"), 2);
  ASSERT_EQ(Empty(tank1, 2, 450, "2026-11-03 13:00:00"), 3);
  EXPECT_TRUE(tank1.DeshacerVaciado());
  EXPECT_EQ(tank1.UltimoVaciado(), 2);
  EXPECT_TRUE(tank1.DeshacerVaciado());
  EXPECT_TRUE(tank1.DeshacerVaciado());
  EXPECT_EQ(Dump(), before);
  EXPECT_FALSE(tank1.DeshacerVaciado());
}

TEST_F(DeshacerVaciado, WithoutAnyEmptyingIsRefused) {
  EXPECT_THAT(Sent([&] { EXPECT_FALSE(tank1.DeshacerVaciado()); }),
              ElementsAre("select Vaciado, mmto, Destino from Vaciados where Deposito=1 order by "
                          "mmto "));
}

TEST_F(DeshacerVaciado, IsRefusedOnceTheHopperOpenedADischargeAfterTheEmptying) {
  ASSERT_EQ(Empty(tank1, 2, 400), 1);
  Open(2, 2, "2026-11-03 11:00:01");
  ExpectRefused(tank1);
}

TEST_F(DeshacerVaciado, IsAcceptedWhenTheHopperOpenedItsDischargeAtTheMomentOfTheEmptying) {
  ASSERT_EQ(Empty(tank1, 2, 400), 1);
  Open(2, 2, "2026-11-03 11:00:00");
  EXPECT_TRUE(tank1.DeshacerVaciado());
}

TEST_F(DeshacerVaciado, LooksOnlyAtTheHopperOfTheLatestDischargeIntoTheTank) {
  ASSERT_EQ(Empty(tank1, 2, 400), 1);
  Open(1, 2, "2026-11-03 12:00:00");
  EXPECT_TRUE(tank1.DeshacerVaciado());
}

TEST_F(DeshacerVaciado, OfEqualEndMomentsLooksAtTheHigherHopper) {
  Execute("update Descargas set MomentoHasta=#11/3/2026 9:0:0#");
  ASSERT_EQ(Empty(tank1, 2, 400), 1);
  Open(1, 2, "2026-11-03 12:00:00");
  EXPECT_TRUE(tank1.DeshacerVaciado());
  ASSERT_EQ(Empty(tank1, 2, 400), 1);
  Open(2, 2, "2026-11-03 12:00:00");
  ExpectRefused(tank1);
}

TEST_F(DeshacerVaciado, DoesNotMindLaterMovementsOfTheDestination) {
  Read(2, 1, "2026-11-03 10:00:00", "1200", "1000");
  ASSERT_EQ(Empty(tank1, 2, 400), 1);
  ASSERT_EQ(Empty(tank2, 3, 700, "2026-11-03 12:00:00"), 1);
  EXPECT_TRUE(tank1.DeshacerVaciado());
  EXPECT_THAT(Fractions(1), ElementsAre("1/1=0.5", "2/1=0.25"));
}

TEST_F(DeshacerVaciado, DoesNotTouchFractionsReceivedAfterTheEmptying) {
  ASSERT_EQ(Empty(tank1, 2, 400), 1);
  Hold(3, 1, "2026-11-03 08:30:00", 1, 0.75);
  EXPECT_TRUE(tank1.DeshacerVaciado());
  EXPECT_THAT(Fractions(1), ElementsAre("1/1=0.5", "2/1=0.25", "3/1=0.75"));
}

TEST_F(DeshacerVaciado, RollsBackWhenAFractionCannotBeSetBack) {
  ASSERT_EQ(Empty(tank1, 0, 400), 1);
  Read(1, 2, "2026-11-03 12:00:00", "700", "600");
  Execute("delete from Descargas where (Tolva=2) and (Deposito=1)");
  ExpectRefused(tank1);
}

TEST_F(DeshacerVaciado, TakesTheWholeSnapshotBackFromTheDestinationBeforeItRollsBack) {
  ASSERT_EQ(Empty(tank1, 2, 400), 1);
  Execute("delete from Descargas where (Tolva=2) and (Deposito=1)");
  const std::string before = Dump();
  const auto sent = Sent([&] { EXPECT_FALSE(tank1.DeshacerVaciado()); });
  EXPECT_THAT(sent, ::testing::Contains(
                        "update Descargas set Fraccion= Fraccion-0.25000000 where (Tolva=2) and "
                        "(Descarga=1) and (Deposito=2) "));
  EXPECT_EQ(sent.back(), "rollback");
  EXPECT_EQ(Dump(), before);
}

TEST_F(DeshacerVaciado, RollsBackWithoutASnapshot) {
  ASSERT_EQ(Empty(tank1, 0, 400), 1);
  Execute("delete from detVaciados");
  const std::string before = Dump();
  const auto sent = Sent([&] { EXPECT_FALSE(tank1.DeshacerVaciado()); });
  ASSERT_GE(sent.size(), 2U);
  EXPECT_EQ(sent[sent.size() - 2], "delete from detVaciados where (Deposito=1) and (Vaciado=1) ");
  EXPECT_EQ(sent.back(), "rollback");
  EXPECT_EQ(Dump(), before);
}

TEST_F(DeshacerVaciado, RollsBackWhenTheEmptyingCannotBeDeleted) {
  ASSERT_EQ(Empty(tank1, 2, 400), 1);
  const std::string before = Dump();
  const auto sent = Sent([&] {
    probe->SkipAt(16);
    EXPECT_FALSE(tank1.DeshacerVaciado());
  });
  ASSERT_EQ(sent.size(), 17U);
  EXPECT_EQ(sent[15], "delete from Vaciados where (Deposito=1) and (Vaciado=1) ");
  EXPECT_EQ(sent[16], "rollback");
  EXPECT_EQ(Dump(), before);
}

TEST_F(DeshacerVaciado, RollsBackOverASnapshotRowOfAnEarlierSeason) {
  ASSERT_EQ(Empty(tank1, 0, 400), 1);
  Execute(
      "insert into detVaciados (Deposito, Vaciado, Tolva, Descarga, Fraccion) values "
      "(1, 1, 4, 9, 0.5)");
  ExpectRefused(tank1);
}

TEST_F(DeshacerVaciado, FailingAtAnyRequestLeavesItsLevelOpenAndClosingUndoesIt) {
  const std::string before = Dump();
  ASSERT_EQ(Empty(tank1, 2, 400), 1);
  EXPECT_EQ(FailAtEveryRequest([&] { EXPECT_TRUE(tank1.DeshacerVaciado()); }), 17);
  EXPECT_EQ(Dump(), before);
}

}  // namespace
}  // namespace ambrelio
