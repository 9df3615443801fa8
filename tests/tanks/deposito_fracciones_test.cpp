// Scaling and moving the fractions of discharges.
#include "tanks/tank_test.h"

namespace ambrelio {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class EscalarFracciones : public test::TankTest {};
class MoverFraccion : public test::TankTest {};

constexpr const char* kMoment = "2026-11-03 08:00:00";

TEST_F(EscalarFracciones, MultipliesTheFractionsOfThisTankOnly) {
  Hold(1, 1, kMoment, 3, 0.5);
  Hold(2, 1, kMoment, 3, 0.25);
  Hold(1, 1, kMoment, 2, 0.5);
  EXPECT_THAT(
      Sent([&] { tank3.EscalarFracciones(0.5); }),
      ElementsAre("update Descargas set Fraccion= Fraccion * 0.50000000 where (Deposito=3) ",
                  "update Descargas set Fraccion=0 where (Fraccion<0.0001) "));
  EXPECT_THAT(Fractions(3), ElementsAre("1/1=0.25", "2/1=0.125"));
  EXPECT_THAT(Fractions(2), ElementsAre("1/1=0.5"));
}

TEST_F(EscalarFracciones, ClearsTheDustOfEveryTank) {
  Hold(1, 1, kMoment, 3, 0.00015);
  Hold(2, 1, kMoment, 3, 0.0002);
  Hold(1, 1, kMoment, 6, 0.00005);
  Hold(2, 1, kMoment, 6, 0.0001);
  tank3.EscalarFracciones(0.5);
  EXPECT_THAT(Fractions(3), ElementsAre("1/1=0", "2/1=0.0001"));
  EXPECT_THAT(Fractions(6), ElementsAre("1/1=0", "2/1=0.0001"));
}

TEST_F(EscalarFracciones, ByZeroOrANegativeFactorLeavesNothing) {
  Hold(1, 1, kMoment, 3, 0.5);
  Hold(1, 1, kMoment, 2, 0.5);
  EXPECT_EQ(Sent([&] { tank3.EscalarFracciones(0); }).at(0),
            "update Descargas set Fraccion= Fraccion * 0 where (Deposito=3) ");
  EXPECT_EQ(Sent([&] { tank2.EscalarFracciones(-1); }).at(0),
            "update Descargas set Fraccion= Fraccion * -1.00000000 where (Deposito=2) ");
  EXPECT_THAT(Fractions(3), ElementsAre("1/1=0"));
  EXPECT_THAT(Fractions(2), ElementsAre("1/1=0"));
}

TEST_F(EscalarFracciones, LeavesNullFractionsAlone) {
  Hold(1, 1, "", 0, 0);
  Execute("update Descargas set Fraccion=Null");
  tank3.EscalarFracciones(0.5);
  EXPECT_THAT(Fractions(0), ElementsAre("1/1=Null"));
}

TEST_F(MoverFraccion, AddsToTheRowOfTheDestination) {
  Hold(1, 1, kMoment, 1, 0.5);
  Hold(1, 1, kMoment, 2, 0.25);
  EXPECT_THAT(Sent([&] { tank1.MoverFraccion(1, 1, 2, 0.125); }),
              ElementsAre("update Descargas set Fraccion= Fraccion+0.12500000 where (Tolva=1) and "
                          "(Descarga=1) and (Deposito=2) ",
                          "update Descargas set Fraccion=0 where (Fraccion<0.0001) "));
  EXPECT_THAT(Fractions(1), ElementsAre("1/1=0.5"));
  EXPECT_THAT(Fractions(2), ElementsAre("1/1=0.375"));
}

TEST_F(MoverFraccion, WritesANegativeAmountBehindAMinus) {
  Hold(1, 70000, kMoment, 1, 0.5);
  EXPECT_EQ(Sent([&] { tank1.MoverFraccion(1, 70000, 1, -0.125); }).at(0),
            "update Descargas set Fraccion= Fraccion-0.12500000 where (Tolva=1) and "
            "(Descarga=70000) and (Deposito=1) ");
  EXPECT_THAT(Fractions(1), ElementsAre("1/70000=0.375"));
}

TEST_F(MoverFraccion, OfTheWholeFractionLeavesZero) {
  Hold(1, 1, kMoment, 1, 0.25);
  tank1.MoverFraccion(1, 1, 1, -0.25);
  EXPECT_THAT(Fractions(1), ElementsAre("1/1=0"));
}

TEST_F(MoverFraccion, OfMoreThanThereIsLeavesZero) {
  Hold(1, 1, kMoment, 1, 0.2);
  tank1.MoverFraccion(1, 1, 1, -0.25);
  EXPECT_THAT(Fractions(1), ElementsAre("1/1=0"));
}

TEST_F(MoverFraccion, ClearsTheDustOfEveryTankAfterAnUpdate) {
  Hold(1, 1, kMoment, 1, 0.5);
  Hold(2, 1, kMoment, 6, 0.00009);
  tank1.MoverFraccion(1, 1, 1, -0.1);
  EXPECT_THAT(Fractions(6), ElementsAre("2/1=0"));
}

TEST_F(MoverFraccion, MakesTheRowOfTheDestinationFromTheRowOfThisTank) {
  Hold(1, 1, kMoment, 1, 0.5, 2);
  EXPECT_THAT(
      Sent([&] { tank1.MoverFraccion(1, 1, 2, 0.125); }),
      ElementsAre("update Descargas set Fraccion= Fraccion+0.12500000 where (Tolva=1) and "
                  "(Descarga=1) and (Deposito=2) ",
                  "insert into Descargas (Tolva, Descarga, MomentoDesde, MomentoHasta, Deposito, "
                  "Fraccion) select Tolva, Descarga, MomentoDesde, MomentoHasta, 2, 0.12500000 "
                  "from Descargas where (Tolva=1) and (Descarga=1) and (Deposito=1) "));
  EXPECT_THAT(Rows("select Tolva, Descarga, MomentoDesde, MomentoHasta, Molino, Deposito, Fraccion "
                   "from Descargas order by Deposito"),
              ElementsAre("1|1|2026-11-01 07:00:00|2026-11-03 08:00:00|2|1|0.5",
                          "1|1|2026-11-01 07:00:00|2026-11-03 08:00:00|0|2|0.125"));
}

TEST_F(MoverFraccion, KeepsANegativeAmountThatMakesARow) {
  Hold(1, 1, kMoment, 1, 0.5);
  const auto sent = Sent([&] { tank1.MoverFraccion(1, 1, 2, -0.125); });
  ASSERT_EQ(sent.size(), 2U);
  EXPECT_NE(sent[1].find("MomentoHasta, 2, -0.12500000 from Descargas"), std::string::npos);
  EXPECT_THAT(Fractions(2), ElementsAre("1/1=-0.125"));
}

TEST_F(MoverFraccion, WithoutARowInEitherTankDoesNothing) {
  Hold(2, 1, kMoment, 1, 0.5);
  const std::string before = Dump();
  tank1.MoverFraccion(1, 1, 2, 0.125);
  EXPECT_EQ(Dump(), before);
  EXPECT_THAT(Fractions(2), IsEmpty());
}

TEST_F(MoverFraccion, LeavesANullFractionNull) {
  Hold(1, 1, kMoment, 1, 0.5);
  Execute("update Descargas set Fraccion=Null");
  tank1.MoverFraccion(1, 1, 1, 0.5);
  EXPECT_THAT(Fractions(1), ElementsAre("1/1=Null"));
}

}  // namespace
}  // namespace ambrelio
