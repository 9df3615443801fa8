// One emptying.
#include "ambrelio/tanks/vaciado.h"

#include "tanks/tank_test.h"

namespace ambrelio {
namespace {

using test::At;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class VaciadoTest : public test::TankTest {
 protected:
  // Emptying 1 of tank 1 into tank 2 at 12:00: tank 1 has events at 8:00 and 16:00, tank 2 at 9:00
  // and 15:00.
  void SetUp() override {
    TankTest::SetUp();
    Hold(1, 1, "2026-11-03 08:00:00", 1, 1);
    Emptied(1, 1, "2026-11-03 12:00:00", 250.5, 2);
    Read(1, 1, "2026-11-03 16:00:00", "1200", "900");
    Read(2, 1, "2026-11-03 09:00:00", "1200", "900");
    Read(2, 2, "2026-11-03 15:00:00", "1200", "900");
    probe->events.clear();
  }
  void Sell() {
    Execute(
        "update Vaciados set Uso=2, Lote='L-7', Cliente=7, Transportista=3, "
        "DestinoVenta='Jaén'");
    probe->events.clear();
  }
  std::string Stored() {
    return Rows("select Uso, Lote, Cliente, Transportista, DestinoVenta from Vaciados").at(0);
  }
  std::string Bounds(int16_t tank, int32_t number) {
    Variant before = 1.0;
    Variant after = 2.0;
    const bool found = Vaciado(session, tank, number).GetCotasMomento(before, after);
    const auto hour = [](const Variant& moment) {
      return moment.is_date() ? moment.as<OleDate>().Iso().substr(11, 5) : test::Show(moment);
    };
    return (found ? "" : "false ") + hour(before) + " " + hour(after);
  }
};

// --- use, referents, lot

TEST_F(VaciadoTest, ReadsItsRowOnceAtFirstUse) {
  Sell();
  Vaciado emptying(session, 1, 1);
  EXPECT_THAT(Sent([&] {
                EXPECT_EQ(emptying.Uso(), 2);
                EXPECT_EQ(emptying.Cliente(), 7);
                EXPECT_EQ(emptying.Transportista(), 3);
                EXPECT_EQ(emptying.DestinoVenta(), "Jaén");
                EXPECT_EQ(emptying.Lote(), "L-7");
              }),
              ElementsAre("select Uso, Cliente, Transportista, DestinoVenta, Lote from Vaciados "
                          "where (Deposito=1) and (Vaciado=1) "));
  Execute("update Vaciados set Uso=0, Lote='X'");
  EXPECT_EQ(emptying.Uso(), 2);
  EXPECT_EQ(emptying.Lote(), "L-7");
}

TEST_F(VaciadoTest, ReadsNullAsZeroAndEmpty) {
  Execute("update Vaciados set Uso=Null");
  Vaciado emptying(session, 1, 1);
  EXPECT_EQ(emptying.Uso(), 0);
  EXPECT_EQ(emptying.Lote(), "");
  Execute("update Vaciados set Uso=2");
  Vaciado sale(session, 1, 1);
  EXPECT_EQ(sale.Cliente(), 0);
  EXPECT_EQ(sale.Transportista(), 0);
  EXPECT_EQ(sale.DestinoVenta(), "");
}

TEST_F(VaciadoTest, ShowsClientCarrierAndDestinationOfASaleOnly) {
  Sell();
  for (const int use : {0, 1}) {
    Execute("update Vaciados set Uso=" + std::to_string(use));
    Vaciado emptying(session, 1, 1);
    EXPECT_EQ(emptying.Cliente(), 0);
    EXPECT_EQ(emptying.Transportista(), 0);
    EXPECT_EQ(emptying.DestinoVenta(), "");
    EXPECT_EQ(emptying.Lote(), "L-7");
  }
  Execute("update Vaciados set Uso=3");
  EXPECT_EQ(Vaciado(session, 1, 1).Cliente(), 7);
}

TEST_F(VaciadoTest, ThatNoLongerExistsReadsAsNothing) {
  Sell();
  Vaciado emptying(session, 1, 1);
  Execute("delete from Vaciados");
  EXPECT_EQ(emptying.Uso(), 0);
  EXPECT_EQ(emptying.Cliente(), 0);
  EXPECT_EQ(emptying.Transportista(), 0);
  EXPECT_EQ(emptying.DestinoVenta(), "");
  EXPECT_EQ(emptying.Lote(), "");
}

TEST_F(VaciadoTest, FijarUsoWritesASale) {
  Vaciado emptying(session, 1, 1);
  EXPECT_THAT(Sent([&] { EXPECT_TRUE(emptying.FijarUso(2, 7, 3, "L'Aquila")); }),
              ElementsAre("update Vaciados set Uso=2, Cliente=7, Transportista=3, "
                          "DestinoVenta='L´Aquila' where (Deposito=1) and (Vaciado=1) "));
  EXPECT_EQ(Stored(), "2|Null|7|3|L´Aquila");
  EXPECT_EQ(emptying.Uso(), 2);
  EXPECT_EQ(emptying.Cliente(), 7);
  EXPECT_EQ(emptying.Transportista(), 3);
  EXPECT_EQ(emptying.DestinoVenta(), "L'Aquila");  // as given
}

TEST_F(VaciadoTest, FijarUsoWritesNullsForAnotherUse) {
  Sell();
  Vaciado emptying(session, 1, 1);
  EXPECT_THAT(Sent([&] { EXPECT_TRUE(emptying.FijarUso(0, 0, 0, "")); }),
              ElementsAre("update Vaciados set Uso=0, Cliente=Null, Transportista=Null, "
                          "DestinoVenta=Null where (Deposito=1) and (Vaciado=1) "));
  EXPECT_EQ(Stored(), "0|L-7|Null|Null|Null");
  EXPECT_TRUE(emptying.FijarUso(1, -1, -5, "Jaén"));
  EXPECT_EQ(Stored(), "1|L-7|Null|Null|Null");
  EXPECT_EQ(emptying.Cliente(), 0);
  EXPECT_EQ(emptying.Transportista(), 0);
  EXPECT_EQ(emptying.DestinoVenta(), "");
}

TEST_F(VaciadoTest, FijarUsoRefusesWithoutWriting) {
  Sell();
  Vaciado emptying(session, 1, 1);
  EXPECT_THAT(Sent([&] {
                EXPECT_FALSE(emptying.FijarUso(-1, 0, 0, ""));
                EXPECT_FALSE(emptying.FijarUso(3, 7, 3, ""));
                EXPECT_FALSE(emptying.FijarUso(0, 5, 0, ""));
                EXPECT_FALSE(emptying.FijarUso(1, 0, 5, ""));
                EXPECT_FALSE(emptying.FijarUso(2, 0, 3, ""));
                EXPECT_FALSE(emptying.FijarUso(2, 7, 0, ""));
              }),
              IsEmpty());
}

TEST_F(VaciadoTest, FijarUsoTakesOnlyZeroForAMissingReferent) {
  Vaciado emptying(session, 1, 1);
  EXPECT_TRUE(emptying.FijarUso(2, -1, -1, ""));
  EXPECT_EQ(Stored(), "2|Null|-1|-1|Null");
}

TEST_F(VaciadoTest, FijarUsoOfAMissingEmptyingIsFalse) {
  Vaciado emptying(session, 1, 1);
  Execute("delete from Vaciados");
  EXPECT_FALSE(emptying.FijarUso(0, 0, 0, ""));
  EXPECT_EQ(emptying.Uso(), 0);
}

TEST_F(VaciadoTest, FijarUsoCountsAsHavingReadTheRowAlthoughTheLotWasNot) {
  Sell();
  Vaciado emptying(session, 1, 1);
  EXPECT_TRUE(emptying.FijarUso(1, 0, 0, ""));
  EXPECT_THAT(Sent([&] { EXPECT_EQ(emptying.Lote(), ""); }), IsEmpty());
}

TEST_F(VaciadoTest, ADestinationTooLongIsCutInTheTableOnly) {
  Vaciado emptying(session, 1, 1);
  EXPECT_TRUE(emptying.FijarUso(2, 7, 3, std::string(60, 'x')));
  EXPECT_EQ(emptying.DestinoVenta(), std::string(60, 'x'));
  EXPECT_EQ(Vaciado(session, 1, 1).DestinoVenta(), std::string(50, 'x'));
}

TEST_F(VaciadoTest, SetLoteWritesTheLot) {
  Vaciado emptying(session, 1, 1);
  EXPECT_EQ(emptying.Lote(), "");
  EXPECT_THAT(Sent([&] { emptying.SetLote(" L'8 "); }),
              ElementsAre("update Vaciados set Lote='L´8' where (Deposito=1) and (Vaciado=1) "));
  EXPECT_EQ(emptying.Lote(), " L'8 ");  // as given
  EXPECT_EQ(Vaciado(session, 1, 1).Lote(), "L´8");
}

TEST_F(VaciadoTest, SetLoteEmptyWritesNull) {
  Sell();
  Vaciado emptying(session, 1, 1);
  EXPECT_EQ(Sent([&] { emptying.SetLote(""); }).at(0),
            "update Vaciados set Lote=Null where (Deposito=1) and (Vaciado=1) ");
  EXPECT_EQ(Stored(), "2|Null|7|3|Jaén");
}

TEST_F(VaciadoTest, SetLoteBeforeTheFirstReadingIsReadFromTheRow) {
  Vaciado emptying(session, 1, 1);
  emptying.SetLote("L'8");
  EXPECT_EQ(emptying.Lote(), "L´8");
}

TEST_F(VaciadoTest, SetLoteOfAMissingEmptyingKeepsTheLotRead) {
  Sell();
  Vaciado emptying(session, 1, 1);
  EXPECT_EQ(emptying.Lote(), "L-7");
  Execute("delete from Vaciados");
  emptying.SetLote("L-8");
  EXPECT_EQ(emptying.Lote(), "L-7");
}

// --- litres, moment, destination

TEST_F(VaciadoTest, LitrosIsTheQuantity) {
  Vaciado emptying(session, 1, 1);
  EXPECT_THAT(Sent([&] { EXPECT_EQ(emptying.Litros(), 250.5); }),
              ElementsAre("select Cantidad from Vaciados where (Deposito=1) and (Vaciado=1) "));
  Execute("update Vaciados set Cantidad=Null");
  EXPECT_EQ(emptying.Litros(), 0);
}

TEST_F(VaciadoTest, LitrosOfAMissingEmptyingRaises3021) {
  Vaciado emptying(session, 1, 1);
  Execute("delete from Vaciados");
  EXPECT_EQ(ErrorOf([&] { emptying.Litros(); }), 3021);
}

TEST_F(VaciadoTest, MomentoIsReadEachTime) {
  Vaciado emptying(session, 1, 1);
  EXPECT_THAT(Sent([&] { EXPECT_EQ(emptying.Momento(), At("2026-11-03 12:00:00")); }),
              ElementsAre("select mmto from Vaciados where (Deposito=1) and (Vaciado=1) "));
  Execute("update Vaciados set mmto=Null");
  EXPECT_EQ(emptying.Momento(), OleDate());
  Execute("delete from Vaciados");
  EXPECT_EQ(emptying.Momento(), OleDate());
}

TEST_F(VaciadoTest, DestinoIsTheReceivingTank) {
  Vaciado emptying(session, 1, 1);
  EXPECT_THAT(Sent([&] { EXPECT_EQ(emptying.Destino(), 2); }),
              ElementsAre("select Destino from Vaciados where (Deposito=1) and (Vaciado=1) "));
  Execute("update Vaciados set Destino=Null");
  EXPECT_EQ(emptying.Destino(), 0);
  Execute("delete from Vaciados");
  EXPECT_EQ(emptying.Destino(), 0);
}

// --- bounds

TEST_F(VaciadoTest, BoundsAreTheNearestOfBothTanks) {
  EXPECT_EQ(Bounds(1, 1), "09:00 15:00");
  Execute("delete from Niveles where Deposito=2");
  EXPECT_EQ(Bounds(1, 1), "08:00 16:00");
}

TEST_F(VaciadoTest, BoundsOfTheEmptiedTankHoldWhereTheyAreNearer) {
  Execute("update Niveles set Momento=#11/3/2026 7:0:0# where Deposito=2 and Item=1");
  Execute("update Niveles set Momento=#11/3/2026 17:0:0# where Deposito=2 and Item=2");
  EXPECT_EQ(Bounds(1, 1), "08:00 16:00");
}

TEST_F(VaciadoTest, BoundsOutOfTheMillAreThoseOfTheEmptiedTank) {
  Execute("update Vaciados set Destino=0");
  Vaciado emptying(session, 1, 1);
  Variant before;
  Variant after;
  EXPECT_THAT(Sent([&] { EXPECT_TRUE(emptying.GetCotasMomento(before, after)); }),
              ElementsAre("select Destino from Vaciados where (Deposito=1) and (Vaciado=1) "));
  EXPECT_EQ(Bounds(1, 1), "08:00 16:00");
}

TEST_F(VaciadoTest, ABoundThatTheEmptiedTankLacksStaysNull) {
  Execute("delete from Descargas");
  EXPECT_EQ(Bounds(1, 1), "Null 15:00");
  Execute("delete from Niveles where Deposito=1");
  EXPECT_EQ(Bounds(1, 1), "Null Null");
}

TEST_F(VaciadoTest, BoundsOutsideTheHistoryAreNullAndFalse) {
  EXPECT_EQ(Bounds(1, 9), "false Null Null");
  EXPECT_EQ(Bounds(5, 1), "false Null Null");  // a tank without history
}

// A host's table with a wider column can name a tank that the history query does not find.
TEST_F(VaciadoTest, BoundsOfAnEmptyingMissingFromTheReceivingTankAreFalseAlthoughSet) {
  auto& tables = session.Database().TableDefs();
  tables.Delete("Vaciados");
  const auto table = session.Database().CreateTableDef("Vaciados");
  using dao::FieldType;
  for (const auto& [name, type] : {std::pair{"Deposito", FieldType::kInteger},
                                   {"Vaciado", FieldType::kLong},
                                   {"mmto", FieldType::kDate},
                                   {"Destino", FieldType::kDouble}}) {
    table->Fields().Append(table->CreateField(name, type));
  }
  tables.Append(table);
  Execute(
      "insert into Vaciados (Deposito, Vaciado, mmto, Destino) values "
      "(1, 1, #11/3/2026 12:0:0#, 2.25)");
  EXPECT_EQ(Bounds(1, 1), "false 08:00 16:00");
}

TEST_F(VaciadoTest, BoundsInTheEmptiedTankAreThoseOfTheMomentTheObjectWasMade) {
  Vaciado emptying(session, 1, 1);
  Read(1, 2, "2026-11-03 11:00:00", "1200", "900");  // not seen
  Read(2, 3, "2026-11-03 13:00:00", "1200", "900");  // seen: that tank is read each time
  Variant before;
  Variant after;
  EXPECT_TRUE(emptying.GetCotasMomento(before, after));
  EXPECT_EQ(test::Show(before), "2026-11-03 09:00:00");
  EXPECT_EQ(test::Show(after), "2026-11-03 13:00:00");
}

TEST_F(VaciadoTest, BoundsInAHistoryOfMoreEventsThanSixteenBitsCountOverflow) {
  for (int items = 1; items < 32768; items *= 2) {
    Execute("insert into Niveles (Deposito, Item, Momento) select Deposito, Item+" +
            std::to_string(items) + ", Momento from Niveles where Deposito=1");
  }
  Vaciado emptying(session, 1, 1);
  Variant before;
  Variant after;
  EXPECT_EQ(ErrorOf([&] { emptying.GetCotasMomento(before, after); }), 6);
  Execute("delete from Niveles where (Deposito=1) and (Item>32765)");  // 32767 events are left
  EXPECT_EQ(Bounds(1, 1), "09:00 15:00");
}

// --- moving

TEST_F(VaciadoTest, MovesStrictlyBetweenItsNeighbours) {
  Vaciado emptying(session, 1, 1);
  const auto sent = Sent([&] { emptying.SetMomento(At("2026-11-03 09:00:01")); });
  ASSERT_EQ(sent.size(), 3U);
  EXPECT_EQ(sent[0], "select Destino from Vaciados where (Deposito=1) and (Vaciado=1) ");
  EXPECT_TRUE(sent[1].starts_with("(select MomentoHasta as mmto")) << sent[1];
  EXPECT_EQ(sent[2],
            "update Vaciados set mmto=#11/3/2026 9:0:1# where (Deposito=1) and (Vaciado=1) ");
  EXPECT_EQ(emptying.Momento(), At("2026-11-03 09:00:01"));
}

TEST_F(VaciadoTest, DoesNotMoveToOrBeyondANeighbour) {
  Vaciado emptying(session, 1, 1);
  for (const char* moment : {"2026-11-03 08:30:00", "2026-11-03 09:00:00", "2026-11-03 15:00:00",
                             "2026-11-03 15:30:00"}) {
    emptying.SetMomento(At(moment));
    EXPECT_EQ(emptying.Momento(), At("2026-11-03 12:00:00"));
  }
}

TEST_F(VaciadoTest, MovesFreelyWhereABoundIsNull) {
  Execute("delete from Descargas");
  Vaciado emptying(session, 1, 1);
  emptying.SetMomento(At("2026-11-01 00:00:00"));
  EXPECT_EQ(emptying.Momento(), At("2026-11-01 00:00:00"));
}

TEST_F(VaciadoTest, DoesNotMoveOutsideTheHistory) {
  Vaciado emptying(session, 1, 9);
  EXPECT_THAT(Sent([&] { emptying.SetMomento(At("2026-11-03 12:30:00")); }), IsEmpty());
}

// --- composition

TEST_F(VaciadoTest, ComposicionSharesTheLitresOutByTheSnapshot) {
  Weigh({.lot = 1, .kilos = 1000, .member = 11});
  Weigh({.lot = 2, .kilos = 1000, .member = 12});
  Execute(
      "insert into detVaciados (Deposito, Vaciado, Tolva, Descarga, Molino, Fraccion) values "
      "(1, 1, 1, 1, 3, 0.5)");
  Execute(
      "insert into detVaciados (Deposito, Vaciado, Tolva, Descarga, Molino, Fraccion) values "
      "(1, 2, 1, 1, 4, 1)");
  Vaciado emptying(session, 1, 1);
  EXPECT_EQ(test::Show(emptying.Composicion(1)), "[[11, , 50, 125.25], [12, , 50, 125.25]]");
  EXPECT_EQ(test::Show(emptying.Composicion(5)), "[[3, 3, 100, 250.5]]");
  EXPECT_THAT(
      Sent([&] { emptying.Composicion(5); }),
      ElementsAre(
          "select Cantidad from Vaciados where (Deposito=1) and (Vaciado=1) ",
          "select sum(PARCIALPESO*Fraccion) as pes from ExtPesada left join detVaciados on "
          "(ExtPesada.tolva=DetVaciados.Tolva) and (ExtPesada.descarga=detVaciados.Descarga) where "
          "(Deposito=1) and (Vaciado=1) ",
          "select Molino as campo, sum(PARCIALPESO*Fraccion) as pes from ExtPesada left join "
          "(select Tolva, Descarga, Molino, Fraccion from detVaciados where (Deposito=1) and "
          "(Vaciado=1) and (Fraccion>0)) as dgas on (ExtPesada.Tolva=dgas.Tolva) and "
          "(ExtPesada.Descarga=dgas.Descarga) where not isnull(Fraccion) group by Molino order by "
          "Molino "));
}

TEST_F(VaciadoTest, ComposicionWithoutWeightOrLitresIsEmpty) {
  Vaciado emptying(session, 1, 1);
  EXPECT_TRUE(emptying.Composicion(1).is_empty());
  Weigh({.lot = 1, .kilos = 1000, .member = 11});
  Execute(
      "insert into detVaciados (Deposito, Vaciado, Tolva, Descarga, Molino, Fraccion) values "
      "(1, 1, 1, 1, 3, 0.5)");
  EXPECT_FALSE(emptying.Composicion(1).is_empty());
  Execute("update Vaciados set Cantidad=0");
  EXPECT_TRUE(emptying.Composicion(1).is_empty());
}

TEST_F(VaciadoTest, ComposicionOfAnUnknownClassIsEmptyAfterLitresAndWeight) {
  Vaciado emptying(session, 1, 1);
  for (const int16_t clase : {int16_t{-1}, int16_t{0}, int16_t{6}}) {
    EXPECT_EQ(Sent([&] { EXPECT_TRUE(emptying.Composicion(clase).is_empty()); }).size(), 2U);
  }
}

TEST_F(VaciadoTest, ComposicionOfAMissingEmptyingRaises3021) {
  Vaciado emptying(session, 1, 1);
  Execute("delete from Vaciados");
  EXPECT_EQ(ErrorOf([&] { emptying.Composicion(1); }), 3021);
}

}  // namespace
}  // namespace ambrelio
