// The record of a tank: name, capacity table, history, last movement, composition.
#include "ambrelio/value/locale.h"
#include "tanks/tank_test.h"

namespace ambrelio {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DepositoNombre : public test::TankTest {};
class DepositoFormula : public test::TankTest {
 protected:
  static Variant Band(std::initializer_list<Variant> values) { return Variant::Array(values); }
};
class DepositoCapacidad : public test::TankTest {
 protected:
  void AddBand(const std::string& values) {
    Execute("insert into Capacidad (Deposito, Nivel, A0, A1, A2, A3) values (" + values + ")");
  }
};
class DepositoUltimoMovimiento : public test::TankTest {};
class DepositoComposicion : public test::TankTest {};

// --- name

TEST_F(DepositoNombre, IsEmptyForATankWithoutOne) {
  EXPECT_THAT(Sent([&] { EXPECT_EQ(tank3.Nombre(), ""); }),
              ElementsAre("select Nombre from Depositos where Codigo=3"));
}

TEST_F(DepositoNombre, OfNullIsEmpty) {
  Execute("insert into Depositos (Codigo, Nombre) values (3, Null)");
  EXPECT_EQ(tank3.Nombre(), "");
}

TEST_F(DepositoNombre, IsInsertedForATankWithoutOne) {
  EXPECT_THAT(Sent([&] { tank3.SetNombre("Bodega alta"); }),
              ElementsAre("update Depositos set Nombre='Bodega alta' where Codigo=3",
                          "insert into Depositos (Codigo, Nombre) values (3, 'Bodega alta') "));
  EXPECT_EQ(tank3.Nombre(), "Bodega alta");
}

TEST_F(DepositoNombre, IsUpdatedForATankWithOne) {
  tank3.SetNombre("Bodega alta");
  tank2.SetNombre("Patio");
  EXPECT_THAT(Sent([&] { tank3.SetNombre("Bodega baja"); }),
              ElementsAre("update Depositos set Nombre='Bodega baja' where Codigo=3"));
  EXPECT_THAT(Rows("select Codigo, Nombre from Depositos order by Codigo"),
              ElementsAre("2|Patio", "3|Bodega baja"));
}

TEST_F(DepositoNombre, TakesAcuteAccentsForApostrophes) {
  tank3.SetNombre("O'Neil 'A'");
  EXPECT_EQ(tank3.Nombre(), "O´Neil ´A´");
}

TEST_F(DepositoNombre, KeepsOuterBlanks) {
  EXPECT_EQ(Sent([&] { tank3.SetNombre("  Patio "); }).at(0),
            "update Depositos set Nombre='  Patio ' where Codigo=3");
  EXPECT_EQ(tank3.Nombre(), "  Patio ");
}

TEST_F(DepositoNombre, IsCutToFortyCharacters) {
  tank3.SetNombre(std::string(50, 'x'));
  EXPECT_EQ(tank3.Nombre(), std::string(40, 'x'));
}

TEST_F(DepositoNombre, SetEmptyRemovesTheRow) {
  tank3.SetNombre("Patio");
  EXPECT_THAT(Sent([&] { tank3.SetNombre(""); }),
              ElementsAre("delete from Depositos where Codigo=3"));
  EXPECT_THAT(Rows("select * from Depositos"), IsEmpty());
}

// --- capacity table

TEST_F(DepositoFormula, IsEmptyForATankWithoutRows) {
  EXPECT_THAT(Sent([&] { EXPECT_TRUE(tank3.Formula().is_empty()); }),
              ElementsAre("select * from Capacidad where (Deposito=3) order by nivel "));
}

TEST_F(DepositoFormula, ListsItsBandsByLevel) {
  Execute("insert into Capacidad (Deposito, Nivel, A0, A1, A2, A3) values (3, 200, 5, 6, 7, 8)");
  Execute("insert into Capacidad (Deposito, Nivel, A0, A1, A2, A3) values (3, 100, 1, 2, 3, 4)");
  Execute("insert into Capacidad (Deposito, Nivel, A0, A1, A2, A3) values (2, 50, 9, 9, 9, 9)");
  EXPECT_EQ(test::Show(tank3.Formula()), "[[100, 1, 2, 3, 4], [200, 5, 6, 7, 8]]");
}

TEST_F(DepositoFormula, ReadsNullAsZero) {
  Execute("insert into Capacidad (Deposito, Nivel, A2) values (3, 100, 7)");
  EXPECT_EQ(test::Show(tank3.Formula()), "[[100, 0, 0, 7, 0]]");
}

TEST_F(DepositoFormula, SetReplacesTheWholeTableOfThisTankOnly) {
  Execute("insert into Capacidad (Deposito, Nivel, A0) values (3, 70, 9)");
  Execute("insert into Capacidad (Deposito, Nivel, A0) values (2, 80, 9)");
  const Variant rows =
      Variant::Array{Band({int16_t{200}, 0.0, 2.5, 0.0, -0.125}), Band({int16_t{100}, 1.0})};
  EXPECT_THAT(
      Sent([&] { tank3.SetFormula(rows); }),
      ElementsAre("delete from Capacidad where Deposito=3",
                  "insert into Capacidad (Deposito, Nivel, A0, A1, A2, A3) values (3, 200, 0, "
                  "2.50000000, 0, -0.12500000) ",
                  "insert into Capacidad (Deposito, Nivel, A0, A1, A2, A3) values (3, 100, "
                  "1.00000000, 0, 0, 0) "));
  EXPECT_THAT(
      Rows("select Deposito, Nivel, A0, A1, A2, A3 from Capacidad order by Deposito, Nivel"),
      ElementsAre("2|80|9|Null|Null|Null", "3|100|1|0|0|0", "3|200|0|2.5|0|-0.125"));
}

TEST_F(DepositoFormula, SetToAnythingButAnArrayClearsTheTable) {
  for (const Variant& value :
       {Variant(), Variant::Null(), Variant(int16_t{5}), Variant("x"), Variant::Nothing()}) {
    Execute("insert into Capacidad (Deposito, Nivel, A0) values (3, 70, 9)");
    EXPECT_THAT(Sent([&] { tank3.SetFormula(value); }),
                ElementsAre("delete from Capacidad where Deposito=3"));
    EXPECT_TRUE(tank3.Formula().is_empty());
  }
}

TEST_F(DepositoFormula, SetToAnEmptyArrayClearsTheTable) {
  Execute("insert into Capacidad (Deposito, Nivel, A0) values (3, 70, 9)");
  tank3.SetFormula(Variant::Array{});
  EXPECT_TRUE(tank3.Formula().is_empty());
}

TEST_F(DepositoFormula, SetPassesOverElementsThatAreNoRows) {
  tank3.SetFormula(Variant::Array{Variant("x"), Band({int16_t{100}, 1.0}), Variant()});
  EXPECT_EQ(test::Show(tank3.Formula()), "[[100, 1, 0, 0, 0]]");
}

TEST_F(DepositoFormula, SetIgnoresWhatFollowsTheFourthCoefficient) {
  tank3.SetFormula(Variant::Array{Band({int16_t{100}, 1.0, 2.0, 3.0, 4.0, 5.0})});
  EXPECT_EQ(test::Show(tank3.Formula()), "[[100, 1, 2, 3, 4]]");
}

TEST_F(DepositoFormula, SetReadsCoefficientsGivenAsText) {
  tank3.SetFormula(Variant::Array{Band({"100", "1.5", true})});
  EXPECT_EQ(test::Show(tank3.Formula()), "[[100, 1.5, -1, 0, 0]]");
}

TEST_F(DepositoFormula, SetWritesTheLevelAsItReads) {
  tank3.SetFormula(Variant::Array{Band({12.5, 1.0})});
  EXPECT_EQ(test::Show(tank3.Formula()), "[[12.5, 1, 0, 0, 0]]");
}

TEST_F(DepositoFormula, SetWithAFractionalLevelFailsUnderADecimalComma) {
  const ScopedLocale spanish(Locale::FromName("es_ES.UTF-8"));
  EXPECT_EQ(ErrorOf([&] { tank3.SetFormula(Variant::Array{Band({12.5, 1.0})}); }), 3346);
  tank3.SetFormula(Variant::Array{Band({12.0, 1.5})});
  EXPECT_THAT(Rows("select A0 from Capacidad where Nivel=12"), ElementsAre("1,5"));
}

TEST_F(DepositoFormula, SetFailsForALevelThatIsNoNumber) {
  EXPECT_EQ(ErrorOf([&] { tank3.SetFormula(Variant::Array{Band({"alto", 1.0})}); }), 3061);
  EXPECT_EQ(ErrorOf([&] { tank3.SetFormula(Variant::Array{Band({Variant::Null(), 1.0})}); }), 94);
  EXPECT_EQ(ErrorOf([&] { tank3.SetFormula(Variant::Array{Band({Variant(Variant::Array{})})}); }),
            13);
}

TEST_F(DepositoFormula, SetFailsForARowWithoutLevel) {
  EXPECT_EQ(ErrorOf([&] { tank3.SetFormula(Variant::Array{Variant(Variant::Array{})}); }), 9);
}

TEST_F(DepositoFormula, SetFailsForACoefficientThatIsNoNumberAndKeepsTheRowsBefore) {
  EXPECT_EQ(
      ErrorOf([&] {
        tank3.SetFormula(Variant::Array{Band({int16_t{100}, 1.0}), Band({int16_t{200}, 1.0, "x"}),
                                        Band({int16_t{300}, 1.0})});
      }),
      13);
  EXPECT_EQ(test::Show(tank3.Formula()), "[[100, 1, 0, 0, 0]]");
}

TEST_F(DepositoFormula, SetOfMoreRowsThanSixteenBitsCountFailsAfterTheClearing) {
  const auto sent =
      Sent([&] { EXPECT_EQ(ErrorOf([&] { tank3.SetFormula(Variant::Array(32768)); }), 6); });
  EXPECT_THAT(sent, ElementsAre("delete from Capacidad where Deposito=3"));
  EXPECT_EQ(ErrorOf([&] { tank3.SetFormula(Variant::Array(32767)); }), 0);
}

// --- litres at a level

TEST_F(DepositoCapacidad, IsZeroWithoutRows) {
  EXPECT_THAT(Sent([&] { EXPECT_EQ(tank3.Capacidad(0), 0); }),
              ElementsAre("select * from Capacidad where (Deposito=3) and (10*nivel>=0) "
                          "order by nivel "));
}

TEST_F(DepositoCapacidad, IsThePolynomialOfTheLevelInUnitsOfTheTable) {
  AddBand("3, 200, 1, 2, 3, 4");
  EXPECT_DOUBLE_EQ(tank3.Capacidad(20), 1 + 2 * 2 + 3 * 4 + 4 * 8);
  EXPECT_DOUBLE_EQ(tank3.Capacidad(1234), 1 + 123.4 * (2 + 123.4 * (3 + 123.4 * 4)));
}

TEST_F(DepositoCapacidad, UsesTheLowestBandThatReachesTheLevel) {
  AddBand("3, 200, 0, 2, 0, 0");
  AddBand("3, 100, 0, 1, 0, 0");
  EXPECT_DOUBLE_EQ(tank3.Capacidad(1000), 100);
  EXPECT_DOUBLE_EQ(tank3.Capacidad(1001), 200.2);
  EXPECT_DOUBLE_EQ(tank3.Capacidad(2000), 400);
}

TEST_F(DepositoCapacidad, UsesTheFirstBandBelowItsLimit) {
  AddBand("3, 100, 7, 1, 0, 0");
  EXPECT_DOUBLE_EQ(tank3.Capacidad(0), 7);
  EXPECT_DOUBLE_EQ(tank3.Capacidad(-10), 6);
}

TEST_F(DepositoCapacidad, IsZeroAboveTheLastBand) {
  AddBand("3, 200, 5, 2, 0, 0");
  EXPECT_EQ(tank3.Capacidad(2001), 0);
}

TEST_F(DepositoCapacidad, TakesANullCoefficientForZero) {
  AddBand("3, 200, Null, 2, Null, Null");
  EXPECT_DOUBLE_EQ(tank3.Capacidad(100), 20);
}

TEST_F(DepositoCapacidad, OfAnotherTankDoesNotCount) {
  AddBand("2, 200, 5, 2, 0, 0");
  EXPECT_EQ(tank3.Capacidad(10), 0);
}

TEST_F(DepositoCapacidad, RaisesOverflowOutOfTheRangeOfANumber) {
  AddBand("3, 200000000, 0, 0, 0, 1E+300");
  EXPECT_EQ(ErrorOf([&] { tank3.Capacidad(2000000000); }), 6);
}

// --- last movement

TEST_F(DepositoUltimoMovimiento, OfATankNeverUsedIsZeroAndLeavesTheMomentAlone) {
  Variant litres;
  Variant level;
  OleDate moment = test::At("2000-01-01 00:00:00");
  EXPECT_EQ(tank1.UltimoMovimiento(litres, level, moment), 0);
  EXPECT_TRUE(litres.is_null());
  EXPECT_TRUE(level.is_null());
  EXPECT_EQ(moment, test::At("2000-01-01 00:00:00"));
}

TEST_F(DepositoUltimoMovimiento, IsADischargeWithoutReadingAfterIt) {
  Hold(1, 1, "2026-11-03 10:00:00", 1, 1);
  Variant litres;
  Variant level;
  OleDate moment;
  EXPECT_EQ(tank1.UltimoMovimiento(litres, level, moment), 1);
  EXPECT_TRUE(litres.is_null());
  EXPECT_TRUE(level.is_null());
  EXPECT_EQ(moment, test::At("2026-11-03 10:00:00"));
}

TEST_F(DepositoUltimoMovimiento, IsTheReadingThatIsCurrent) {
  Hold(1, 1, "2026-11-03 10:00:00", 1, 1);
  Read(1, 1, "2026-11-03 11:00:00", "1200", "900");
  Variant litres;
  Variant level;
  OleDate moment;
  EXPECT_EQ(tank1.UltimoMovimiento(litres, level, moment), 3);
  EXPECT_EQ(litres, Variant(900.0));
  EXPECT_EQ(level, Variant(int32_t{1200}));
  EXPECT_EQ(moment, test::At("2026-11-03 11:00:00"));
}

TEST_F(DepositoUltimoMovimiento, AfterAnEmptyingHasTheRemainingLitresAndNoLevel) {
  Hold(1, 1, "2026-11-03 10:00:00", 1, 1);
  Read(1, 1, "2026-11-03 11:00:00", "1200", "900");
  Emptied(1, 1, "2026-11-03 12:00:00", 300, 4);
  Variant litres;
  Variant level;
  OleDate moment;
  EXPECT_EQ(tank1.UltimoMovimiento(litres, level, moment), 2);
  EXPECT_EQ(litres, Variant(600.0));
  EXPECT_TRUE(level.is_null());
  EXPECT_EQ(moment, test::At("2026-11-03 12:00:00"));
}

TEST_F(DepositoUltimoMovimiento, GivesNullForLitresAndLevelThatAreNotPositive) {
  Hold(1, 1, "2026-11-03 10:00:00", 1, 1);
  Read(1, 1, "2026-11-03 11:00:00", "Null", "0");
  Variant litres;
  Variant level;
  OleDate moment;
  EXPECT_EQ(tank1.UltimoMovimiento(litres, level, moment), 3);
  EXPECT_TRUE(litres.is_null());
  EXPECT_TRUE(level.is_null());
  Emptied(1, 1, "2026-11-03 12:00:00", 300, 4);
  EXPECT_EQ(tank1.UltimoMovimiento(litres, level, moment), 2);
  EXPECT_TRUE(litres.is_null());
}

// --- composition

TEST_F(DepositoComposicion, SharesTheLitresOutByWeightAndFraction) {
  Weigh({.lot = 1, .kilos = 1000, .member = 11});
  Weigh({.lot = 2, .hopper = 2, .kilos = 2000, .member = 12});
  Hold(1, 1, "2026-11-03 10:00:00", 1, 0.5);
  Hold(2, 1, "2026-11-03 10:00:00", 1, 0.25);
  Read(1, 1, "2026-11-03 11:00:00", "1200", "180");
  EXPECT_EQ(test::Show(tank1.Composicion(1)), "[[11, , 50, 90], [12, , 50, 90]]");
}

TEST_F(DepositoComposicion, ByMillLineNamesTheLines) {
  Weigh({.lot = 1, .kilos = 1000});
  Weigh({.lot = 2, .hopper = 2, .kilos = 3000});
  Hold(1, 1, "2026-11-03 10:00:00", 1, 1, 2);
  Hold(2, 1, "2026-11-03 10:00:00", 1, 1, 1);
  Read(1, 1, "2026-11-03 11:00:00", "1200", "800");
  EXPECT_EQ(test::Show(tank1.Composicion(5)), "[[1, 1, 75, 600], [2, 2, 25, 200]]");
}

TEST_F(DepositoComposicion, AsksForTheStateThenTheWeightThenTheGroups) {
  Weigh({.lot = 1, .kilos = 1000});
  Hold(1, 1, "2026-11-03 10:00:00", 1, 1);
  Read(1, 1, "2026-11-03 11:00:00", "1200", "800");
  EXPECT_EQ(
      Sent([&] { tank1.Composicion(4); }),
      Then(StateQueries("1", "2026-11-03 11:00:00"),
           {"select sum(PARCIALPESO*Fraccion) as pes from ExtPesada left join Descargas on "
            "(ExtPesada.tolva=Descargas.Tolva) and (ExtPesada.descarga=Descargas.Descarga) where "
            "(Deposito=1) ",
            "select paraje as campo, sum(PARCIALPESO*Fraccion) as pes from ExtPesada left join "
            "(select Tolva, Descarga, Molino, Fraccion from Descargas where (Deposito=1) and "
            "(Fraccion>0)) as dgas on (ExtPesada.Tolva=dgas.Tolva) and "
            "(ExtPesada.Descarga=dgas.Descarga) where not isnull(Fraccion) group by paraje order "
            "by paraje "}));
}

TEST_F(DepositoComposicion, OfATankNeverUsedIsEmptyAfterItsState) {
  EXPECT_THAT(Sent([&] { EXPECT_TRUE(tank1.Composicion(1).is_empty()); }),
              ElementsAre("select MomentoHasta from Descargas where (Deposito=1) order by "
                          "MomentoHasta ",
                          "select mmto from Vaciados where (Destino=1) order by mmto "));
}

TEST_F(DepositoComposicion, OfAnUnknownClassIsEmptyAfterStateAndWeight) {
  Weigh({.lot = 1, .kilos = 1000});
  Hold(1, 1, "2026-11-03 10:00:00", 1, 1);
  Read(1, 1, "2026-11-03 11:00:00", "1200", "800");
  for (const int16_t clase : {int16_t{-1}, int16_t{0}, int16_t{6}}) {
    const auto sent = Sent([&] { EXPECT_TRUE(tank1.Composicion(clase).is_empty()) << clase; });
    ASSERT_EQ(sent.size(), 8U);
    EXPECT_TRUE(sent.back().starts_with("select sum(PARCIALPESO*Fraccion)"));
  }
}

TEST_F(DepositoComposicion, WithoutLitresIsEmpty) {
  Weigh({.lot = 1, .kilos = 1000});
  Hold(1, 1, "2026-11-03 10:00:00", 1, 1);
  EXPECT_TRUE(tank1.Composicion(1).is_empty());  // no reading
  Read(1, 1, "2026-11-03 11:00:00", "Null", "0");
  EXPECT_TRUE(tank1.Composicion(1).is_empty());  // a reading of nothing
}

TEST_F(DepositoComposicion, WithoutPositiveFractionsIsEmpty) {
  Weigh({.lot = 1, .kilos = 1000});
  Hold(1, 1, "2026-11-03 10:00:00", 1, 0);
  Read(1, 1, "2026-11-03 11:00:00", "1200", "800");
  EXPECT_TRUE(tank1.Composicion(1).is_empty());
}

TEST_F(DepositoComposicion, CountsANegativeFractionInTheTotalOnly) {
  Weigh({.lot = 1, .kilos = 1000, .member = 11});
  Weigh({.lot = 2, .hopper = 2, .kilos = 1000, .member = 12});
  Hold(1, 1, "2026-11-03 10:00:00", 1, 1);
  Hold(2, 1, "2026-11-03 10:00:00", 1, -0.5);
  Read(1, 1, "2026-11-03 11:00:00", "1200", "100");
  EXPECT_EQ(test::Show(tank1.Composicion(1)), "[[11, , 200, 200]]");
}

}  // namespace
}  // namespace ambrelio
