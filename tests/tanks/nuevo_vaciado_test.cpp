// Emptying a tank.
#include <limits>

#include "ambrelio/tanks/vaciado.h"
#include "tanks/tank_test.h"

namespace ambrelio {
namespace {

using test::At;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Tank 1 holds 1000 litres: half of discharge 1 of hopper 1 and a quarter of hopper 2's.
class NuevoVaciado : public test::TankTest {
 protected:
  void SetUp() override {
    TankTest::SetUp();
    Hold(1, 1, "2026-11-03 08:00:00", 1, 0.5, 2);
    Hold(2, 1, "2026-11-03 09:00:00", 1, 0.25, 1);
    Read(1, 1, "2026-11-03 10:00:00", "1200", "1000");
    probe->events.clear();
  }

  // A sale of lot L-7 to client 7 by carrier 3.
  static Variant Sale() {
    return Variant::Array{int16_t{2}, "L-7", int32_t{7}, int32_t{3}, "Jaén"};
  }
  static Variant Use(const Variant& use, const Variant& lot = "L-7") {
    return Variant::Array{use, lot};
  }
  int32_t Empty(Deposito& tank, int16_t destination, double litres, const Variant& moment = {},
                const std::optional<Variant>& referents = {}) {
    return tank.NuevoVaciado(destination, litres, moment, referents);
  }
  // Expects a refusal that writes nothing and opens no transaction.
  void ExpectRefused(const std::function<int32_t()>& emptying) {
    const std::string before = Dump();
    const auto sent = Sent([&] { EXPECT_EQ(emptying(), 0); });
    EXPECT_THAT(sent, ::testing::Not(::testing::Contains("begin")));
    EXPECT_EQ(Dump(), before);
  }
  std::vector<std::string> Emptyings() {
    return Rows(
        "select Deposito, Vaciado, mmto, Cantidad, Destino, Uso, Lote, Cliente, Transportista, "
        "DestinoVenta from Vaciados order by Deposito, Vaciado");
  }
};

// --- what is written

TEST_F(NuevoVaciado, MovesTheShareOfEveryFractionToTheOtherTank) {
  EXPECT_EQ(Empty(tank1, 2, 400, At("2026-11-03 11:00:00")), 1);
  EXPECT_THAT(Fractions(1), ElementsAre("1/1=0.3", "2/1=0.15"));
  EXPECT_THAT(Fractions(2), ElementsAre("1/1=0.2", "2/1=0.1"));
  EXPECT_THAT(Emptyings(), ElementsAre("1|1|2026-11-03 11:00:00|400|2|0|Null|Null|Null|Null"));
}

TEST_F(NuevoVaciado, KeepsASnapshotOfTheFractionsBefore) {
  Hold(3, 1, "2026-11-03 09:00:00", 1, 0);
  Hold(1, 1, "2026-11-03 08:00:00", 3, 0.5);
  Empty(tank1, 2, 400);
  EXPECT_THAT(Rows("select Deposito, Vaciado, Tolva, Descarga, Molino, Fraccion from detVaciados "
                   "order by Tolva"),
              ElementsAre("1|1|1|1|2|0.5", "1|1|2|1|1|0.25"));
}

TEST_F(NuevoVaciado, CopiesTheDischargeIntoATankThatDidNotHaveIt) {
  Empty(tank1, 2, 400);
  EXPECT_THAT(Rows("select Tolva, Descarga, MomentoDesde, MomentoHasta, Molino from Descargas "
                   "where Deposito=2 order by Tolva"),
              ElementsAre("1|1|2026-11-01 07:00:00|2026-11-03 08:00:00|0",
                          "2|1|2026-11-01 07:00:00|2026-11-03 09:00:00|0"));
}

TEST_F(NuevoVaciado, AddsToATankThatHeldTheDischargeAlready) {
  Hold(1, 1, "2026-11-03 08:00:00", 2, 0.125);
  Empty(tank1, 2, 400);
  EXPECT_THAT(Fractions(2), ElementsAre("1/1=0.325", "2/1=0.1"));
}

TEST_F(NuevoVaciado, OutOfTheMillTakesTheShareAway) {
  EXPECT_EQ(Empty(tank1, 0, 400, {}, Use(int16_t{1})), 1);
  EXPECT_THAT(Fractions(1), ElementsAre("1/1=0.3", "2/1=0.15"));
  EXPECT_THAT(Rows("select * from Descargas where Deposito<>1"), IsEmpty());
}

TEST_F(NuevoVaciado, SendsItsStatementsInOrder) {
  const std::string insert_emptying =
      "insert into Vaciados (Deposito, Vaciado, mmto, Cantidad, Destino, Uso, Lote, Cliente, "
      "Transportista, DestinoVenta) values (1, 1, #11/3/2026 11:0:0#, 400.00000000, 2, 0, Null, "
      "Null, Null, Null) ";
  const std::string insert_snapshot =
      "insert into detVaciados (Deposito, Vaciado, Tolva, Descarga, Molino, Fraccion) select 1 as "
      "Deposito, 1 as Vaciado, Tolva, Descarga, Molino, Fraccion from Descargas where "
      "(Deposito=1) and (Fraccion>0) ";
  const auto change = [](const std::string& amount, const std::string& hopper,
                         const std::string& tank) {
    return "update Descargas set Fraccion= Fraccion" + amount + " where (Tolva=" + hopper +
           ") and (Descarga=1) and (Deposito=" + tank + ") ";
  };
  const auto copy = [](const std::string& amount, const std::string& hopper) {
    return "insert into Descargas (Tolva, Descarga, MomentoDesde, MomentoHasta, Deposito, "
           "Fraccion) select Tolva, Descarga, MomentoDesde, MomentoHasta, 2, " +
           amount + " from Descargas where (Tolva=" + hopper +
           ") and (Descarga=1) and (Deposito=1) ";
  };
  const std::string clear_dust = "update Descargas set Fraccion=0 where (Fraccion<0.0001) ";
  EXPECT_EQ(Sent([&] { Empty(tank1, 2, 400, At("2026-11-03 11:00:00")); }),
            Then(StateQueries("1", "2026-11-03 10:00:00"),
                 {"begin", "select max(Vaciado) from Vaciados where Deposito=1", insert_emptying,
                  insert_snapshot, "select * from Descargas where Deposito=1",
                  change("-0.20000000", "1", "1"), clear_dust, change("+0.20000000", "1", "2"),
                  copy("0.20000000", "1"), change("-0.10000000", "2", "1"), clear_dust,
                  change("+0.10000000", "2", "2"), copy("0.10000000", "2"), "commit"}));
}

TEST_F(NuevoVaciado, NumbersTheEmptyingsOfEachTank) {
  EXPECT_EQ(Empty(tank1, 2, 100), 1);
  clock.Set(At("2026-11-15 08:00:01"));
  EXPECT_EQ(Empty(tank1, 2, 100), 2);
  Read(2, 1, "2026-11-15 08:00:00", "300", "200");
  EXPECT_EQ(Empty(tank2, 1, 50), 1);
  EXPECT_EQ(tank1.UltimoVaciado(), 2);
}

TEST_F(NuevoVaciado, WithoutADateIsNow) {
  for (const Variant& moment : {Variant(), Variant::Null(), Variant(45000.0), Variant("ayer")}) {
    EXPECT_NE(Empty(tank1, 2, 10, moment), 0);
  }
  EXPECT_THAT(Rows("select count(*) from Vaciados where mmto=#11/15/2026 8:0:0#"),
              ElementsAre("4"));
}

TEST_F(NuevoVaciado, ReadsADateFromText) {
  EXPECT_EQ(Empty(tank1, 2, 10, "2026-11-03 11:30:00"), 1);
  EXPECT_THAT(Rows("select mmto from Vaciados"), ElementsAre("2026-11-03 11:30:00"));
}

// --- use data

TEST_F(NuevoVaciado, WritesUseAndLotWithoutReferents) {
  const auto sent = Sent([&] { EXPECT_EQ(Empty(tank1, 0, 100, {}, Use(int16_t{1})), 1); });
  EXPECT_THAT(sent, ::testing::Contains(
                        "insert into Vaciados (Deposito, Vaciado, mmto, Cantidad, Destino, Uso, "
                        "Lote, Cliente, Transportista, DestinoVenta) values (1, 1, #11/15/2026 "
                        "8:0:0#, 100.00000000, 0, 1, 'L-7', Null, Null, Null) "));
  EXPECT_THAT(Emptyings(), ElementsAre("1|1|2026-11-15 08:00:00|100|0|1|L-7|Null|Null|Null"));
}

TEST_F(NuevoVaciado, WritesClientCarrierAndDestinationOfASale) {
  EXPECT_EQ(Empty(tank1, 0, 100, {}, Sale()), 1);
  EXPECT_THAT(Emptyings(), ElementsAre("1|1|2026-11-15 08:00:00|100|0|2|L-7|7|3|Jaén"));
}

TEST_F(NuevoVaciado, WritesEmptyTextsAsNull) {
  Empty(tank1, 0, 100, {}, Variant::Array{int16_t{2}, "", int32_t{7}, int32_t{3}, ""});
  EXPECT_THAT(Emptyings(), ElementsAre("1|1|2026-11-15 08:00:00|100|0|2|Null|7|3|Null"));
}

TEST_F(NuevoVaciado, TakesAcuteAccentsForApostrophesInTexts) {
  Empty(tank1, 0, 100, {}, Variant::Array{int16_t{2}, " L'7 ", int32_t{7}, int32_t{3}, "L'Aquila"});
  EXPECT_THAT(Rows("select Lote, DestinoVenta from Vaciados"), ElementsAre("L´7|L´Aquila"));
}

TEST_F(NuevoVaciado, AcceptsUseDataForATransfer) {
  EXPECT_EQ(Empty(tank1, 2, 100, {}, Use(int16_t{0})), 1);
  EXPECT_THAT(Emptyings(), ElementsAre("1|1|2026-11-15 08:00:00|100|2|0|L-7|Null|Null|Null"));
}

TEST_F(NuevoVaciado, ConvertsTheElementsOfTheUseData) {
  Empty(tank1, 0, 100, {}, Variant::Array{"2", int16_t{15}, "7", 2.5, int16_t{9}});
  EXPECT_THAT(Emptyings(), ElementsAre("1|1|2026-11-15 08:00:00|100|0|2|15|7|2|9"));
}

TEST_F(NuevoVaciado, PassesOverElementsThatTheUseDoesNotHave) {
  EXPECT_EQ(Empty(tank1, 0, 100, {}, Variant::Array{int16_t{0}, "L", "x", "x", "x", "x"}), 1);
}

TEST_F(NuevoVaciado, OfAnUnknownUseIsRefusedByTheEngineInsideTheTransaction) {
  const std::string before = Dump();
  for (const int16_t use : {int16_t{-1}, int16_t{3}}) {
    EXPECT_EQ(ErrorOf([&] { Empty(tank1, 0, 100, {}, Use(use)); }), 3134) << use;
    EXPECT_EQ(probe->level, 1);
    Reopen();
    EXPECT_EQ(Dump(), before);
  }
}

TEST_F(NuevoVaciado, OfUnreadableUseDataFailsInsideTheTransaction) {
  const auto error_of = [&](const Variant& referents) {
    const int error = ErrorOf([&] { Empty(tank1, 0, 100, {}, referents); });
    EXPECT_EQ(probe->level, 1);
    Reopen();
    return error;
  };
  EXPECT_EQ(error_of(Variant()), 13);
  EXPECT_EQ(error_of("2"), 13);
  EXPECT_EQ(error_of(Variant::Array{}), 9);
  EXPECT_EQ(error_of(Variant::Array{int16_t{0}}), 9);
  EXPECT_EQ(error_of(Variant::Array{int16_t{2}, "L", int32_t{7}, int32_t{3}}), 9);
  EXPECT_EQ(error_of(Use(int32_t{40000})), 6);
  EXPECT_EQ(error_of(Use(Variant::Null())), 94);
  EXPECT_EQ(error_of(Use(int16_t{0}, Variant::Null())), 94);
  EXPECT_EQ(error_of(Variant::Array{int16_t{2}, "L", "cliente", int32_t{3}, ""}), 13);
  EXPECT_THAT(Emptyings(), IsEmpty());
}

// --- quantities

TEST_F(NuevoVaciado, LowersTheQuantityToWhatThereIs) {
  double litres = 1500;
  EXPECT_EQ(tank1.NuevoVaciado(2, litres), 1);
  EXPECT_EQ(litres, 1000);
  EXPECT_THAT(Fractions(1), ElementsAre("1/1=0", "2/1=0"));
  EXPECT_THAT(Fractions(2), ElementsAre("1/1=0.5", "2/1=0.25"));
  EXPECT_THAT(Rows("select Cantidad from Vaciados"), ElementsAre("1000"));
}

TEST_F(NuevoVaciado, LowersTheQuantityAlsoWhenTheMomentIsThenRefused) {
  double litres = 1500;
  EXPECT_EQ(tank1.NuevoVaciado(2, litres, At("2026-11-03 10:00:00")), 0);
  EXPECT_EQ(litres, 1000);
}

TEST_F(NuevoVaciado, LeavesASmallerQuantityAlone) {
  double litres = 400;
  tank1.NuevoVaciado(2, litres);
  EXPECT_EQ(litres, 400);
}

TEST_F(NuevoVaciado, RefusesAQuantityOfZeroOrNoNumber) {
  ExpectRefused([&] { return Empty(tank1, 2, 0); });
  ExpectRefused([&] { return Empty(tank1, 2, std::numeric_limits<double>::quiet_NaN()); });
}

TEST_F(NuevoVaciado, AcceptsANegativeQuantity) {
  Hold(1, 1, "2026-11-03 08:00:00", 2, 0.5);
  Hold(2, 1, "2026-11-03 09:00:00", 2, 0.5);
  EXPECT_EQ(Empty(tank1, 2, -400), 1);
  EXPECT_THAT(Fractions(1), ElementsAre("1/1=0.7", "2/1=0.35"));
  EXPECT_THAT(Fractions(2), ElementsAre("1/1=0.3", "2/1=0.4"));
}

TEST_F(NuevoVaciado, LowersAnyQuantityToNegativeContent) {
  Emptied(1, 1, "2026-11-03 11:00:00", 1500, 0);
  double litres = 100;
  EXPECT_EQ(tank1.NuevoVaciado(2, litres), 2);
  EXPECT_EQ(litres, -500);
  EXPECT_THAT(Fractions(1), ElementsAre("1/1=0", "2/1=0"));
}

// --- refusals

TEST_F(NuevoVaciado, RefusesADestinationOutOfRangeBeforeAskingAnything) {
  EXPECT_THAT(Sent([&] {
                EXPECT_EQ(Empty(tank1, -1, 100, {}, Use(int16_t{0})), 0);
                EXPECT_EQ(Empty(tank1, 7, 100, {}, Use(int16_t{0})), 0);
              }),
              IsEmpty());
  EXPECT_EQ(Empty(tank1, 6, 100), 1);
}

TEST_F(NuevoVaciado, RefusesToLeaveTheMillWithoutUseDataBeforeAskingAnything) {
  EXPECT_THAT(Sent([&] { EXPECT_EQ(Empty(tank1, 0, 100), 0); }), IsEmpty());
}

TEST_F(NuevoVaciado, RefusesATankThatNeverReceivedOil) {
  ExpectRefused([&] { return Empty(tank3, 2, 100); });
}

TEST_F(NuevoVaciado, RefusesATankWithoutLitres) {
  Hold(1, 1, "2026-11-03 08:00:00", 3, 0.5);
  ExpectRefused([&] { return Empty(tank3, 2, 100); });
}

TEST_F(NuevoVaciado, RefusesATankWithAnInflowButNoReading) {
  ASSERT_EQ(Empty(tank1, 2, 400), 1);
  ExpectRefused([&] { return Empty(tank2, 3, 100); });
}

TEST_F(NuevoVaciado, RefusesAMomentNotLaterThanTheLastMovement) {
  ExpectRefused([&] { return Empty(tank1, 2, 100, At("2026-11-03 10:00:00")); });
  ExpectRefused([&] { return Empty(tank1, 2, 100, At("2026-11-03 09:59:59")); });
  EXPECT_EQ(Empty(tank1, 2, 100, At("2026-11-03 10:00:01")), 1);
  ExpectRefused([&] { return Empty(tank1, 2, 100, At("2026-11-03 10:00:01")); });
}

TEST_F(NuevoVaciado, WithoutAMomentDoesNotLookAtTheLastMovement) {
  clock.Set(At("2026-11-03 10:00:00"));
  EXPECT_EQ(Empty(tank1, 2, 100), 1);
}

TEST_F(NuevoVaciado, RollsBackForATankWithoutAnyPositiveFraction) {
  Execute("update Descargas set Fraccion=0");
  const std::string before = Dump();
  const auto sent = Sent([&] { EXPECT_EQ(Empty(tank1, 2, 100), 0); });
  EXPECT_EQ(sent.back(), "rollback");
  EXPECT_EQ(probe->level, 0);
  EXPECT_EQ(Dump(), before);
}

TEST_F(NuevoVaciado, RollsBackWhenTheEmptyingCannotBeInserted) {
  const std::string before = Dump();
  const auto sent = Sent([&] {
    probe->SkipAt(10);
    EXPECT_EQ(Empty(tank1, 2, 100), 0);
  });
  ASSERT_EQ(sent.size(), 11U);
  EXPECT_TRUE(sent[9].starts_with("insert into Vaciados")) << sent[9];
  EXPECT_EQ(sent[10], "rollback");
  EXPECT_EQ(probe->level, 0);
  EXPECT_EQ(Dump(), before);
}

TEST_F(NuevoVaciado, RollsBackOverTheSnapshotOfAnEarlierSeason) {
  Execute(
      "insert into detVaciados (Deposito, Vaciado, Tolva, Descarga, Fraccion) values "
      "(1, 1, 1, 1, 0.5)");
  Execute(
      "insert into detVaciados (Deposito, Vaciado, Tolva, Descarga, Fraccion) values "
      "(1, 1, 2, 1, 0.5)");
  const std::string before = Dump();
  EXPECT_EQ(Empty(tank1, 2, 100), 0);
  EXPECT_EQ(Dump(), before);
}

TEST_F(NuevoVaciado, RaisesOverflowBehindTheLastNumber) {
  Emptied(1, 2147483647, "2026-11-03 09:00:00", 1, 0);
  EXPECT_EQ(ErrorOf([&] { Empty(tank1, 2, 100); }), 6);
  EXPECT_EQ(probe->level, 1);
}

TEST_F(NuevoVaciado, RaisesOverflowForAShareOutOfRange) {
  Execute("update Niveles set Litros=1E-300");
  EXPECT_EQ(ErrorOf([&] { Empty(tank1, 2, -1e100); }), 6);
  EXPECT_EQ(probe->level, 0);
}

// --- the walk over the fractions

TEST_F(NuevoVaciado, PassesOverAFractionThatTheWalkHasClearedAsDust) {
  Hold(3, 1, "2026-11-03 08:00:00", 1, 0.00009);
  const auto sent = Sent([&] { Empty(tank1, 2, 400); });
  EXPECT_THAT(Fractions(1), ElementsAre("1/1=0.3", "2/1=0.15", "3/1=0"));
  EXPECT_THAT(Fractions(2), ElementsAre("1/1=0.2", "2/1=0.1"));
  for (const std::string& sql : sent) EXPECT_EQ(sql.find("(Tolva=3)"), std::string::npos) << sql;
  // It was there when the snapshot was taken.
  EXPECT_THAT(Rows("select Fraccion from detVaciados where Tolva=3"), ElementsAre("0.00009"));
}

TEST_F(NuevoVaciado, MovesDustThatTheWalkReadsFirst) {
  Execute("update Descargas set Fraccion=0.00009 where Tolva=1");
  const auto sent = Sent([&] { Empty(tank1, 2, 500); });
  EXPECT_THAT(sent, ::testing::Contains(::testing::HasSubstr("2, 0.00004500 from Descargas")));
  EXPECT_THAT(Fractions(1), ElementsAre("1/1=0", "2/1=0.125"));
  // Inserted after the clean-up of its row, then cleared by that of the next one.
  EXPECT_THAT(Fractions(2), ElementsAre("1/1=0", "2/1=0.125"));
}

TEST_F(NuevoVaciado, IntoTheTankItselfLeavesTheFractionsAsTheyAre) {
  EXPECT_EQ(Empty(tank1, 1, 400), 1);
  EXPECT_THAT(Fractions(1), ElementsAre("1/1=0.5", "2/1=0.25"));
}

TEST_F(NuevoVaciado, PassesOverNullFractions) {
  Hold(3, 1, "2026-11-03 08:00:00", 1, 0);
  Execute("update Descargas set Fraccion=Null where Tolva=3");
  EXPECT_EQ(Empty(tank1, 2, 400), 1);
  EXPECT_THAT(Fractions(2), ElementsAre("1/1=0.2", "2/1=0.1"));
}

TEST_F(NuevoVaciado, FailingAtAnyRequestLeavesItsLevelOpenAndClosingUndoesIt) {
  EXPECT_EQ(FailAtEveryRequest([&] { Empty(tank1, 2, 400); }), 21);
  EXPECT_THAT(Fractions(2), ElementsAre("1/1=0.2", "2/1=0.1"));
}

TEST_F(NuevoVaciado, AfterAFailureTheNextOneIsLostWithTheOpenLevel) {
  const std::string before = Dump();
  EXPECT_EQ(ErrorOf([&] { Empty(tank1, 0, 100, {}, Use(int16_t{9})); }), 3134);
  EXPECT_EQ(Empty(tank1, 2, 400), 1);
  EXPECT_EQ(probe->level, 1);
  Reopen();
  EXPECT_EQ(Dump(), before);
}

TEST_F(NuevoVaciado, AfterFiveFailuresNoLevelIsLeft) {
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(ErrorOf([&] { Empty(tank1, 0, 100, {}, Use(int16_t{9})); }), 3134);
  }
  EXPECT_EQ(ErrorOf([&] { Empty(tank1, 2, 100); }), 3003);
}

// --- the last emptying

TEST_F(NuevoVaciado, UltimoVaciadoIsTheLatestByMoment) {
  EXPECT_THAT(Sent([&] { EXPECT_EQ(tank1.UltimoVaciado(), 0); }),
              ElementsAre("select Vaciado, mmto, Destino from Vaciados where Deposito=1 order by "
                          "mmto "));
  Emptied(1, 5, "2026-11-05 10:00:00", 10, 0);
  Emptied(1, 6, "2026-11-04 10:00:00", 10, 0);
  Emptied(2, 9, "2026-11-06 10:00:00", 10, 1);
  EXPECT_EQ(tank1.UltimoVaciado(), 5);
}

TEST_F(NuevoVaciado, OfEqualMomentsUltimoVaciadoIsTheHighestNumber) {
  Emptied(1, 6, "2026-11-04 10:00:00", 10, 0);
  Emptied(1, 5, "2026-11-04 10:00:00", 10, 0);
  EXPECT_EQ(tank1.UltimoVaciado(), 6);
}

TEST_F(NuevoVaciado, VaciadoHandsOutAnEmptyingThatExists) {
  Emptied(1, 3, "2026-11-04 10:00:00", 10, 0);
  const auto sent = Sent([&] {
    const auto emptying = tank1.Vaciado(3);
    ASSERT_NE(emptying, nullptr);
    EXPECT_EQ(emptying->Deposito(), 1);
    EXPECT_EQ(emptying->Codigo(), 3);
    EXPECT_STREQ(emptying->ClassName(), "Vaciado");
  });
  ASSERT_EQ(sent.size(), 2U);
  EXPECT_EQ(sent[0], "select Vaciado from Vaciados where (Deposito=1) and (Vaciado=3) ");
  EXPECT_TRUE(sent[1].starts_with("(select MomentoHasta as mmto")) << sent[1];
}

TEST_F(NuevoVaciado, VaciadoIsNothingForAnEmptyingThatDoesNotExist) {
  Emptied(2, 3, "2026-11-04 10:00:00", 10, 0);
  EXPECT_EQ(tank1.Vaciado(3), nullptr);
  EXPECT_THAT(Sent([&] {
                EXPECT_EQ(tank1.Vaciado(0), nullptr);
                EXPECT_EQ(tank1.Vaciado(-3), nullptr);
              }),
              IsEmpty());
}

}  // namespace
}  // namespace ambrelio
