// Level readings of a tank, and its present state.
#include <limits>

#include "ambrelio/tanks/nivel.h"
#include "tanks/tank_test.h"

namespace ambrelio {
namespace {

using test::At;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class DepositoEntradaNivel : public test::TankTest {
 protected:
  void SetUp() override {
    TankTest::SetUp();
    Hold(1, 1, "2026-11-03 10:00:00", 1, 1);
    Execute("insert into Capacidad (Deposito, Nivel, A0, A1) values (1, 200, 40, 10)");
    probe->events.clear();
  }
  std::vector<std::string> Readings() {
    return Rows("select Item, Momento, Nivel, Litros, Densidad from Niveles order by Item");
  }
};

class DepositoReadings : public test::TankTest {};
class DepositoEstado : public test::TankTest {
 protected:
  // Code, litres and level as the members show them: "3 900 1200".
  std::string State(Deposito& tank) {
    Variant litres;
    Variant level;
    OleDate moment;
    const int16_t code = tank.UltimoMovimiento(litres, level, moment);
    return std::to_string(code) + " " + test::Show(tank.LitrosActual()) + " " +
           test::Show(tank.NivelActual());
  }
  static OleDate MomentOf(Deposito& tank) {
    Variant litres;
    Variant level;
    OleDate moment;
    tank.UltimoMovimiento(litres, level, moment);
    return moment;
  }
};

// --- recording a reading

TEST_F(DepositoEntradaNivel, TakesTheLitresFromTheCapacityTable) {
  EXPECT_THAT(
      Sent([&] { EXPECT_TRUE(tank1.EntradaNivel(At("2026-11-03 11:00:00"), 1230)); }),
      ElementsAre(
          "select * from Capacidad where (Deposito=1) and (10*nivel>=1230) order by nivel ",
          "select MomentoHasta from Descargas where (Deposito=1) order by MomentoHasta ",
          "select max(Item) from Niveles where Deposito=1",
          "insert into Niveles (Deposito, Item, Momento, Nivel, Litros, Densidad) values (1, 1, "
          "#11/3/2026 11:0:0#, 1230, 1270.00, Null) "));
  EXPECT_THAT(Readings(), ElementsAre("1|2026-11-03 11:00:00|1230|1270|Null"));
}

TEST_F(DepositoEntradaNivel, TakesPositiveLitresAsGivenWhateverTheLevel) {
  EXPECT_THAT(
      Sent([&] { EXPECT_TRUE(tank1.EntradaNivel(At("2026-11-03 11:00:00"), -1, 1500)); }),
      ElementsAre("select MomentoHasta from Descargas where (Deposito=1) order by MomentoHasta ",
                  "select max(Item) from Niveles where Deposito=1",
                  "insert into Niveles (Deposito, Item, Momento, Nivel, Litros, Densidad) values "
                  "(1, 1, #11/3/2026 11:0:0#, Null, 1500.00, Null) "));
  EXPECT_TRUE(tank1.EntradaNivel(At("2026-11-03 12:00:00"), 7, 0.555));
  EXPECT_THAT(Readings(), ElementsAre("1|2026-11-03 11:00:00|Null|1500|Null",
                                      "2|2026-11-03 12:00:00|7|0.56|Null"));
}

TEST_F(DepositoEntradaNivel, StoresALevelOfZeroAsNullWithItsLitres) {
  EXPECT_TRUE(tank1.EntradaNivel(At("2026-11-03 11:00:00"), 0, 0));
  EXPECT_THAT(Readings(), ElementsAre("1|2026-11-03 11:00:00|Null|40|Null"));
}

TEST_F(DepositoEntradaNivel, WithoutArgumentsRecordsLevelZeroNow) {
  EXPECT_TRUE(tank1.EntradaNivel());
  EXPECT_THAT(Readings(), ElementsAre("1|2026-11-15 08:00:00|Null|40|Null"));
}

TEST_F(DepositoEntradaNivel, ReadsADateFromText) {
  EXPECT_TRUE(tank1.EntradaNivel("2026-11-03 11:00:00", 10));
  EXPECT_THAT(Readings(), ElementsAre("1|2026-11-03 11:00:00|10|50|Null"));
}

TEST_F(DepositoEntradaNivel, TakesAnythingButADateForNow) {
  for (const Variant& moment : {Variant(), Variant::Null(), Variant(45000.0), Variant("ayer")}) {
    EXPECT_TRUE(tank1.EntradaNivel(moment, 10));
  }
  EXPECT_THAT(Rows("select count(*) from Niveles where Momento=#11/15/2026 8:0:0#"),
              ElementsAre("4"));
}

TEST_F(DepositoEntradaNivel, MayLieBeforeEarlierMovements) {
  EXPECT_TRUE(tank1.EntradaNivel(At("2026-11-05 11:00:00"), 10));
  EXPECT_TRUE(tank1.EntradaNivel(At("2026-10-01 11:00:00"), 20));
  EXPECT_THAT(Readings(),
              ElementsAre("1|2026-11-05 11:00:00|10|50|Null", "2|2026-10-01 11:00:00|20|60|Null"));
}

TEST_F(DepositoEntradaNivel, RefusesANegativeLevelWithoutLitresBeforeAskingAnything) {
  EXPECT_THAT(Sent([&] {
                EXPECT_FALSE(tank1.EntradaNivel({}, -1, 0));
                EXPECT_FALSE(tank1.EntradaNivel({}, -1, -5));
                EXPECT_FALSE(tank1.EntradaNivel({}, -1, kNaN));
              }),
              IsEmpty());
}

TEST_F(DepositoEntradaNivel, TakesNegativeAndUnknownLitresForNone) {
  EXPECT_TRUE(tank1.EntradaNivel({}, 10, -5));
  EXPECT_TRUE(tank1.EntradaNivel({}, 20, kNaN));
  EXPECT_THAT(Rows("select Litros from Niveles order by Item"), ElementsAre("50", "60"));
}

TEST_F(DepositoEntradaNivel, RefusesALevelOfNegativeLitres) {
  Execute("update Capacidad set A0=-500");
  const std::string before = Dump();
  EXPECT_FALSE(tank1.EntradaNivel({}, 10));
  EXPECT_EQ(Dump(), before);
}

TEST_F(DepositoEntradaNivel, RefusesATankThatNeverReceivedOil) {
  const std::string before = Dump();
  EXPECT_THAT(
      Sent([&] { EXPECT_FALSE(tank2.EntradaNivel({}, 10, 700)); }),
      ElementsAre("select MomentoHasta from Descargas where (Deposito=2) order by MomentoHasta ",
                  "select mmto from Vaciados where (Destino=2) order by mmto "));
  EXPECT_EQ(Dump(), before);
}

TEST_F(DepositoEntradaNivel, AcceptsATankThatOnlyReceivedAnEmptying) {
  Emptied(1, 1, "2026-11-04 10:00:00", 100, 2);
  EXPECT_TRUE(tank2.EntradaNivel({}, 10, 700));
}

TEST_F(DepositoEntradaNivel, CountsReadingsPerTankAndReusesOnlyTheLastNumber) {
  Emptied(1, 1, "2026-11-04 10:00:00", 100, 2);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(tank1.EntradaNivel({}, 10));
  EXPECT_TRUE(tank2.EntradaNivel({}, 10, 700));
  EXPECT_TRUE(tank1.EliminarUltimoNivel());
  Execute("delete from Niveles where Deposito=1 and Item=1");
  EXPECT_TRUE(tank1.EntradaNivel({}, 10));
  EXPECT_THAT(Rows("select Deposito, Item from Niveles order by Deposito, Item"),
              ElementsAre("1|2", "1|3", "2|1"));
}

TEST_F(DepositoEntradaNivel, RaisesOverflowBehindTheLastNumber) {
  Read(1, 2147483647, "2026-11-04 11:00:00", "10", "50");
  EXPECT_EQ(ErrorOf([&] { tank1.EntradaNivel({}, 10); }), 6);
}

TEST_F(DepositoEntradaNivel, FailingAtAnyRequestWritesNothing) {
  EXPECT_EQ(FailAtEveryRequest([&] { tank1.EntradaNivel({}, 10); }), 4);
}

// --- density, deletion, factory

TEST_F(DepositoReadings, EntradaDensidadSetsTheDensityOfTheReadingNamed) {
  Read(1, 1, "2026-11-04 10:00:00", "10", "50");
  Read(1, 2, "2026-11-04 11:00:00", "10", "50");
  EXPECT_THAT(Sent([&] { EXPECT_TRUE(tank1.EntradaDensidad(0.9155, 1)); }),
              ElementsAre("update Niveles set Densidad= 0.91550000 where (Deposito=1) and "
                          "(Item=1) "));
  EXPECT_THAT(Rows("select Item, Densidad from Niveles order by Item"),
              ElementsAre("1|0.9155", "2|Null"));
}

TEST_F(DepositoReadings, EntradaDensidadWithoutNumberMeansTheLastReading) {
  Read(1, 1, "2026-11-04 10:00:00", "10", "50");
  Read(1, 2, "2026-11-04 11:00:00", "10", "50");
  EXPECT_THAT(Sent([&] { EXPECT_TRUE(tank1.EntradaDensidad(0.915)); }),
              ElementsAre("select max(Item) from Niveles where Deposito=1",
                          "update Niveles set Densidad= 0.91500000 where (Deposito=1) and "
                          "(Item=2) "));
}

TEST_F(DepositoReadings, EntradaDensidadWithoutReadingsIsRefused) {
  Read(2, 1, "2026-11-04 10:00:00", "10", "50");
  const std::string before = Dump();
  EXPECT_FALSE(tank1.EntradaDensidad(0.915));
  EXPECT_FALSE(tank1.EntradaDensidad(0.915, 7));
  EXPECT_EQ(Dump(), before);
}

TEST_F(DepositoReadings, EliminarUltimoNivelDeletesTheHighestNumber) {
  Read(1, 1, "2026-11-04 12:00:00", "10", "50");
  Read(1, 2, "2026-11-04 11:00:00", "10", "50");
  EXPECT_THAT(Sent([&] { EXPECT_TRUE(tank1.EliminarUltimoNivel()); }),
              ElementsAre("select max(Item) from Niveles where Deposito=1",
                          "delete from Niveles where (Deposito=1) and (Item=2) "));
  EXPECT_THAT(Rows("select Item from Niveles"), ElementsAre("1"));
}

TEST_F(DepositoReadings, EliminarUltimoNivelWithoutReadingsIsRefused) {
  EXPECT_THAT(Sent([&] { EXPECT_FALSE(tank1.EliminarUltimoNivel()); }),
              ElementsAre("select max(Item) from Niveles where Deposito=1",
                          "delete from Niveles where (Deposito=1) and (Item=0) "));
}

TEST_F(DepositoReadings, NivelHandsOutAReadingThatExists) {
  Read(1, 3, "2026-11-04 11:00:00", "10", "50");
  const auto sent = Sent([&] {
    const auto reading = tank1.Nivel(3);
    ASSERT_NE(reading, nullptr);
    EXPECT_EQ(reading->Deposito(), 1);
    EXPECT_EQ(reading->Codigo(), 3);
    EXPECT_STREQ(reading->ClassName(), "Nivel");
  });
  ASSERT_EQ(sent.size(), 2U);
  EXPECT_EQ(sent[0], "select Item from Niveles where (Deposito=1) and (Item=3) ");
  EXPECT_TRUE(sent[1].starts_with("(select MomentoHasta as mmto")) << sent[1];
}

TEST_F(DepositoReadings, NivelIsNothingForAReadingThatDoesNotExist) {
  Read(2, 3, "2026-11-04 11:00:00", "10", "50");
  EXPECT_EQ(tank1.Nivel(3), nullptr);
  EXPECT_THAT(Sent([&] {
                EXPECT_EQ(tank1.Nivel(0), nullptr);
                EXPECT_EQ(tank1.Nivel(-1), nullptr);
              }),
              IsEmpty());
}

// --- present state

TEST_F(DepositoEstado, IsUnknownForATankThatNeverReceivedOil) {
  Read(1, 1, "2026-11-04 11:00:00", "10", "50");
  Emptied(1, 1, "2026-11-04 12:00:00", 20, 0);
  EXPECT_EQ(State(tank1), "0 Null Null");
}

TEST_F(DepositoEstado, WithoutReadingsHasNoLitres) {
  Hold(1, 1, "2026-11-03 10:00:00", 1, 1);
  EXPECT_EQ(State(tank1), "1 0 Null");
  EXPECT_THAT(
      Sent([&] { tank1.LitrosActual(); }),
      ElementsAre(
          "select MomentoHasta from Descargas where (Deposito=1) order by MomentoHasta ",
          "select mmto from Vaciados where (Destino=1) order by mmto ",
          "select Momento, Litros, Nivel from Niveles where (Deposito=1) order by Momento "));
}

TEST_F(DepositoEstado, WithAnInflowOnlyAndNoReadingIsTwo) {
  Emptied(2, 1, "2026-11-03 10:00:00", 100, 1);
  EXPECT_EQ(State(tank1), "2 0 Null");
  EXPECT_EQ(MomentOf(tank1), At("2026-11-03 10:00:00"));
}

TEST_F(DepositoEstado, WithAnInflowAfterTheDischargeAndNoReadingIsTwo) {
  Hold(1, 1, "2026-11-03 10:00:00", 1, 1);
  Emptied(2, 1, "2026-11-03 10:00:00", 100, 1);
  EXPECT_EQ(State(tank1), "1 0 Null");  // at the same moment the discharge counts
  Emptied(2, 2, "2026-11-03 10:00:01", 100, 1);
  EXPECT_EQ(State(tank1), "2 0 Null");
  EXPECT_EQ(MomentOf(tank1), At("2026-11-03 10:00:01"));
}

TEST_F(DepositoEstado, FollowsTheLastReading) {
  Hold(1, 1, "2026-11-03 10:00:00", 1, 1);
  Read(1, 2, "2026-11-03 11:00:00", "1100", "800");
  Read(1, 1, "2026-11-03 12:00:00", "1200", "900");
  EXPECT_EQ(State(tank1), "3 900 1200");
  EXPECT_EQ(tank1.NivelActual().type(), VariantType::kLong);
  EXPECT_EQ(tank1.LitrosActual().type(), VariantType::kDouble);
  EXPECT_EQ(Sent([&] { tank1.NivelActual(); }), StateQueries("1", "2026-11-03 12:00:00"));
}

TEST_F(DepositoEstado, OfAReadingAtTheMomentOfTheDischargeIsCurrent) {
  Hold(1, 1, "2026-11-03 10:00:00", 1, 1);
  Read(1, 1, "2026-11-03 10:00:00", "1200", "900");
  EXPECT_EQ(State(tank1), "3 900 1200");
}

TEST_F(DepositoEstado, ADischargeAfterTheReadingMakesItStale) {
  Hold(1, 1, "2026-11-03 10:00:00", 1, 1);
  Read(1, 1, "2026-11-03 09:00:00", "1200", "900");
  EXPECT_EQ(State(tank1), "1 0 Null");
  EXPECT_EQ(MomentOf(tank1), At("2026-11-03 10:00:00"));
}

TEST_F(DepositoEstado, AnInflowAfterTheReadingIsAdded) {
  Hold(1, 1, "2026-11-03 08:00:00", 1, 1);
  Read(1, 1, "2026-11-03 09:00:00", "1200", "900");
  Emptied(2, 1, "2026-11-03 10:00:00", 50, 1);
  Emptied(3, 1, "2026-11-03 11:00:00", 25, 1);
  EXPECT_EQ(State(tank1), "2 975 Null");
  EXPECT_EQ(MomentOf(tank1), At("2026-11-03 11:00:00"));
}

TEST_F(DepositoEstado, AnInflowAfterADischargeThatFollowsTheReadingIsAddedToTheReading) {
  Read(1, 1, "2026-11-03 09:00:00", "1200", "900");
  Hold(1, 1, "2026-11-03 10:00:00", 1, 1);
  Emptied(2, 1, "2026-11-03 11:00:00", 50, 1);
  EXPECT_EQ(State(tank1), "2 950 Null");
}

TEST_F(DepositoEstado, AnEmptyingAfterTheReadingIsSubtracted) {
  Hold(1, 1, "2026-11-03 08:00:00", 1, 1);
  Read(1, 1, "2026-11-03 09:00:00", "1200", "1000");
  Emptied(1, 1, "2026-11-03 10:00:00", 200, 0);
  EXPECT_EQ(State(tank1), "2 800 Null");
  EXPECT_EQ(MomentOf(tank1), At("2026-11-03 10:00:00"));
}

TEST_F(DepositoEstado, AnEmptyingAtTheMomentOfTheReadingIsNotCounted) {
  Hold(1, 1, "2026-11-03 08:00:00", 1, 1);
  Read(1, 1, "2026-11-03 09:00:00", "1200", "1000");
  Emptied(1, 1, "2026-11-03 09:00:00", 200, 0);
  Emptied(2, 1, "2026-11-03 09:00:00", 70, 1);
  EXPECT_EQ(State(tank1), "3 1000 1200");
}

TEST_F(DepositoEstado, EmptyingsInAndOutBothCount) {
  Hold(1, 1, "2026-11-03 08:00:00", 1, 1);
  Read(1, 1, "2026-11-03 09:00:00", "1200", "1000");
  Emptied(1, 1, "2026-11-03 10:00:00", 200, 2);
  Emptied(2, 1, "2026-11-03 12:00:00", 50, 1);
  Emptied(1, 2, "2026-11-03 11:00:00", 10, 0);
  EXPECT_EQ(State(tank1), "2 840 Null");
  EXPECT_EQ(MomentOf(tank1), At("2026-11-03 12:00:00"));
}

TEST_F(DepositoEstado, MoreTakenOutThanReadGivesNegativeLitres) {
  Hold(1, 1, "2026-11-03 08:00:00", 1, 1);
  Read(1, 1, "2026-11-03 09:00:00", "1200", "100");
  Emptied(1, 1, "2026-11-03 10:00:00", 150, 0);
  EXPECT_EQ(tank1.LitrosActual(), Variant(-50.0));
}

TEST_F(DepositoEstado, AReadingOfNullCountsAsZero) {
  Hold(1, 1, "2026-11-03 08:00:00", 1, 1);
  Read(1, 1, "2026-11-03 09:00:00", "Null", "Null");
  EXPECT_EQ(State(tank1), "3 0 Null");
}

TEST_F(DepositoEstado, ADischargeWithoutEndIsNeverLaterThanTheReading) {
  Hold(1, 1, "", 1, 1);
  EXPECT_EQ(State(tank1), "1 0 Null");
  EXPECT_EQ(MomentOf(tank1), OleDate());
  Read(1, 1, "2026-11-03 09:00:00", "1200", "900");
  EXPECT_EQ(State(tank1), "3 900 1200");
}

TEST_F(DepositoEstado, AnInflowIsNeverLaterThanADischargeWithoutEnd) {
  Hold(1, 1, "", 1, 1);
  Emptied(2, 1, "2026-11-03 10:00:00", 100, 1);
  EXPECT_EQ(State(tank1), "1 0 Null");
}

TEST_F(DepositoEstado, OfSeveralReadingsAtTheLastMomentTheHighestNumberCounts) {
  Hold(1, 1, "2026-11-03 08:00:00", 1, 1);
  Read(1, 2, "2026-11-03 09:00:00", "1200", "900");
  Read(1, 1, "2026-11-03 09:00:00", "1100", "800");
  EXPECT_EQ(State(tank1), "3 900 1200");
}

TEST_F(DepositoEstado, FailingAtAnyRequestWritesNothing) {
  Hold(1, 1, "2026-11-03 08:00:00", 1, 1);
  Read(1, 1, "2026-11-03 09:00:00", "1200", "900");
  EXPECT_EQ(FailAtEveryRequest([&] { tank1.LitrosActual(); }), 7);
}

// --- kilograms

TEST_F(DepositoReadings, KilosActualWeighsTheOlivesByFraction) {
  Weigh({.lot = 1, .kilos = 1000});
  Weigh({.lot = 2, .hopper = 2, .kilos = 2000});
  Weigh({.lot = 3, .hopper = 3, .kilos = 4000});
  Hold(1, 1, "2026-11-03 08:00:00", 1, 0.5);
  Hold(2, 1, "2026-11-03 08:00:00", 1, 0.25);
  Hold(3, 1, "2026-11-03 08:00:00", 2, 1);
  EXPECT_THAT(Sent([&] { EXPECT_DOUBLE_EQ(tank1.KilosActual(), 1000); }),
              ElementsAre("select sum(PARCIALPESO*Fraccion) as pes from ExtPesada left join "
                          "Descargas on (ExtPesada.tolva=Descargas.Tolva) and "
                          "(ExtPesada.descarga=Descargas.Descarga) where (Deposito=1) "));
}

TEST_F(DepositoReadings, KilosActualOfAnEmptyTankIsZero) { EXPECT_EQ(tank1.KilosActual(), 0); }

}  // namespace
}  // namespace ambrelio
